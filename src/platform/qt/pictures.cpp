#include "platform/qt/pictures.h"

#include <QPainter>
#include <QPainterPath>

#include "platform/qt/theme.h"

namespace tabelion {

namespace {

constexpr QRgb kWhite = 0xFFFFFFFF;
// The logo has the same colours in every scheme.
constexpr QRgb kLogoEdge = 0xFF173A5C;
constexpr QRgb kLogoHeading = 0xFF0A5FA8;

// Draws in a square of `units` by `units` laid over the area.
class UnitPainter {
 public:
  UnitPainter(QPainter& painter, const QRectF& area, double width, double height)
      : painter_(painter) {
    painter_.save();
    painter_.setRenderHint(QPainter::Antialiasing);
    painter_.translate(area.topLeft());
    painter_.scale(area.width() / width, area.height() / height);
    painter_.setBrush(Qt::NoBrush);
  }
  ~UnitPainter() { painter_.restore(); }
  UnitPainter(const UnitPainter&) = delete;
  UnitPainter& operator=(const UnitPainter&) = delete;

  void pen(QRgb colour, double width) {
    painter_.setPen(
        QPen(QColor::fromRgb(colour), width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  }
  void lines(std::initializer_list<QPointF> points) {
    painter_.drawPolyline(points.begin(), static_cast<int>(points.size()));
  }
  void box(const QRectF& place, double radius, QRgb fill) {
    painter_.setBrush(QColor::fromRgb(fill));
    painter_.drawRoundedRect(place, radius, radius);
    painter_.setBrush(Qt::NoBrush);
  }
  QPainter& operator*() { return painter_; }

 private:
  QPainter& painter_;
};

void paintBox(QPainter& painter, const QRectF& area, bool ticked) {
  UnitPainter unit(painter, area, 13, 13);
  unit.pen(ticked ? theme::colours().focus : theme::colours().ink_soft, 1);
  unit.box(QRectF(1, 1, 11, 11), 1.5, ticked ? theme::colours().focus : theme::colours().paper);
  if (!ticked) return;
  unit.pen(theme::colours().on_focus, 1.8);
  unit.lines({{3.4, 6.8}, {5.6, 9.0}, {9.6, 4.2}});
}

// The icons of form rows stand in the top left 8 units of their 20×20 box: a row's label begins
// there, and the rest of the box lies under it.
void paintTextIcon(UnitPainter& unit) {
  unit.lines({{1, 1}, {7, 1}});
  unit.lines({{4, 1}, {4, 7}});
}

void paintNumberIcon(UnitPainter& unit) {
  unit.lines({{3.0, 0.8}, {2.4, 7.2}});
  unit.lines({{5.8, 0.8}, {5.2, 7.2}});
  unit.lines({{1.0, 2.8}, {7.2, 2.8}});
  unit.lines({{0.8, 5.2}, {7.0, 5.2}});
}

void paintPopupIcon(UnitPainter& unit) {
  for (const double y : {1.2, 4.0, 6.8}) {
    unit.lines({{0.8, y}, {1.0, y}});
    unit.lines({{3.2, y}, {7.2, y}});
  }
}

void paintDateIcon(UnitPainter& unit) {
  (*unit).drawRoundedRect(QRectF(0.8, 1.4, 6.4, 5.8), 0.8, 0.8);
  unit.lines({{1.0, 3.4}, {7.0, 3.4}});
  unit.lines({{2.6, 0.5}, {2.6, 1.6}});
  unit.lines({{5.4, 0.5}, {5.4, 1.6}});
}

void paintTimeIcon(UnitPainter& unit) {
  (*unit).drawEllipse(QPointF(4, 4), 3.3, 3.3);
  unit.lines({{4, 2.2}, {4, 4}, {5.4, 4.8}});
}

void paintFieldIcon(QPainter& painter, const QRectF& area, void (*draw)(UnitPainter&)) {
  UnitPainter unit(painter, area, 20, 20);
  unit.pen(theme::colours().focus, 1.1);
  draw(unit);
}

// Three index cards; the front one holds records, the first of them selected.
void paintLogo(QPainter& painter, const QRectF& area) {
  UnitPainter unit(painter, area, 96, 48);
  unit.pen(kLogoEdge, 1.6);
  unit.box(QRectF(38, 2, 42, 30), 3, 0xFFBFE3F8);
  unit.box(QRectF(30, 7, 44, 32), 3, 0xFF7CCBF6);
  unit.box(QRectF(18, 13, 48, 33), 3, kWhite);
  (*unit).setPen(Qt::NoPen);
  unit.box(QRectF(20.6, 21.6, 42.8, 7.4), 1, 0xFF40BCFF);
  for (const double y : {18.0, 25.3, 32.6, 39.9}) {
    const bool heading = y < 20;
    unit.pen(heading ? kLogoHeading : kLogoEdge, heading ? 2.4 : 1.8);
    unit.lines({{24, y}, {heading ? 34.0 : 37.0, y}});
    unit.lines({{44, y}, {heading ? 53.0 : 59.0, y}});
  }
}

}  // namespace

Size pictureSize(Picture picture) {
  switch (picture) {
    case Picture::kNone:
      return {0, 0};
    case Picture::kLogo:
      return {96, 48};
    case Picture::kChecked:
    case Picture::kUnchecked:
      return {13, 13};
    default:
      return {20, 20};
  }
}

void paintPicture(QPainter& painter, Picture picture, const QRectF& area) {
  switch (picture) {
    case Picture::kNone:
      return;
    case Picture::kLogo:
      return paintLogo(painter, area);
    case Picture::kChecked:
      return paintBox(painter, area, true);
    case Picture::kUnchecked:
      return paintBox(painter, area, false);
    case Picture::kFieldText:
      return paintFieldIcon(painter, area, paintTextIcon);
    case Picture::kFieldNumber:
      return paintFieldIcon(painter, area, paintNumberIcon);
    case Picture::kFieldPopup:
      return paintFieldIcon(painter, area, paintPopupIcon);
    case Picture::kFieldDate:
      return paintFieldIcon(painter, area, paintDateIcon);
    case Picture::kFieldTime:
      return paintFieldIcon(painter, area, paintTimeIcon);
  }
}

void paintMessageIcon(QPainter& painter, MessageIcon icon, const QRectF& area) {
  if (icon == MessageIcon::kNone) return;
  const bool triangle = icon == MessageIcon::kExclamation || icon == MessageIcon::kWarning;
  const QRgb colour = icon == MessageIcon::kError ? 0xFFB3261E
                      : triangle                  ? 0xFF9A5B00
                                                  : theme::colours().focus;
  UnitPainter unit(painter, area, 24, 24);
  (*unit).setPen(Qt::NoPen);
  (*unit).setBrush(QColor::fromRgb(colour));
  if (triangle) {
    unit.pen(colour, 2);
    (*unit).setBrush(QColor::fromRgb(colour));
    (*unit).drawPolygon(QPolygonF({{12, 3}, {22, 21}, {2, 21}}));
  } else {
    (*unit).drawEllipse(QRectF(1, 1, 22, 22));
  }
  unit.pen(icon == MessageIcon::kError || triangle ? kWhite : theme::colours().on_focus, 2.4);
  switch (icon) {
    case MessageIcon::kInformation:
      unit.lines({{12, 11}, {12, 17.5}});
      unit.lines({{12, 6.6}, {12, 6.7}});
      break;
    case MessageIcon::kQuestion: {
      QPainterPath hook(QPointF(8.6, 9));
      hook.cubicTo(8.6, 4.6, 15.6, 4.6, 15.6, 9);
      hook.cubicTo(15.6, 11.6, 12, 11.4, 12, 14.2);
      (*unit).setBrush(Qt::NoBrush);
      (*unit).drawPath(hook);
      unit.lines({{12, 18}, {12, 18.1}});
      break;
    }
    case MessageIcon::kError:
      unit.lines({{8, 8}, {16, 16}});
      unit.lines({{16, 8}, {8, 16}});
      break;
    default:
      unit.lines({{12, 9.5}, {12, 14}});
      unit.lines({{12, 18}, {12, 18.1}});
  }
}

void paintHourGlass(QPainter& painter, const QRectF& area, QRgb colour) {
  UnitPainter unit(painter, area, 14, 14);
  unit.pen(colour, 1.3);
  unit.lines({{3, 1.5}, {11, 1.5}});
  unit.lines({{3, 12.5}, {11, 12.5}});
  (*unit).setBrush(QColor::fromRgb(colour));
  (*unit).drawPolygon(QPolygonF({{4, 2}, {10, 2}, {7, 6.6}}));
  (*unit).drawPolygon(QPolygonF({{7, 9}, {10, 12}, {4, 12}}));
  (*unit).setBrush(Qt::NoBrush);
  (*unit).drawPolygon(QPolygonF({{4, 12}, {7, 7}, {10, 12}}));
}

void paintTick(QPainter& painter, const QRectF& area, QRgb colour) {
  UnitPainter unit(painter, area, 13, 13);
  unit.pen(colour, 1.8);
  unit.lines({{2.8, 6.8}, {5.4, 9.6}, {10.4, 3.4}});
}

void paintChevron(QPainter& painter, const QRectF& area, Pointing pointing, QRgb colour) {
  UnitPainter unit(painter, area, 10, 10);
  unit.pen(colour, 1.5);
  switch (pointing) {
    case Pointing::kLeft:
      return unit.lines({{6.5, 2}, {3.5, 5}, {6.5, 8}});
    case Pointing::kRight:
      return unit.lines({{3.5, 2}, {6.5, 5}, {3.5, 8}});
    case Pointing::kUp:
      return unit.lines({{2, 6.5}, {5, 3.5}, {8, 6.5}});
    case Pointing::kDown:
      return unit.lines({{2, 3.5}, {5, 6.5}, {8, 3.5}});
  }
}

}  // namespace tabelion
