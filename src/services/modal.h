// The one way to run a dialog. It carries the rule that every dialog shares: when auto-close is on
// and nothing happens for a while, the dialog on top saves what it holds, as Done would, and ends
// with kDialogAutoClosed; the one below it does the same, down to the chooser.
#pragma once

#include "platform/dialogs.h"
#include "services/application.h"

namespace tabelion {

inline constexpr int kAutoSaveTimer = 1;    // of the main window
inline constexpr int kAutoCloseTimer = 10;  // of every dialog

// A handler that can also finish by itself.
class Screen : public DialogHandler {
 public:
  // Saves what the dialog holds, exactly as Done would; `app.closing` says why. False when that was
  // not possible and the dialog must stay, so that nothing is lost; at the end of the session it
  // ends all the same, so as much of it is saved as can be.
  virtual bool OnAutoClose(Dialog&) { return true; }
  // Another program sent something that asks for nothing this program does.
  virtual void OnForeignMessage(Dialog&) {}
};

// Runs the dialog above the one that is on top now, whose own auto-close timer stands still
// meanwhile, and returns its result. A caller need not look for kDialogAutoClosed: its own dialog
// ends as well once the present event is over.
int RunModalDialog(Application& app, const DialogTemplate& dialog, Screen& screen);

// Makes every open dialog do what it does for auto-close, from the top down, once the present event
// is over. What stands before the top one, a message or a menu, is dismissed. At the end of the
// session a dialog ends even when it could not store what it holds.
void CloseOpenDialogs(Application& app, Closing why);

}  // namespace tabelion
