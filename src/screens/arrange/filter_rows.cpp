// The controls of the filter dialog: which there are, which show, and where they stand.
#include "query/date_range.h"
#include "screens/arrange/filter_screen.h"
#include "screens/kit/screen_numbers.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

using Part = FilterPart;

constexpr int kJoinWidth = 62;
constexpr int kPickWidth = 30;
constexpr int kCountWidth = 60;
constexpr int kTextLength = 39;

bool isRange(CriterionKind kind) {
  return kind >= CriterionKind::kNumber;
}
bool isPicked(CriterionKind kind) {
  return kind == CriterionKind::kDate || kind == CriterionKind::kDays ||
         kind == CriterionKind::kTime;
}
bool isOfTime(CriterionKind kind) {
  return isPicked(kind) || kind == CriterionKind::kDuration;
}

void addCriterion(int criterion, std::vector<ControlTemplate>& controls) {
  const std::u16string name = u"Filter " + FromUtf8(std::to_string(criterion + 1));
  const auto add = [&](Part part, ControlKind kind, const std::u16string& text,
                       const std::u16string& spoken = {}) {
    controls.push_back({.id = FilterControl(criterion, part),
                        .kind = kind,
                        .text = text,
                        .accessible_name = spoken.empty() ? u"" : name + u", " + spoken,
                        .visible = part == Part::kEnabled});
  };
  add(Part::kEnabled, ControlKind::kCheckBox, name);
  add(Part::kJoin, ControlKind::kChoice, {}, u"joined with those before it by");
  add(Part::kOpens, ControlKind::kCheckBox, u"(", u"opens a bracket");
  add(Part::kNot, ControlKind::kCheckBox, u"NOT", u"NOT");
  add(Part::kCloses, ControlKind::kCheckBox, u")", u"closes a bracket");
  add(Part::kFieldLabel, ControlKind::kLabel, u"Field:");
  add(Part::kField, ControlKind::kChoice, {}, u"Field");
  add(Part::kRangeLabel, ControlKind::kLabel, u"Date Range");
  add(Part::kRange, ControlKind::kChoice, {});
  add(Part::kCountLabel, ControlKind::kLabel, {});
  add(Part::kCount, ControlKind::kEdit, {});
  add(Part::kUnit, ControlKind::kLabel, {});
  add(Part::kFirstLabel, ControlKind::kLabel, {});
  add(Part::kFirst, ControlKind::kEdit, {});
  add(Part::kFirstPick, ControlKind::kButton, u"…", u"choose From");
  add(Part::kSecondLabel, ControlKind::kLabel, {});
  add(Part::kSecond, ControlKind::kEdit, {});
  add(Part::kSecondPick, ControlKind::kButton, u"…", u"choose To");
  add(Part::kValueLabel, ControlKind::kLabel, u"Value Must Be");
  add(Part::kCheck, ControlKind::kChoice, {});
  add(Part::kItem, ControlKind::kButton, {});
  add(Part::kNote, ControlKind::kLabel, {});
}

DialogTemplate filterTemplate() {
  DialogTemplate dialog;
  dialog.resource = kFilterScreen;
  dialog.title = u"Filter";
  for (int criterion = 0; criterion < kFilterCriteria; ++criterion) {
    addCriterion(criterion, dialog.controls);
  }
  for (ControlTemplate& control : dialog.controls) {
    if (control.kind == ControlKind::kEdit) control.max_length = kTextLength;
  }
  return dialog;
}

}  // namespace

int ShowFilter(Application& app, int view) {
  FilterScreen screen(app, view);
  return RunModalDialog(app, filterTemplate(), screen);
}

void FilterScreen::ShowParts(Dialog& dialog, int criterion) {
  const auto show = [&](Part part, bool visible) {
    At(dialog, criterion, part).setVisible(visible);
  };
  const bool on = At(dialog, criterion, Part::kEnabled).checked();
  const CriterionDraft draft = Draft(dialog, criterion);
  const CriterionKind kind = kindOfSlot(CurrentDatabase(app_), draft.slot);
  show(Part::kJoin, on && criterion > 0);
  for (const Part part :
       {Part::kOpens, Part::kNot, Part::kCloses, Part::kFieldLabel, Part::kField}) {
    show(part, on);
  }
  const bool is_date = kind == CriterionKind::kDate;
  show(Part::kRangeLabel, on && is_date);
  show(Part::kRange, on && is_date);
  const bool has_count = is_date && dateRangeHasX(draft.range);
  for (const Part part : {Part::kCountLabel, Part::kCount, Part::kUnit}) {
    show(part, on && has_count);
  }
  if (has_count) {
    const int of_x = draft.range - kFirstDateRangeWithX;  // three units of each
    const char16_t* const units[] = {u"Days", u"Months", u"Years"};
    At(dialog, criterion, Part::kCountLabel).setText(of_x < 3 ? u"Last" : u"Next");
    At(dialog, criterion, Part::kUnit).setText(units[of_x % 3]);
  }
  const bool is_text = kind == CriterionKind::kText;
  const bool has_bounds = isRange(kind) && draft.range == kCustomDateRange;
  show(Part::kFirstLabel, on && (is_text || has_bounds));
  show(Part::kFirst, on && (is_text || has_bounds));
  show(Part::kSecondLabel, on && has_bounds);
  show(Part::kSecond, on && has_bounds);
  show(Part::kFirstPick, on && has_bounds && isPicked(kind));
  show(Part::kSecondPick, on && has_bounds && isPicked(kind));
  At(dialog, criterion, Part::kFirstLabel)
      .setText(is_text          ? u"Must Contain"
               : isOfTime(kind) ? u"From"
                                : u"Lower Limit");
  At(dialog, criterion, Part::kSecondLabel).setText(isOfTime(kind) ? u"To" : u"Upper Limit");
  show(Part::kValueLabel, on && (kind == CriterionKind::kItem || kind == CriterionKind::kCheckBox));
  show(Part::kCheck, on && kind == CriterionKind::kCheckBox);
  show(Part::kItem, on && kind == CriterionKind::kItem);
  ShowNote(dialog, criterion);
}

void FilterScreen::Layout(Dialog& dialog) {
  std::vector<LayoutRow> rows;
  for (int criterion = 0; criterion < kFilterCriteria; ++criterion) {
    AddRows(dialog, criterion, rows);
  }
  PlaceRows(dialog, rows);
}

void FilterScreen::AddRows(Dialog& dialog, int criterion, std::vector<LayoutRow>& rows) {
  const auto id = [&](Part part) { return FilterControl(criterion, part); };
  std::vector<LayoutCell> head{CheckCell(id(Part::kEnabled))};
  if (!At(dialog, criterion, Part::kEnabled).checked()) {
    rows.push_back(SentenceRow(head));
    return;
  }
  if (criterion > 0) head.push_back(BoxCell(id(Part::kJoin), kJoinWidth));
  head.push_back(CheckCell(id(Part::kOpens)));
  for (const Part part : {Part::kNot, Part::kCloses}) head.push_back(Glued(CheckCell(id(part))));
  rows.push_back(SentenceRow(head));
  rows.push_back(LabeledRow(id(Part::kFieldLabel), {BoxCell(id(Part::kField))}));
  const CriterionDraft draft = Draft(dialog, criterion);
  const CriterionKind kind = kindOfSlot(CurrentDatabase(app_), draft.slot);
  const auto& fault = faults_[static_cast<std::size_t>(criterion)];
  const bool first_is_faulty = fault && fault->box == DraftFault::Box::kFirst;
  const auto bound = [&](Part label, Part box, Part pick) {
    std::vector<LayoutCell> cells{BoxCell(id(box))};
    if (isPicked(kind)) cells.push_back(Glued(BoxCell(id(pick), kPickWidth)));
    rows.push_back(LabeledRow(id(label), std::move(cells)));
  };
  if (kind == CriterionKind::kDate) {
    rows.push_back(LabeledRow(id(Part::kRangeLabel), {BoxCell(id(Part::kRange))}));
  }
  if (kind == CriterionKind::kDate && dateRangeHasX(draft.range)) {
    rows.push_back(LabeledRow(id(Part::kCountLabel), {BoxCell(id(Part::kCount), kCountWidth),
                                                      Glued(TextCell(id(Part::kUnit)))}));
  }
  if (kind == CriterionKind::kText) {
    rows.push_back(LabeledRow(id(Part::kFirstLabel), {BoxCell(id(Part::kFirst))}));
  } else if (isRange(kind) && draft.range == kCustomDateRange) {
    bound(Part::kFirstLabel, Part::kFirst, Part::kFirstPick);
    if (first_is_faulty) rows.push_back(TextRow(id(Part::kNote)));
    bound(Part::kSecondLabel, Part::kSecond, Part::kSecondPick);
  } else if (kind == CriterionKind::kCheckBox || kind == CriterionKind::kItem) {
    const Part value = kind == CriterionKind::kItem ? Part::kItem : Part::kCheck;
    rows.push_back(LabeledRow(id(Part::kValueLabel), {BoxCell(id(value))}));
  }
  const bool placed = isRange(kind) && first_is_faulty;
  if (!placed && !At(dialog, criterion, Part::kNote).text().empty()) {
    rows.push_back(TextRow(id(Part::kNote)));
  }
}

}  // namespace tabelion
