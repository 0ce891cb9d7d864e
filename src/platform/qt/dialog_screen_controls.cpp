// The controls of a screen: their names, the focus among them, their places.
#include <QPaintEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <utility>

#include "platform/qt/dialog_screen.h"
#include "platform/qt/phone_frame.h"
#include "platform/qt/theme.h"
#include "platform/qt/wrapped_text.h"

namespace tabelion {

namespace {

// Room that a control brought into view gets above and below it, where the form has it.
constexpr int kViewMargin = 8;

}  // namespace

ScreenControl* DialogScreen::find(ControlId id) const {
  for (const auto& control : controls_) {
    if (control->id() == id) return control.get();
  }
  return nullptr;
}

ScreenControl* DialogScreen::findByWidget(const QObject* widget) const {
  for (const auto& control : controls_) {
    if (&control->widget() == widget) return control.get();
  }
  return nullptr;
}

ScreenControl* DialogScreen::add(const ControlTemplate& made_from) {
  controls_.push_back(makeControl(*this, made_from, *content_));
  ScreenControl& control = *controls_.back();
  control.widget().installEventFilter(this);
  control.applyScale();
  names_stale_ = true;
  return &control;
}

Control& DialogScreen::control(ControlId id) {
  ScreenControl* found = find(id);
  Q_ASSERT_X(found != nullptr, "DialogScreen::control", "no control has this id");
  return found->seam();
}

ListControl& DialogScreen::list(ControlId id) {
  return dynamic_cast<ListControl&>(control(id));
}

Control& DialogScreen::addControl(const ControlTemplate& made_from) {
  ScreenControl* control = add(made_from);
  if (calls_ == 0) afterCalls();
  return control->seam();
}

void DialogScreen::removeControl(ControlId id) {
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
  workLater();
  names_stale_ = true;
  if (had_focus && isTop()) takeFocus();
}

// A box without a name of its own is called by the label before it.
void DialogScreen::nameControls() {
  names_stale_ = false;
  std::u16string label;
  for (const auto& control : controls_) {
    const ControlTemplate& from = control->madeFrom();
    const bool named_by_text = from.kind == ControlKind::kLabel ||
                               from.kind == ControlKind::kButton ||
                               (from.kind == ControlKind::kCheckBox && !from.text.empty());
    std::u16string name = from.accessible_name;
    if (name.empty()) name = named_by_text ? control->seam().text() : label;
    if (from.kind == ControlKind::kCanvas) {
      const std::u16string shown = handler_.canvasText(*this, from.id);
      name += (name.empty() || shown.empty() ? u"" : u", ") + shown;
    }
    control->setAccessibleName(toQt(name));
    if (from.kind == ControlKind::kLabel) label = control->seam().text();
  }
}

void DialogScreen::stateChanged(ScreenControl& control) {
  const ControlKind kind = control.madeFrom().kind;
  if (kind == ControlKind::kLabel || kind == ControlKind::kCanvas) names_stale_ = true;
  // The focus never stays where no key can reach.
  if (focused_id_ == control.id() && !control.canHaveFocus() && started_) {
    focused_id_ = kNoControl;
    if (isTop()) takeFocus();
  }
}

// Focus.

void DialogScreen::focusFirst() {
  for (const auto& control : controls_) {
    if (control->canHaveFocus()) return giveFocus(*control);
  }
}

void DialogScreen::giveFocus(ScreenControl& control) {
  if (!control.canHaveFocus()) return;
  if (isTop() && !frame_.menus().isOpen()) {
    control.widget().setFocus(Qt::OtherFocusReason);
  }
  control.moveCaretToEnd();
  noteFocus(control);
}

bool DialogScreen::hasFocus(const ScreenControl& control) const {
  return focused_id_ == control.id();
}

void DialogScreen::noteFocus(ScreenControl& control) {
  if (started_) bringIntoView(control);
  if (focused_id_ == control.id()) return;
  const ControlId lost = std::exchange(focused_id_, control.id());
  const ControlId gained = control.id();
  if (!started_ || result_) return;
  if (lost != kNoControl) notify(lost, Notice::kFocusLost);
  // The handler may have moved the focus on.
  if (focused_id_ == gained) notify(gained, Notice::kFocusGained);
}

void DialogScreen::takeFocus() {
  if (focused() == nullptr || !focused()->canHaveFocus()) focusFirst();
  if (ScreenControl* control = focused(); control != nullptr && control->canHaveFocus()) {
    control->widget().setFocus(Qt::OtherFocusReason);
    bringIntoView(*control);
  } else {
    setFocus(Qt::OtherFocusReason);
  }
}

bool DialogScreen::isTop() const {
  return frame_.top() == this;
}

// Place and size.

const Scale& DialogScreen::scale() const {
  return frame_.scale();
}
Size DialogScreen::screenSize() const {
  return frame_.clientSize();
}
Size DialogScreen::fullScreenSize() const {
  return frame_.screenSize();
}
int DialogScreen::verticalDpi() const {
  return theme::kDotsPerInch;
}
Size DialogScreen::textSize(const std::u16string& text, int width) const {
  const QSizeF size = wrappedTextSize(toQt(text), theme::font(scale()), scale().px(width));
  return {qCeil(size.width() / scale().zoom()), qCeil(size.height() / scale().zoom())};
}

void DialogScreen::setContentHeight(int height) {
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

void DialogScreen::scrollTo(int top) {
  bar_->setValue(top);
  content_->move(0, -bar_->value());
}

void DialogScreen::bringIntoView(const ScreenControl& control) {
  const QRect place = control.widget().geometry();
  const int margin = scale().px(kViewMargin);
  const int top = bar_->value();
  if (place.bottom() + margin > top + height()) scrollTo(place.bottom() + margin - height());
  if (place.top() - margin < bar_->value()) scrollTo(std::max(0, place.top() - margin));
}

void DialogScreen::applyScale() {
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

void DialogScreen::paintEvent(QPaintEvent* event) {
  QPainter(this).fillRect(event->rect(), QColor::fromRgb(theme::colours().paper));
}

void DialogScreen::wheelEvent(QWheelEvent* event) {
  scrollTo(bar_->value() - event->angleDelta().y() * bar_->singleStep() / 120);
  event->accept();
}

}  // namespace tabelion
