// Labels, icons, check boxes and buttons.
#include <QAbstractButton>
#include <QCheckBox>
#include <QFontMetrics>
#include <QLabel>
#include <QPainter>
#include <QPushButton>

#include "platform/qt/control.h"
#include "platform/qt/pictures.h"
#include "platform/qt/theme.h"
#include "platform/qt/wrapped_text.h"

namespace tabelion {

namespace {

constexpr double kDisabledOpacity = 0.45;

class LabelWidget final : public QLabel {
 public:
  LabelWidget(const Scale& scale, Qt::Alignment side, QWidget* parent)
      : QLabel(parent), scale_(scale), side_(side) {
    setTextFormat(Qt::PlainText);
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setPen(
        QColor::fromRgb(isEnabled() ? theme::colours().ink : theme::colours().ink_disabled));
    const QFontMetrics metrics = painter.fontMetrics();
    const int inset = scale_.px(3);  // from the screen's edge, or from an icon
    const QRect space = rect().adjusted(inset, 0, -inset, 0);
    if (height() >= 2 * metrics.height()) {
      return drawWrappedText(painter, space, side_, text());
    }
    painter.drawText(space, int(side_ | Qt::AlignVCenter) | Qt::TextSingleLine,
                     metrics.elidedText(text(), Qt::ElideRight, space.width()));
  }

 private:
  const Scale& scale_;
  const Qt::Alignment side_;
};

class LabelControl final : public ControlOf<Control> {
 public:
  LabelControl(ControlHost& control_host, const ControlTemplate& from, LabelWidget* widget)
      : ControlOf(control_host, from, *widget), label_(widget) {
    label_->setText(toQt(from.text));
  }
  std::u16string text() const override { return fromQt(label_->text()); }
  void setText(const std::u16string& text) override {
    label_->setText(toQt(text));
    host().stateChanged(*this);
  }

 private:
  LabelWidget* label_;
};

class IconWidget final : public QWidget {
 public:
  IconWidget(const Scale& scale, Picture picture, QWidget* parent)
      : QWidget(parent), scale_(scale), picture_(picture) {}

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    const Size size = pictureSize(picture_);
    paintPicture(painter, picture_, QRectF(0, 0, scale_.px(size.width), scale_.px(size.height)));
  }

 private:
  const Scale& scale_;
  const Picture picture_;
};

class IconControl final : public ControlOf<Control> {
 public:
  using ControlOf::ControlOf;
};

class CheckWidget final : public QCheckBox {
 public:
  CheckWidget(const Scale& scale, QWidget* parent) : QCheckBox(parent), scale_(scale) {}

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    const int inset = scale_.px(4);
    const int side = scale_.px(13);
    const QFontMetrics metrics = painter.fontMetrics();
    const bool wraps = height() >= 2 * metrics.height();
    // Beside the only line of the text, or the first.
    const int top = wraps ? inset + (metrics.height() - side) / 2 : (height() - side) / 2;
    const QRect box(inset, top, side, side);
    if (!isEnabled()) painter.setOpacity(kDisabledOpacity);
    paintPicture(painter, isChecked() ? Picture::kChecked : Picture::kUnchecked, QRectF(box));
    painter.setOpacity(1);
    QRect label(box.right() + scale_.px(6), 0, 0, height());
    label.setRight(width() - scale_.px(3));
    painter.setPen(
        QColor::fromRgb(isEnabled() ? theme::colours().ink : theme::colours().ink_disabled));
    if (wraps) {
      drawWrappedText(painter, label.adjusted(0, inset, 0, 0), Qt::AlignLeft, text());
    } else {
      painter.drawText(label, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                       metrics.elidedText(text(), Qt::ElideRight, label.width()));
    }
    if (!hasFocus()) return;
    painter.setRenderHint(QPainter::Antialiasing);
    const double line = scale_.line(2);
    painter.setPen(QPen(QColor::fromRgb(theme::colours().focus), line));
    const double reach = text().isEmpty() ? box.right() + inset : width() - line;
    painter.drawRoundedRect(QRectF(line / 2, line / 2, reach, height() - line), scale_.px(3),
                            scale_.px(3));
  }
  bool hitButton(const QPoint& at) const override { return rect().contains(at); }

 private:
  const Scale& scale_;
};

class CheckControl final : public ControlOf<Control> {
 public:
  CheckControl(ControlHost& control_host, const ControlTemplate& from, CheckWidget* widget)
      : ControlOf(control_host, from, *widget), box_(widget) {
    setText(from.text);
    QObject::connect(box_, &QAbstractButton::clicked, box_,
                     [this] { host().notify(id(), Notice::kEdited); });
  }
  std::u16string text() const override { return fromQt(box_->text()); }
  void setText(const std::u16string& text) override {
    box_->setText(toQt(text));
    box_->setShortcut({});
  }
  bool checked() const override { return box_->isChecked(); }
  void setChecked(bool checked) override { box_->setChecked(checked); }
  bool takeKey(const KeyPress& press) override {
    if (press.key != Key::kEnter && !(press.key == Key::kCharacter && press.character == U' ')) {
      return false;
    }
    if (!madeFrom().read_only) box_->click();
    return true;
  }

 private:
  CheckWidget* box_;
};

class ButtonWidget final : public QPushButton {
 public:
  ButtonWidget(const Scale& scale, QWidget* parent) : QPushButton(parent), scale_(scale) {}

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double line = scale_.line(hasFocus() ? 2 : 1);
    painter.setPen(
        QPen(QColor::fromRgb(hasFocus() ? theme::colours().focus : theme::colours().line), line));
    painter.setBrush(QColor::fromRgb(isDown()     ? theme::colours().selection
                                     : hasFocus() ? theme::colours().focus_paper
                                                  : theme::colours().panel));
    painter.drawRoundedRect(QRectF(line / 2, line / 2, width() - line, height() - line),
                            scale_.px(3), scale_.px(3));
    painter.setPen(
        QColor::fromRgb(isEnabled() ? theme::colours().ink : theme::colours().ink_disabled));
    const QRect space = rect().adjusted(scale_.px(4), 0, -scale_.px(4), 0);
    painter.drawText(space, Qt::AlignCenter | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(text(), Qt::ElideRight, space.width()));
  }

 private:
  const Scale& scale_;
};

class ButtonControl final : public ControlOf<Control> {
 public:
  ButtonControl(ControlHost& control_host, const ControlTemplate& from, ButtonWidget* widget)
      : ControlOf(control_host, from, *widget), button_(widget) {
    setText(from.text);
    QObject::connect(button_, &QAbstractButton::clicked, button_,
                     [this] { host().notify(id(), Notice::kActivated); });
  }
  std::u16string text() const override { return fromQt(button_->text()); }
  void setText(const std::u16string& text) override {
    button_->setText(toQt(text));
    button_->setShortcut({});
    host().stateChanged(*this);
  }
  bool takeKey(const KeyPress& press) override {
    if (press.key != Key::kEnter && !(press.key == Key::kCharacter && press.character == U' ')) {
      return false;
    }
    button_->click();
    return true;
  }

 private:
  ButtonWidget* button_;
};

}  // namespace

std::unique_ptr<ScreenControl> makeLabel(ControlHost& host, const ControlTemplate& from,
                                         QWidget& parent) {
  const Qt::Alignment side = from.centered        ? Qt::AlignHCenter
                             : from.right_aligned ? Qt::AlignRight
                                                  : Qt::AlignLeft;
  return std::make_unique<LabelControl>(host, from, new LabelWidget(host.scale(), side, &parent));
}

std::unique_ptr<ScreenControl> makeIcon(ControlHost& host, const ControlTemplate& from,
                                        QWidget& parent) {
  return std::make_unique<IconControl>(host, from,
                                       *new IconWidget(host.scale(), from.picture, &parent));
}

std::unique_ptr<ScreenControl> makeCheckBox(ControlHost& host, const ControlTemplate& from,
                                            QWidget& parent) {
  return std::make_unique<CheckControl>(host, from, new CheckWidget(host.scale(), &parent));
}

std::unique_ptr<ScreenControl> makeButton(ControlHost& host, const ControlTemplate& from,
                                          QWidget& parent) {
  return std::make_unique<ButtonControl>(host, from, new ButtonWidget(host.scale(), &parent));
}

}  // namespace tabelion
