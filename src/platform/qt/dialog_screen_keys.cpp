// How keys reach a screen: the box that edits with them, the handler, the control, the commands.
#include <QEvent>
#include <QKeyEvent>
#include <algorithm>
#include <cstdlib>

#include "platform/qt/dialog_screen.h"
#include "platform/qt/phone_frame.h"

namespace tabelion {

namespace {

// The phone's key for a key of the keyboard; none for what is not on the phone (Delete, copy and
// paste, …), which only text boxes use.
std::optional<KeyPress> translate(const QKeyEvent& event) {
  KeyPress press;
  switch (event.key()) {
    case Qt::Key_Left:
      press.key = Key::kLeft;
      return press;
    case Qt::Key_Right:
      press.key = Key::kRight;
      return press;
    case Qt::Key_Up:
      press.key = Key::kUp;
      return press;
    case Qt::Key_Down:
      press.key = Key::kDown;
      return press;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Select:
      press.key = Key::kEnter;
      return press;
    case Qt::Key_Escape:
    case Qt::Key_Backspace:
    case Qt::Key_Back:
      press.key = Key::kBack;
      return press;
    case Qt::Key_PageUp:
      press.key = Key::kPageUp;
      return press;
    case Qt::Key_PageDown:
      press.key = Key::kPageDown;
      return press;
    case Qt::Key_Home:
      press.key = Key::kHome;
      return press;
    case Qt::Key_End:
      press.key = Key::kEnd;
      return press;
    case Qt::Key_Z:
    case Qt::Key_Y:
      if (event.modifiers().testFlag(Qt::ControlModifier) &&
          !event.modifiers().testFlag(Qt::AltModifier)) {
        const bool again =
            event.key() == Qt::Key_Y || event.modifiers().testFlag(Qt::ShiftModifier);
        press.key = again ? Key::kRedo : Key::kUndo;
        return press;
      }
      break;
    default:
      break;
  }
  const QList<uint> characters = event.text().toUcs4();
  const bool is_chord = event.modifiers().testFlag(Qt::ControlModifier) !=
                        event.modifiers().testFlag(Qt::AltModifier);  // both together is AltGr
  if (is_chord || characters.isEmpty() || !QChar::isPrint(characters[0])) return std::nullopt;
  press.key = Key::kCharacter;
  press.character = characters[0];
  return press;
}

bool isTextBox(const ScreenControl* control) {
  return control != nullptr && (control->madeFrom().kind == ControlKind::kEdit ||
                                control->madeFrom().kind == ControlKind::kMultiEdit);
}

}  // namespace

bool DialogScreen::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress) {
    return takeKey(findByWidget(watched), static_cast<QKeyEvent*>(event));
  }
  if (event->type() == QEvent::FocusIn) {
    if (ScreenControl* control = findByWidget(watched)) noteFocus(*control);
  }
  return false;
}

void DialogScreen::keyPressEvent(QKeyEvent* event) {
  if (!takeKey(nullptr, event)) event->ignore();
}

bool DialogScreen::takeKey(ScreenControl* control, QKeyEvent* event) {
  if (event->key() == Qt::Key_Tab || event->key() == Qt::Key_Backtab) {
    moveFocus(event->key() == Qt::Key_Tab ? 1 : -1);
    return true;
  }
  const std::optional<KeyPress> translated = translate(*event);
  if (!translated) return false;
  KeyPress press = *translated;
  press.control = control == nullptr ? 0 : control->id();
  const bool undoes = press.key == Key::kUndo || press.key == Key::kRedo;
  if (undoes && control != nullptr && control->undoTyping(press.key == Key::kRedo)) return true;
  const bool erases =
      event->key() == Qt::Key_Backspace && isTextBox(control) && !control->madeFrom().read_only;
  if (erases || (control != nullptr && control->editsWith(press))) return false;
  if (press.key == Key::kBack && control != nullptr && control->madeFrom().back_erases) {
    control->eraseBeforeCaret();
    return true;
  }
  bool consumed = false;
  {
    const Call call(*this);
    consumed = handler_.onKey(*this, press);
  }
  if (consumed || result_) return true;
  // The handler may have removed the control or opened and closed another screen.
  control = control == nullptr ? nullptr : find(press.control);
  if (control != nullptr && control->takeKey(press)) return true;
  switch (press.key) {
    case Key::kUp:
      moveFocus(-1);
      break;
    case Key::kDown:
      moveFocus(1);
      break;
    case Key::kPageUp:
      moveFocusByPage(-1);
      break;
    case Key::kPageDown:
      moveFocusByPage(1);
      break;
    case Key::kEnter:
      if (!event->isAutoRepeat()) command(kActionCommand);
      break;
    case Key::kBack:
      if (!event->isAutoRepeat()) command(kBackCommand);
      break;
    default:
      break;
  }
  return true;
}

void DialogScreen::moveFocus(int by) {
  const int count = int(controls_.size());
  int at = by > 0 ? -1 : count;
  for (int i = 0; i < count; ++i) {
    if (controls_[i]->id() == focused_id_) at = i;
  }
  for (int tried = 0; tried < count; ++tried) {
    at = (at + by + count) % count;
    if (controls_[at]->canHaveFocus()) return arriveAt(*controls_[at]);
  }
}

// What the handler shows in the box that gains the focus is selected, not what stood there before.
void DialogScreen::arriveAt(ScreenControl& control) {
  giveFocus(control);
  if (ScreenControl* there = focused()) there->selectContent();
}

// To the control that lies nearest to one screen further.
void DialogScreen::moveFocusByPage(int by) {
  const ScreenControl* from = focused();
  if (from == nullptr) return;
  const int wanted = from->area().y + by * (screenSize().height - from->area().height);
  ScreenControl* nearest = nullptr;
  for (const auto& control : controls_) {
    if (!control->canHaveFocus()) continue;
    if (nearest == nullptr ||
        std::abs(control->area().y - wanted) < std::abs(nearest->area().y - wanted)) {
      nearest = control.get();
    }
  }
  if (nearest != nullptr) arriveAt(*nearest);
}

}  // namespace tabelion
