#include "platform/qt/dialog_screen.h"

#include <QCoreApplication>
#include <QEvent>
#include <QTimerEvent>
#include <utility>

#include "platform/qt/phone_frame.h"
#include "platform/qt/theme.h"

namespace tabelion {

namespace {

const QEvent::Type kAfterCalls = static_cast<QEvent::Type>(QEvent::registerEventType());

}  // namespace

DialogScreen::DialogScreen(PhoneFrame& frame, const DialogTemplate& made_from,
                           DialogHandler& handler)
    : Layer(frame.layerParent()),
      frame_(frame),
      handler_(handler),
      resource_(made_from.resource),
      title_(toQt(made_from.title)),
      menu_bar_(made_from.menu_bar),
      content_(new QWidget(this)),
      bar_(new QScrollBar(Qt::Vertical, this)) {
  hide();
  setFocusPolicy(Qt::NoFocus);  // a click beside the controls leaves the focus where it is
  setAccessibleName(title_);
  bar_->setFocusPolicy(Qt::NoFocus);
  bar_->hide();
  connect(bar_, &QScrollBar::valueChanged, this, [this](int top) { content_->move(0, -top); });
  for (const ControlTemplate& control : made_from.controls) add(control);
}

DialogScreen::~DialogScreen() {
  loop_.exit();
}

int DialogScreen::run() {
  setGeometry(frame_.layerParent()->rect());
  applyScale();
  {
    const Call call(*this);
    handler_.onInit(*this);
  }
  if (!result_) {
    started_ = true;
    known_size_ = screenSize();
    applyScale();
    const ShownLayer shown(frame_, *this);
    while (!result_ && loop_.run() == 0 && !result_) {
    }
  }
  return result_.value_or(0);
}

void DialogScreen::afterCalls() {
  if (names_stale_) nameControls();
  if (!posted_.empty() || !removed_.empty() || late_notice_) workLater();
}

void DialogScreen::workLater() {
  QCoreApplication::postEvent(this, new QEvent(kAfterCalls));
}

void DialogScreen::customEvent(QEvent* event) {
  // Within a call the message waits: the handler is not entered while it is busy.
  if (event->type() != kAfterCalls || calls_ > 0) return;
  removed_.clear();
  const std::vector<int> messages = std::exchange(posted_, {});
  for (const int message : messages) {
    if (result_) return;
    const Call call(*this);
    handler_.onMessage(*this, message);
  }
  if (const auto late = std::exchange(late_notice_, std::nullopt)) {
    notify(late->first, late->second);
  }
}

void DialogScreen::notifyLater(ControlId control, Notice notice) {
  late_notice_ = {control, notice};
  if (calls_ == 0) workLater();
}

void DialogScreen::post(int message) {
  posted_.push_back(message);
  if (calls_ == 0) workLater();
}

void DialogScreen::end(int result) {
  if (result_) return;
  result_ = result;
  for (auto& [number, timer] : timers_) timer.stop();
  if (isTop()) frame_.menus().dismiss();
  loop_.exit(1);
}

void DialogScreen::command(CommandId command) {
  if (result_) return;
  const Call call(*this);
  handler_.onCommand(*this, command);
}

void DialogScreen::activated() {
  if (result_) return;
  const Call call(*this);
  handler_.onActivate(*this);
}

// Soft keys.

SoftKeyLabel DialogScreen::softKey(SoftKey key) const {
  const MenuEntry& entry = key == SoftKey::kLeft ? menu_bar_.left : menu_bar_.right;
  return {toQt(entry.text), entry.enabled};
}

void DialogScreen::pressSoftKey(SoftKey key) {
  MenuEntry& entry = key == SoftKey::kLeft ? menu_bar_.left : menu_bar_.right;
  if (result_ || !entry.enabled || entry.text.empty()) return;
  if (entry.children.empty() && entry.command != 0) return command(entry.command);
  {
    const Call call(*this);
    handler_.onMenuOpening(*this, entry);
  }
  if (result_ || !isTop()) return;
  MenuOverlay::Opening opening;
  opening.anchor =
      key == SoftKey::kLeft ? MenuOverlay::Anchor::kBottomLeft : MenuOverlay::Anchor::kBottomRight;
  frame_.openMenu(entry.children, opening, [this](CommandId chosen) {
    if (chosen != 0) command(chosen);
  });
}

void DialogScreen::setMenuBar(const MenuBar& bar) {
  menu_bar_ = bar;
  if (isTop()) frame_.refreshStrips();
}

void DialogScreen::setTitle(const std::u16string& title) {
  title_ = toQt(title);
  setAccessibleName(title_);
  frame_.refreshStrips();
}

// Calls into the handler.

void DialogScreen::notify(ControlId control, Notice notice) {
  if (result_) return;
  const Call call(*this);
  handler_.onNotice(*this, control, notice);
}

bool DialogScreen::acceptsCharacter(ControlId control, char32_t character) {
  return handler_.acceptsCharacter(*this, control, character);
}

void DialogScreen::paintRow(ControlId control, int row, ListPainter& painter, const Rect& area) {
  handler_.onPaintRow(*this, control, row, painter, area);
}

QString DialogScreen::rowText(ControlId control, int row) {
  return toQt(handler_.rowText(*this, control, row));
}

void DialogScreen::paintCanvas(ControlId control, CanvasPainter& painter) {
  handler_.onPaintCanvas(*this, control, painter);
}

void DialogScreen::pressCanvas(ControlId control, Point at) {
  if (result_) return;
  const Call call(*this);
  handler_.onCanvasPressed(*this, control, at);
}

void DialogScreen::openChoices(ScreenControl& control, const std::vector<QString>& texts,
                               int marked, std::function<void(int)> chosen) {
  std::vector<MenuEntry> entries;
  for (const QString& text : texts) {
    MenuEntry entry;
    entry.command = int(entries.size()) + 1;
    entry.text = fromQt(text);
    entry.checked = int(entries.size()) == marked;
    entries.push_back(std::move(entry));
  }
  MenuOverlay::Opening opening;
  opening.anchor = MenuOverlay::Anchor::kBelow;
  opening.at =
      QRect(control.widget().mapTo(frame_.layerParent(), QPoint(0, 0)), control.widget().size());
  opening.marked_row = marked;
  const ControlId id = control.id();
  frame_.openMenu(entries, opening, [this, id, chosen = std::move(chosen)](CommandId command) {
    if (command != 0 && find(id) != nullptr) chosen(command - 1);
  });
}

// Timers.

void DialogScreen::startTimer(int timer, int period_ms) {
  timers_[timer].start(period_ms, this);
}

void DialogScreen::stopTimer(int timer) {
  timers_.erase(timer);
}

void DialogScreen::timerEvent(QTimerEvent* event) {
  for (const auto& [number, timer] : timers_) {
    if (timer.timerId() != event->timerId()) continue;
    if (result_) return;
    const Call call(*this);
    return handler_.onTimer(*this, number);
  }
}

}  // namespace tabelion
