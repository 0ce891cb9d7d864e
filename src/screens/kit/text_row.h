// A row of a list with one text, and a mark at its right end.
#pragma once

#include <string>

#include "platform/dialogs.h"

namespace tabelion {

struct TextRowLook {
  std::u16string text;
  std::u16string mark{};
  bool selected = false;
};
void PaintTextRow(ListPainter& painter, const Rect& area, const TextRowLook& row);

}  // namespace tabelion
