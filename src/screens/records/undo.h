// Undo and Redo, as the menus and keys of the list and the form have them.
#pragma once

#include <string>

#include "services/application.h"

namespace tabelion {

// The two menu entries as they are at this moment, with the names of the steps: "Undo Edit of
// record". Disabled where there is nothing to take back or do again.
struct StepEntry {
  std::u16string text;
  bool enabled = false;
};
StepEntry UndoEntry(Application& app);
StepEntry RedoEntry(Application& app);

// Takes the last step back, or does the one that was taken back again, and lists the records anew.
// The record that was current then is the current one; where there is none, the nearest that there
// is. False when there was nothing to do.
bool UndoStep(Application& app);
bool RedoStep(Application& app);

}  // namespace tabelion
