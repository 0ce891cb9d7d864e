// One dialog on the phone's screen: its controls, its soft keys, its timers, and the loop that it
// runs in. Translates what the user does into calls of the handler and decides nothing.
#pragma once

#include <QBasicTimer>
#include <QScrollBar>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "platform/dialogs.h"
#include "platform/qt/control.h"
#include "platform/qt/guarded_loop.h"
#include "platform/qt/layer.h"

namespace tabelion {

class PhoneFrame;

class DialogScreen final : public Layer, public Dialog, private ControlHost {
 public:
  DialogScreen(PhoneFrame& frame, const DialogTemplate& made_from, DialogHandler& handler);
  ~DialogScreen() override;

  // Shows the dialog until its end.
  int run();

  // Layer
  int resource() const override { return resource_; }
  QString title() const override { return title_; }
  SoftKeyLabel softKey(SoftKey key) const override;
  void pressSoftKey(SoftKey key) override;
  void applyScale() override;
  void takeFocus() override;

  // Dialog
  Size screenSize() const override;
  Size fullScreenSize() const override;
  int verticalDpi() const override;
  Size textSize(const std::u16string& text, int width) const override;
  Control& control(ControlId id) override;
  ListControl& list(ControlId id) override;
  Control& addControl(const ControlTemplate& made_from) override;
  void removeControl(ControlId id) override;
  void setContentHeight(int height) override;
  void setTitle(const std::u16string& title) override;
  void setMenuBar(const MenuBar& bar) override;
  void startTimer(int timer, int period_ms) override;
  void stopTimer(int timer) override;
  void post(int message) override;
  void end(int result) override;

  // It became the topmost screen again after another one.
  void activated();

  // What is on the screen, for scripts that walk through the program.
  const std::vector<std::unique_ptr<ScreenControl>>& controls() const { return controls_; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void timerEvent(QTimerEvent* event) override;
  void customEvent(QEvent* event) override;

 private:
  // ControlHost
  const Scale& scale() const override;
  void notify(ControlId control, Notice notice) override;
  void notifyLater(ControlId control, Notice notice) override;
  bool acceptsCharacter(ControlId control, char32_t character) override;
  void paintRow(ControlId control, int row, ListPainter& painter, const Rect& area) override;
  QString rowText(ControlId control, int row) override;
  void paintCanvas(ControlId control, CanvasPainter& painter) override;
  void pressCanvas(ControlId control, Point at) override;
  void openChoices(ScreenControl& control, const std::vector<QString>& texts, int marked,
                   std::function<void(int)> chosen) override;
  void giveFocus(ScreenControl& control) override;
  bool hasFocus(const ScreenControl& control) const override;
  void stateChanged(ScreenControl& control) override;

  // A call into the handler; what was put off until its end happens when the outermost returns.
  class Call {
   public:
    explicit Call(DialogScreen& screen) : screen_(screen) { ++screen_.calls_; }
    ~Call() {
      if (--screen_.calls_ == 0) screen_.afterCalls();
    }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

   private:
    DialogScreen& screen_;
  };
  void afterCalls();
  void workLater();  // what waits for the present event is done in the next one
  void command(CommandId command);

  // Keys (dialog_screen_keys.cpp)
  bool takeKey(ScreenControl* control, QKeyEvent* event);
  void moveFocus(int by);
  void moveFocusByPage(int by);
  void arriveAt(ScreenControl& control);

  // Controls (dialog_screen_controls.cpp)
  ScreenControl* find(ControlId id) const;
  ScreenControl* findByWidget(const QObject* widget) const;
  ScreenControl* add(const ControlTemplate& made_from);
  ScreenControl* focused() const { return find(focused_id_); }
  void noteFocus(ScreenControl& control);
  void focusFirst();
  void bringIntoView(const ScreenControl& control);
  void scrollTo(int top);
  void nameControls();
  bool isTop() const;

  PhoneFrame& frame_;
  DialogHandler& handler_;
  const int resource_;
  QString title_;
  MenuBar menu_bar_;
  QWidget* content_;  // holds the controls; taller than the screen when the form scrolls
  QScrollBar* bar_;
  std::vector<std::unique_ptr<ScreenControl>> controls_;
  std::vector<std::unique_ptr<ScreenControl>> removed_;  // gone with the next event
  ControlId focused_id_ = kNoControl;
  std::map<int, QBasicTimer> timers_;  // by the handler's numbers
  std::vector<int> posted_;
  std::optional<std::pair<ControlId, Notice>> late_notice_;
  int content_height_ = 0;
  Size known_size_;
  int calls_ = 0;
  bool started_ = false;
  bool names_stale_ = true;
  std::optional<int> result_;
  GuardedLoop loop_;

  static constexpr ControlId kNoControl = -0x7FFFFFFF;
};

}  // namespace tabelion
