#include "screens/arrange/filter_screen.h"

#include <algorithm>

#include "interchange/table_columns.h"
#include "interchange/words/field_choice.h"
#include "query/date_range.h"
#include "query/field_text.h"
#include "query/recompute.h"
#include "query/time_text.h"
#include "screens/kit/pick_date.h"
#include "screens/kit/pick_time.h"
#include "screens/kit/screen_numbers.h"
#include "screens/lists/choose_popup_value.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

constexpr CommandId kAllOffCommand = 40221;
constexpr char kUsualCount[] = "1";  // of days, months or years

std::string utf8Of(const Control& box) {
  return TextEncoding::utf8().fromUtf16(box.text()).bytes;
}

FilterPart boxOf(DraftFault::Box box) {
  switch (box) {
    case DraftFault::Box::kFirst:
      return FilterPart::kFirst;
    case DraftFault::Box::kSecond:
      return FilterPart::kSecond;
    case DraftFault::Box::kCount:
      break;
  }
  return FilterPart::kCount;
}

}  // namespace

FilterScreen::FilterScreen(Application& app, int view)
    : app_(app), view_(view), settings_(QuerySettingsOf(app, CurrentDatabase(app))) {}

std::array<FilterBlock, kFilterCriteria>& FilterScreen::Stored() const {
  DatabaseRecord& schema = CurrentDatabase(app_).schema;
  return view_ < 0 ? schema.filters : schema.views[static_cast<std::size_t>(view_)].filters;
}

CriterionContext FilterScreen::Context() const {
  return {CurrentDatabase(app_), app_.level().encoding, settings_};
}

CommandTable<FilterScreen> FilterScreen::Commands(Dialog& dialog) {
  bool some_on = false;
  for (int i = 0; i < kFilterCriteria; ++i) {
    some_on = some_on || At(dialog, i, Part::kEnabled).checked();
  }
  return {
      .resource = 143,
      .left = {kDoneCommand, u"OK", &FilterScreen::Ok},
      .right = {.text = u"Menu",
                .rows = {{kAllOffCommand, u"Turn All Off", &FilterScreen::TurnAllOff, some_on},
                         {kCancelCommand, u"Cancel", &FilterScreen::Cancel}}},
      .keys = {{kActionCommand, {}, &FilterScreen::Ok}, {kBackCommand, {}, &FilterScreen::Cancel}}};
}

void FilterScreen::onInit(Dialog& dialog) {
  ShowCommands(dialog);
  const Database& database = CurrentDatabase(app_);
  slots_ = fieldsFor(database, FieldUse::kFilter);
  std::vector<std::u16string> names(slots_.size());
  for (const TableColumn& column : tableColumns(database.schema, app_.level().encoding)) {
    const auto at = std::find(slots_.begin(), slots_.end(), column.slot);
    if (at == slots_.end() || column.is_link_key) continue;
    names[static_cast<std::size_t>(at - slots_.begin())] = FromUtf8(column.name);
  }
  std::vector<std::u16string> ranges;
  for (const std::string_view range : kDateRangeNames) ranges.push_back(FromUtf8(range));
  for (int i = 0; i < kFilterCriteria; ++i) {
    At(dialog, i, Part::kJoin).setChoices({u"AND", u"OR"});
    At(dialog, i, Part::kField).setChoices(names);
    At(dialog, i, Part::kRange).setChoices(ranges);
    At(dialog, i, Part::kCheck).setChoices({u"Unchecked", u"Checked"});
    const FilterBlock& stored = Stored()[static_cast<std::size_t>(i)];
    CriterionDraft draft = draftOf(Context(), stored);
    // One that never was set begins with any value of the first field.
    if (stored == FilterBlock{} && !slots_.empty()) {
      draft = withField(database, CriterionDraft{}, slots_.front());
    }
    Fill(dialog, i, draft);
    shown_[static_cast<std::size_t>(i)] = Draft(dialog, i);
  }
  Layout(dialog);
}

void FilterScreen::Fill(Dialog& dialog, int criterion, const CriterionDraft& draft) {
  const auto i = static_cast<std::size_t>(criterion);
  At(dialog, criterion, Part::kEnabled).setChecked(draft.enabled);
  At(dialog, criterion, Part::kJoin).select(draft.is_or ? 1 : 0);
  At(dialog, criterion, Part::kOpens).setChecked(draft.opens);
  At(dialog, criterion, Part::kNot).setChecked(draft.negated);
  At(dialog, criterion, Part::kCloses).setChecked(draft.closes);
  fields_[i] = draft.slot;
  const auto slot = std::find(slots_.begin(), slots_.end(), draft.slot);
  if (slot != slots_.end()) {
    At(dialog, criterion, Part::kField).select(static_cast<int>(slot - slots_.begin()));
  } else {
    const Database& database = CurrentDatabase(app_);
    const std::string name = fieldLabel(database, app_.level().encoding, draft.slot);
    At(dialog, criterion, Part::kField).setText(FromUtf8(name));
  }
  At(dialog, criterion, Part::kRange).select(draft.range);
  At(dialog, criterion, Part::kCount).setText(FromUtf8(draft.count));
  At(dialog, criterion, Part::kFirst).setText(FromUtf8(draft.texts.first));
  At(dialog, criterion, Part::kSecond).setText(FromUtf8(draft.texts.second));
  checks_[i] = draft.check;
  At(dialog, criterion, Part::kCheck).select(draft.check <= 1 ? static_cast<int>(draft.check) : -1);
  items_[i] = draft.item;
  ShowItem(dialog, criterion);
  faults_[i].reset();
  ShowParts(dialog, criterion);
}

CriterionDraft FilterScreen::Draft(Dialog& dialog, int criterion) const {
  const auto i = static_cast<std::size_t>(criterion);
  CriterionDraft draft;
  draft.enabled = At(dialog, criterion, Part::kEnabled).checked();
  draft.is_or = At(dialog, criterion, Part::kJoin).selection() == 1;
  draft.opens = At(dialog, criterion, Part::kOpens).checked();
  draft.negated = At(dialog, criterion, Part::kNot).checked();
  draft.closes = At(dialog, criterion, Part::kCloses).checked();
  draft.slot = fields_[i];
  draft.range = std::max(kCustomDateRange, At(dialog, criterion, Part::kRange).selection());
  draft.count = utf8Of(At(dialog, criterion, Part::kCount));
  draft.texts = {utf8Of(At(dialog, criterion, Part::kFirst)),
                 utf8Of(At(dialog, criterion, Part::kSecond))};
  draft.check = checks_[i];
  draft.item = items_[i];
  return draft;
}

void FilterScreen::ShowItem(Dialog& dialog, int criterion) {
  const auto i = static_cast<std::size_t>(criterion);
  const Database& database = CurrentDatabase(app_);
  std::u16string text = FromUtf8(kNoValueText);
  if (items_[i] != PopupKey{} && isSlot(fields_[i])) {
    const PopupNames names(database.fields[static_cast<std::size_t>(fields_[i])],
                           app_.level().encoding);
    const std::string* name = names.nameOf(items_[i]);
    text = name != nullptr ? FromUtf8(*name) : u"An item that is gone";
  }
  At(dialog, criterion, Part::kItem).setText(text);
}

void FilterScreen::ShowNote(Dialog& dialog, int criterion) {
  const auto& fault = faults_[static_cast<std::size_t>(criterion)];
  const std::u16string text =
      FromUtf8(fault ? fault->sentence : explanationOf(Context(), Draft(dialog, criterion)));
  Control& note = At(dialog, criterion, Part::kNote);
  note.setText(text);
  note.setVisible(At(dialog, criterion, Part::kEnabled).checked() && !text.empty());
}

void FilterScreen::onNotice(Dialog& dialog, ControlId control, Notice notice) {
  const int at = control - FilterControl(0, Part::kEnabled);
  const int parts = static_cast<int>(Part::kParts);
  if (at < 0 || at >= parts * kFilterCriteria) return;
  const int criterion = at / parts;
  const Part part = static_cast<Part>(at % parts);
  if (notice == Notice::kEdited) OnEdited(dialog, criterion, part);
  if (notice == Notice::kFocusLost) OnLeft(dialog, criterion, part);
  if (notice == Notice::kActivated) {
    part == Part::kItem ? PickItem(dialog, criterion) : PickBound(dialog, criterion, part);
  }
}

void FilterScreen::OnEdited(Dialog& dialog, int criterion, Part part) {
  const auto i = static_cast<std::size_t>(criterion);
  const int selection = At(dialog, criterion, part).selection();
  faults_[i].reset();
  if (part == Part::kField && selection >= 0) {
    Fill(dialog, criterion,
         withField(CurrentDatabase(app_), Draft(dialog, criterion),
                   slots_[static_cast<std::size_t>(selection)]));
  }
  if (part == Part::kCheck && selection >= 0) checks_[i] = static_cast<std::uint32_t>(selection);
  Control& count = At(dialog, criterion, Part::kCount);
  if (part == Part::kRange && dateRangeHasX(selection) && count.text().empty()) {
    count.setText(FromUtf8(kUsualCount));
  }
  ShowParts(dialog, criterion);
  Layout(dialog);
}

// A box that is left shows what was understood, or why nothing was.
void FilterScreen::OnLeft(Dialog& dialog, int criterion, Part part) {
  if (part != Part::kFirst && part != Part::kSecond && part != Part::kCount) return;
  const auto i = static_cast<std::size_t>(criterion);
  const CriterionDraft draft = Draft(dialog, criterion);
  if (!draft.enabled || draft == shown_[i]) return;
  const CriterionKind kind = kindOfSlot(CurrentDatabase(app_), draft.slot);
  if (kind >= CriterionKind::kInteger && part != Part::kCount) {
    Control& box = At(dialog, criterion, part);
    const auto value = wholeOfText(kind, utf8Of(box), settings_.formats);
    if (value) box.setText(FromUtf8(wholeText(kind, *value, settings_.formats)));
  }
  FilterBlock trial = Stored()[i];
  auto fault = storeDraft(Context(), draft, trial);
  if (fault && boxOf(fault->box) != part) return;  // said when that box is left
  faults_[i] = std::move(fault);
  ShowNote(dialog, criterion);
  Layout(dialog);
}

void FilterScreen::PickBound(Dialog& dialog, int criterion, Part pick) {
  const CriterionDraft draft = Draft(dialog, criterion);
  const CriterionKind kind = kindOfSlot(CurrentDatabase(app_), draft.slot);
  const Part part = pick == Part::kFirstPick ? Part::kFirst : Part::kSecond;
  Control& box = At(dialog, criterion, part);
  const auto now = wholeOfText(kind, utf8Of(box), settings_.formats);
  const auto& fields = CurrentDatabase(app_).schema.fields;
  const std::u16string name =
      ScreenText(app_, fieldName(fields[static_cast<std::size_t>(draft.slot)])) +
      (part == Part::kFirst ? u", From" : u", To");
  std::optional<std::int64_t> picked;
  if (kind == CriterionKind::kTime) {
    const auto time = PickTime(app_, name, now ? timeOfSeconds(*now) : TimeValue{});
    if (time) picked = time->isNone() ? kNoTimeSeconds : secondsOfTime(*time);
  } else {
    picked = PickDate(app_, name, static_cast<std::uint32_t>(now.value_or(0)));
  }
  if (!picked) return;
  box.setText(FromUtf8(wholeText(kind, *picked, settings_.formats)));
  OnEdited(dialog, criterion, part);
}

void FilterScreen::PickItem(Dialog& dialog, int criterion) {
  const auto i = static_cast<std::size_t>(criterion);
  PopupValue value{items_[i], {}};
  const PopupMenu menu{.slot = fields_[i],
                       .allow_no_value = true,
                       .menu_top = At(dialog, criterion, Part::kItem).bottomOnScreen()};
  const int chosen = ChoosePopupValue(app_, CurrentDatabase(app_), menu, value);
  if (chosen != kPopupChosen && chosen != kPopupNoValue) return;
  items_[i] = value.key;
  ShowItem(dialog, criterion);
  OnEdited(dialog, criterion, Part::kItem);
}

bool FilterScreen::acceptsCharacter(Dialog&, ControlId, char32_t character) {
  return CanStore(app_, character);
}

void FilterScreen::Ok(Dialog& dialog) {
  const std::optional<Faulty> faulty = Store(dialog);
  if (!faulty) return dialog.end(kDialogDone);
  Point(dialog, *faulty);
}

void FilterScreen::Cancel(Dialog& dialog) {
  dialog.end(kDialogClosed);
}

void FilterScreen::TurnAllOff(Dialog& dialog) {
  for (int i = 0; i < kFilterCriteria; ++i) {
    At(dialog, i, Part::kEnabled).setChecked(false);
    ShowParts(dialog, i);
  }
  Layout(dialog);
  At(dialog, 0, Part::kEnabled).focus();
}

void FilterScreen::Point(Dialog& dialog, const Faulty& faulty) {
  faults_[static_cast<std::size_t>(faulty.criterion)] = faulty.fault;
  ShowNote(dialog, faulty.criterion);
  Layout(dialog);
  Control& box = At(dialog, faulty.criterion, boxOf(faulty.fault.box));
  box.focus();
  box.selectText();
}

// One that is off and not understood is switched off as it was before.
std::optional<FilterScreen::Faulty> FilterScreen::Store(Dialog& dialog) {
  Database& database = CurrentDatabase(app_);
  auto criteria = Stored();
  for (int criterion = 0; criterion < kFilterCriteria; ++criterion) {
    const auto i = static_cast<std::size_t>(criterion);
    const CriterionDraft draft = Draft(dialog, criterion);
    if (draft == shown_[i]) continue;
    const auto fault = storeDraft(Context(), draft, criteria[i]);
    if (fault && draft.enabled) return Faulty{criterion, *fault};
    if (fault) criteria[i].enabled = 0;
  }
  if (criteria == Stored()) return std::nullopt;
  WaitCursor waiting(app_);
  const auto change = [&] {
    Stored() = criteria;
    setDirty(database);
    if (view_ >= 0) return;
    recomputeDependents(database, QuerySettingsOf(app_, database));  // totals of what is shown
  };
  app_.level().history.Perform(CurrentTarget(app_), "Filter", change,
                               view_ < 0 ? SchemaExtent::kSettings : SchemaExtent::kWhole);
  return std::nullopt;
}

bool FilterScreen::OnAutoClose(Dialog& dialog) {
  const std::optional<Faulty> faulty = Store(dialog);
  if (!faulty) return true;
  if (!IsAlone(app_.closing)) {
    Point(dialog, *faulty);
    return false;
  }
  const Database& database = CurrentDatabase(app_);
  const auto slot = static_cast<std::size_t>(fields_[static_cast<std::size_t>(faulty->criterion)]);
  std::u16string note = ScreenText(app_, areaText(database.header.name)) + u", Filter " +
                        FromUtf8(std::to_string(faulty->criterion + 1));
  // What was typed stays out where the field's values are kept from others' eyes.
  if (database.schema.fields[slot].encrypt_flag == 0) {
    note += u": " + FromUtf8(faulty->fault.sentence);
  }
  app_.not_stored.push_back(std::move(note));
  return true;
}

}  // namespace tabelion
