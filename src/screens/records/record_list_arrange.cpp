// What the record list does to put the records in order and to find its way through them.
#include <algorithm>

#include "screens/arrange/find_records.h"
#include "screens/arrange/sort_screen.h"
#include "screens/records/record_list.h"

namespace tabelion {
namespace {

constexpr int kFarSideways = 1 << 24;  // wider than all columns together

}  // namespace

void RecordListScreen::FindFirst(Dialog& dialog) {
  if (IsDatabaseOpen(app_)) ShowFound(dialog, Find(app_));
}

void RecordListScreen::FindNext(Dialog& dialog) {
  if (IsDatabaseOpen(app_)) ShowFound(dialog, FindAgain(app_));
}

// The found record is selected, and its field's column in sight.
void RecordListScreen::ShowFound(Dialog& dialog, int slot) {
  if (slot < 0) return;
  FillRecordList(dialog);
  ListControl& list = dialog.list(kRecordList);
  int left = 0;
  for (std::size_t i = 0; i < slots_.size(); ++i) {
    const int right = left + list.columns()[i].width;
    if (slots_[i] == slot) {
      list.scrollSideways(-kFarSideways);
      list.scrollSideways(std::clamp(right - list.place().width, 0, left));
    }
    left = right;
  }
}

void RecordListScreen::Sort(Dialog& dialog) {
  if (!IsDatabaseOpen(app_)) return;
  ShowSort(app_);
  FillRecordList(dialog);
}

}  // namespace tabelion
