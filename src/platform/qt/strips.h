// The two fixed strips of the phone's screen: the title above, the soft keys below.
#pragma once

#include <QAbstractButton>
#include <QWidget>
#include <functional>

#include "platform/qt/layer.h"
#include "platform/qt/scale.h"

namespace tabelion {

class TitleStrip final : public QWidget {
 public:
  TitleStrip(const Scale& scale, QWidget* parent);
  void setTitle(const QString& title);
  const QString& title() const { return title_; }
  void setBusy(bool busy);  // shows the hour-glass; painted at once

 protected:
  void paintEvent(QPaintEvent*) override;

 private:
  const Scale& scale_;
  QString title_;
  bool busy_ = false;
};

class SoftKeyButton final : public QAbstractButton {
 public:
  SoftKeyButton(const Scale& scale, SoftKey key, QWidget* parent);
  int wantedWidth() const;  // window pixels

 protected:
  void paintEvent(QPaintEvent*) override;

 private:
  const Scale& scale_;
  const SoftKey key_;
};

class SoftKeyBar final : public QWidget {
 public:
  SoftKeyBar(const Scale& scale, std::function<void(SoftKey)> pressed, QWidget* parent);
  void setLabels(const SoftKeyLabel& left, const SoftKeyLabel& right);
  const SoftKeyButton& button(SoftKey key) const {
    return key == SoftKey::kLeft ? *left_ : *right_;
  }

 protected:
  void paintEvent(QPaintEvent*) override;
  void resizeEvent(QResizeEvent*) override;

 private:
  void divide();

  SoftKeyButton* left_;
  SoftKeyButton* right_;
};

}  // namespace tabelion
