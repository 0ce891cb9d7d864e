// The widget of a report list: column headings and the visible rows, which the handler paints.
// Scrolls by whole rows; holds no items.
#pragma once

#include <QAbstractScrollArea>
#include <functional>
#include <memory>
#include <vector>

#include "platform/dialogs.h"
#include "platform/qt/list_fonts.h"
#include "platform/qt/scale.h"

namespace tabelion {

class ListView final : public QAbstractScrollArea {
 public:
  struct Source {
    std::function<void(int row, ListPainter& painter, const Rect& area)> paint;
    std::function<QString(int row)> text;
    std::function<void()> selected;   // by key or pointer
    std::function<void()> activated;  // double-clicked
  };

  ListView(const Scale& scale, Source source, QWidget* parent);

  void setColumns(const std::vector<ListColumn>& columns);
  const std::vector<ListColumn>& columns() const { return columns_; }
  void setRowCount(int count);
  int rowCount() const { return row_count_; }
  // -1: none. Scrolls it into view.
  void selectRow(int row);
  int selectedRow() const { return selected_; }
  void scrollSideways(int pixels);
  int sideways() const { return sideways_; }  // own pixels
  int sidewaysRoom() const;                   // the most that it can be scrolled
  void applyScale();
  bool takeKey(Key key);

  int topRow() const;
  int wholeRows() const;         // that fit between headings and bottom
  QRect rowRect(int row) const;  // window pixels in the viewport; empty when out of sight
  int rowAt(const QPoint& at) const;
  QString rowText(int row) const { return source_.text(row); }
  QString headingWords() const;  // for a screen reader

 protected:
  void paintEvent(QPaintEvent*) override;
  void resizeEvent(QResizeEvent*) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void focusInEvent(QFocusEvent*) override;
  void focusOutEvent(QFocusEvent*) override;

 private:
  int headingHeight() const;  // own pixels; 0 without headings
  int contentWidth() const;
  void updateBars();
  void showRow(int row);
  void chooseRow(int row);  // by the user
  void announce();
  void paintFocus(QPainter& painter);
  void paintHeadings(QPainter& painter);
  int paintSortMark(QPainter& painter, const ListColumn& column, const QRect& cell) const;

  const Scale& scale_;
  const Source source_;
  std::unique_ptr<ListFonts> fonts_;
  std::vector<ListColumn> columns_;
  int row_count_ = 0;
  int selected_ = -1;
  int sideways_ = 0;
};

}  // namespace tabelion
