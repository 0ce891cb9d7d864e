// A painted canvas as an SVG file: charts that leave the screen.
#pragma once

#include <string>

#include "platform/painting.h"

namespace tabelion {

class SvgPicture final : public CanvasPainter {
 public:
  // As large as the canvas, on white paper. `description` is what a screen reader says of it.
  SvgPicture(Size size, const std::u16string& description);

  void fill(const Rect& area, Color color) override;
  void line(Point from, Point to, Color color, int width) override;
  void text(const Rect& area, const std::u16string& text, Color color, TextWeight weight,
            TextSide side) override;
  Scheme scheme() const override { return Scheme::kLight; }

  // The whole file in UTF-8. What was painted so far; painting may go on.
  std::string file() const { return body_ + "</svg>\n"; }

 private:
  std::string body_;
};

}  // namespace tabelion
