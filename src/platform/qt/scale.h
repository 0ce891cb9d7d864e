// The zoom between the screen's own pixels and the window's. Everything that is placed or sized on
// the window goes through here, so that fonts and lines are drawn at their final size and stay
// crisp at every zoom.
#pragma once

#include <QRect>
#include <QString>
#include <QtMath>
#include <string>

#include "platform/dialogs.h"

namespace tabelion {

class Scale {
 public:
  explicit Scale(double zoom = 1.0) : zoom_(zoom) {}

  double zoom() const { return zoom_; }
  int px(double own) const { return qRound(own * zoom_); }
  // The width of a line: never less than one window pixel.
  int line(double own = 1.0) const { return qMax(1, qFloor(own * zoom_ + 0.25)); }
  int own(int window) const { return qRound(window / zoom_); }
  // Edges are rounded, not sizes, so that neighbours stay neighbours.
  QRect rect(const Rect& r) const {
    const QPoint top_left(px(r.x), px(r.y));
    return QRect(top_left,
                 QSize(px(r.x + r.width) - top_left.x(), px(r.y + r.height) - top_left.y()));
  }
  Rect own(const QRect& r) const {
    return Rect{own(r.x()), own(r.y()), own(r.width()), own(r.height())};
  }

 private:
  double zoom_;
};

inline QString toQt(const std::u16string& text) {
  return QString::fromStdU16String(text);
}
inline std::u16string fromQt(const QString& text) {
  return text.toStdU16String();
}

}  // namespace tabelion
