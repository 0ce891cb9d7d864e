// The dialog for the order of the records: up to three fields, each forward or in reverse.
#pragma once

#include "query/sort_fields.h"
#include "screens/kit/commands.h"
#include "services/application.h"

namespace tabelion {

// Controls of a level, from 0 on.
inline constexpr ControlId SortFieldChoice(int level) {
  return 1010 + level;
}
inline constexpr ControlId SortWayChoice(int level) {
  return 1020 + level;
}
inline constexpr ControlId SortNote(int level) {
  return 1030 + level;
}

class SortScreen : public CommandScreen<SortScreen> {
 public:
  SortScreen(Application& app, int view) : app_(app), view_(view) {}

  CommandTable<SortScreen> Commands(Dialog& dialog);
  void onInit(Dialog& dialog) override;
  void onNotice(Dialog& dialog, ControlId control, Notice notice) override;
  void onResize(Dialog& dialog) override { Layout(dialog); }
  bool OnAutoClose(Dialog& dialog) override;

 private:
  void Layout(Dialog& dialog);
  void ShowNote(Dialog& dialog, int level);
  SortSelection Selected(Dialog& dialog) const;
  std::u16string NameAt(int position) const;
  void Ok(Dialog& dialog);
  void Cancel(Dialog& dialog);
  // The refusal of a field; empty when the levels are stored and the records sorted.
  std::u16string Store(Dialog& dialog);

  Application& app_;
  const int view_;
  SortSelection shown_;                // when the dialog opened
  std::vector<std::u16string> names_;  // that each list offers
};

// Shows the levels of the current database, or of one of its views. OK sorts the records, as one
// step that can be taken back; the current record stays the current one. Of a view the levels are
// stored alone. kDialogDone, kDialogClosed when cancelled, or kDialogAutoClosed.
int ShowSort(Application& app, int view = -1);

}  // namespace tabelion
