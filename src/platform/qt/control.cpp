#include "platform/qt/control.h"

#include "platform/qt/theme.h"

namespace tabelion {

ScreenControl::ScreenControl(ControlHost& host, const ControlTemplate& made_from, QWidget& widget)
    : host_(host),
      made_from_(made_from),
      widget_(&widget),
      area_(made_from.place),
      visible_(made_from.visible),
      enabled_(made_from.enabled) {
  widget.setVisible(visible_);
  widget.setEnabled(enabled_);
}

ScreenControl::~ScreenControl() {
  // It may be handling the very key or click that removes it.
  widget_->hide();
  widget_->deleteLater();
}

bool ScreenControl::canHaveFocus() const {
  return visible_ && enabled_ && widget_->focusPolicy() != Qt::NoFocus;
}

void ScreenControl::applyScale() {
  const Scale& scale = host_.scale();
  widget_->setGeometry(scale.rect(area_));
  widget_->setFont(theme::font(scale, font_pixels_ > 0 ? font_pixels_ : theme::kTextPixels));
}

void ScreenControl::moveTo(const Rect& place) {
  if (area_ == place) return;
  area_ = place;
  widget_->setGeometry(host_.scale().rect(area_));
}

void ScreenControl::show(bool visible) {
  visible_ = visible;
  widget_->setVisible(visible);
  host_.stateChanged(*this);
}

void ScreenControl::enable(bool enabled) {
  enabled_ = enabled;
  widget_->setEnabled(enabled);
  host_.stateChanged(*this);
}

void ScreenControl::setFontHeight(int pixels) {
  font_pixels_ = pixels;
  applyScale();
}

std::unique_ptr<ScreenControl> makeControl(ControlHost& host, const ControlTemplate& from,
                                           QWidget& parent) {
  switch (from.kind) {
    case ControlKind::kLabel:
      return makeLabel(host, from, parent);
    case ControlKind::kEdit:
      return makeEdit(host, from, parent);
    case ControlKind::kMultiEdit:
      return makeMultiEdit(host, from, parent);
    case ControlKind::kCheckBox:
      return makeCheckBox(host, from, parent);
    case ControlKind::kButton:
      return makeButton(host, from, parent);
    case ControlKind::kChoice:
      return makeChoice(host, from, parent);
    case ControlKind::kList:
      return makeList(host, from, parent);
    case ControlKind::kIcon:
      return makeIcon(host, from, parent);
    case ControlKind::kSpin:
      return makeSpin(host, from, parent);
    case ControlKind::kCanvas:
      return makeCanvas(host, from, parent);
  }
  return makeLabel(host, from, parent);
}

}  // namespace tabelion
