// Texts of several lines, as labels and check boxes paint them and as layouts measure them: broken
// between words, and within a word that is longer than a line.
#pragma once

#include <QFont>
#include <QString>

class QPainter;

namespace tabelion {

// In window pixels; on as few lines as the text has itself when `width` is 0.
QSizeF wrappedTextSize(const QString& text, const QFont& font, int width);

// From the top of the area; `side` is a horizontal alignment. Uses the painter's font and pen.
void drawWrappedText(QPainter& painter, const QRect& area, Qt::Alignment side, const QString& text);

}  // namespace tabelion
