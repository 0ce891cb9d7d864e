#include "platform/qt/list_view.h"

#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>
#include <algorithm>

#include "platform/qt/accessibility.h"
#include "platform/qt/painter.h"
#include "platform/qt/theme.h"

namespace tabelion {

ListView::ListView(const Scale& scale, Source source, QWidget* parent)
    : QAbstractScrollArea(parent),
      scale_(scale),
      source_(std::move(source)),
      fonts_(std::make_unique<ListFonts>(scale)) {
  setFrameShape(QFrame::NoFrame);
  setFocusPolicy(Qt::StrongFocus);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  verticalScrollBar()->setFocusPolicy(Qt::NoFocus);
  connect(verticalScrollBar(), &QScrollBar::valueChanged, viewport(),
          [this] { viewport()->update(); });
}

void ListView::setColumns(const std::vector<ListColumn>& columns) {
  columns_ = columns;
  scrollSideways(0);
  updateBars();
  viewport()->update();
}

void ListView::setRowCount(int count) {
  row_count_ = std::max(0, count);
  if (selected_ >= row_count_) selected_ = row_count_ - 1;
  updateBars();
  rowsChanged(*this);
  viewport()->update();
}

void ListView::selectRow(int row) {
  const int before = selected_;
  selected_ = row >= 0 && row < row_count_ ? row : -1;
  if (selected_ >= 0) showRow(selected_);
  viewport()->update();
  if (selected_ != before) announce();
}

void ListView::scrollSideways(int pixels) {
  sideways_ = std::clamp(sideways_ + pixels, 0, sidewaysRoom());
  viewport()->update();
}

int ListView::sidewaysRoom() const {
  return std::max(0, contentWidth() - scale_.own(viewport()->width()));
}

void ListView::applyScale() {
  fonts_ = std::make_unique<ListFonts>(scale_);
  updateBars();
  scrollSideways(0);
  if (selected_ >= 0) showRow(selected_);
}

int ListView::headingHeight() const {
  return columns_.empty() ? 0 : theme::kHeadingHeight;
}

int ListView::contentWidth() const {
  int width = 0;
  for (const ListColumn& column : columns_) width += column.width;
  return width;
}

int ListView::topRow() const {
  return verticalScrollBar()->value();
}

int ListView::wholeRows() const {
  const int room = scale_.own(viewport()->height()) - headingHeight();
  return std::max(1, room / theme::kListRowHeight);
}

void ListView::updateBars() {
  verticalScrollBar()->setRange(0, std::max(0, row_count_ - wholeRows()));
  verticalScrollBar()->setPageStep(wholeRows());
}

void ListView::showRow(int row) {
  if (row < topRow()) verticalScrollBar()->setValue(row);
  if (row >= topRow() + wholeRows()) verticalScrollBar()->setValue(row - wholeRows() + 1);
}

QRect ListView::rowRect(int row) const {
  const int below_top = row - topRow();
  const int y = headingHeight() + below_top * theme::kListRowHeight;
  if (row < 0 || row >= row_count_ || below_top < 0 || scale_.px(y) >= viewport()->height()) {
    return {};
  }
  return scale_.rect(Rect{0, y, scale_.own(viewport()->width()), theme::kListRowHeight});
}

int ListView::rowAt(const QPoint& at) const {
  const int y = scale_.own(at.y()) - headingHeight();
  if (y < 0) return -1;
  const int row = topRow() + y / theme::kListRowHeight;
  return row < row_count_ ? row : -1;
}

bool ListView::takeKey(Key key) {
  const int last = row_count_ - 1;
  const int page = std::max(1, wholeRows() - 1);
  switch (key) {
    case Key::kUp:
      chooseRow(std::max(0, selected_ - 1));
      return true;
    case Key::kDown:
      chooseRow(std::min(last, selected_ + 1));
      return true;
    case Key::kPageUp:
      chooseRow(std::max(0, selected_ - page));
      return true;
    case Key::kPageDown:
      chooseRow(std::min(last, selected_ + page));
      return true;
    case Key::kHome:
      chooseRow(0);
      return true;
    case Key::kEnd:
      chooseRow(last);
      return true;
    default:
      return false;
  }
}

void ListView::chooseRow(int row) {
  if (row < 0 || row >= row_count_) return;
  const bool other = row != selected_;
  selectRow(row);
  if (other) source_.selected();
}

void ListView::announce() {
  announceRow(*this);
}

void ListView::paintEvent(QPaintEvent*) {
  QPainter painter(viewport());
  painter.fillRect(viewport()->rect(), QColor::fromRgb(theme::colours().paper));
  const int height = scale_.own(viewport()->height());
  const int width = std::max(contentWidth(), scale_.own(viewport()->width()) + 1);
  painter.setClipRect(
      QRect(0, scale_.px(headingHeight()), viewport()->width(), viewport()->height()));
  QtListPainter rows(painter, scale_, *fonts_);
  int y = headingHeight();
  for (int row = topRow(); row < row_count_ && y < height; ++row) {
    source_.paint(row, rows, Rect{-sideways_, y, width, theme::kListRowHeight});
    y += theme::kListRowHeight;
  }
  if (hasFocus() && selected_ >= 0) paintFocus(painter);
  painter.setClipping(false);
  if (headingHeight() > 0) paintHeadings(painter);
}

// A frame round the selected row; thin at the sides, where the text of a row begins.
void ListView::paintFocus(QPainter& painter) {
  const QRect row = rowRect(selected_);
  if (row.isEmpty()) return;
  const int thick = scale_.line(2);
  const int thin = scale_.line(1);
  const QColor colour = QColor::fromRgb(theme::colours().focus);
  painter.fillRect(QRect(row.x(), row.y(), row.width(), thick), colour);
  painter.fillRect(QRect(row.x(), row.bottom() + 1 - thick, row.width(), thick), colour);
  painter.fillRect(QRect(row.x(), row.y(), thin, row.height()), colour);
  painter.fillRect(QRect(row.right() + 1 - thin, row.y(), thin, row.height()), colour);
}

void ListView::paintHeadings(QPainter& painter) {
  const Rect strip{0, 0, scale_.own(viewport()->width()) + 1, headingHeight()};
  const QRect place = scale_.rect(strip);
  painter.fillRect(place, QColor::fromRgb(theme::colours().panel));
  painter.fillRect(QRect(0, place.bottom() + 1 - scale_.line(), place.width(), scale_.line()),
                   QColor::fromRgb(theme::colours().line));
  painter.setFont(theme::font(scale_, theme::kTextPixels - 1));
  int x = -sideways_;
  for (const ListColumn& column : columns_) {
    const QRect cell = scale_.rect(Rect{x, 0, column.width, headingHeight()});
    const QRect space =
        cell.adjusted(scale_.px(3), 0, -scale_.px(2) - paintSortMark(painter, column, cell), 0);
    painter.setPen(QColor::fromRgb(theme::colours().ink_soft));
    painter.drawText(
        space, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
        painter.fontMetrics().elidedText(toQt(column.heading), Qt::ElideRight, space.width()));
    painter.fillRect(QRect(cell.right(), scale_.px(3), scale_.line(), cell.height() - scale_.px(6)),
                     QColor::fromRgb(theme::colours().line_soft));
    x += column.width;
  }
}

// At the right edge of the heading, where no long name covers it: the level, and a triangle whose
// point is up where values rise. The room that it took.
int ListView::paintSortMark(QPainter& painter, const ListColumn& column, const QRect& cell) const {
  if (column.sort == SortMark::kNone) return 0;
  const int side = std::min(scale_.px(7), cell.width() - scale_.px(2));
  const QString level = column.sort_level == 0 ? QString() : QString::number(column.sort_level);
  const int digit = painter.fontMetrics().horizontalAdvance(level);
  const QRectF mark(cell.right() - side - scale_.px(3), cell.center().y() - side / 2, side,
                    side * 0.75);
  const bool up = column.sort == SortMark::kForward;
  const double point = up ? mark.top() : mark.bottom();
  const double base = up ? mark.bottom() : mark.top();
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor::fromRgb(theme::colours().ink));
  const QPointF triangle[] = {
      {mark.left(), base}, {mark.right(), base}, {mark.center().x(), point}};
  painter.drawPolygon(triangle, 3);
  painter.restore();
  painter.setPen(QColor::fromRgb(theme::colours().ink));
  painter.drawText(QRectF(mark.left() - digit - scale_.px(1), cell.top(), digit, cell.height()),
                   Qt::AlignVCenter | Qt::TextSingleLine, level);
  return side + digit + scale_.px(4);
}

QString ListView::headingWords() const {
  QStringList words;
  for (const ListColumn& column : columns_) {
    words << toQt(column.spoken.empty() ? column.heading : column.spoken);
  }
  return words.join(QStringLiteral("; "));
}

void ListView::resizeEvent(QResizeEvent* event) {
  QAbstractScrollArea::resizeEvent(event);
  applyScale();
}

void ListView::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) chooseRow(rowAt(event->position().toPoint()));
}

void ListView::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || rowAt(event->position().toPoint()) < 0) return;
  chooseRow(rowAt(event->position().toPoint()));
  source_.activated();
}

void ListView::wheelEvent(QWheelEvent* event) {
  if (event->angleDelta().x() != 0) scrollSideways(-event->angleDelta().x() / 4);
  QScrollBar* bar = verticalScrollBar();
  bar->setValue(bar->value() - event->angleDelta().y() / 40);  // three rows a notch
  event->accept();
}

void ListView::focusInEvent(QFocusEvent*) {
  viewport()->update();
  announce();
}

void ListView::focusOutEvent(QFocusEvent*) {
  viewport()->update();
}

}  // namespace tabelion
