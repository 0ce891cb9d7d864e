// From one record to the next that has a text.
#pragma once

#include "services/application.h"

namespace tabelion {

// Each makes the record that it finds the current one and returns the slot of the field that has
// the text; -1, after saying so when there was a search, when nothing was found and the current
// record stays.

// Asks what to look for, and looks from the first record on.
int Find(Application& app);

// Looks behind the record that was found last, from the first record on when there is none. Asks
// first where nothing was searched for yet.
int FindAgain(Application& app);

}  // namespace tabelion
