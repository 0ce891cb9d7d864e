// The list of a database's records: the screen that a database opens into.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "query/record_change.h"
#include "screens/kit/commands.h"
#include "screens/kit/type_to_find.h"
#include "services/application.h"

namespace tabelion {

inline constexpr ControlId kRecordList = 1000;
inline constexpr ControlId kNameLabel = 1001;
inline constexpr ControlId kViewLabel = 1174;

class RecordListScreen : public CommandScreen<RecordListScreen> {
 public:
  // `path` is the file to open, once the screen is there; `record` the one to select at first,
  // instead of the one that the database remembers.
  RecordListScreen(Application& app, std::string path, std::optional<std::uint32_t> record)
      : app_(app), path_(std::move(path)), first_record_(record) {}

  CommandTable<RecordListScreen> Commands(Dialog& dialog);
  void onInit(Dialog& dialog) override;
  void onMessage(Dialog& dialog, int message) override;
  void onNotice(Dialog& dialog, ControlId control, Notice notice) override;
  bool onKey(Dialog& dialog, const KeyPress& key) override;
  void onTimer(Dialog& dialog, int timer) override { find_.onTimer(dialog, timer); }
  void onActivate(Dialog& dialog) override { dialog.list(kRecordList).focus(); }
  void onResize(Dialog& dialog) override;
  void onPaintRow(Dialog& dialog, ControlId list, int row, ListPainter& painter,
                  const Rect& area) override;
  std::u16string rowText(Dialog& dialog, ControlId list, int row) override;
  bool OnAutoClose(Dialog& dialog) override;
  void OnForeignMessage(Dialog& dialog) override;

  // Rebuilds the list from the current view. Run after every command that changes records, order
  // or view.
  void FillRecordList(Dialog& dialog);

 private:
  void Layout(Dialog& dialog);
  void OpenFile(Dialog& dialog);
  void ShowColumns(Dialog& dialog);
  void SelectListRow(Dialog& dialog, int row);
  void OpenSelected(Dialog& dialog);
  void EditRecord(Dialog& dialog, std::uint32_t record);
  void NewRecord(Dialog& dialog);
  void Sort(Dialog& dialog);
  void Filter(Dialog& dialog);
  std::u16string ListTitle() const;
  void ChangePreferences(Dialog& dialog);
  void DeleteGroup(Dialog& dialog, RecordGroup group);
  void RunReport(Dialog& dialog);
  std::vector<Command<RecordListScreen>> ViewRows();
  void ChooseView(Dialog& dialog, int view);
  void EditViews(Dialog& dialog);
  void SwitchTo(Dialog& dialog, const std::u16string& database);
  void FindFirst(Dialog& dialog);
  void FindNext(Dialog& dialog);
  void ShowFound(Dialog& dialog, int slot);
  void ForgetFound(Dialog& dialog);
  void Save(Dialog& dialog);
  void Undo(Dialog& dialog);
  void Redo(Dialog& dialog);
  void Close(Dialog& dialog);
  void CloseWith(Dialog& dialog, int result);
  bool CloseFor(int result);  // false: the database stays open
  bool QuickFindKey(Dialog& dialog, const KeyPress& key);
  int RowOfCurrentRecord() const;

  Application& app_;
  std::string path_;
  std::optional<std::uint32_t> first_record_;
  TypeToFind find_{u"Tabelion"};
  std::vector<int> slots_;  // of the columns
  int found_slot_ = -1;     // of what a search has found in the selected record
};

// Opens the database file in the record list; the screen's result.
int ShowRecordList(Application& app, const std::string& path,
                   std::optional<std::uint32_t> record = std::nullopt);

}  // namespace tabelion
