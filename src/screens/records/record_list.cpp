#include "screens/records/record_list.h"

#include <algorithm>

#include "query/list_columns.h"
#include "screens/files/closing_questions.h"
#include "screens/kit/phone_width.h"
#include "screens/kit/screen_numbers.h"
#include "screens/program/ask_password.h"
#include "screens/program/preferences_screen.h"
#include "screens/records/edit_record.h"
#include "screens/records/list_columns.h"
#include "screens/records/quick_find.h"
#include "screens/records/undo.h"
#include "screens/records/wide_columns.h"
#include "services/access.h"
#include "services/folders.h"
#include "services/message.h"
#include "services/open_database.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

constexpr int kOpenMessage = 1;
constexpr int kListTop = 26;
constexpr int kScrollStep = 30;
constexpr int kScrollBarRoom = 16;
constexpr int kViewFontPoints = 9;

// The name of the current view; "Default View" while none is chosen.
std::u16string viewName(const Application& app, const DatabaseRecord& schema) {
  const std::size_t view = schema.current_view;
  if (view < schema.view_count && view < schema.views.size()) {
    const std::string name = areaText(schema.views[view].name);
    if (!name.empty()) return ScreenText(app, name);
  }
  return u"Default View";
}

DialogTemplate recordListTemplate() {
  DialogTemplate dialog;
  dialog.resource = kRecordListScreen;
  dialog.title = u"Tabelion";
  dialog.controls = {
      {.id = kNameLabel,
       .kind = ControlKind::kLabel,
       .text = u"Database Name",
       .place = {2, 2, 138, 22}},
      {.id = kViewLabel,
       .kind = ControlKind::kLabel,
       .text = u"View",
       .place = {140, 2, 98, 22},
       .right_aligned = true},
      {.id = kRecordList, .kind = ControlKind::kList, .accessible_name = u"Records"},
  };
  return dialog;
}

}  // namespace

int ShowRecordList(Application& app, const std::string& path, std::optional<std::uint32_t> record) {
  RecordListScreen screen(app, path, record);
  return RunModalDialog(app, recordListTemplate(), screen);
}

void RecordListScreen::onInit(Dialog& dialog) {
  ShowCommands(dialog);
  Layout(dialog);
  for (const ControlId label : {kNameLabel, kViewLabel}) dialog.control(label).setText({});
  dialog.post(kOpenMessage);
}

void RecordListScreen::Layout(Dialog& dialog) {
  const Size full = dialog.fullScreenSize();
  const Size size = dialog.screenSize();
  if (full.width == 320 && full.height == 240) {
    dialog.control(kNameLabel).setPlace({0, 0, 200, 25});
    dialog.control(kViewLabel).setPlace({200, 2, 120, 25});
  } else {  // the name takes seven twelfths, as it does on a screen of 240 pixels
    const int name_width = size.width * 7 / 12;
    dialog.control(kNameLabel).setPlace({2, 2, name_width - 2, 22});
    dialog.control(kViewLabel).setPlace({name_width, 2, size.width - name_width - 2, 22});
  }
  dialog.control(kRecordList)
      .setPlace({0, kListTop, size.width, std::max(0, size.height - kListTop)});
  dialog.control(kViewLabel).setFontPixels(kViewFontPoints * dialog.verticalDpi() / 72);
}

void RecordListScreen::onMessage(Dialog& dialog, int message) {
  if (message == kOpenMessage) OpenFile(dialog);
}

// A file that is nowhere any more leaves the screen empty.
void RecordListScreen::OpenFile(Dialog& dialog) {
  LoadWeekStart(app_.platform, app_.preferences);
  const std::optional<std::string> path = FindDatabaseFile(app_, path_);
  if (!path) return;
  const int opened = OpenDatabaseFile(app_, *path, [&](const std::string& expected) {
    return AskPassword(app_, {.expected = expected, .compare = true}) == kPasswordConfirmed;
  });
  if (opened != kOpened) {
    return CloseWith(dialog, app_.closing == Closing::kNo ? kDialogClosed : kDialogAutoClosed);
  }
  DecryptWholeDatabase(app_, AskEncryptionPassword(app_));
  const int stored = CurrentDatabase(app_).schema.current_record_index;
  app_.level().current_record =
      stored >= kSchemaRecords
          ? static_cast<std::uint32_t>(stored) - static_cast<std::uint32_t>(kSchemaRecords)
          : 0;
  if (first_record_) app_.level().current_record = *first_record_;
  FillRecordList(dialog);
}

void RecordListScreen::FillRecordList(Dialog& dialog) {
  find_.clear(dialog);
  if (!IsDatabaseOpen(app_)) return;
  Database& database = CurrentDatabase(app_);
  if (app_.engine.steps.refresh) app_.engine.steps.refresh(database);
  find_.setTitle(dialog, ListTitle());
  ListControl& list = dialog.list(kRecordList);
  list.setVisible(false);
  dialog.control(kNameLabel).setText(ScreenText(app_, areaText(database.header.name)));
  slots_ = listedSlots(database.schema);
  ShowColumns(dialog);
  list.setRowCount(static_cast<int>(database.record_index.size()));
  SelectListRow(dialog, RowOfCurrentRecord());
  dialog.control(kViewLabel).setText(viewName(app_, database.schema));
  list.setVisible(true);
  list.focus();
}

void RecordListScreen::ShowColumns(Dialog& dialog) {
  std::vector<ListColumn> columns = MakeListColumns(app_, CurrentDatabase(app_).schema, slots_);
  if (const int width = dialog.screenSize().width; width > kWidestPhone) {
    GiveColumnsRoom(
        app_, slots_, width - kScrollBarRoom,
        [&](const std::u16string& text) { return dialog.textSize(text, 0).width; }, columns);
  }
  dialog.list(kRecordList).setColumns(columns);
}

void RecordListScreen::onResize(Dialog& dialog) {
  Layout(dialog);
  if (IsDatabaseOpen(app_)) ShowColumns(dialog);
}

int RecordListScreen::RowOfCurrentRecord() const {
  const auto& index = CurrentDatabase(app_).record_index;
  const auto found = std::find(index.begin(), index.end(), app_.level().current_record);
  return found == index.end() ? 0 : static_cast<int>(found - index.begin());
}

void RecordListScreen::SelectListRow(Dialog& dialog, int row) {
  ForgetFound(dialog);
  ListControl& list = dialog.list(kRecordList);
  list.selectRow(row);
  list.focus();
}

void RecordListScreen::onNotice(Dialog& dialog, ControlId control, Notice notice) {
  if (control != kRecordList) return;
  if (notice == Notice::kActivated) OpenSelected(dialog);
  if (notice == Notice::kSelectionChanged) {
    find_.clear(dialog);
    ForgetFound(dialog);
    const auto& index = CurrentDatabase(app_).record_index;
    const auto row = static_cast<std::size_t>(dialog.list(kRecordList).selectedRow());
    if (row < index.size()) app_.level().current_record = index[row];
  }
}

void RecordListScreen::NewRecord(Dialog& dialog) {
  if (!IsDatabaseOpen(app_) || CheckSecurity(app_, Operation::kAdd, true) != kAccessGranted ||
      !HasRoomForRecord(app_)) {
    return;
  }
  EditRecord(dialog, kNewRecord);
}

// Compat: the first row opens record 0, also when the order begins with another record
// (RecordList.FirstRowOpensRecordZero).
void RecordListScreen::OpenSelected(Dialog& dialog) {
  if (!IsDatabaseOpen(app_)) return;
  const auto& index = CurrentDatabase(app_).record_index;
  const int row = dialog.list(kRecordList).selectedRow();
  const bool behind_the_first = row > 0 && static_cast<std::size_t>(row) < index.size();
  EditRecord(dialog, behind_the_first ? index[static_cast<std::size_t>(row)] : 0);
}

void RecordListScreen::EditRecord(Dialog& dialog, std::uint32_t record) {
  const std::uint32_t before = app_.level().current_record;
  ShowEditRecord(app_, record);
  // A new one that was not stored.
  if (app_.level().current_record == kNewRecord) app_.level().current_record = before;
  app_.level().new_record = false;
  FillRecordList(dialog);
}

// The start of the week may decide which records a filter shows.
void RecordListScreen::ChangePreferences(Dialog& dialog) {
  ShowPreferences(app_);
  FillRecordList(dialog);
}

void RecordListScreen::Save(Dialog& dialog) {
  if (!IsDatabaseOpen(app_)) return;
  const SaveResult result = SaveDatabase(app_, SaveOccasion::kUser);
  // It may have a new name, beside the file that another program has changed.
  dialog.control(kNameLabel).setText(ScreenText(app_, areaText(CurrentDatabase(app_).header.name)));
  if (result == SaveResult::kSaved) {
    ShowMessage(app_, u"File Saved", u"Update", MessageIcon::kInformation);
  } else if (result == SaveResult::kFailed) {
    ShowMessage(app_, SaveFailureText(app_), u"Update", MessageIcon::kError);
  }
}

void RecordListScreen::Close(Dialog& dialog) {
  CloseWith(dialog, kDialogClosed);
}

void RecordListScreen::CloseWith(Dialog& dialog, int result) {
  if (CloseFor(result)) {
    dialog.end(result);
  } else {
    FillRecordList(dialog);
  }
}

bool RecordListScreen::OnAutoClose(Dialog& dialog) {
  const bool leaving = app_.closing == Closing::kLeaving;
  if (CloseFor(leaving ? kDialogClosed : kDialogAutoClosed)) return true;
  FillRecordList(dialog);
  return false;
}

void RecordListScreen::OnForeignMessage(Dialog&) {
  ShowMessage(app_, u"We are in OnCopyDate function", u"WM_COPYDATA active",
              MessageIcon::kInformation);
}

// Auto-close means that nobody is there to be asked: what was changed is saved.
bool RecordListScreen::CloseFor(int result) {
  const bool auto_closed = result == kDialogAutoClosed;
  if (!CloseDatabase(app_, auto_closed ? AskBeforeSaving::kNo : AskBeforeSaving::kYes,
                     AskWhenClosing(app_))) {
    return false;
  }
  if (auto_closed) SavePreferences(app_.platform, app_.preferences);
  return true;
}

void RecordListScreen::Undo(Dialog& dialog) {
  if (IsDatabaseOpen(app_) && UndoStep(app_)) FillRecordList(dialog);
}

void RecordListScreen::Redo(Dialog& dialog) {
  if (IsDatabaseOpen(app_) && RedoStep(app_)) FillRecordList(dialog);
}

bool RecordListScreen::onKey(Dialog& dialog, const KeyPress& key) {
  if (StepKey(dialog, key)) return true;
  if (key.key == Key::kLeft || key.key == Key::kRight) {
    dialog.list(kRecordList).scrollSideways(key.key == Key::kRight ? kScrollStep : -kScrollStep);
    return true;
  }
  return QuickFindKey(dialog, key);
}

bool RecordListScreen::QuickFindKey(Dialog& dialog, const KeyPress& key) {
  if (!IsDatabaseOpen(app_)) return false;
  const TypeToFind::Taken found = find_.onKey(
      dialog, key, [this](const std::u16string& typed) { return FindListRow(app_, typed); });
  if (found.row) {
    app_.level().current_record =
        CurrentDatabase(app_).record_index[static_cast<std::size_t>(*found.row)];
    SelectListRow(dialog, *found.row);
  }
  return found.taken;
}

void RecordListScreen::onPaintRow(Dialog& dialog, ControlId control, int row, ListPainter& painter,
                                  const Rect& area) {
  if (control != kRecordList) return;
  ListControl& list = dialog.list(kRecordList);
  const bool selected = list.selectedRow() == row;
  PaintListRow(app_, row, {slots_, list.columns(), selected, selected ? found_slot_ : -1}, painter,
               area);
}

std::u16string RecordListScreen::rowText(Dialog&, ControlId, int row) {
  const auto& index = CurrentDatabase(app_).record_index;
  std::u16string text;
  if (static_cast<std::size_t>(row) >= index.size()) return text;
  for (const int slot : slots_) {
    const std::u16string cell = ListCellText(app_, index[static_cast<std::size_t>(row)], slot);
    if (cell.empty()) continue;
    if (!text.empty()) text += u", ";
    text += cell;
  }
  return text;
}

}  // namespace tabelion
