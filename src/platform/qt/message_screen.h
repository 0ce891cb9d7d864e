// A message box: a panel as wide as the phone's screen over what lies below, with its text, its
// icon and its own soft keys.
#pragma once

#include <QLabel>
#include <QScrollArea>
#include <optional>

#include "platform/dialogs.h"
#include "platform/qt/guarded_loop.h"
#include "platform/qt/layer.h"

namespace tabelion {

class PhoneFrame;

class MessageScreen final : public Layer {
 public:
  MessageScreen(PhoneFrame& frame, const MessageBox& box);
  MessageAnswer run();

  const MessageBox& box() const { return box_; }
  SoftKeyLabel softKey(SoftKey key) const override;
  void pressSoftKey(SoftKey key) override;
  void applyScale() override;
  void takeFocus() override;
  bool coversAll() const override { return false; }
  void answer(MessageAnswer answer);
  void dismiss();  // nobody is there to answer

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void paintEvent(QPaintEvent*) override;

 private:
  bool takeKey(QKeyEvent* event);
  QRect panel() const;

  PhoneFrame& frame_;
  const MessageBox box_;
  QScrollArea* area_;
  QLabel* text_;
  int title_height_ = 0;
  std::optional<MessageAnswer> answer_;
  GuardedLoop loop_;
};

}  // namespace tabelion
