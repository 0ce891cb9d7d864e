#include "screens/records/list_columns.h"

#include "query/field_text.h"
#include "query/sort_fields.h"
#include "screens/kit/row_colors.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

constexpr int kFoundInset = 2;  // of the paper behind what was found

Color backgroundOf(const RowColors& colors, int row, bool selected) {
  if (selected) return colors.selected;
  return row % 2 == 0 ? colors.even : colors.odd;
}

// A column that the records are sorted by says so, and which of several levels it is.
void markSort(const DatabaseRecord& schema, int slot, ListColumn& column) {
  const int level = sortLevelOf(schema, slot);
  if (level == 0) return;
  const bool forward = schema.sort[static_cast<std::size_t>(level - 1)].order == kSortForward;
  column.sort = forward ? SortMark::kForward : SortMark::kReverse;
  column.spoken = column.heading + (forward ? u", sorted forward" : u", sorted in reverse");
  if (!isSlot(schema.sort[1].field)) return;
  column.sort_level = level;
  column.spoken += u", level " + FromUtf8(std::to_string(level));
}

}  // namespace

int ColumnPixels(const FieldDefinition& field) {
  return field.column_width * 3 / 2;
}

std::vector<ListColumn> MakeListColumns(const Application& app, const DatabaseRecord& schema,
                                        const std::vector<int>& slots) {
  std::vector<ListColumn> columns;
  for (const int slot : slots) {
    const FieldDefinition& field = schema.fields[static_cast<std::size_t>(slot)];
    columns.push_back({ScreenText(app, fieldName(field)), ColumnPixels(field)});
    markSort(schema, slot, columns.back());
  }
  return columns;
}

std::u16string ListCellText(Application& app, std::uint32_t record, int slot) {
  const Database& database = CurrentDatabase(app);
  // A lookup's text is the other database's, which the list does not open.
  if (database.schema.fields[static_cast<std::size_t>(slot)].type == FieldType::kLookup) return {};
  return ScreenText(
      app, fieldText(database, database.records[record].bytes(), slot, app.level().formats).text);
}

void PaintListRow(Application& app, int row, const RowPainting& row_painting, ListPainter& painter,
                  const Rect& area) {
  const RowColors& colors = RowColorsOf(painter.scheme());
  const Color ink = row_painting.selected ? colors.selected_ink : colors.ink;
  painter.fill(area, backgroundOf(colors, row, row_painting.selected));
  const Database& database = CurrentDatabase(app);
  if (row < 0 || static_cast<std::size_t>(row) >= database.record_index.size()) return;
  const std::uint32_t record = database.record_index[static_cast<std::size_t>(row)];
  if (record >= database.records.count()) return;
  int left = area.x;
  for (std::size_t i = 0; i < row_painting.slots.size() && i < row_painting.columns.size(); ++i) {
    const int width = row_painting.columns[i].width;
    Rect cell{left, area.y, width, area.height};
    left += width;
    if (width > 2) {  // one pixel of air on each side
      cell.x += 1;
      cell.width -= 2;
    }
    const int slot = row_painting.slots[i];
    const bool found = slot == row_painting.found_slot;
    if (found) {  // stands out from the selected row
      painter.fill({cell.x, cell.y + kFoundInset, cell.width, cell.height - 2 * kFoundInset},
                   colors.odd);
    }
    const std::u16string text = ListCellText(app, record, slot);
    if (database.schema.fields[static_cast<std::size_t>(slot)].type == FieldType::kCheckBox) {
      painter.picture({cell.x, cell.y},
                      text.starts_with(u'1') ? Picture::kChecked : Picture::kUnchecked);
    } else if (!text.empty()) {
      painter.text(cell, text, found ? colors.ink : ink, TextWeight::kNormal);
    }
  }
}

}  // namespace tabelion
