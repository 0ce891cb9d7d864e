#include "screens/records/form_layout.h"

#include <algorithm>

#include "query/list_columns.h"
#include "screens/kit/phone_width.h"

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

// On screens that no phone had.
constexpr int kWidestForm = 640;  // that the share of the values is taken of
constexpr int kWideMargin = 8;
constexpr int kWideLabelLeft = 20;
constexpr int kIconMiddle = 4;  // below its top; it is drawn in the upper left quarter
constexpr int kWideLabelMargin = 8;
constexpr int kWideRow = 24;
constexpr int kWideGap = 4;

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

int valueWidth(const DatabaseRecord& schema, int form_width) {
  const int adjustment =
      std::clamp<int>(schema.label_width_adjustment, kNarrowestValues, kWidestValues);
  return (adjustment + 80) * form_width / 160;
}

// What the form shows: the fields, and separators among them.
std::vector<const FieldDefinition*> shownFields(const DatabaseRecord& schema) {
  std::vector<const FieldDefinition*> fields;
  for (const int slot : slotsInDisplayOrder(schema)) {
    const FieldDefinition& field = schema.fields[static_cast<std::size_t>(slot)];
    if (field.record_view_flag != 0) fields.push_back(&field);
  }
  return fields;
}

int slotOf(const DatabaseRecord& schema, const FieldDefinition& field) {
  return static_cast<int>(&field - schema.fields.data());
}

FormLayout layoutAsOnThePhone(const DatabaseRecord& schema, int screen_width) {
  const int form_width = screen_width - 8;
  const int value_width = valueWidth(schema, form_width);
  FormLayout layout;
  RunningTops tops;
  for (const FieldDefinition* field : shownFields(schema)) {
    if (field->type == FieldType::kSeparator) {
      tops.advance(kSeparatorStep);
      continue;
    }
    const RowShape shape = shapeOf(field->type);
    FormRow row;
    row.slot = slotOf(schema, *field);
    row.type = field->type;
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

FormLayout layoutWide(const DatabaseRecord& schema, const FormScreen& screen) {
  const std::vector<const FieldDefinition*> fields = shownFields(schema);
  int label_width = 0;
  for (const FieldDefinition* field : fields) {
    if (field->type == FieldType::kSeparator) continue;
    label_width = std::max(label_width, screen.label_width(*field) + kWideLabelMargin);
  }
  label_width = std::min(label_width, screen.width / 2 - kWideLabelLeft);
  const int value_left = kWideLabelLeft + label_width + kWideMargin;
  const int value_width = std::min(valueWidth(schema, std::min(screen.width - 8, kWidestForm)),
                                   screen.width - kWideMargin - value_left);
  const int row_height = std::max(kWideRow, screen.font_height + 8);
  FormLayout layout;
  int top = kWideMargin;
  for (const FieldDefinition* field : fields) {
    if (field->type == FieldType::kSeparator) {
      top += kSeparatorStep;
      continue;
    }
    FormRow row;
    row.slot = slotOf(schema, *field);
    row.type = field->type;
    row.label = {kWideLabelLeft, top, label_width, row_height};
    row.value = {value_left, top, value_width, row_height};
    if (shapeOf(field->type).has_icon) {
      row.icon = Rect{kWideMargin, top + row_height / 2 - kIconMiddle, kIconSize, kIconSize};
    }
    layout.rows.push_back(row);
    top += row_height + kWideGap;
  }
  layout.height = top + kWideMargin - kWideGap;
  return layout;
}

}  // namespace

FormLayout LayoutEditForm(const DatabaseRecord& schema, const FormScreen& screen) {
  return screen.width > kWidestPhone ? layoutWide(schema, screen)
                                     : layoutAsOnThePhone(schema, screen.width);
}

}  // namespace tabelion
