// Menus drawn inside the frame: those of the soft keys, popup menus, the lists of choices. A
// submenu opens over its parent, so that nothing ever lies outside the phone's screen.
#pragma once

#include <QAbstractButton>
#include <QPoint>
#include <QWidget>
#include <functional>
#include <vector>

#include "platform/dialogs.h"
#include "platform/qt/scale.h"

namespace tabelion {

class MenuOverlay;

// One entry; has the focus while it is the marked one.
class MenuRow final : public QAbstractButton {
 public:
  MenuRow(const Scale& scale, const MenuEntry& entry, int number, QWidget* parent);
  const MenuEntry& entry() const { return entry_; }
  bool isSeparator() const;
  bool isChoosable() const { return entry_.enabled && !isSeparator(); }
  int wantedWidth() const;  // window pixels
  int wantedHeight() const;

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent*) override;

 private:
  const Scale& scale_;
  const MenuEntry entry_;
  const int number_;  // the digit that chooses it, 0 for none
};

// One open menu: its rows, scrolled when they do not fit.
class MenuPanel final : public QWidget {
 public:
  MenuPanel(const Scale& scale, const std::vector<MenuEntry>& entries, MenuOverlay& overlay);
  const std::vector<MenuRow*>& rows() const { return rows_; }
  MenuRow* marked() const;
  void mark(MenuRow* row);
  void markFirst();
  void step(int by);                         // to the next choosable row that way, round the ends
  void page(int by);                         // to the one that lies nearest to one panel further
  void markByLetter(const QString& letter);  // the next one that begins so, round the end
  QSize wantedSize() const;

 protected:
  void paintEvent(QPaintEvent*) override;
  void resizeEvent(QResizeEvent*) override;
  void wheelEvent(QWheelEvent*) override;

 private:
  void scrollTo(int top);
  void placeRows();

  const Scale& scale_;
  QWidget* window_;  // shows a part of the rows
  QWidget* strip_;   // holds all rows
  std::vector<MenuRow*> rows_;
  MenuRow* marked_ = nullptr;
};

class MenuOverlay final : public QWidget {
 public:
  // Where a menu attaches itself.
  enum class Anchor { kBottomLeft, kBottomRight, kPoint, kBelow };
  struct Opening {
    Anchor anchor = Anchor::kBottomRight;
    QRect at;             // window pixels of this overlay; for kPoint and kBelow
    int marked_row = -1;  // marked at first; -1: the first choosable one
    bool numbered = true;
  };
  using Done = std::function<void(CommandId)>;

  MenuOverlay(const Scale& scale, QWidget* parent);

  // Shows the entries over what is there. `done` gets the chosen command, 0 when dismissed, after
  // the menu has gone.
  void open(const std::vector<MenuEntry>& entries, const Opening& opening, Done done);
  bool isOpen() const { return !panels_.empty(); }
  void dismiss() { finish(0); }
  void chooseMarked();
  MenuPanel* panel() const { return panels_.empty() ? nullptr : panels_.back(); }
  // Called by rows.
  void choose(MenuRow* row);
  bool takeKey(QKeyEvent* event);

 protected:
  void mousePressEvent(QMouseEvent*) override;
  void resizeEvent(QResizeEvent*) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void openPanel(const std::vector<MenuEntry>& entries, int marked_row);
  void closePanel();
  void place(MenuPanel& panel, std::size_t depth);
  bool chooseByDigit(int digit);
  void finish(CommandId command);

  const Scale& scale_;
  Opening opening_;
  Done done_;
  std::vector<MenuPanel*> panels_;
};

}  // namespace tabelion
