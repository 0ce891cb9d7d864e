#include "platform/qt/wrapped_text.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QTextLayout>
#include <QTextOption>

namespace tabelion {
namespace {

constexpr int kTabCharacters = 8;
constexpr int kEndless = 1 << 20;  // pixels

QTextOption optionFor(const QFont& font, Qt::Alignment side) {
  QTextOption option(side | Qt::AlignTop);
  option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  option.setTabStopDistance(kTabCharacters * QFontMetricsF(font).averageCharWidth());
  return option;
}

}  // namespace

QSizeF wrappedTextSize(const QString& text, const QFont& font, int width) {
  QString lines = text;
  lines.replace(QLatin1Char('\n'), QChar(QChar::LineSeparator));
  QTextLayout layout(lines, font);
  layout.setTextOption(optionFor(font, Qt::AlignLeft));
  qreal widest = 0;
  qreal height = 0;
  layout.beginLayout();
  for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
    line.setLineWidth(width > 0 ? width : kEndless);
    widest = qMax(widest, line.naturalTextWidth());
    height += line.height();
  }
  layout.endLayout();
  return {widest, height};
}

void drawWrappedText(QPainter& painter, const QRect& area, Qt::Alignment side,
                     const QString& text) {
  painter.drawText(QRectF(area), text, optionFor(painter.font(), side));
}

}  // namespace tabelion
