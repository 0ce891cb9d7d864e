#include "screens/kit/long_work.h"

#include <fmt/format.h>

#include <chrono>

#include "screens/kit/commands.h"
#include "screens/kit/row_colors.h"
#include "screens/kit/row_layout.h"
#include "screens/kit/screen_numbers.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

constexpr int kContinueMessage = 1;
constexpr int kBarHeight = 12;

// How far the work is after as many parts as fit into the time, at least one.
int workFor(const LongWork& work, int done, int milliseconds) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
  do {
    done = work.part(done);
  } while (done < work.total && std::chrono::steady_clock::now() < end);
  return done;
}

class LongWorkScreen : public CommandScreen<LongWorkScreen> {
 public:
  LongWorkScreen(const LongWork& work, int done) : work_(work), done_(done) {}

  CommandTable<LongWorkScreen> Commands(Dialog&) {
    return {.right = {kBackCommand, u"Stop", &LongWorkScreen::Stop}};
  }
  void onInit(Dialog& dialog) override {
    ShowCommands(dialog);
    onResize(dialog);
    Show(dialog);
    dialog.post(kContinueMessage);
  }
  void onResize(Dialog& dialog) override {
    PlaceRows(
        dialog,
        {TextRow(kLongWorkText),
         {.cells = {
              {.id = kLongWorkBar, .kind = CellKind::kArea, .height = kBarHeight, .grow = 1}}}});
  }
  void onMessage(Dialog& dialog, int) override {
    done_ = workFor(work_, done_, work_.turn_ms);
    if (done_ >= work_.total) return dialog.end(kDialogDone);
    Show(dialog);
    dialog.post(kContinueMessage);
  }
  void onPaintCanvas(Dialog& dialog, ControlId bar, CanvasPainter& painter) override {
    const RowColors& colors = RowColorsOf(painter.scheme());
    const Size size{dialog.control(bar).place().width, dialog.control(bar).place().height};
    painter.fill({0, 0, size.width, size.height}, colors.even);
    painter.fill({0, 0, size.width * percent() / 100, size.height}, colors.selected);
  }

 private:
  int percent() const { return static_cast<int>(100LL * done_ / work_.total); }
  void Show(Dialog& dialog) {
    dialog.control(kLongWorkText).setText(FromUtf8(fmt::format("{} %", percent())));
    dialog.control(kLongWorkBar).repaint();
  }
  void Stop(Dialog& dialog) { dialog.end(kDialogClosed); }

  const LongWork& work_;
  int done_;
};

}  // namespace

bool DoLongWork(Application& app, const LongWork& work) {
  int done = 0;
  {
    const WaitCursor waiting(app);
    if (work.total > 0) done = workFor(work, 0, work.patience_ms);
  }
  if (done >= work.total) return true;
  DialogTemplate dialog;
  dialog.resource = kLongWorkScreen;
  dialog.title = work.title;
  dialog.controls = {
      {.id = kLongWorkText, .kind = ControlKind::kLabel, .text = u"100 %"},
      {.id = kLongWorkBar, .kind = ControlKind::kCanvas, .accessible_name = work.title}};
  LongWorkScreen screen(work, done);
  return RunModalDialog(app, dialog, screen) == kDialogDone;
}

}  // namespace tabelion
