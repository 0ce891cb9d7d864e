// Choosing a view of the open database.
#pragma once

#include <optional>
#include <string>

#include "services/application.h"

namespace tabelion {

// Gives the database the view's columns, sort and filter, as one step that Undo takes back; the
// current record stays the current one. The list of columns is the caller's to rebuild. A view that
// switches databases changes nothing here: its database's name is the result, else empty.
std::u16string ChooseView(Application& app, int view);

// What was changed in the views shows in what the current view arranges: part of the step that
// changed them, or where none did, choosing it again.
enum class ViewsWere { kLeft, kChanged };
void ApplyCurrentView(Application& app, ViewsWere views);

// The path of a database of this name in the folders, that of the main storage first.
std::optional<std::string> DatabaseOfName(Application& app, const std::u16string& name);

}  // namespace tabelion
