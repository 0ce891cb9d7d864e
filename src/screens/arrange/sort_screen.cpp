#include "screens/arrange/sort_screen.h"

#include "query/record_index.h"
#include "query/sort.h"
#include "screens/kit/row_layout.h"
#include "screens/kit/screen_numbers.h"
#include "services/message.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

constexpr char16_t kTitle[] = u"Sort";
constexpr int kWayWidth = 90;

ControlId levelLabel(int level) {
  return 1 + level;
}

DialogTemplate sortTemplate() {
  DialogTemplate dialog;
  dialog.resource = kSortScreen;
  dialog.title = kTitle;
  for (int level = 0; level < kSortLevels; ++level) {
    const std::u16string name = u"Level " + FromUtf8(std::to_string(level + 1));
    dialog.controls.push_back({.id = levelLabel(level), .kind = ControlKind::kLabel, .text = name});
    dialog.controls.push_back({.id = SortFieldChoice(level),
                               .kind = ControlKind::kChoice,
                               .accessible_name = name + u", field"});
    dialog.controls.push_back({.id = SortWayChoice(level),
                               .kind = ControlKind::kChoice,
                               .accessible_name = name + u", direction"});
    dialog.controls.push_back(
        {.id = SortNote(level), .kind = ControlKind::kLabel, .visible = false});
  }
  return dialog;
}

}  // namespace

int ShowSort(Application& app, int view) {
  SortScreen screen(app, view);
  return RunModalDialog(app, sortTemplate(), screen);
}

CommandTable<SortScreen> SortScreen::Commands(Dialog&) {
  return {.resource = 143,
          .left = {kDoneCommand, u"OK", &SortScreen::Ok},
          .right = {kCancelCommand, u"Cancel", &SortScreen::Cancel},
          .keys = {{kActionCommand, {}, &SortScreen::Ok}, {kBackCommand, {}, &SortScreen::Cancel}}};
}

void SortScreen::onInit(Dialog& dialog) {
  ShowCommands(dialog);
  const Database& database = CurrentDatabase(app_);
  names_ = {u"No Field"};
  for (const std::string& name : sortFieldNames(database)) names_.push_back(ScreenText(app_, name));
  shown_ = sortSelection(database, view_);
  for (int level = 0; level < kSortLevels; ++level) {
    const auto i = static_cast<std::size_t>(level);
    Control& field = dialog.control(SortFieldChoice(level));
    field.setChoices(names_);
    const int position = shown_.field[i];
    if (static_cast<std::size_t>(position) < names_.size()) {
      field.select(position);
    } else {
      field.setText(NameAt(position));
    }
    Control& way = dialog.control(SortWayChoice(level));
    way.setChoices({u"Forward", u"Reverse"});
    way.select(shown_.forward[i] ? 0 : 1);
    ShowNote(dialog, level);
  }
  Layout(dialog);
}

void SortScreen::Layout(Dialog& dialog) {
  std::vector<LayoutRow> rows;
  for (int level = 0; level < kSortLevels; ++level) {
    rows.push_back(
        Spaced(LabeledRow(levelLabel(level), {BoxCell(SortFieldChoice(level)),
                                              BoxCell(SortWayChoice(level), kWayWidth)})));
    if (!dialog.control(SortNote(level)).text().empty()) rows.push_back(TextRow(SortNote(level)));
  }
  PlaceRows(dialog, rows);
}

// The name of the field that a position means, which the list need not have there.
std::u16string SortScreen::NameAt(int position) const {
  const int slot = slotOfSortPosition(position);
  if (!isSlot(slot)) return names_.front();
  const auto& fields = CurrentDatabase(app_).schema.fields;
  return ScreenText(app_, fieldName(fields[static_cast<std::size_t>(slot)]));
}

// Compat: behind a field that the lists leave out, a position means another field than the name
// that stands there (SortDialog.SaysWhichFieldAPositionMeans). So that nobody is surprised, the
// dialog says which one.
void SortScreen::ShowNote(Dialog& dialog, int level) {
  const int position = dialog.control(SortFieldChoice(level)).selection();
  std::u16string note;
  if (position > 0) {
    const std::u16string name = NameAt(position);
    if (name != names_[static_cast<std::size_t>(position)]) {
      note = u"This entry sorts by \"" + name + u"\".";
    }
  }
  dialog.control(SortNote(level)).setText(note);
  dialog.control(SortNote(level)).setVisible(!note.empty());
}

void SortScreen::onNotice(Dialog& dialog, ControlId control, Notice notice) {
  if (notice != Notice::kEdited) return;
  for (int level = 0; level < kSortLevels; ++level) {
    if (control != SortFieldChoice(level)) continue;
    ShowNote(dialog, level);
    Layout(dialog);
  }
}

// A level whose field no list has at its position stays as it is until another is chosen.
SortSelection SortScreen::Selected(Dialog& dialog) const {
  SortSelection selection = shown_;
  for (int level = 0; level < kSortLevels; ++level) {
    const auto i = static_cast<std::size_t>(level);
    const int position = dialog.control(SortFieldChoice(level)).selection();
    if (position >= 0) selection.field[i] = position;
    selection.forward[i] = dialog.control(SortWayChoice(level)).selection() == 0;
  }
  return selection;
}

void SortScreen::Ok(Dialog& dialog) {
  const std::u16string refusal = Store(dialog);
  if (refusal.empty()) return dialog.end(kDialogDone);
  ShowMessage(app_, refusal, kTitle, MessageIcon::kExclamation);
}

void SortScreen::Cancel(Dialog& dialog) {
  dialog.end(kDialogClosed);
}

// Nobody leaves a database changed by having looked at its order.
bool SortScreen::OnAutoClose(Dialog& dialog) {
  if (Selected(dialog) == shown_) return true;
  const std::u16string refusal = Store(dialog);
  if (refusal.empty()) return true;
  if (!IsAlone(app_.closing)) {
    ShowMessage(app_, refusal, kTitle, MessageIcon::kExclamation);
    return false;
  }
  const std::string name = areaText(CurrentDatabase(app_).header.name);
  app_.not_stored.push_back(ScreenText(app_, name) + u", " + kTitle + u": " + refusal);
  return true;
}

// Levels as they were are a reason to sort only where the records do not have their order: the
// order of equal ones is theirs, and a sort would change it. A view with live update takes the
// levels over, so the step is over the whole schema.
std::u16string SortScreen::Store(Dialog& dialog) {
  WaitCursor waiting(app_);
  Database& database = CurrentDatabase(app_);
  const SortSelection wanted = Selected(dialog);
  const QuerySettings settings = QuerySettingsOf(app_, database);
  std::string refusal;
  const auto sort = [&] {
    refusal = storeSortSelection(database, wanted, view_);
    if (!refusal.empty() || view_ >= 0) return;
    if (wanted == shown_ && isInOrder(database, settings.formats)) return;
    sortAndRecompute(database, settings, &app_.level().current_record);
    database.schema.sort_pending = 0;
  };
  app_.level().history.Perform(CurrentTarget(app_), "Sort", sort, SchemaExtent::kWhole);
  return ScreenText(app_, refusal);
}

}  // namespace tabelion
