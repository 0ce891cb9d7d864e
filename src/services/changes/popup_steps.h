// What people do to the items of a pop-up field, as steps of a history.
#pragma once

#include <string>

#include "query/popup_list.h"
#include "services/changes/history.h"

namespace tabelion {

// replaceItems as one step of this name. The current record stays the current one. Asks for no
// access right; the list of records shown is the caller's to refresh.
void ReplacePopupItems(History& history, ChangeTarget target, std::string name, int slot,
                       PopupItems items, const QuerySettings& settings);

}  // namespace tabelion
