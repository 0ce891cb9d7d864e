#include "platform/qt/message_screen.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>

#include "platform/qt/phone_frame.h"
#include "platform/qt/pictures.h"
#include "platform/qt/theme.h"

namespace tabelion {

namespace {

constexpr int kMargin = 8;
constexpr int kIconSide = 24;
constexpr int kTitleHeight = 24;

// Labels know no tabs; four spaces to the next stop keep columns apart.
QString withSpaces(const QString& text) {
  QString result;
  int column = 0;
  for (const QChar c : text) {
    if (c == QLatin1Char('\t')) {
      const int gap = 4 - column % 4;
      result += QString(gap, QChar(QChar::Nbsp));
      column += gap;
      continue;
    }
    if (c == QLatin1Char('\r')) continue;
    result += c;
    column = c == QLatin1Char('\n') ? 0 : column + 1;
  }
  return result;
}

}  // namespace

MessageScreen::MessageScreen(PhoneFrame& frame, const MessageBox& box)
    : Layer(frame.layerParent()),
      frame_(frame),
      box_(box),
      area_(new QScrollArea(this)),
      text_(new QLabel) {
  hide();
  text_->setTextFormat(Qt::PlainText);
  text_->setWordWrap(true);
  text_->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  text_->setText(withSpaces(toQt(box.text)));
  text_->setAccessibleName(toQt(box.text));
  area_->setWidget(text_);
  // The panel paints the paper for both.
  area_->viewport()->setAutoFillBackground(false);
  text_->setAutoFillBackground(false);
  area_->setFrameShape(QFrame::NoFrame);
  area_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  area_->setFocusPolicy(Qt::StrongFocus);
  area_->verticalScrollBar()->setFocusPolicy(Qt::NoFocus);
  area_->installEventFilter(this);
  // What a screen reader says when the panel takes the focus.
  setAccessibleName(toQt(box.title));
  setAccessibleDescription(toQt(box.text));
  area_->setAccessibleName(toQt(box.title + (box.title.empty() ? u"" : u": ") + box.text));
}

MessageAnswer MessageScreen::run() {
  const ShownLayer shown(frame_, *this);
  QAccessibleEvent alert(this, QAccessible::Alert);
  QAccessible::updateAccessibility(&alert);
  while (!answer_ && loop_.run() == 0 && !answer_) {
  }
  if (!answer_) dismiss();
  return *answer_;
}

void MessageScreen::dismiss() {
  answer(box_.buttons == MessageButtons::kOk ? MessageAnswer::kOk : MessageAnswer::kNobody);
}

void MessageScreen::answer(MessageAnswer answer) {
  if (answer_) return;
  answer_ = answer;
  loop_.exit(1);
}

SoftKeyLabel MessageScreen::softKey(SoftKey key) const {
  if (box_.buttons == MessageButtons::kOk) {
    return {key == SoftKey::kLeft ? QStringLiteral("OK") : QString(), true};
  }
  return {key == SoftKey::kLeft ? QStringLiteral("Yes") : QStringLiteral("No"), true};
}

void MessageScreen::pressSoftKey(SoftKey key) {
  if (box_.buttons == MessageButtons::kYesNo) {
    answer(key == SoftKey::kLeft ? MessageAnswer::kYes : MessageAnswer::kNo);
  } else if (key == SoftKey::kLeft) {
    answer(MessageAnswer::kOk);
  }
}

void MessageScreen::takeFocus() {
  area_->setFocus(Qt::OtherFocusReason);
}

void MessageScreen::applyScale() {
  const Scale& scale = frame_.scale();
  const int margin = scale.px(kMargin);
  const int icon = box_.icon == MessageIcon::kNone ? 0 : scale.px(kIconSide) + margin;
  title_height_ = box_.title.empty() ? 0 : scale.px(kTitleHeight);
  text_->setFont(theme::font(scale));
  const int bar = scale.px(theme::kScrollBarWidth);
  const int text_width = qMax(1, width() - 2 * margin - icon - bar);
  text_->setFixedWidth(text_width);
  // One line sits beside the middle of the icon.
  const int wanted = qMax(text_->heightForWidth(text_width), icon - margin);
  text_->setFixedHeight(wanted);
  const int room = height() - title_height_ - 2 * margin;
  const int shown = qBound(1, wanted, qMax(1, room));
  area_->setGeometry(margin + icon, height() - margin - shown, text_width + bar, shown);
  update();
}

QRect MessageScreen::panel() const {
  const int margin = frame_.scale().px(kMargin);
  const int top = area_->y() - margin - title_height_;
  return QRect(0, top, width(), height() - top);
}

void MessageScreen::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const Scale& scale = frame_.scale();
  painter.fillRect(rect(), QColor::fromRgba(theme::colours().shade));
  const QRect place = panel();
  const int margin = scale.px(kMargin);
  painter.fillRect(place, QColor::fromRgb(theme::colours().paper));
  painter.fillRect(QRect(place.x(), place.y(), place.width(), scale.line(2)),
                   QColor::fromRgb(theme::colours().focus));
  if (title_height_ > 0) {
    const QRect strip(place.x() + margin, place.y() + scale.line(2), place.width() - 2 * margin,
                      title_height_);
    painter.setFont(theme::font(scale, theme::kTextPixels, TextWeight::kSemiBold));
    painter.setPen(QColor::fromRgb(theme::colours().ink));
    painter.drawText(
        strip, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
        painter.fontMetrics().elidedText(toQt(box_.title), Qt::ElideRight, strip.width()));
  }
  const int side = scale.px(kIconSide);
  paintMessageIcon(painter, box_.icon, QRectF(margin, area_->y(), side, side));
}

bool MessageScreen::eventFilter(QObject*, QEvent* event) {
  return event->type() == QEvent::KeyPress && takeKey(static_cast<QKeyEvent*>(event));
}

bool MessageScreen::takeKey(QKeyEvent* event) {
  const bool plain = box_.buttons == MessageButtons::kOk;
  QScrollBar* bar = area_->verticalScrollBar();
  switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
      bar->setValue(bar->value() + frame_.scale().px(event->key() == Qt::Key_Up ? -16 : 16));
      return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Select:
      // A key still held from the screen below answers nothing.
      if (!event->isAutoRepeat()) answer(plain ? MessageAnswer::kOk : MessageAnswer::kYes);
      return true;
    case Qt::Key_Escape:
    case Qt::Key_Backspace:
    case Qt::Key_Back:
      if (!event->isAutoRepeat()) answer(plain ? MessageAnswer::kOk : MessageAnswer::kNo);
      return true;
    default:
      return false;
  }
}

}  // namespace tabelion
