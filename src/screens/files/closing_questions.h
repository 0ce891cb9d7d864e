// What closing a database asks in dialogs of its own.
#pragma once

#include "services/open_database.h"

namespace tabelion {

// Of the question where a database goes that could not be saved: the folders' buttons count from
// the first one.
inline constexpr ControlId kGiveUpChangesButton = 2;
inline constexpr ControlId kKeepOpenButton = 3;
inline constexpr ControlId kFirstFolderButton = 10;

// The dialogs for CloseDatabase; Back keeps the database open in each of them.
ClosingQuestions AskWhenClosing(Application& app);

}  // namespace tabelion
