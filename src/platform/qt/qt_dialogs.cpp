#include "platform/qt/qt_dialogs.h"

#include <QCursor>
#include <QGuiApplication>
#include <algorithm>
#include <new>

#include "platform/qt/accessibility.h"
#include "platform/qt/dialog_screen.h"
#include "platform/qt/guarded_loop.h"
#include "platform/qt/message_screen.h"
#include "platform/qt/progress_panel.h"

namespace tabelion {

namespace {

class PanelProgress final : public Progress {
 public:
  PanelProgress(PhoneFrame& frame, const std::u16string& what) : panel_(frame, what) {}
  void set(int done, int total) override { panel_.set(done, total); }

 private:
  ProgressPanel panel_;
};

// Takes the wait cursor away while the user is asked something, and puts it back after.
class PausedWait {
 public:
  PausedWait(PhoneFrame& frame, int waits) : frame_(frame), waits_(waits) {
    if (waits_ == 0) return;
    QGuiApplication::restoreOverrideCursor();
    frame_.setBusy(false);
  }
  ~PausedWait() {
    if (waits_ == 0) return;
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    frame_.setBusy(true);
  }
  PausedWait(const PausedWait&) = delete;
  PausedWait& operator=(const PausedWait&) = delete;

 private:
  PhoneFrame& frame_;
  const int waits_;
};

}  // namespace

QtDialogs::QtDialogs(const FrameOptions& options) {
  installAccessibility();
  frame_ = std::make_unique<PhoneFrame>(options);
}

QtDialogs::~QtDialogs() = default;

int QtDialogs::runModal(const DialogTemplate& dialog, DialogHandler& handler) {
  const PausedWait paused(*frame_, waits_);
  auto* below = dynamic_cast<DialogScreen*>(frame_->top());
  int result = 0;
  {
    DialogScreen screen(*frame_, dialog, handler);
    result = screen.run();
  }
  if (below != nullptr && frame_->top() == below) below->activated();
  return result;
}

MessageAnswer QtDialogs::message(const MessageBox& box) {
  const PausedWait paused(*frame_, waits_);
  return MessageScreen(*frame_, box).run();
}

CommandId QtDialogs::popupMenu(Point at, const std::vector<MenuEntry>& entries) {
  MenuOverlay::Opening opening;
  opening.anchor = MenuOverlay::Anchor::kPoint;
  opening.at = frame_->scale().rect(Rect{at.x, at.y, 1, 1});
  const auto checked = std::find_if(entries.begin(), entries.end(),
                                    [](const MenuEntry& entry) { return entry.checked; });
  if (checked != entries.end()) opening.marked_row = int(checked - entries.begin());
  CommandId chosen = 0;
  GuardedLoop loop;
  bool done = false;
  frame_->openMenu(entries, opening, [&](CommandId command) {
    chosen = command;
    done = true;
    loop.exit(1);
  });
  try {
    if (!done) loop.run();
  } catch (const std::bad_alloc&) {
    frame_->menus().dismiss();  // it would answer to a call that is over
    throw;
  }
  return chosen;
}

void QtDialogs::setWaitCursor(bool on) {
  waits_ += on ? 1 : -1;
  if (on && waits_ == 1) {
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    frame_->setBusy(true);
  } else if (!on && waits_ == 0) {
    QGuiApplication::restoreOverrideCursor();
    frame_->setBusy(false);
  }
}

bool QtDialogs::dismissBoxes() {
  bool any = frame_->menus().isOpen();
  frame_->menus().dismiss();
  const auto& layers = frame_->layers();
  for (auto layer = layers.rbegin(); layer != layers.rend(); ++layer) {
    auto* box = dynamic_cast<MessageScreen*>(*layer);
    if (box == nullptr) break;
    box->dismiss();
    any = true;
  }
  return any;
}

// The desktop takes the token from the environment of whoever asks, and only once; not every one
// does, and what we start later may not have it.
void QtDialogs::bringToFront(const std::string& token) {
  if (!token.empty()) qputenv("XDG_ACTIVATION_TOKEN", QByteArray::fromStdString(token));
  frame_->setWindowState(frame_->windowState() & ~Qt::WindowMinimized);
  frame_->show();
  frame_->raise();
  frame_->activateWindow();
  if (!token.empty()) qunsetenv("XDG_ACTIVATION_TOKEN");
}

std::unique_ptr<Progress> QtDialogs::progress(const std::u16string& what) {
  return std::make_unique<PanelProgress>(*frame_, what);
}

}  // namespace tabelion
