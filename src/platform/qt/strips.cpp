#include "platform/qt/strips.h"

#include <QPainter>

#include "platform/qt/pictures.h"
#include "platform/qt/theme.h"

namespace tabelion {

TitleStrip::TitleStrip(const Scale& scale, QWidget* parent) : QWidget(parent), scale_(scale) {}

void TitleStrip::setTitle(const QString& title) {
  title_ = title;
  setAccessibleName(title);
  update();
}

void TitleStrip::setBusy(bool busy) {
  if (busy_ == busy) return;
  busy_ = busy;
  // The step that is waited for blocks the event loop, so the mark cannot wait for it.
  repaint();
}

void TitleStrip::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), QColor::fromRgb(theme::colours().bar));
  const int margin = scale_.px(6);
  QRect space = rect().adjusted(margin, 0, -margin, 0);
  if (busy_) {
    const int side = scale_.px(14);
    paintHourGlass(painter, QRectF(space.right() - side, (height() - side) / 2.0, side, side),
                   theme::colours().bar_ink);
    space.setRight(space.right() - side - margin);
  }
  painter.setFont(theme::font(scale_, theme::kTextPixels, TextWeight::kSemiBold));
  painter.setPen(QColor::fromRgb(theme::colours().bar_ink));
  painter.drawText(space, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                   painter.fontMetrics().elidedText(title_, Qt::ElideRight, space.width()));
}

SoftKeyButton::SoftKeyButton(const Scale& scale, SoftKey key, QWidget* parent)
    : QAbstractButton(parent), scale_(scale), key_(key) {
  setFocusPolicy(Qt::NoFocus);  // F1 and F2 press them; the focus stays with the screen
  setAccessibleDescription(key == SoftKey::kLeft ? QStringLiteral("Left soft key, F1")
                                                 : QStringLiteral("Right soft key, F2"));
}

int SoftKeyButton::wantedWidth() const {
  const QFont font = theme::font(scale_, theme::kTextPixels, TextWeight::kSemiBold);
  return QFontMetrics(font).horizontalAdvance(text()) + 2 * scale_.px(6);
}

void SoftKeyButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  if (isDown()) painter.fillRect(rect(), QColor::fromRgb(theme::colours().bar_pressed));
  const int margin = scale_.px(6);
  const QRect space = rect().adjusted(margin, 0, -margin, 0);
  painter.setFont(theme::font(scale_, theme::kTextPixels, TextWeight::kSemiBold));
  painter.setPen(
      QColor::fromRgb(isEnabled() ? theme::colours().bar_ink : theme::colours().bar_ink_disabled));
  const auto side = key_ == SoftKey::kLeft ? Qt::AlignLeft : Qt::AlignRight;
  painter.drawText(space, side | Qt::AlignVCenter | Qt::TextSingleLine,
                   painter.fontMetrics().elidedText(text(), Qt::ElideRight, space.width()));
}

SoftKeyBar::SoftKeyBar(const Scale& scale, std::function<void(SoftKey)> pressed, QWidget* parent)
    : QWidget(parent),
      left_(new SoftKeyButton(scale, SoftKey::kLeft, this)),
      right_(new SoftKeyButton(scale, SoftKey::kRight, this)) {
  connect(left_, &QAbstractButton::clicked, this, [pressed] { pressed(SoftKey::kLeft); });
  connect(right_, &QAbstractButton::clicked, this, [pressed] { pressed(SoftKey::kRight); });
}

void SoftKeyBar::setLabels(const SoftKeyLabel& left, const SoftKeyLabel& right) {
  const auto set = [](SoftKeyButton* button, const SoftKeyLabel& label) {
    button->setText(label.text);  // not an accelerator: only F1 and F2 press a soft key
    button->setShortcut({});
    button->setAccessibleName(label.text);
    button->setEnabled(label.enabled && !label.text.isEmpty());
    button->update();
  };
  set(left_, left);
  set(right_, right);
  divide();
}

void SoftKeyBar::paintEvent(QPaintEvent*) {
  QPainter(this).fillRect(rect(), QColor::fromRgb(theme::colours().bar));
}

void SoftKeyBar::resizeEvent(QResizeEvent*) {
  divide();
}

// Halves, unless one text needs more and the other can spare it.
void SoftKeyBar::divide() {
  const int half = width() / 2;
  const int left = left_->wantedWidth();
  const int right = right_->wantedWidth();
  int edge = half;
  if (left > half) edge = qMax(half, qMin(left, width() - right));
  if (right > half) edge = qMin(half, qMax(width() - right, left));
  left_->setGeometry(0, 0, edge, height());
  right_->setGeometry(edge, 0, width() - edge, height());
}

}  // namespace tabelion
