// The dialog for which records the list shows: six criteria, each a field and what it must hold,
// joined by AND and OR, with NOT and brackets. One that is ticked unfolds; its controls follow the
// type of its field.
#pragma once

#include <array>
#include <optional>
#include <vector>

#include "query/filter.h"
#include "screens/arrange/filter_draft.h"
#include "screens/kit/commands.h"
#include "screens/kit/row_layout.h"
#include "services/application.h"

namespace tabelion {

// The controls of a criterion, from 0 on.
enum class FilterPart {
  kEnabled,
  kJoin,
  kOpens,
  kNot,
  kCloses,
  kFieldLabel,
  kField,
  kRangeLabel,
  kRange,
  kCountLabel,  // "Last", "Next"
  kCount,
  kUnit,  // "Days", "Months", "Years"
  kFirstLabel,
  kFirst,
  kFirstPick,
  kSecondLabel,
  kSecond,
  kSecondPick,
  kValueLabel,
  kCheck,
  kItem,
  kNote,  // what is wrong with the criterion, or what it means
  kParts,
};
inline constexpr ControlId FilterControl(int criterion, FilterPart part) {
  return 1200 + criterion * static_cast<int>(FilterPart::kParts) + static_cast<int>(part);
}

class FilterScreen : public CommandScreen<FilterScreen> {
 public:
  FilterScreen(Application& app, int view);

  CommandTable<FilterScreen> Commands(Dialog& dialog);
  void onInit(Dialog& dialog) override;
  void onNotice(Dialog& dialog, ControlId control, Notice notice) override;
  bool acceptsCharacter(Dialog& dialog, ControlId control, char32_t character) override;
  void onResize(Dialog& dialog) override { Layout(dialog); }
  bool OnAutoClose(Dialog& dialog) override;

 private:
  using Part = FilterPart;

  std::array<FilterBlock, kFilterCriteria>& Stored() const;
  struct Faulty {
    int criterion;
    DraftFault fault;
  };

  Control& At(Dialog& dialog, int criterion, Part part) const {
    return dialog.control(FilterControl(criterion, part));
  }
  CriterionContext Context() const;
  void Fill(Dialog& dialog, int criterion, const CriterionDraft& draft);
  CriterionDraft Draft(Dialog& dialog, int criterion) const;
  void ShowParts(Dialog& dialog, int criterion);
  void ShowItem(Dialog& dialog, int criterion);
  void ShowNote(Dialog& dialog, int criterion);
  void Layout(Dialog& dialog);
  void AddRows(Dialog& dialog, int criterion, std::vector<LayoutRow>& rows);

  void OnEdited(Dialog& dialog, int criterion, Part part);
  void OnLeft(Dialog& dialog, int criterion, Part part);
  void PickBound(Dialog& dialog, int criterion, Part pick);
  void PickItem(Dialog& dialog, int criterion);

  void Ok(Dialog& dialog);
  void Cancel(Dialog& dialog);
  void TurnAllOff(Dialog& dialog);
  // The first criterion that is not understood, with nothing stored.
  std::optional<Faulty> Store(Dialog& dialog);
  void Point(Dialog& dialog, const Faulty& faulty);

  Application& app_;
  const int view_;  // -1: the database's own filter
  const QuerySettings settings_;
  std::vector<int> slots_;                             // that the field lists offer
  std::array<CriterionDraft, kFilterCriteria> shown_;  // when the dialog opened
  // Of each criterion what its controls need not be able to hold.
  std::array<PopupKey, kFilterCriteria> items_{};
  std::array<int, kFilterCriteria> fields_{};
  std::array<std::uint32_t, kFilterCriteria> checks_{};
  std::array<std::optional<DraftFault>, kFilterCriteria> faults_;
};

// Shows and stores the filter of the current database, or of one of its views, as one step that can
// be taken back; the list of records is to be refreshed afterwards. kDialogDone, kDialogClosed when
// cancelled, or kDialogAutoClosed.
int ShowFilter(Application& app, int view = -1);

}  // namespace tabelion
