// A canvas: the handler paints it, and takes its keys and presses when it wants them.
#include <QAccessible>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

#include "platform/qt/control.h"
#include "platform/qt/theme.h"

namespace tabelion {

namespace {

QColor toQt(Color color) {
  return QColor(color.red, color.green, color.blue);
}

class QtCanvasPainter final : public CanvasPainter {
 public:
  QtCanvasPainter(QPainter& painter, const Scale& scale) : painter_(painter), scale_(scale) {}

  void fill(const Rect& area, Color color) override {
    painter_.fillRect(scale_.rect(area), toQt(color));
  }
  void line(Point from, Point to, Color color, int width) override {
    const auto middle = [this](Point p) {
      return QPointF((p.x + 0.5) * scale_.zoom(), (p.y + 0.5) * scale_.zoom());
    };
    painter_.save();
    // Edges along the pixels stay sharp, only the others are smoothed.
    painter_.setRenderHint(QPainter::Antialiasing, from.x != to.x && from.y != to.y);
    painter_.setPen(QPen(toQt(color), std::max(1.0, width * scale_.zoom())));
    painter_.drawLine(middle(from), middle(to));
    painter_.restore();
  }
  void text(const Rect& area, const std::u16string& text, Color color, TextWeight weight,
            TextSide side) override {
    const Qt::Alignment across = side == TextSide::kLeft     ? Qt::AlignLeft
                                 : side == TextSide::kMiddle ? Qt::AlignHCenter
                                                             : Qt::AlignRight;
    painter_.setFont(theme::font(scale_, theme::kTextPixels, weight));
    painter_.setPen(toQt(color));
    painter_.drawText(scale_.rect(area), int(across | Qt::AlignVCenter) | Qt::TextSingleLine,
                      tabelion::toQt(text));
  }
  Scheme scheme() const override { return theme::scheme(); }

 private:
  QPainter& painter_;
  const Scale& scale_;
};

class CanvasWidget final : public QWidget {
 public:
  CanvasWidget(ControlHost& host, const ControlTemplate& from, QWidget* parent)
      : QWidget(parent), host_(host), id_(from.id) {
    setFocusPolicy(from.takes_focus ? Qt::StrongFocus : Qt::NoFocus);
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    const Scale& scale = host_.scale();
    painter.fillRect(rect(), QColor::fromRgb(theme::colours().paper));
    {
      painter.setClipRect(rect());
      QtCanvasPainter canvas(painter, scale);
      host_.paintCanvas(id_, canvas);
    }
    if (!hasFocus()) return;
    const int line = scale.line(2);
    painter.setPen(QPen(QColor::fromRgb(theme::colours().focus), line));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(QRectF(rect()).adjusted(line / 2.0, line / 2.0, -line / 2.0, -line / 2.0));
  }
  void focusInEvent(QFocusEvent*) override { update(); }
  void focusOutEvent(QFocusEvent*) override { update(); }
  void mousePressEvent(QMouseEvent* event) override {
    const QPointF at = event->position() / host_.scale().zoom();
    host_.pressCanvas(id_, {int(at.x()), int(at.y())});  // the pixel that the point lies in
  }

 private:
  ControlHost& host_;
  const ControlId id_;
};

class CanvasControl final : public ControlOf<Control> {
 public:
  using ControlOf::ControlOf;

  void repaint() override {
    widget().update();
    host().stateChanged(*this);  // it says something else
  }
};

}  // namespace

std::unique_ptr<ScreenControl> makeCanvas(ControlHost& host, const ControlTemplate& from,
                                          QWidget& parent) {
  return std::make_unique<CanvasControl>(host, from, *new CanvasWidget(host, from, &parent));
}

}  // namespace tabelion
