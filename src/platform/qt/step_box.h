// The widget of choices and spins: the value between or before its arrows.
#pragma once

#include <QString>
#include <QWidget>
#include <functional>

#include "platform/qt/scale.h"

namespace tabelion {

class StepBox final : public QWidget {
 public:
  enum class Role { kChoice, kNumber };

  StepBox(const Scale& scale, Role role, QWidget* parent);
  Role role() const { return role_; }
  const QString& value() const { return value_; }
  void showValue(const QString& value);
  void setRange(int minimum, int maximum) {
    minimum_ = minimum;
    maximum_ = maximum;
  }
  int minimum() const { return minimum_; }
  int maximum() const { return maximum_; }
  void changed();  // tells a screen reader of the new value

  // A click: -1 on the left arrow, 1 on the right one, 0 between.
  std::function<void(int)> pressed;

 protected:
  void paintEvent(QPaintEvent*) override;
  void mousePressEvent(QMouseEvent*) override;
  void focusInEvent(QFocusEvent*) override;
  void focusOutEvent(QFocusEvent*) override;

 private:
  const Scale& scale_;
  const Role role_;
  QString value_;
  int minimum_ = 0;
  int maximum_ = 0;
};

}  // namespace tabelion
