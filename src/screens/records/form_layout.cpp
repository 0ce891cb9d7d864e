#include "screens/records/form_layout.h"

#include <algorithm>

#include "query/list_columns.h"

namespace tabelion {
namespace {

// The running positions that a control's top can follow.
enum class Top { kLabel, kValue, kValue2 };

struct RowShape {
  int label_x;
  int label_margin;  // the label is narrower than its column by this much
  int label_height;
  Top label_top;
  int value_height;
  Top value_top;
  bool has_icon;
  int step;
  int fixed_value_width = 0;  // 0: the value column's
};

constexpr int kIconSize = 20;
constexpr int kSeparatorStep = 22;
constexpr int kNoteWidth = 80;

RowShape shapeOf(FieldType type) {
  switch (type) {
    case FieldType::kPopup:
      return {9, 12, 16, Top::kLabel, 22, Top::kLabel, true, 26};
    case FieldType::kDate:
    case FieldType::kTime:
      return {9, 12, 16, Top::kLabel, 24, Top::kValue, true, 26};
    case FieldType::kCheckBox:
      return {1, 3, 16, Top::kValue2, 24, Top::kValue, false, 26};
    case FieldType::kAutoNumber:
    case FieldType::kCalculated:
    case FieldType::kText254:
      return {1, 3, 16, Top::kLabel, 22, Top::kLabel, false, 24};
    case FieldType::kNote:
      return {1, 3, 16, Top::kLabel, 24, Top::kValue, false, 26, kNoteWidth};
    case FieldType::kLinkedField:
    case FieldType::kExternal:
      return {1, 3, 24, Top::kValue, 24, Top::kValue, false, 26};
    case FieldType::kLinkField:
    case FieldType::kLookup:
      return {1, 3, 24, Top::kValue, 24, Top::kValue2, false, 26};
    case FieldType::kUnused:
    case FieldType::kText:
    case FieldType::kInteger:
    case FieldType::kFloat:
    case FieldType::kLongText:
    case FieldType::kSeparator:
    case FieldType::kTextVariant:
      break;
  }
  return {9, 12, 16, Top::kLabel, 22, Top::kValue, true, 24};
}

struct RunningTops {
  int label = 7;
  int value = 5;
  int icon = 12;
  int value2 = 8;

  int of(Top top) const { return top == Top::kLabel ? label : top == Top::kValue ? value : value2; }
  void advance(int step) {
    label += step;
    value += step;
    icon += step;
    value2 += step;
  }
};

}  // namespace

FormLayout LayoutEditForm(const DatabaseRecord& schema, int screen_width) {
  const int form_width = screen_width - 8;
  const int adjustment =
      std::clamp<int>(schema.label_width_adjustment, kNarrowestValues, kWidestValues);
  const int value_width = (adjustment + 80) * form_width / 160;
  FormLayout layout;
  RunningTops tops;
  for (const int slot : slotsInDisplayOrder(schema)) {
    const FieldDefinition& field = schema.fields[static_cast<std::size_t>(slot)];
    if (field.record_view_flag == 0) continue;
    if (field.type == FieldType::kSeparator) {
      tops.advance(kSeparatorStep);
      continue;
    }
    const RowShape shape = shapeOf(field.type);
    FormRow row;
    row.slot = slot;
    row.type = field.type;
    row.label = {shape.label_x, tops.of(shape.label_top),
                 std::max(0, form_width - value_width - shape.label_margin), shape.label_height};
    row.value = {form_width - value_width, tops.of(shape.value_top),
                 shape.fixed_value_width != 0 ? shape.fixed_value_width : value_width,
                 shape.value_height};
    if (shape.has_icon) row.icon = Rect{1, tops.icon, kIconSize, kIconSize};
    layout.rows.push_back(row);
    tops.advance(shape.step);
  }
  layout.height = tops.value;
  return layout;
}

}  // namespace tabelion
