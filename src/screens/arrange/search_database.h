// The dialog that says what to look for in the records.
#pragma once

#include "services/application.h"

namespace tabelion {

inline constexpr ControlId kSearchText = 1110;
inline constexpr ControlId kSearchField = 1111;
inline constexpr ControlId kSearchCase = 1112;
inline constexpr ControlId kSearchMatch = 1113;

// Stores the search in the database, as one step. kDialogDone, kDialogClosed when cancelled, or
// kDialogAutoClosed.
int ShowSearchDatabase(Application& app);

}  // namespace tabelion
