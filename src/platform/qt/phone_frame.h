// The window: the phone's screen with its title strip, the layers between, and the soft keys.
//
// The layers are a stack. Closing the window is a wish that the program is told of.
#pragma once

#include <QWidget>
#include <functional>
#include <utility>
#include <vector>

#include "platform/dialogs.h"
#include "platform/qt/layer.h"
#include "platform/qt/menu_overlay.h"
#include "platform/qt/scale.h"
#include "platform/qt/strips.h"

namespace tabelion {

struct FrameOptions {
  Size screen{240, 320};
  double zoom = 0;        // 0: one that the desktop can show and the eye can read
  double text_scale = 1;  // how much larger than usual the desktop's texts are, for that zoom
};

inline constexpr double kSmallestZoom = 0.5;
inline constexpr double kLargestZoom = 10;

class PhoneFrame final : public QWidget {
 public:
  explicit PhoneFrame(const FrameOptions& options);

  const Scale& scale() const { return scale_; }
  Size screenSize() const;  // the whole screen, in its own pixels
  Size clientSize() const;  // between title strip and soft keys
  // Keeps the screen's own size and makes the window larger or smaller; where the desktop is too
  // small for that, the screen loses some of its size.
  void setZoom(double zoom);
  void setScheme(Scheme scheme);
  // Whether somebody chose the size or the zoom, so that they are worth remembering.
  bool wasSized() const;
  // The desktop's texts have another size: follows it while the zoom is one that nobody chose.
  void followTextScale(double text_scale);

  // Layers live in this widget; whoever pushes one pops it again, in reverse order.
  QWidget* layerParent() { return client_; }
  void push(Layer& layer);
  void pop(Layer& layer);
  Layer* top() const { return layers_.empty() ? nullptr : layers_.back(); }
  const std::vector<Layer*>& layers() const { return layers_; }

  MenuOverlay& menus() { return *menus_; }
  void openMenu(const std::vector<MenuEntry>& entries, const MenuOverlay::Opening& opening,
                MenuOverlay::Done done);
  void pressSoftKey(SoftKey key);
  void whenClosed(std::function<void()> asked) { when_closed_ = std::move(asked); }
  void refreshStrips();  // title and soft keys of the topmost layer
  void setBusy(bool busy) { title_->setBusy(busy); }
  const SoftKeyBar& softKeys() const { return *soft_keys_; }
  QString shownTitle() const { return title_->title(); }

 protected:
  void resizeEvent(QResizeEvent*) override;
  void keyPressEvent(QKeyEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  bool focusNextPrevChild(bool) override { return true; }  // each layer moves its own focus

 private:
  void applyZoom(double zoom);
  void layOut();
  void showWhatIsSeen();

  Scale scale_;
  bool zoom_is_chosen_;
  QSize first_size_;
  TitleStrip* title_;
  QWidget* client_;
  SoftKeyBar* soft_keys_;
  MenuOverlay* menus_;
  std::vector<Layer*> layers_;
  std::function<void()> when_closed_;
};

// The zoom that a desktop of this size and resolution gets when none is asked for.
double comfortableZoom(const Size& screen, const QSize& desktop, double dots_per_inch);

// A layer on the screen for as long as this lives, also where an exception ends that.
class ShownLayer {
 public:
  ShownLayer(PhoneFrame& frame, Layer& layer) : frame_(frame), layer_(layer) {
    frame_.push(layer_);
  }
  ~ShownLayer() { frame_.pop(layer_); }
  ShownLayer(const ShownLayer&) = delete;
  ShownLayer& operator=(const ShownLayer&) = delete;

 private:
  PhoneFrame& frame_;
  Layer& layer_;
};

}  // namespace tabelion
