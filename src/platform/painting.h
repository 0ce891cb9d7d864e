// Places, colours and the painters that a handler draws with. A painter knows no toolkit: the
// window paints what it is told, a test records it, a file keeps it.
//
// Places are in the screen's own pixels, from the top left corner of what is painted.
#pragma once

#include <cstdint>
#include <string>

namespace tabelion {

struct Point {
  int x = 0;
  int y = 0;
  bool operator==(const Point&) const = default;
};
struct Size {
  int width = 0;
  int height = 0;
};
struct Rect {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
  bool operator==(const Rect&) const = default;
};
struct Color {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;
  bool operator==(const Color&) const = default;
};

// Pictures that rows and icon controls show, by their resource numbers.
enum class Picture : int {
  kNone = 0,
  kLogo = 101,
  kChecked = 107,    // 13×13, a ticked box
  kUnchecked = 108,  // 13×13, an empty box
  kFieldText = 201,  // 20×20 icons beside form rows
  kFieldNumber = 202,
  kFieldPopup = 203,
  kFieldDate = 204,
  kFieldTime = 205,
};

enum class TextWeight { kNormal, kSemiBold };
enum class TextSide { kLeft, kMiddle, kRight };

// The colours of the desktop, or those that the user chose for the program.
enum class Scheme { kLight, kDark, kLightContrast, kDarkContrast };

// What a handler paints a row of a list with. The rectangle of the row is given with it, already
// shifted for sideways scrolling; nothing is drawn outside the list.
class ListPainter {
 public:
  virtual ~ListPainter() = default;
  virtual void fill(const Rect& area, Color color) = 0;
  // Left- and top-aligned, one line, clipped to the area (no ellipsis).
  virtual void text(const Rect& area, const std::u16string& text, Color color,
                    TextWeight weight) = 0;
  virtual void picture(Point at, Picture picture) = 0;
  virtual Scheme scheme() const = 0;
};

// What a handler paints a canvas with: a chart, a calendar's days. Later calls lie over earlier
// ones; nothing is drawn outside the canvas.
class CanvasPainter {
 public:
  virtual ~CanvasPainter() = default;
  virtual void fill(const Rect& area, Color color) = 0;
  // From the middle of one pixel to the middle of the other; `width` in pixels, at least 1.
  virtual void line(Point from, Point to, Color color, int width) = 0;
  // One line in the dialog's font, in the middle of the area's height, clipped to the area.
  virtual void text(const Rect& area, const std::u16string& text, Color color, TextWeight weight,
                    TextSide side) = 0;
  virtual Scheme scheme() const = 0;
};

}  // namespace tabelion
