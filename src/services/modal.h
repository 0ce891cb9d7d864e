// The one way to run a dialog. It carries the rule that every dialog shares: when auto-close is on
// and nothing happens for a while, the dialog on top saves what it holds, as Done would, and ends
// with kDialogAutoClosed; its parent, receiving that, does the same.
#pragma once

#include "platform/dialogs.h"
#include "services/application.h"

namespace tabelion {

inline constexpr int kAutoSaveTimer = 1;    // of the main window
inline constexpr int kAutoCloseTimer = 10;  // of every dialog

// A handler that can also finish by itself.
class Screen : public DialogHandler {
 public:
  // Saves what the dialog holds, exactly as Done would. False when that was not possible and the
  // dialog must stay, so that nothing is lost.
  virtual bool OnAutoClose(Dialog&) { return true; }
};

// Runs the dialog and returns its result. `owner` is the dialog that opens it, whose own
// auto-close timer stands still meanwhile; null when the main window opens it.
int RunModalDialog(Application& app, Dialog* owner, const DialogTemplate& dialog, Screen& screen);

// Makes every open dialog do what it does for auto-close, from the top down, once the present event
// is over. What stands before the top one, a message or a menu, is dismissed. At the end of the
// session a dialog ends even when it could not store what it holds.
void CloseOpenDialogs(Application& app, Closing why);

}  // namespace tabelion
