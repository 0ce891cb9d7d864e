// Views: named arrangements of columns, form, export, filter and sort of a database.
//
// A database holds up to 20, in an order that matters: names are looked for from the first on, and
// a new name is compared with those before it alone. Texts are 8-bit, in the database's code page.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "engine/database.h"
#include "query/query_settings.h"

namespace tabelion {

inline constexpr std::string_view kDefaultViewName = "Default View";
inline constexpr std::string_view kNewViewName = "New View";
inline constexpr std::string_view kTooManyViewsText =
    "Sorry, you have reached the maximum number of Views for this database.";
inline constexpr std::size_t kMostViewName = 31;  // bytes, also of the name of a database
inline constexpr int kWidestColumn = 32767;
inline constexpr std::string_view kViewNameTakenText =
    "The view with the same name already exists in the list";

// How many views there are; a file that counts more than it can hold has as many as it can hold.
int viewCount(const DatabaseRecord& schema);
std::string viewName(const DatabaseRecord& schema, int view);
// The index of the first view of this name, or -1.
int viewOfName(const DatabaseRecord& schema, std::string_view name);
// Every field in use, in the order of a view.
std::vector<int> viewFields(const DatabaseRecord& schema, int view);
// The fields that a view shows as columns, in its order; those without a text in lists included.
std::vector<int> viewColumns(const DatabaseRecord& schema, int view);

// What the views menu lists. A database without views gets "Default View" here, as the program
// always did when the menu opened; that alone is no change worth a save.
std::vector<std::string> viewsMenu(Database& database);

// A new view, "New View", is what the database shows now: its field order, column widths, flags,
// sort and filter, so choosing it changes nothing. The index of the view, or -1 when there are 20
// already. Neither becomes the current view.
int addView(Database& database);
int copyView(Database& database, int view);

// False for a view that is not there and for "Default View", which stays. Later views move one
// place forward and the current view with them; deleting the current view leaves none current.
bool deleteView(Database& database, int view);

// What choosing a view changed; the caller sorts, filters and redraws accordingly.
struct ViewChange {
  bool chosen = false;    // false: no such view
  std::string switch_to;  // the database to switch to; nothing else happens then
  bool sort_changed = false;
  bool filter_changed = false;
};
// Copies the view's sort, filter, field order and column settings into the database and remembers
// it as the current one; the database is dirty when any of that was not so before.
ViewChange chooseView(Database& database, int view);

// The same, and what follows from it: sorts when the sort changed, and lists the records anew when
// sort or filter did. The database needs a refresh of its columns afterwards. `followed`, when
// given, is a record's position and stays that record's.
ViewChange applyView(Database& database, int view, const QuerySettings& settings,
                     std::uint32_t* followed = nullptr);

// What the Edit View dialog shows and stores.
struct ViewSettings {
  std::string name;  // at most kMostViewName bytes are stored
  bool switches_database = false;
  std::string target;  // stored for a view that switches, likewise
  bool live_update = false;
  bool operator==(const ViewSettings&) const = default;
};
ViewSettings viewSettings(const DatabaseRecord& schema, int view);
// kViewNameTakenText when a view before this one has the name, with nothing changed; else empty.
// Compat: views behind this one are not compared, so two may share a name
// (ViewTest.NamesAreComparedWithTheViewsBeforeAlone).
std::string storeViewSettings(Database& database, int view, const ViewSettings& settings);

// One field in a view, as the Fields Setup dialog shows and stores it.
struct ViewFieldSettings {
  bool in_list = true;
  // As stored: list pixels / 1.5, from 1 to kWidestColumn. Of a field that is not in the list, the
  // width that it had when it last was.
  int column_width = 0;
  bool in_record_view = true;
  bool exported = true;
  bool operator==(const ViewFieldSettings&) const = default;
};
ViewFieldSettings viewFieldSettings(const DatabaseRecord& schema, int view, int slot);
void storeViewFieldSettings(Database& database, int view, int slot,
                            const ViewFieldSettings& settings);

// The fields of `slots` come first, in their order; the others follow as they stood.
void storeViewOrder(Database& database, int view, std::span<const int> slots);

}  // namespace tabelion
