// What the record list's soft keys and menu offer, and the group deletion that the menu starts.
#include "screens/kit/screen_numbers.h"
#include "screens/output/run_report.h"
#include "screens/program/preferences_screen.h"
#include "screens/records/record_list.h"
#include "screens/records/undo.h"
#include "services/access.h"
#include "services/changes/record_steps.h"
#include "services/message.h"

namespace tabelion {
namespace {

constexpr CommandId kDeleteOutsideFilter = 40013;
constexpr CommandId kDeleteWithinFilter = 40014;

}  // namespace

// The menu's order: Views, Beam, Delete, Reports, Tools (Find, Find Again, Sort, Filter),
// Preferences, Save, Undo, Redo, Close. What a database or this program does not have yet has no
// entry.
CommandTable<RecordListScreen> RecordListScreen::Commands(Dialog&) {
  using Self = RecordListScreen;
  const auto delete_group = [](RecordGroup group) {
    return [group](Self& self, Dialog& on) { self.DeleteGroup(on, group); };
  };
  const bool open = IsDatabaseOpen(app_);
  const StepEntry undo = UndoEntry(app_);
  const StepEntry redo = RedoEntry(app_);
  return {.resource = 146,
          .left = {kNewRecordCommand, u"New Record", &Self::NewRecord},
          .right = {.text = u"Menu",
                    .rows = {{.text = u"Views", .enabled = open, .rows = ViewRows()},
                             {.text = u"Delete",
                              .enabled = open,
                              .rows = {{kDeleteWithinFilter, u"Within Filter",
                                        delete_group(RecordGroup::kWithinFilter)},
                                       {kDeleteOutsideFilter, u"Outside Filter",
                                        delete_group(RecordGroup::kOutsideFilter)},
                                       {kDeleteCommand, u"All Records",
                                        delete_group(RecordGroup::kAll)}}},
                             {kReportsCommand, u"Reports", &Self::RunReport, open},
                             {.text = u"Tools",
                              .enabled = open,
                              .rows = {{kFindCommand, u"Find", &Self::FindFirst},
                                       {kFindAgainCommand, u"Find Again", &Self::FindNext},
                                       {kSortCommand, u"Sort", &Self::Sort},
                                       {kFilterCommand, u"Filter", &Self::Filter}}},
                             {kPreferencesCommand, u"Preferences", &Self::ChangePreferences},
                             {kSaveCommand, u"Save", &Self::Save, open},
                             {kUndoCommand, undo.text, &Self::Undo, undo.enabled},
                             {kRedoCommand, redo.text, &Self::Redo, redo.enabled},
                             {kBackCommand, u"Close", &Self::Close}}},
          .keys = {{kActionCommand, {}, &Self::OpenSelected}}};
}

void RecordListScreen::RunReport(Dialog&) {
  if (IsDatabaseOpen(app_)) ShowRunReport(app_);
}

void RecordListScreen::DeleteGroup(Dialog& dialog, RecordGroup group) {
  if (!IsDatabaseOpen(app_) || CheckSecurity(app_, Operation::kDelete, true) == kAccessRefused ||
      Ask(app_, u"Records deletion is an irreversible operation, still continue?", u"Delete?") !=
          Answer::kYes) {
    return;
  }
  {
    WaitCursor waiting(app_);
    DeleteRecordGroup(app_.level().history, CurrentTarget(app_), group,
                      QuerySettingsOf(app_, CurrentDatabase(app_)));
  }
  FillRecordList(dialog);
}

}  // namespace tabelion
