// What the record list does to put the records in order, to show them by views, and to find its
// way through them.
#include <algorithm>

#include <fmt/format.h>

#include "query/filter.h"
#include "query/view.h"
#include "screens/arrange/choose_view.h"
#include "screens/arrange/edit_views.h"
#include "screens/arrange/filter_screen.h"
#include "screens/arrange/find_records.h"
#include "screens/arrange/sort_screen.h"
#include "screens/kit/screen_numbers.h"
#include "screens/records/record_list.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

constexpr int kFarSideways = 1 << 24;  // wider than all columns together

}  // namespace

// The menu's entries, as the views are when it opens. A database without views has one from then
// on.
// Compat: an entry chooses by its name, so of views that share one, the first
// (ViewScreens.TheFirstOfANameIsChosen).
std::vector<Command<RecordListScreen>> RecordListScreen::ViewRows() {
  std::vector<Command<RecordListScreen>> rows;
  if (!IsDatabaseOpen(app_)) return rows;
  Database& database = CurrentDatabase(app_);
  CommandId number = kFirstListedCommand;
  for (const std::string& name : viewsMenu(database)) {
    const int view = viewOfName(database.schema, name);
    rows.push_back(
        {.number = ++number,
         .text = ScreenText(app_, name),
         .run = [view](RecordListScreen& self, Dialog& dialog) { self.ChooseView(dialog, view); },
         .checked = number - kFirstListedCommand - 1 == database.schema.current_view});
  }
  rows.push_back({kFirstListedCommand, u"Edit Views ", &RecordListScreen::EditViews});
  return rows;
}

void RecordListScreen::ChooseView(Dialog& dialog, int view) {
  const std::u16string other = tabelion::ChooseView(app_, view);
  if (other.empty()) {
    FillRecordList(dialog);
  } else {
    SwitchTo(dialog, other);
  }
}

void RecordListScreen::EditViews(Dialog& dialog) {
  ShowEditViews(app_);
  FillRecordList(dialog);
}

// Opens the database in place of this one. Where there is none of that name, nothing happens.
void RecordListScreen::SwitchTo(Dialog& dialog, const std::u16string& database) {
  const auto path = DatabaseOfName(app_, database);
  if (!path || *path == CurrentDatabase(app_).path) return;
  if (!CloseFor(kDialogClosed)) return FillRecordList(dialog);
  slots_.clear();
  for (const ControlId label : {kNameLabel, kViewLabel}) dialog.control(label).setText({});
  dialog.list(kRecordList).setColumns({});
  dialog.list(kRecordList).setRowCount(0);
  if (app_.closing != Closing::kNo) return;  // while it asked; this screen ends as well
  path_ = *path;
  first_record_.reset();
  OpenFile(dialog);
}

void RecordListScreen::FindFirst(Dialog& dialog) {
  if (IsDatabaseOpen(app_)) ShowFound(dialog, Find(app_));
}

void RecordListScreen::FindNext(Dialog& dialog) {
  if (IsDatabaseOpen(app_)) ShowFound(dialog, FindAgain(app_));
}

// The found record is selected, its field marked and in sight. One that has no column is named.
void RecordListScreen::ShowFound(Dialog& dialog, int slot) {
  if (slot < 0) return;
  FillRecordList(dialog);
  found_slot_ = slot;
  ListControl& list = dialog.list(kRecordList);
  int left = 0;
  for (std::size_t i = 0; i < slots_.size(); ++i) {
    const int right = left + list.columns()[i].width;
    if (slots_[i] == slot) {
      list.scrollSideways(-kFarSideways);
      return list.scrollSideways(std::clamp(right - list.place().width, 0, left));
    }
    left = right;
  }
  const auto& fields = CurrentDatabase(app_).schema.fields;
  const std::string name = fieldName(fields[static_cast<std::size_t>(slot)]);
  find_.setTitle(dialog, u"Found in " + ScreenText(app_, name));
}

void RecordListScreen::ForgetFound(Dialog& dialog) {
  if (found_slot_ < 0) return;
  found_slot_ = -1;
  find_.setTitle(dialog, ListTitle());
}

// With a filter, how many of how many records the list shows.
std::u16string RecordListScreen::ListTitle() const {
  const Database& database = CurrentDatabase(app_);
  if (!isFilterInUse(database.schema)) return u"Tabelion";
  return FromUtf8(fmt::format("Filter: {} of {} records", database.record_index.size(),
                              database.records.count()));
}

void RecordListScreen::Filter(Dialog& dialog) {
  if (!IsDatabaseOpen(app_)) return;
  ShowFilter(app_);
  FillRecordList(dialog);
}

void RecordListScreen::Sort(Dialog& dialog) {
  if (!IsDatabaseOpen(app_)) return;
  ShowSort(app_);
  FillRecordList(dialog);
}

}  // namespace tabelion
