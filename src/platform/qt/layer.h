// What lies in the frame between title strip and soft keys: screens, message panels, progress
// panels. The frame stacks them; the topmost has the keys.
#pragma once

#include <QString>
#include <QWidget>

namespace tabelion {

enum class SoftKey { kLeft, kRight };

struct SoftKeyLabel {
  QString text;  // empty: the key does nothing
  bool enabled = true;
};

class Layer : public QWidget {
 public:
  using QWidget::QWidget;

  virtual int resource() const { return 0; }
  virtual QString title() const { return {}; }  // empty: the one of the layer below stays
  virtual SoftKeyLabel softKey(SoftKey key) const = 0;
  virtual void pressSoftKey(SoftKey key) = 0;
  // The place or the zoom changed.
  virtual void applyScale() = 0;
  // It became the topmost layer, or a menu over it closed.
  virtual void takeFocus() = 0;
  // False for panels that leave the screen below them to be seen.
  virtual bool coversAll() const { return true; }
};

}  // namespace tabelion
