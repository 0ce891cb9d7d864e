// The panel that says how far a long step is. The step blocks the event loop, so the panel paints
// itself at once, at most some twenty times a second.
#pragma once

#include <QElapsedTimer>
#include <QProgressBar>

#include "platform/dialogs.h"
#include "platform/qt/layer.h"

namespace tabelion {

class PhoneFrame;

class ProgressPanel final : public Layer {
 public:
  ProgressPanel(PhoneFrame& frame, const std::u16string& what);
  ~ProgressPanel() override;
  void set(int done, int total);

  SoftKeyLabel softKey(SoftKey) const override { return {}; }
  void pressSoftKey(SoftKey) override {}
  void applyScale() override;
  void takeFocus() override { setFocus(Qt::OtherFocusReason); }
  bool coversAll() const override { return false; }

 protected:
  void paintEvent(QPaintEvent*) override;

 private:
  PhoneFrame& frame_;
  const QString what_;
  QProgressBar* bar_;
  QElapsedTimer since_paint_;
};

}  // namespace tabelion
