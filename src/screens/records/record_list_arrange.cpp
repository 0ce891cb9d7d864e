// What the record list does to find its way through the records.
#include <algorithm>

#include "screens/arrange/find_records.h"
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

}  // namespace tabelion
