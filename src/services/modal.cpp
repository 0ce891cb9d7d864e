#include "services/modal.h"

#include "services/message.h"

namespace tabelion {
namespace {

constexpr int kFinishMessage = 10;  // far below those of the screens

// Hands everything on to the screen and restarts the timer on every sign of life.
class AutoClosing : public DialogHandler {
 public:
  AutoClosing(Application& app, Screen& screen) : app_(app), screen_(screen) {}

  void onInit(Dialog& dialog) override {
    app_.open_dialogs.push_back({&dialog, &screen_});
    restart(dialog);
    if (app_.closing == Closing::kSessionEnds) dialog.post(kFinishMessage);
    screen_.onInit(dialog);
  }
  void onCommand(Dialog& dialog, CommandId command) override {
    somebodyIsThere(dialog);
    screen_.onCommand(dialog, command);
  }
  void onNotice(Dialog& dialog, ControlId control, Notice notice) override {
    restart(dialog);
    if (notice == Notice::kTooLong) {
      ShowMessage(app_, u"The text is longer than fits here. Nothing was inserted.", u"Paste",
                  MessageIcon::kExclamation);
    } else if (notice == Notice::kNotAllowed) {
      ShowMessage(app_,
                  u"The text has a character that cannot be stored here. Nothing was inserted.",
                  u"Paste", MessageIcon::kExclamation);
    }
    screen_.onNotice(dialog, control, notice);
  }
  bool onKey(Dialog& dialog, const KeyPress& key) override {
    somebodyIsThere(dialog);
    return screen_.onKey(dialog, key);
  }
  bool acceptsCharacter(Dialog& dialog, ControlId control, char32_t character) override {
    restart(dialog);
    return screen_.acceptsCharacter(dialog, control, character);
  }
  void onMenuOpening(Dialog& dialog, MenuEntry& soft_key) override {
    restart(dialog);
    screen_.onMenuOpening(dialog, soft_key);
  }
  void onTimer(Dialog& dialog, int timer) override {
    if (timer != kAutoCloseTimer) return screen_.onTimer(dialog, timer);
    if (!app_.preferences.autoCloses()) return dialog.stopTimer(kAutoCloseTimer);
    if (app_.closing == Closing::kNo) app_.closing = Closing::kUnattended;
    finish(dialog);
  }
  void onMessage(Dialog& dialog, int message) override {
    if (message == kFinishMessage) return finish(dialog);
    screen_.onMessage(dialog, message);
  }
  void onActivate(Dialog& dialog) override { screen_.onActivate(dialog); }
  void onResize(Dialog& dialog) override { screen_.onResize(dialog); }
  void onPaintRow(Dialog& dialog, ControlId list, int row, ListPainter& painter,
                  const Rect& area) override {
    screen_.onPaintRow(dialog, list, row, painter, area);
  }
  std::u16string rowText(Dialog& dialog, ControlId list, int row) override {
    return screen_.rowText(dialog, list, row);
  }
  void onPaintCanvas(Dialog& dialog, ControlId canvas, CanvasPainter& painter) override {
    screen_.onPaintCanvas(dialog, canvas, painter);
  }
  std::u16string canvasText(Dialog& dialog, ControlId canvas) override {
    return screen_.canvasText(dialog, canvas);
  }
  void onCanvasPressed(Dialog& dialog, ControlId canvas, Point at) override {
    somebodyIsThere(dialog);
    screen_.onCanvasPressed(dialog, canvas, at);
  }

 private:
  // A box before the dialog goes first: what asked there has to come to its end, and only then can
  // the dialog be stored.
  void finish(Dialog& dialog) {
    if (app_.closing == Closing::kNo) return;  // somebody came back meanwhile
    if (app_.platform.dialogs.dismissBoxes()) return dialog.post(kFinishMessage);
    if (screen_.OnAutoClose(dialog) || app_.closing == Closing::kSessionEnds) {
      return dialog.end(kDialogAutoClosed);
    }
    app_.closing = Closing::kNo;
    restart(dialog);
  }
  void somebodyIsThere(Dialog& dialog) {
    if (app_.closing == Closing::kUnattended) app_.closing = Closing::kNo;
    restart(dialog);
  }
  void restart(Dialog& dialog) const {
    if (app_.preferences.autoCloses()) {
      dialog.startTimer(kAutoCloseTimer, app_.preferences.auto_close_period_ms);
    }
  }

  Application& app_;
  Screen& screen_;
};

// The dialog below goes the way of the one that just ended, whatever its handler makes of the
// result.
void passOn(Application& app, int result) {
  if (result == kDialogAutoClosed && app.closing == Closing::kNo) {
    app.closing = Closing::kUnattended;  // somebody came back when it was too late for this one
  }
  if (app.closing == Closing::kNo) return;
  if (!app.open_dialogs.empty()) return app.open_dialogs.back().dialog->post(kFinishMessage);
  if (app.closing == Closing::kUnattended) app.closing = Closing::kNo;
}

}  // namespace

int RunModalDialog(Application& app, const DialogTemplate& dialog, Screen& screen) {
  Dialog* const owner = app.open_dialogs.empty() ? nullptr : app.open_dialogs.back().dialog;
  if (owner != nullptr) owner->stopTimer(kAutoCloseTimer);
  AutoClosing handler(app, screen);
  const int result = app.platform.dialogs.runModal(dialog, handler);
  app.open_dialogs.pop_back();
  passOn(app, result);
  if (owner != nullptr && app.preferences.autoCloses()) {
    owner->startTimer(kAutoCloseTimer, app.preferences.auto_close_period_ms);
  }
  return result;
}

void CloseOpenDialogs(Application& app, Closing why) {
  if (app.open_dialogs.empty()) return;
  app.closing = why;
  // A dialog that waits for an answer is busy, and hears nothing until it has one.
  app.platform.dialogs.dismissBoxes();
  app.open_dialogs.back().dialog->post(kFinishMessage);
}

}  // namespace tabelion
