// What a handler paints a list's row with, over the toolkit's painter.
#pragma once

#include "platform/dialogs.h"
#include "platform/qt/list_fonts.h"
#include "platform/qt/scale.h"

class QPainter;

namespace tabelion {

class QtListPainter final : public ListPainter {
 public:
  // All three outlive the painter.
  QtListPainter(QPainter& painter, const Scale& scale, const ListFonts& fonts)
      : painter_(painter), scale_(scale), fonts_(fonts) {}

  void fill(const Rect& area, Color color) override;
  void text(const Rect& area, const std::u16string& text, Color color, TextWeight weight) override;
  void picture(Point at, Picture picture) override;
  Scheme scheme() const override;

 private:
  QPainter& painter_;
  const Scale& scale_;
  const ListFonts& fonts_;
};

}  // namespace tabelion
