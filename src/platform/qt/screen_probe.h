// What a person sees and does, for a script that walks through the program: reads the screen and
// sends keys to whatever has the focus, knowing nothing of the handlers behind it.
#pragma once

#include <QString>
#include <QStringList>
#include <optional>

#include "platform/qt/phone_frame.h"

class QWidget;

namespace tabelion {

class DialogScreen;
class ListView;
class MessageScreen;

class ScreenProbe {
 public:
  explicit ScreenProbe(PhoneFrame& frame) : frame_(frame) {}

  // What is topmost. The resource number is 0 while a message box is.
  int resource() const;
  DialogScreen* screen() const;
  MessageScreen* message() const;
  QString title() const { return frame_.shownTitle(); }
  QString messageText() const;  // of the message box; empty when there is none
  QString softKey(SoftKey key) const;
  QStringList menu() const;     // entries of the open menu
  QString markedEntry() const;  // of the open menu

  // Of the topmost screen.
  ControlId focus() const;  // 0 when no control has it
  QWidget* widget(ControlId id) const;
  QString text(ControlId id) const;  // of a control, as the program itself reads it
  const ListView* list() const;      // its first list
  QStringList visibleRows() const;   // of that list, as a screen reader says them
  QStringList texts() const;         // of all visible labels and boxes

  // Sends the key as the keyboard would.
  void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const;
  void type(const QString& text) const;
  bool savePicture(const QString& path) const;

 private:
  QWidget* target() const;

  PhoneFrame& frame_;
};

}  // namespace tabelion
