// Boxes that step through values with Left and Right: one of several texts, or a number.
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>

#include "platform/qt/control.h"
#include "platform/qt/pictures.h"
#include "platform/qt/step_box.h"
#include "platform/qt/theme.h"

namespace tabelion {

StepBox::StepBox(const Scale& scale, Role role, QWidget* parent)
    : QWidget(parent), scale_(scale), role_(role) {
  setFocusPolicy(Qt::StrongFocus);
}

void StepBox::showValue(const QString& value) {
  value_ = value;
  update();
}

void StepBox::focusInEvent(QFocusEvent*) {
  update();
}
void StepBox::focusOutEvent(QFocusEvent*) {
  update();
}

void StepBox::mousePressEvent(QMouseEvent* event) {
  if (!pressed) return;
  const int arrow = scale_.px(18);
  const int x = int(event->position().x());
  pressed(role_ == Role::kNumber && x < arrow ? -1 : x >= width() - arrow ? 1 : 0);
}

void StepBox::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const double line = scale_.line(hasFocus() ? 2 : 1);
  painter.setPen(
      QPen(QColor::fromRgb(hasFocus() ? theme::colours().focus : theme::colours().line), line));
  painter.setBrush(QColor::fromRgb(!isEnabled() ? theme::colours().panel
                                   : hasFocus() ? theme::colours().focus_paper
                                                : theme::colours().paper));
  painter.drawRoundedRect(QRectF(line / 2, line / 2, width() - line, height() - line), scale_.px(3),
                          scale_.px(3));
  const QRgb ink = isEnabled() ? theme::colours().ink : theme::colours().ink_disabled;
  const int side = scale_.px(10);
  const int top = (height() - side) / 2;
  const QRectF right(width() - side - scale_.px(4), top, side, side);
  QRect space = rect().adjusted(scale_.px(5), 0, -scale_.px(16), 0);
  if (role_ == Role::kNumber) {
    space.setLeft(scale_.px(16));
    paintChevron(painter, QRectF(scale_.px(4), top, side, side), Pointing::kLeft, ink);
  }
  paintChevron(painter, right, role_ == Role::kNumber ? Pointing::kRight : Pointing::kDown, ink);
  if (space.width() < side) return;  // arrows alone, beside a box that shows what they choose
  painter.setPen(QColor::fromRgb(ink));
  painter.drawText(space,
                   int(role_ == Role::kNumber ? Qt::AlignHCenter : Qt::AlignLeft) |
                       Qt::AlignVCenter | Qt::TextSingleLine,
                   painter.fontMetrics().elidedText(value_, Qt::ElideRight, space.width()));
}

namespace {

class ChoiceControl final : public ControlOf<Control> {
 public:
  ChoiceControl(ControlHost& control_host, const ControlTemplate& from, StepBox* widget)
      : ControlOf(control_host, from, *widget), box_(widget) {
    box_->showValue(toQt(from.text));
    box_->pressed = [this](int) {
      focus();
      // What the handler opens runs in a loop of its own, which the press is not to wait for.
      if (!madeFrom().opened_by_handler) return void(openList());
      host().notifyLater(id(), Notice::kActivated);
    };
  }

  // The chosen text, or what stands for none.
  std::u16string text() const override { return fromQt(box_->value()); }
  void setText(const std::u16string& text) override {
    const auto found = std::find(texts_.begin(), texts_.end(), toQt(text));
    chosen_ = found == texts_.end() ? -1 : int(found - texts_.begin());
    box_->showValue(toQt(text));
  }
  void setChoices(const std::vector<std::u16string>& texts) override {
    texts_.clear();
    for (const std::u16string& text : texts) texts_.push_back(toQt(text));
    select(chosen_ < int(texts_.size()) ? chosen_ : -1);
  }
  int selection() const override { return chosen_; }
  void select(int index) override {
    chosen_ = index >= 0 && index < int(texts_.size()) ? index : -1;
    box_->showValue(chosen_ < 0 ? QString() : texts_[chosen_]);
  }
  bool takeKey(const KeyPress& press) override {
    switch (press.key) {
      case Key::kLeft:
        return step(-1);
      case Key::kRight:
        return step(1);
      case Key::kHome:
        return choose(0);
      case Key::kEnd:
        return choose(int(texts_.size()) - 1);
      case Key::kEnter:
        return openList();
      case Key::kCharacter:
        return press.character == U' ' ? openList() : chooseByLetter(press.character);
      default:
        return false;
    }
  }

 private:
  bool choose(int index) {
    if (index >= 0 && index < int(texts_.size()) && index != chosen_ && !madeFrom().read_only) {
      select(index);
      box_->changed();
      host().notify(id(), Notice::kEdited);
    }
    return true;
  }
  bool step(int by) {
    return texts_.empty() || choose(std::clamp(chosen_ + by, 0, int(texts_.size()) - 1));
  }
  // The next text that begins with the letter, round the end.
  bool chooseByLetter(char32_t letter) {
    const QString start = QString::fromUcs4(&letter, 1);
    const int count = int(texts_.size());
    for (int i = 1; i <= count; ++i) {
      const int index = (std::max(chosen_, -1) + i) % count;
      if (texts_[index].trimmed().startsWith(start, Qt::CaseInsensitive)) return choose(index);
    }
    return true;
  }
  bool openList() {
    if (madeFrom().opened_by_handler) {
      host().notify(id(), Notice::kActivated);
      return true;
    }
    if (texts_.empty() || madeFrom().read_only) return true;
    host().openChoices(*this, texts_, chosen_, [this](int index) { choose(index); });
    return true;
  }

  StepBox* box_;
  std::vector<QString> texts_;
  int chosen_ = -1;
};

class SpinControl final : public ControlOf<Control> {
 public:
  SpinControl(ControlHost& control_host, const ControlTemplate& from, StepBox* widget)
      : ControlOf(control_host, from, *widget), box_(widget) {
    box_->setRange(from.minimum, from.maximum);
    select(from.minimum);
    if (!from.text.empty()) setText(from.text);
    box_->pressed = [this](int way) {
      focus();
      change(value_ + way);
    };
  }

  std::u16string text() const override { return fromQt(QString::number(value_)); }
  void setText(const std::u16string& text) override {
    bool is_number = false;
    const int value = toQt(text).toInt(&is_number);
    if (is_number) select(value);
  }
  int selection() const override { return value_; }
  void select(int value) override {
    value_ =
        std::clamp(value, madeFrom().minimum, std::max(madeFrom().minimum, madeFrom().maximum));
    typed_ = 0;
    box_->showValue(QString::number(value_));
  }
  bool takeKey(const KeyPress& press) override {
    switch (press.key) {
      case Key::kLeft:
        return change(value_ - 1);
      case Key::kRight:
        return change(value_ + 1);
      case Key::kHome:
        return change(madeFrom().minimum);
      case Key::kEnd:
        return change(madeFrom().maximum);
      case Key::kCharacter:
        return type(press.character);
      default:
        return false;
    }
  }

 private:
  bool change(int value) {
    const int before = value_;
    if (madeFrom().read_only) return true;
    select(value);
    if (value_ == before) return true;
    box_->changed();
    host().notify(id(), Notice::kEdited);
    return true;
  }
  // Digits make a number; one that would pass the upper bound begins anew.
  bool type(char32_t digit) {
    if (digit < U'0' || digit > U'9') return true;
    const int value = int(digit - U'0');
    const int longer = typed_ <= (madeFrom().maximum - value) / 10 ? typed_ * 10 + value : value;
    change(longer);
    typed_ = longer;
    return true;
  }

  StepBox* box_;
  int value_ = 0;
  int typed_ = 0;
};

}  // namespace

std::unique_ptr<ScreenControl> makeChoice(ControlHost& host, const ControlTemplate& from,
                                          QWidget& parent) {
  return std::make_unique<ChoiceControl>(
      host, from, new StepBox(host.scale(), StepBox::Role::kChoice, &parent));
}

std::unique_ptr<ScreenControl> makeSpin(ControlHost& host, const ControlTemplate& from,
                                        QWidget& parent) {
  return std::make_unique<SpinControl>(host, from,
                                       new StepBox(host.scale(), StepBox::Role::kNumber, &parent));
}

}  // namespace tabelion
