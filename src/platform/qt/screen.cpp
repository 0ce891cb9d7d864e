#include "platform/qt/screen.h"

#include <QAccessible>
#include <QCoreApplication>
#include <QEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QTimerEvent>
#include <QWheelEvent>
#include <algorithm>
#include <utility>

#include "platform/qt/phone_frame.h"
#include "platform/qt/theme.h"

namespace tabelion {

namespace {

const QEvent::Type kAfterCalls = static_cast<QEvent::Type>(QEvent::registerEventType());

// Room that a control brought into view gets above and below it, where the form has it.
constexpr int kViewMargin = 8;

}  // namespace

class Screen::Call {
 public:
  explicit Call(Screen& screen) : screen_(screen) { ++screen_.calls_; }
  ~Call() {
    if (--screen_.calls_ == 0) screen_.afterCalls();
  }
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;

 private:
  Screen& screen_;
};

Screen::Screen(PhoneFrame& frame, const DialogTemplate& made_from, DialogHandler& handler)
    : Layer(frame.layerParent()),
      frame_(frame),
      handler_(handler),
      resource_(made_from.resource),
      title_(toQt(made_from.title)),
      menu_bar_(made_from.menu_bar),
      content_(new QWidget(this)),
      bar_(new QScrollBar(Qt::Vertical, this)) {
  hide();
  setFocusPolicy(Qt::StrongFocus);
  setAccessibleName(title_);
  bar_->setFocusPolicy(Qt::NoFocus);
  bar_->hide();
  connect(bar_, &QScrollBar::valueChanged, this, [this](int top) { content_->move(0, -top); });
  for (const ControlTemplate& control : made_from.controls) add(control);
}

Screen::~Screen() {
  loop_.exit();
}

int Screen::run() {
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
    frame_.push(*this);
    while (!result_ && loop_.exec() == 0 && !result_) {
    }
    frame_.pop(*this);
  }
  return result_.value_or(0);
}

void Screen::afterCalls() {
  if (names_stale_) nameControls();
  if (!posted_.empty() || !removed_.empty())
    QCoreApplication::postEvent(this, new QEvent(kAfterCalls));
}

void Screen::customEvent(QEvent* event) {
  // Within a call the message waits: the handler is not entered while it is busy.
  if (event->type() != kAfterCalls || calls_ > 0) return;
  removed_.clear();
  const std::vector<int> messages = std::exchange(posted_, {});
  for (const int message : messages) {
    if (result_) return;
    const Call call(*this);
    handler_.onMessage(*this, message);
  }
}

void Screen::post(int message) {
  posted_.push_back(message);
  if (calls_ == 0) QCoreApplication::postEvent(this, new QEvent(kAfterCalls));
}

void Screen::end(int result) {
  if (result_) return;
  result_ = result;
  for (auto& [number, timer] : timers_) timer.stop();
  if (isTop()) frame_.menus().dismiss();
  loop_.exit(1);
}

void Screen::command(CommandId command) {
  if (result_) return;
  const Call call(*this);
  handler_.onCommand(*this, command);
}

void Screen::activated() {
  if (result_) return;
  const Call call(*this);
  handler_.onActivate(*this);
}

void Screen::goBack() {
  command(kBackCommand);
}

// Soft keys.

SoftKeyLabel Screen::softKey(SoftKey key) const {
  const MenuEntry& entry = key == SoftKey::kLeft ? menu_bar_.left : menu_bar_.right;
  return {toQt(entry.text), entry.enabled};
}

void Screen::pressSoftKey(SoftKey key) {
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

void Screen::setMenuBar(const MenuBar& bar) {
  menu_bar_ = bar;
  if (isTop()) frame_.refreshStrips();
}

void Screen::setTitle(const std::u16string& title) {
  title_ = toQt(title);
  setAccessibleName(title_);
  frame_.refreshStrips();
}

// Controls.

ScreenControl* Screen::find(ControlId id) const {
  for (const auto& control : controls_) {
    if (control->id() == id) return control.get();
  }
  return nullptr;
}

ScreenControl* Screen::findByWidget(const QObject* widget) const {
  for (const auto& control : controls_) {
    if (&control->widget() == widget) return control.get();
  }
  return nullptr;
}

ScreenControl* Screen::add(const ControlTemplate& made_from) {
  controls_.push_back(makeControl(*this, made_from, *content_));
  ScreenControl& control = *controls_.back();
  control.widget().installEventFilter(this);
  control.applyScale();
  names_stale_ = true;
  return &control;
}

Control& Screen::control(ControlId id) {
  ScreenControl* found = find(id);
  Q_ASSERT_X(found != nullptr, "Screen::control", "no control has this id");
  return found->seam();
}

ListControl& Screen::list(ControlId id) {
  return dynamic_cast<ListControl&>(control(id));
}

Control& Screen::addControl(const ControlTemplate& made_from) {
  ScreenControl* control = add(made_from);
  if (calls_ == 0) afterCalls();
  return control->seam();
}

void Screen::removeControl(ControlId id) {
  const bool had_focus = focused_id_ == id;
  if (had_focus) focused_id_ = kNoControl;
  // Its widget may be handling the very key or click that removes it: it goes with the next event.
  for (auto& control : controls_) {
    if (control->id() != id) continue;
    control->widget().removeEventFilter(this);
    control->widget().hide();
    removed_.push_back(std::move(control));
  }
  std::erase(controls_, nullptr);
  QCoreApplication::postEvent(this, new QEvent(kAfterCalls));
  names_stale_ = true;
  if (had_focus && isTop()) takeFocus();
}

// A box without a name of its own is called by the label before it.
void Screen::nameControls() {
  names_stale_ = false;
  std::u16string label;
  for (const auto& control : controls_) {
    const ControlTemplate& from = control->madeFrom();
    const bool named_by_text = from.kind == ControlKind::kLabel ||
                               from.kind == ControlKind::kButton ||
                               (from.kind == ControlKind::kCheckBox && !from.text.empty());
    std::u16string name = from.accessible_name;
    if (name.empty()) name = named_by_text ? control->seam().text() : label;
    control->setAccessibleName(toQt(name));
    if (from.kind == ControlKind::kLabel) label = control->seam().text();
  }
}

void Screen::stateChanged(ScreenControl& control) {
  if (control.madeFrom().kind == ControlKind::kLabel) names_stale_ = true;
  // The focus never stays where no key can reach.
  if (focused_id_ == control.id() && !control.canHaveFocus() && started_) {
    focused_id_ = kNoControl;
    if (isTop()) takeFocus();
  }
}

// Focus.

void Screen::focusFirst() {
  for (const auto& control : controls_) {
    if (control->canHaveFocus()) return giveFocus(*control);
  }
}

void Screen::giveFocus(ScreenControl& control) {
  if (!control.canHaveFocus()) return;
  if (isTop() && !frame_.menus().isOpen()) {
    control.widget().setFocus(Qt::OtherFocusReason);
  }
  noteFocus(control);
}

bool Screen::hasFocus(const ScreenControl& control) const {
  return focused_id_ == control.id();
}

void Screen::noteFocus(ScreenControl& control) {
  if (started_) bringIntoView(control);
  if (focused_id_ == control.id()) return;
  const ControlId lost = std::exchange(focused_id_, control.id());
  const ControlId gained = control.id();
  if (!started_ || result_) return;
  if (lost != kNoControl) notify(lost, Notice::kFocusLost);
  // The handler may have moved the focus on.
  if (focused_id_ == gained) notify(gained, Notice::kFocusGained);
}

void Screen::takeFocus() {
  if (focused() == nullptr || !focused()->canHaveFocus()) focusFirst();
  if (ScreenControl* control = focused(); control != nullptr && control->canHaveFocus()) {
    control->widget().setFocus(Qt::OtherFocusReason);
    bringIntoView(*control);
  } else {
    setFocus(Qt::OtherFocusReason);
  }
}

bool Screen::isTop() const {
  return frame_.top() == this;
}

// Place and size.

const Scale& Screen::scale() const {
  return frame_.scale();
}
Size Screen::screenSize() const {
  return frame_.clientSize();
}
Size Screen::fullScreenSize() const {
  return frame_.screenSize();
}
int Screen::verticalDpi() const {
  return theme::kDotsPerInch;
}

void Screen::setContentHeight(int height) {
  content_height_ = height;
  const int wanted = std::max(this->height(), scale().px(height));
  content_->setGeometry(0, content_->y(), width(), wanted);
  const int room = wanted - this->height();
  bar_->setRange(0, room);
  bar_->setPageStep(this->height());
  bar_->setSingleStep(scale().px(theme::kMenuRowHeight));
  bar_->setGeometry(width() - scale().px(theme::kScrollBarWidth), 0,
                    scale().px(theme::kScrollBarWidth), this->height());
  bar_->setVisible(room > 0);
  bar_->raise();
  scrollTo(-content_->y());
}

void Screen::scrollTo(int top) {
  bar_->setValue(top);
  content_->move(0, -bar_->value());
}

void Screen::bringIntoView(const ScreenControl& control) {
  const QRect place = control.widget().geometry();
  const int margin = scale().px(kViewMargin);
  const int top = bar_->value();
  if (place.bottom() + margin > top + height()) scrollTo(place.bottom() + margin - height());
  if (place.top() - margin < bar_->value()) scrollTo(std::max(0, place.top() - margin));
}

void Screen::applyScale() {
  setFont(theme::font(scale()));
  for (const auto& control : controls_) control->applyScale();
  setContentHeight(content_height_);
  const Size size = screenSize();
  if (!started_ || result_ ||
      (size.width == known_size_.width && size.height == known_size_.height)) {
    return;
  }
  known_size_ = size;
  const Call call(*this);
  handler_.onResize(*this);
  if (ScreenControl* control = focused()) bringIntoView(*control);
}

void Screen::paintEvent(QPaintEvent* event) {
  QPainter(this).fillRect(event->rect(), QColor::fromRgb(theme::kPaper));
}

void Screen::wheelEvent(QWheelEvent* event) {
  scrollTo(bar_->value() - event->angleDelta().y() * bar_->singleStep() / 120);
  event->accept();
}

// Calls into the handler.

void Screen::notify(ControlId control, Notice notice) {
  if (result_) return;
  const Call call(*this);
  handler_.onNotice(*this, control, notice);
}

bool Screen::acceptsCharacter(ControlId control, char32_t character) {
  return handler_.acceptsCharacter(*this, control, character);
}

void Screen::paintRow(ControlId control, int row, ListPainter& painter, const Rect& area) {
  handler_.onPaintRow(*this, control, row, painter, area);
}

QString Screen::rowText(ControlId control, int row) {
  return toQt(handler_.rowText(*this, control, row));
}

void Screen::openChoices(ScreenControl& control, const std::vector<QString>& texts, int marked,
                         std::function<void(int)> chosen) {
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

void Screen::startTimer(int timer, int period_ms) {
  timers_[timer].start(period_ms, this);
}

void Screen::stopTimer(int timer) {
  timers_.erase(timer);
}

void Screen::timerEvent(QTimerEvent* event) {
  for (const auto& [number, timer] : timers_) {
    if (timer.timerId() != event->timerId()) continue;
    if (result_) return;
    const Call call(*this);
    return handler_.onTimer(*this, number);
  }
}

}  // namespace tabelion
