// Where the rows of the edit form lie.
#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "engine/database_record.h"
#include "platform/dialogs.h"

namespace tabelion {

// The width adjustment of the value column, kept by the database.
inline constexpr int kNarrowestValues = -70;
inline constexpr int kWidestValues = 78;
inline constexpr int kWidthStep = 2;

struct FormRow {
  int slot = 0;
  FieldType type = FieldType::kUnused;
  Rect label;
  Rect value;
  std::optional<Rect> icon;  // 20×20 at the left, behind the label
};

struct FormLayout {
  std::vector<FormRow> rows;  // top to bottom; separators take room and make no row
  int height = 0;
};

// The screen that the form lies on, and what its font needs.
struct FormScreen {
  int width = 0;
  int font_height = 0;
  std::function<int(const FieldDefinition&)> label_width;  // of the field's name
};

// Rows for every field in display order that the form shows. Up to 400 pixels the phone's own
// places, which put the label behind the icon; on wider screens one column of icons, one of labels
// and one of values beside them, in even steps.
FormLayout LayoutEditForm(const DatabaseRecord& schema, const FormScreen& screen);

}  // namespace tabelion
