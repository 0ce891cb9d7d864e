#include "screens/kit/text_row.h"

#include <algorithm>

#include "screens/kit/row_colors.h"

namespace tabelion {
namespace {

constexpr int kMargin = 4;
constexpr int kMarkWidth = 16;

}  // namespace

void PaintTextRow(ListPainter& painter, const Rect& area, const TextRowLook& row) {
  const RowColors& colors = RowColorsOf(painter.scheme());
  const Color ink = row.selected ? colors.selected_ink : colors.ink;
  painter.fill(area, row.selected ? colors.selected : colors.odd);
  Rect cell{area.x + kMargin, area.y, std::max(0, area.width - 2 * kMargin), area.height};
  if (!row.mark.empty()) {
    cell.width = std::max(0, cell.width - kMarkWidth);
    painter.text({cell.x + cell.width, cell.y, kMarkWidth, cell.height}, row.mark, ink,
                 TextWeight::kNormal);
  }
  painter.text(cell, row.text, ink, TextWeight::kNormal);
}

}  // namespace tabelion
