#include "platform/qt/painter.h"

#include <QPainter>
#include <algorithm>

#include "platform/qt/pictures.h"

namespace tabelion {

namespace {

constexpr int kGapAfterCutText = 3;

QColor toQt(Color color) {
  return QColor(color.red, color.green, color.blue);
}

}  // namespace

void QtListPainter::fill(const Rect& area, Color color) {
  painter_.fillRect(scale_.rect(area), toQt(color));
}

void QtListPainter::text(const Rect& area, const std::u16string& text, Color color,
                         TextWeight weight) {
  if (text.empty() || area.width <= 0) return;
  const QRect place = scale_.rect(area);
  if (!place.intersects(painter_.clipBoundingRect().toAlignedRect())) return;
  const QFontMetrics& metrics = fonts_.metrics(weight);
  // Of a long note only what can be seen is laid out: no glyph is narrower than a fifth of its
  // height on average, and a line ends at the first break.
  const qsizetype most = 8 + 5LL * place.width() / qMax(1, fonts_.font(weight).pixelSize());
  QString line = QString::fromUtf16(text.data(), qMin<qsizetype>(most, qsizetype(text.size())));
  for (QChar& c : line) {
    if (c < QLatin1Char(' ')) c = QLatin1Char(' ');
  }
  // The line sits in the middle of a row, so that both weights share one row height.
  const int slack = qMax(0, scale_.px(theme::kListRowHeight) - metrics.height());
  painter_.save();
  const int wanted = metrics.horizontalAdvance(line);
  // A text that is cut keeps clear of what comes next, and keeps its beginning, which is its right
  // end where it is read from there.
  const bool backwards = line.isRightToLeft();
  const int room = place.width() - (wanted > place.width() ? scale_.px(kGapAfterCutText) : 0);
  const int left = backwards ? place.right() + 1 - room : place.x();
  painter_.setClipRect(QRect(left, place.y(), room, place.height()), Qt::IntersectClip);
  painter_.setFont(fonts_.font(weight));
  painter_.setPen(toQt(color));
  painter_.setLayoutDirection(backwards ? Qt::RightToLeft : Qt::LeftToRight);
  const int start = backwards ? std::min(left, left + room - wanted) : left;
  painter_.drawText(QPoint(start, place.y() + slack / 2 + metrics.ascent()), line);
  painter_.restore();
}

Scheme QtListPainter::scheme() const {
  return theme::scheme();
}

void QtListPainter::picture(Point at, Picture picture) {
  const Size size = pictureSize(picture);
  const int slack = qMax(0, theme::kListRowHeight - size.height) / 2;
  paintPicture(painter_, picture,
               QRectF(scale_.rect(Rect{at.x, at.y + slack, size.width, size.height})));
}

}  // namespace tabelion
