#include "platform/qt/phone_frame.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QScreen>
#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/qt/theme.h"

namespace tabelion {

namespace {

constexpr int kSmallestSide = 120;  // own pixels; a form's row still fits

// Texts that are larger on the desktop count as a finer resolution.
double automaticZoom(const Size& screen, double text_scale) {
  const QScreen* desktop = QGuiApplication::primaryScreen();
  if (desktop == nullptr) return 1.0;
  return comfortableZoom(screen, desktop->availableSize(),
                         desktop->logicalDotsPerInch() * std::max(1.0, text_scale));
}

}  // namespace

double comfortableZoom(const Size& screen, const QSize& desktop, double dots_per_inch) {
  const double wanted = 2.0 * std::max(1.0, dots_per_inch / theme::kDotsPerInch);
  const double fits = 0.9 * std::min(double(desktop.width()) / screen.width,
                                     double(desktop.height()) / screen.height);
  return std::max(1.0, std::floor(std::min(wanted, fits) * 4) / 4);
}

PhoneFrame::PhoneFrame(const FrameOptions& options)
    : zoom_is_chosen_(options.zoom > 0),
      title_(new TitleStrip(scale_, this)),
      client_(new QWidget(this)),
      soft_keys_(new SoftKeyBar(
          scale_, [this](SoftKey key) { pressSoftKey(key); }, this)),
      menus_(new MenuOverlay(scale_, client_)) {
  const double zoom =
      zoom_is_chosen_ ? options.zoom : automaticZoom(options.screen, options.text_scale);
  applyZoom(std::clamp(zoom, kSmallestZoom, kLargestZoom));
  resize(scale_.px(options.screen.width), scale_.px(options.screen.height));
  first_size_ = size();
  layOut();
}

bool PhoneFrame::wasSized() const {
  return zoom_is_chosen_ || size() != first_size_;
}

void PhoneFrame::applyZoom(double zoom) {
  scale_ = Scale(zoom);
  setStyleSheet(theme::styleSheet(scale_));
  setMinimumSize(scale_.px(kSmallestSide), scale_.px(kSmallestSide));
}

Size PhoneFrame::screenSize() const {
  return {scale_.own(width()), scale_.own(height())};
}

Size PhoneFrame::clientSize() const {
  const Size whole = screenSize();
  return {whole.width, whole.height - theme::kTitleHeight - theme::kSoftKeyHeight};
}

void PhoneFrame::setZoom(double zoom) {
  const Size own = screenSize();
  const QSize most =
      screen() == nullptr ? QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX) : screen()->availableSize();
  const double fits = double(std::min(most.width(), most.height())) / kSmallestSide;
  menus_->dismiss();
  applyZoom(std::clamp(std::min(zoom, fits), kSmallestZoom, kLargestZoom));
  const QSize before = size();
  resize(QSize(scale_.px(own.width), scale_.px(own.height)).boundedTo(most));
  if (size() == before) layOut();
}

void PhoneFrame::followTextScale(double text_scale) {
  if (wasSized()) return;
  setZoom(automaticZoom(screenSize(), text_scale));
  first_size_ = size();
}

void PhoneFrame::setScheme(Scheme scheme) {
  theme::setScheme(scheme);
  setStyleSheet(theme::styleSheet(scale_));
  const QList<QWidget*> parts = findChildren<QWidget*>();
  for (QWidget* part : parts) part->update();
}

void PhoneFrame::push(Layer& layer) {
  menus_->dismiss();
  layers_.push_back(&layer);
  layer.setGeometry(client_->rect());
  layer.applyScale();
  showWhatIsSeen();
  if (!isVisible()) {
    show();
    activateWindow();
  }
  layer.takeFocus();
}

void PhoneFrame::pop(Layer& layer) {
  menus_->dismiss();
  std::erase(layers_, &layer);
  showWhatIsSeen();
  layer.hide();
  if (!layers_.empty()) layers_.back()->takeFocus();
}

// The topmost layer that covers everything, and what lies over it.
void PhoneFrame::showWhatIsSeen() {
  std::size_t lowest = layers_.size();
  while (lowest > 0 && !layers_[--lowest]->coversAll()) {
  }
  for (std::size_t i = 0; i < layers_.size(); ++i) {
    if (i < lowest) {
      layers_[i]->hide();
      continue;
    }
    layers_[i]->show();
    layers_[i]->raise();
  }
  refreshStrips();
}

void PhoneFrame::refreshStrips() {
  QString title;
  for (const Layer* layer : layers_) {
    if (!layer->title().isEmpty()) title = layer->title();
  }
  title_->setTitle(title);
  setWindowTitle(title);
  if (menus_->isOpen()) {
    soft_keys_->setLabels({QStringLiteral("Select"), true}, {QStringLiteral("Cancel"), true});
  } else if (layers_.empty()) {
    soft_keys_->setLabels({}, {});
  } else {
    soft_keys_->setLabels(layers_.back()->softKey(SoftKey::kLeft),
                          layers_.back()->softKey(SoftKey::kRight));
  }
}

void PhoneFrame::openMenu(const std::vector<MenuEntry>& entries,
                          const MenuOverlay::Opening& opening, MenuOverlay::Done done) {
  menus_->open(entries, opening, [this, done = std::move(done)](CommandId command) {
    refreshStrips();
    if (!layers_.empty()) layers_.back()->takeFocus();
    done(command);
  });
  refreshStrips();
}

void PhoneFrame::pressSoftKey(SoftKey key) {
  if (menus_->isOpen()) {
    if (key == SoftKey::kLeft) {
      menus_->chooseMarked();
    } else {
      menus_->dismiss();
    }
    return;
  }
  if (Layer* layer = top()) layer->pressSoftKey(key);
}

void PhoneFrame::layOut() {
  const int title = scale_.px(theme::kTitleHeight);
  const int keys = scale_.px(theme::kSoftKeyHeight);
  title_->setGeometry(0, 0, width(), title);
  soft_keys_->setGeometry(0, height() - keys, width(), keys);
  client_->setGeometry(0, title, width(), qMax(1, height() - title - keys));
  menus_->setGeometry(client_->rect());
  // A handler that is told of the new size may open or end a screen.
  const std::vector<Layer*> layers = layers_;
  for (Layer* layer : layers) {
    if (std::find(layers_.begin(), layers_.end(), layer) == layers_.end()) continue;
    layer->setGeometry(client_->rect());
    layer->applyScale();
  }
}

void PhoneFrame::resizeEvent(QResizeEvent*) {
  layOut();
}

void PhoneFrame::keyPressEvent(QKeyEvent* event) {
  const bool control = event->modifiers().testFlag(Qt::ControlModifier);
  if (control && (event->key() == Qt::Key_Plus || event->key() == Qt::Key_Equal)) {
    zoom_is_chosen_ = true;
    setZoom(scale_.zoom() + 0.25);
  } else if (control && event->key() == Qt::Key_Minus) {
    zoom_is_chosen_ = true;
    setZoom(scale_.zoom() - 0.25);
  } else if (event->key() == Qt::Key_F1 || event->key() == Qt::Key_F2) {
    if (!event->isAutoRepeat()) {
      pressSoftKey(event->key() == Qt::Key_F1 ? SoftKey::kLeft : SoftKey::kRight);
    }
  } else {
    event->ignore();
  }
}

// The window goes when the last layer has gone; the program is told, and brings that about.
void PhoneFrame::closeEvent(QCloseEvent* event) {
  event->setAccepted(layers_.empty());
  if (!layers_.empty() && when_closed_) when_closed_();
}

}  // namespace tabelion
