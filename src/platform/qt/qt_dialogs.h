// The phone's screen in a window: the seam's Dialogs over the frame.
#pragma once

#include <memory>

#include "platform/dialogs.h"
#include "platform/qt/phone_frame.h"

namespace tabelion {

// Needs a QApplication that outlives it; all calls on its thread.
class QtDialogs final : public Dialogs {
 public:
  explicit QtDialogs(const FrameOptions& options = {});
  ~QtDialogs() override;

  int runModal(const DialogTemplate& dialog, DialogHandler& handler) override;
  MessageAnswer message(const MessageBox& box) override;
  CommandId popupMenu(Point at, const std::vector<MenuEntry>& entries) override;
  void setWaitCursor(bool on) override;
  std::unique_ptr<Progress> progress(const std::u16string& what) override;
  bool dismissBoxes() override;
  void whenWindowCloses(std::function<void()> asked) override {
    frame_->whenClosed(std::move(asked));
  }
  void bringToFront(const std::string& token) override;

  PhoneFrame& frame() { return *frame_; }

 private:
  std::unique_ptr<PhoneFrame> frame_;
  int waits_ = 0;
};

}  // namespace tabelion
