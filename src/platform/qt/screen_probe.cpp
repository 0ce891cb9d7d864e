#include "platform/qt/screen_probe.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QPixmap>

#include "platform/qt/dialog_screen.h"
#include "platform/qt/list_view.h"
#include "platform/qt/message_screen.h"

namespace tabelion {

DialogScreen* ScreenProbe::screen() const {
  return dynamic_cast<DialogScreen*>(frame_.top());
}

MessageScreen* ScreenProbe::message() const {
  return dynamic_cast<MessageScreen*>(frame_.top());
}

int ScreenProbe::resource() const {
  return screen() == nullptr ? 0 : screen()->resource();
}

QString ScreenProbe::messageText() const {
  return message() == nullptr ? QString() : toQt(message()->box().text);
}

QString ScreenProbe::softKey(SoftKey key) const {
  return frame_.softKeys().button(key).text();
}

QStringList ScreenProbe::menu() const {
  QStringList texts;
  if (!frame_.menus().isOpen()) return texts;
  for (const MenuRow* row : frame_.menus().panel()->rows()) texts << row->text();
  return texts;
}

QString ScreenProbe::markedEntry() const {
  const MenuPanel* panel = frame_.menus().panel();
  return panel == nullptr || panel->marked() == nullptr ? QString() : panel->marked()->text();
}

ControlId ScreenProbe::focus() const {
  if (screen() == nullptr) return 0;
  for (const auto& control : screen()->controls()) {
    if (control->seam().hasFocus()) return control->id();
  }
  return 0;
}

QWidget* ScreenProbe::widget(ControlId id) const {
  if (screen() == nullptr) return nullptr;
  for (const auto& control : screen()->controls()) {
    if (control->id() == id) return &control->widget();
  }
  return nullptr;
}

QString ScreenProbe::text(ControlId id) const {
  return widget(id) == nullptr ? QString() : toQt(screen()->control(id).text());
}

const ListView* ScreenProbe::list() const {
  if (screen() == nullptr) return nullptr;
  for (const auto& control : screen()->controls()) {
    if (const auto* list = dynamic_cast<const ListView*>(&control->widget())) return list;
  }
  return nullptr;
}

QStringList ScreenProbe::visibleRows() const {
  QStringList rows;
  const ListView* view = list();
  if (view == nullptr) return rows;
  for (int row = view->topRow(); !view->rowRect(row).isEmpty(); ++row) rows << view->rowText(row);
  return rows;
}

QStringList ScreenProbe::texts() const {
  QStringList texts;
  if (screen() == nullptr) return texts;
  for (const auto& control : screen()->controls()) {
    const QString text = toQt(control->seam().text());
    if (control->isShown() && !text.isEmpty()) texts << text;
  }
  return texts;
}

QWidget* ScreenProbe::target() const {
  QWidget* focus = frame_.focusWidget();
  return focus == nullptr ? &frame_ : focus;
}

void ScreenProbe::press(Qt::Key key, Qt::KeyboardModifiers modifiers) const {
  QKeyEvent down(QEvent::KeyPress, key, modifiers);
  QCoreApplication::sendEvent(target(), &down);
  QKeyEvent up(QEvent::KeyRelease, key, modifiers);
  QCoreApplication::sendEvent(target(), &up);
}

void ScreenProbe::type(const QString& text) const {
  for (const QChar c : text) {
    QKeyEvent down(QEvent::KeyPress, c.toUpper().unicode(), Qt::NoModifier, QString(c));
    QCoreApplication::sendEvent(target(), &down);
  }
}

bool ScreenProbe::savePicture(const QString& path) const {
  return frame_.grab().save(path);
}

}  // namespace tabelion
