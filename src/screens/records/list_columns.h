// The columns of the record list and the painting of its rows.
#pragma once

#include <string>
#include <vector>

#include "services/application.h"

namespace tabelion {

// A column's width on the screen.
int ColumnPixels(const FieldDefinition& field);

std::vector<ListColumn> MakeListColumns(const Application& app, const DatabaseRecord& schema,
                                        const std::vector<int>& slots);

// What a cell shows.
std::u16string ListCellText(Application& app, std::uint32_t record, int slot);

// Paints one row into `area`: its background, and for a row of the list its cells. The columns'
// widths are the list's present ones.
struct RowPainting {
  const std::vector<int>& slots;
  const std::vector<ListColumn>& columns;
  bool selected = false;
  int found_slot = -1;  // of the field that a search has found in this row; -1: none
};
void PaintListRow(Application& app, int row, const RowPainting& row_painting, ListPainter& painter,
                  const Rect& area);

}  // namespace tabelion
