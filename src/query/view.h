// Views: named arrangements of columns, form, export, filter and sort of a database.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "engine/database.h"

namespace tabelion {

inline constexpr std::string_view kDefaultViewName = "Default View";
inline constexpr std::string_view kNewViewName = "New View";
inline constexpr std::string_view kTooManyViewsText =
    "Sorry, you have reached the maximum number of Views for this database.";
inline constexpr std::string_view kViewNameTakenText =
    "The view with the same name already exists in the list";

// What the views menu lists. A database without views gets "Default View" here, as the program
// always did when the menu opened.
std::vector<std::string> viewsMenu(Database& database);

// The index of the new view, or -1 when there are 20 already.
int addView(Database& database);
int copyView(Database& database, int view);
// False for a view that is not there and for "Default View", which stays.
bool deleteView(Database& database, int view);

// The index of the first view of this name, or -1.
int viewOfName(const DatabaseRecord& schema, std::string_view name);

// What choosing a view changed; the caller sorts, filters and redraws accordingly.
struct ViewChange {
  bool chosen = false;    // false: no such view
  std::string switch_to;  // the database to switch to; nothing else happens then
  bool sort_changed = false;
  bool filter_changed = false;
};
// Copies the view's sort, filter, field order and column settings into the database.
ViewChange chooseView(Database& database, int view);

// What the Edit View dialog shows and stores.
struct ViewSettings {
  std::string name;
  bool switches_database = false;
  std::string target;
  bool live_update = false;
};
ViewSettings viewSettings(const DatabaseRecord& schema, int view);
// kViewNameTakenText when a view before this one has the name, with nothing changed; else empty.
std::string storeViewSettings(Database& database, int view, const ViewSettings& settings);

// One field in a view, as the Fields Setup dialog shows and stores it.
struct ViewFieldSettings {
  bool in_list = true;
  int column_width = 0;  // as stored: list pixels / 1.5
  bool in_record_view = true;
  bool exported = true;
};
ViewFieldSettings viewFieldSettings(const DatabaseRecord& schema, int view, int slot);
void storeViewFieldSettings(Database& database, int view, int slot,
                            const ViewFieldSettings& settings);

}  // namespace tabelion
