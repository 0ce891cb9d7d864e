// The panels of a menu and their rows.
#include <QKeyEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>

#include "platform/qt/menu_overlay.h"
#include "platform/qt/pictures.h"
#include "platform/qt/theme.h"

namespace tabelion {

MenuRow::MenuRow(const Scale& scale, const MenuEntry& entry, int number, QWidget* parent)
    : QAbstractButton(parent), scale_(scale), entry_(entry), number_(number) {
  setText(toQt(entry.text));
  setShortcut({});
  setAccessibleName(text());
  setEnabled(isChoosable());
  setCheckable(entry.checked);
  setChecked(entry.checked);
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_Hover);
}

bool MenuRow::isSeparator() const {
  return entry_.command == 0 && entry_.children.empty() && entry_.text.empty();
}

int MenuRow::wantedHeight() const {
  return scale_.px(isSeparator() ? 7 : theme::kMenuRowHeight);
}

int MenuRow::wantedWidth() const {
  return QFontMetrics(theme::font(scale_)).horizontalAdvance(text()) + scale_.px(22 + 22);
}

bool MenuRow::event(QEvent* event) {
  // Every key is the menu's, also those that a button would use.
  if (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease) {
    event->ignore();
    return false;
  }
  return QAbstractButton::event(event);
}

void MenuRow::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const int margin = scale_.px(6);
  if (isSeparator()) {
    const int y = height() / 2;
    painter.fillRect(QRect(margin, y, width() - 2 * margin, scale_.line()),
                     QColor::fromRgb(theme::colours().line_soft));
    return;
  }
  const bool marked = hasFocus();
  if (marked) {
    painter.fillRect(rect(), QColor::fromRgb(theme::colours().focus));
  } else if (underMouse() && isEnabled()) {
    painter.fillRect(rect(), QColor::fromRgb(theme::colours().focus_paper));
  }
  const QRgb ink = !isEnabled() ? theme::colours().ink_disabled
                   : marked     ? theme::colours().on_focus
                                : theme::colours().ink;
  const QRect lead(margin - scale_.px(2), 0, scale_.px(14), height());
  if (entry_.checked) {
    const int side = scale_.px(12);
    paintTick(painter, QRectF(lead.x(), (height() - side) / 2.0, side, side), ink);
  } else if (number_ > 0) {
    painter.setFont(theme::font(scale_, theme::kTextPixels - 2));
    painter.setPen(QColor::fromRgb(marked        ? theme::colours().on_focus
                                   : isEnabled() ? theme::colours().ink_soft
                                                 : theme::colours().ink_disabled));
    painter.drawText(lead, Qt::AlignCenter, QString::number(number_));
  }
  QRect space(scale_.px(22), 0, width() - scale_.px(22 + 6), height());
  if (!entry_.children.empty()) {
    const int side = scale_.px(10);
    paintChevron(painter, QRectF(space.right() - side, (height() - side) / 2.0, side, side),
                 Pointing::kRight, ink);
    space.setRight(space.right() - side - margin);
  }
  painter.setFont(theme::font(scale_));
  painter.setPen(QColor::fromRgb(ink));
  painter.drawText(space, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                   painter.fontMetrics().elidedText(text(), Qt::ElideRight, space.width()));
}

MenuPanel::MenuPanel(const Scale& scale, const std::vector<MenuEntry>& entries,
                     MenuOverlay& overlay)
    : QWidget(&overlay), scale_(scale), window_(new QWidget(this)), strip_(new QWidget(window_)) {
  int number = 0;
  for (const MenuEntry& entry : entries) {
    const bool separator = entry.command == 0 && entry.children.empty() && entry.text.empty();
    if (!separator) ++number;
    auto* row = new MenuRow(scale, entry, separator || number > 9 ? 0 : number, strip_);
    connect(row, &QAbstractButton::clicked, this, [&overlay, row] { overlay.choose(row); });
    rows_.push_back(row);
  }
}

MenuRow* MenuPanel::marked() const {
  return marked_;
}

void MenuPanel::mark(MenuRow* row) {
  marked_ = row;
  if (row == nullptr) return;
  row->setFocus();
  const int top = -strip_->y();
  if (row->y() < top) scrollTo(row->y());
  if (row->geometry().bottom() >= top + window_->height()) {
    scrollTo(row->geometry().bottom() + 1 - window_->height());
  }
  update();
}

void MenuPanel::markFirst() {
  marked_ = nullptr;
  step(1);
}

void MenuPanel::step(int by) {
  const int count = int(rows_.size());
  int at = by > 0 ? -1 : count;
  for (int i = 0; i < count; ++i) {
    if (rows_[i] == marked_) at = i;
  }
  for (int tried = 0; tried < count; ++tried) {
    at = (at + by + count) % count;
    if (rows_[at]->isChoosable()) return mark(rows_[at]);
  }
}

void MenuPanel::page(int by) {
  if (marked_ == nullptr) return;
  const int wanted = marked_->y() + by * (window_->height() - marked_->height());
  MenuRow* nearest = marked_;
  for (MenuRow* row : rows_) {
    if (row->isChoosable() && qAbs(row->y() - wanted) < qAbs(nearest->y() - wanted)) nearest = row;
  }
  mark(nearest);
}

void MenuPanel::markByLetter(const QString& letter) {
  const auto here = std::find(rows_.begin(), rows_.end(), marked_);
  const auto start = std::size_t(here == rows_.end() ? 0 : here - rows_.begin() + 1);
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    MenuRow* row = rows_[(start + i) % rows_.size()];
    if (row->isChoosable() && row->text().trimmed().startsWith(letter, Qt::CaseInsensitive)) {
      return mark(row);
    }
  }
}

QSize MenuPanel::wantedSize() const {
  int width = scale_.px(110);
  int height = 2 * scale_.line();
  for (const MenuRow* row : rows_) {
    width = qMax(width, row->wantedWidth());
    height += row->wantedHeight();
  }
  return {width + 2 * scale_.line(), height};
}

void MenuPanel::resizeEvent(QResizeEvent*) {
  placeRows();
  if (marked_ != nullptr) mark(marked_);
}

void MenuPanel::placeRows() {
  const int border = scale_.line();
  // A menu too long for the screen shows at its right edge which part of it is seen.
  const int bar = height() < wantedSize().height() ? scale_.px(theme::kScrollBarWidth) : 0;
  window_->setGeometry(rect().adjusted(border, border, -border - bar, -border));
  int y = 0;
  for (MenuRow* row : rows_) {
    row->setGeometry(0, y, window_->width(), row->wantedHeight());
    y += row->wantedHeight();
  }
  strip_->resize(window_->width(), y);
  scrollTo(-strip_->y());
}

void MenuPanel::scrollTo(int top) {
  strip_->move(0, -qBound(0, top, qMax(0, strip_->height() - window_->height())));
  update();
}

void MenuPanel::wheelEvent(QWheelEvent* event) {
  const int row = scale_.px(theme::kMenuRowHeight);
  scrollTo(-strip_->y() - event->angleDelta().y() * row / 120);
  event->accept();
}

void MenuPanel::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), QColor::fromRgb(theme::colours().bar));
  const QRect seen = window_->geometry();
  painter.fillRect(seen, QColor::fromRgb(theme::colours().paper));
  if (strip_->height() <= seen.height()) return;
  const QRect track(seen.right() + 1, seen.top(), width() - seen.right() - 1 - scale_.line(),
                    seen.height());
  painter.fillRect(track, QColor::fromRgb(theme::colours().panel));
  painter.fillRect(QRect(track.x(), track.y() - strip_->y() * track.height() / strip_->height(),
                         track.width(), track.height() * track.height() / strip_->height()),
                   QColor::fromRgb(theme::colours().line));
}

}  // namespace tabelion
