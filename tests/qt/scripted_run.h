// Runs a dialog of the phone and, meanwhile, a list of steps: each in the event loop of whatever
// is topmost by then. A run that does not come to its end fails the test instead of hanging it.
#pragma once

#include <QTest>
#include <QTimer>
#include <algorithm>
#include <deque>
#include <functional>
#include <utility>
#include <vector>

#include "platform/qt/dialog_screen.h"
#include "platform/qt/message_screen.h"
#include "platform/qt/qt_dialogs.h"
#include "platform/qt/screen_probe.h"

namespace tabelion {

inline ControlTemplate makeControlTemplate(ControlId id, ControlKind kind, const Rect& place,
                                           const std::u16string& text = {}) {
  ControlTemplate result;
  result.id = id;
  result.kind = kind;
  result.place = place;
  result.text = text;
  return result;
}

// Records what a dialog's handler is told, and answers as a test wants.
class RecordingHandler : public DialogHandler {
 public:
  std::function<void(Dialog&)> init;
  std::function<void(Dialog&, CommandId)> on_command;
  std::function<bool(const KeyPress&)> key;
  std::function<bool(char32_t)> accepts;
  std::function<void(MenuEntry&)> menu_opening;
  std::function<void(Dialog&, int)> timer;
  std::function<std::u16string(int)> row_text;
  std::vector<CommandId> commands;
  std::vector<std::pair<ControlId, Notice>> notices;
  std::vector<int> messages;
  std::vector<int> painted;
  int activations = 0;
  int resizes = 0;

  int count(ControlId id, Notice notice) const {
    return int(std::count(notices.begin(), notices.end(), std::pair(id, notice)));
  }

  void onInit(Dialog& dialog) override {
    if (init) init(dialog);
  }
  void onCommand(Dialog& dialog, CommandId command) override {
    commands.push_back(command);
    if (on_command) on_command(dialog, command);
  }
  void onNotice(Dialog&, ControlId id, Notice notice) override { notices.emplace_back(id, notice); }
  bool onKey(Dialog&, const KeyPress& press) override { return key && key(press); }
  bool acceptsCharacter(Dialog&, ControlId, char32_t character) override {
    return !accepts || accepts(character);
  }
  void onMenuOpening(Dialog&, MenuEntry& entry) override {
    if (menu_opening) menu_opening(entry);
  }
  void onTimer(Dialog& dialog, int number) override {
    if (timer) timer(dialog, number);
  }
  void onMessage(Dialog&, int message) override { messages.push_back(message); }
  void onActivate(Dialog&) override { ++activations; }
  void onResize(Dialog&) override { ++resizes; }
  void onPaintRow(Dialog&, ControlId, int row, ListPainter& painter, const Rect& area) override {
    painted.push_back(row);
    painter.fill(area, row % 2 == 0 ? Color{224, 224, 224} : Color{255, 255, 255});
    if (row_text) painter.text(area, row_text(row), Color{0, 0, 0}, TextWeight::kNormal);
  }
  std::u16string rowText(Dialog&, ControlId, int row) override {
    return row_text ? row_text(row) : std::u16string();
  }
};

class Script {
 public:
  explicit Script(QtDialogs& dialogs) : dialogs_(dialogs), probe_(dialogs.frame()) {}

  Script& then(std::function<void()> step) {
    steps_.push_back(std::move(step));
    return *this;
  }
  Script& key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    return then([this, key, modifiers] { press(key, modifiers); });
  }
  Script& type(const QString& text) {
    return then([this, text] { probe_.type(text); });
  }
  void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    probe_.press(key, modifiers);
  }
  QWidget* widget(ControlId id) const { return probe_.widget(id); }
  QWidget* focusWidget() const { return dialogs_.frame().focusWidget(); }
  DialogScreen* screen() const { return probe_.screen(); }
  MessageScreen* question() const { return probe_.message(); }

  int run(const DialogTemplate& dialog, DialogHandler& handler) {
    return run([&] { return dialogs_.runModal(dialog, handler); });
  }
  int run(const std::function<int()>& program) {
    arm();
    const int result = program();
    if (!steps_.empty()) QTest::qFail("the dialog ended before its script", __FILE__, __LINE__);
    return result;
  }

 private:
  void arm() {
    if (steps_.empty()) return;
    QTimer::singleShot(0, &dialogs_.frame(), [this] {
      if (steps_.empty()) return;
      const std::function<void()> step = steps_.front();
      steps_.pop_front();
      arm();  // before the step: it may sit in a loop of its own
      if (steps_.empty()) watch();
      step();
    });
  }
  // After the last step everything has to come to its end.
  void watch() {
    QTimer::singleShot(3000, &dialogs_.frame(), [this] {
      if (dialogs_.frame().top() == nullptr) return;
      QTest::qFail("the dialog did not end after its script", __FILE__, __LINE__);
      for (Layer* layer : dialogs_.frame().layers()) {
        if (auto* screen = dynamic_cast<DialogScreen*>(layer)) screen->end(-1);
        if (auto* box = dynamic_cast<MessageScreen*>(layer)) box->answer(MessageAnswer::kNo);
      }
    });
  }

  QtDialogs& dialogs_;
  ScreenProbe probe_;
  std::deque<std::function<void()>> steps_;
};

}  // namespace tabelion
