#include "platform/qt/menu_overlay.h"

#include <QKeyEvent>
#include <QWheelEvent>
#include <utility>

namespace tabelion {

MenuOverlay::MenuOverlay(const Scale& scale, QWidget* parent) : QWidget(parent), scale_(scale) {
  setFocusPolicy(Qt::StrongFocus);
  hide();
}

void MenuOverlay::open(const std::vector<MenuEntry>& entries, const Opening& opening, Done done) {
  if (isOpen()) dismiss();
  if (entries.empty()) {
    if (done) done(0);
    return;
  }
  opening_ = opening;
  done_ = std::move(done);
  setGeometry(parentWidget()->rect());
  raise();
  show();
  openPanel(entries, opening.marked_row);
}

void MenuOverlay::openPanel(const std::vector<MenuEntry>& entries, int marked_row) {
  auto* panel = new MenuPanel(scale_, entries, *this);
  panels_.push_back(panel);
  place(*panel, panels_.size() - 1);
  panel->show();
  panel->raise();
  const auto& rows = panel->rows();
  if (marked_row >= 0 && marked_row < int(rows.size()) && rows[marked_row]->isChoosable()) {
    panel->mark(rows[marked_row]);
  } else {
    panel->markFirst();
  }
  if (panel->marked() == nullptr) setFocus();
}

void MenuOverlay::closePanel() {
  panels_.back()->hide();
  panels_.back()->deleteLater();  // one of its rows may be handling the key that closes it
  panels_.pop_back();
  if (!panels_.empty()) panels_.back()->mark(panels_.back()->marked());
}

void MenuOverlay::finish(CommandId command) {
  if (!isOpen()) return;
  while (!panels_.empty()) {
    panels_.back()->hide();
    panels_.back()->deleteLater();
    panels_.pop_back();
  }
  hide();
  // The handler of the command may open the next menu.
  const Done done = std::exchange(done_, nullptr);
  if (done) done(command);
}

void MenuOverlay::choose(MenuRow* row) {
  if (row == nullptr || !row->isChoosable()) return;
  panels_.back()->mark(row);
  if (!row->entry().children.empty()) {
    openPanel(row->entry().children, -1);
  } else {
    finish(row->entry().command);
  }
}

void MenuOverlay::chooseMarked() {
  if (isOpen()) choose(panels_.back()->marked());
}

bool MenuOverlay::chooseByDigit(int digit) {
  int number = 0;
  for (MenuRow* row : panels_.back()->rows()) {
    if (row->isSeparator() || ++number != digit) continue;
    choose(row);
    return true;
  }
  return false;
}

bool MenuOverlay::takeKey(QKeyEvent* event) {
  if (!isOpen()) return false;
  MenuPanel& top = *panels_.back();
  const bool nested = panels_.size() > 1;
  switch (event->key()) {
    case Qt::Key_Down:
      top.step(1);
      return true;
    case Qt::Key_Up:
      top.step(-1);
      return true;
    case Qt::Key_Home:
      top.markFirst();
      return true;
    case Qt::Key_End:
      top.markFirst();
      top.step(-1);
      return true;
    case Qt::Key_PageUp:
      top.page(-1);
      return true;
    case Qt::Key_PageDown:
      top.page(1);
      return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Select:
    case Qt::Key_Space:
      if (!event->isAutoRepeat()) chooseMarked();
      return true;
    case Qt::Key_Right:
      if (top.marked() != nullptr && !top.marked()->entry().children.empty()) chooseMarked();
      return true;
    case Qt::Key_Left:
      if (nested) closePanel();
      return true;
    case Qt::Key_Escape:
    case Qt::Key_Backspace:
    case Qt::Key_Back:
      if (nested) {
        closePanel();
      } else {
        finish(0);
      }
      return true;
    default:
      break;
  }
  if (event->key() >= Qt::Key_1 && event->key() <= Qt::Key_9 && opening_.numbered) {
    return chooseByDigit(event->key() - Qt::Key_0);
  }
  if (event->text().isEmpty() || !event->text()[0].isPrint()) return false;
  top.markByLetter(event->text());
  return true;
}

void MenuOverlay::keyPressEvent(QKeyEvent* event) {
  if (!takeKey(event)) event->ignore();
}

void MenuOverlay::mousePressEvent(QMouseEvent*) {
  finish(0);
}

void MenuOverlay::resizeEvent(QResizeEvent*) {
  for (std::size_t i = 0; i < panels_.size(); ++i) place(*panels_[i], i);
}

void MenuOverlay::place(MenuPanel& panel, std::size_t depth) {
  const QSize wanted = panel.wantedSize();
  QSize size(qMin(wanted.width(), width()), qMin(wanted.height(), height()));
  QPoint at(0, 0);
  switch (opening_.anchor) {
    case Anchor::kBottomLeft:
      at = QPoint(0, height() - size.height());
      break;
    case Anchor::kBottomRight:
      at = QPoint(width() - size.width(), height() - size.height());
      break;
    case Anchor::kPoint:
      at = opening_.at.topLeft();
      break;
    case Anchor::kBelow: {
      size.setWidth(qMin(width(), qMax(size.width(), opening_.at.width())));
      const int below = height() - (opening_.at.bottom() + 1);
      const bool above = size.height() > below && opening_.at.top() > below;
      size.setHeight(qMin(size.height(), qMax(above ? opening_.at.top() : below, scale_.px(60))));
      at = QPoint(opening_.at.right() + 1 - size.width(),
                  above ? opening_.at.top() - size.height() : opening_.at.bottom() + 1);
      break;
    }
  }
  // A submenu leaves a strip of its parent to be seen, on the side that has room.
  const int inset = scale_.px(12) * int(depth);
  at.rx() += opening_.anchor == Anchor::kBottomRight ? -inset : inset;
  at.setX(qBound(0, at.x(), width() - size.width()));
  at.setY(qBound(0, at.y(), height() - size.height()));
  panel.setGeometry(QRect(at, size));
}

}  // namespace tabelion
