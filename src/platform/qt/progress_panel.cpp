#include "platform/qt/progress_panel.h"

#include <QPainter>
#include <algorithm>

#include "platform/qt/phone_frame.h"
#include "platform/qt/theme.h"

namespace tabelion {

namespace {

constexpr int kPaintEveryMs = 50;
constexpr int kPanelHeight = 56;

}  // namespace

ProgressPanel::ProgressPanel(PhoneFrame& frame, const std::u16string& what)
    : Layer(frame.layerParent()), frame_(frame), what_(toQt(what)), bar_(new QProgressBar(this)) {
  hide();
  setFocusPolicy(Qt::StrongFocus);
  setAccessibleName(what_);
  bar_->setAccessibleName(what_);
  bar_->setTextVisible(false);
  frame_.push(*this);
  // No events are handled meanwhile: the program is not prepared for commands within a step.
  frame_.repaint();
  since_paint_.start();
}

ProgressPanel::~ProgressPanel() {
  frame_.pop(*this);
}

void ProgressPanel::set(int done, int total) {
  bar_->setRange(0, std::max(0, total));  // 0 to 0 shows a step of unknown length
  bar_->setValue(done);
  if (since_paint_.elapsed() < kPaintEveryMs && done < total) return;
  repaint();
  since_paint_.restart();
}

void ProgressPanel::applyScale() {
  const Scale& scale = frame_.scale();
  const int margin = scale.px(10);
  const int bar = scale.px(10);
  bar_->setGeometry(margin, height() - margin - bar, width() - 2 * margin, bar);
}

void ProgressPanel::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const Scale& scale = frame_.scale();
  const int margin = scale.px(10);
  painter.fillRect(rect(), QColor::fromRgba(theme::colours().shade));
  const QRect panel(0, height() - scale.px(kPanelHeight), width(), scale.px(kPanelHeight));
  painter.fillRect(panel, QColor::fromRgb(theme::colours().paper));
  painter.setFont(theme::font(scale));
  painter.setPen(QColor::fromRgb(theme::colours().ink));
  const QRect line = panel.adjusted(margin, scale.px(6), -margin, -scale.px(24));
  painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                   painter.fontMetrics().elidedText(what_, Qt::ElideRight, line.width()));
}

}  // namespace tabelion
