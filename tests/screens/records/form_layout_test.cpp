#include "screens/records/form_layout.h"

#include <gtest/gtest.h>

#include <memory>

#include "engine/schema_places.h"

namespace tabelion {
namespace {

std::unique_ptr<DatabaseRecord> schemaOf(const std::vector<FieldType>& types) {
  auto schema = std::make_unique<DatabaseRecord>();
  initSchema(*schema);
  for (std::size_t i = 0; i < types.size(); ++i) schema->fields[i].type = types[i];
  return schema;
}

FormLayout layOut(const DatabaseRecord& schema, int width) {
  return LayoutEditForm(schema, {width, 15, [](const FieldDefinition& field) {
                                   return static_cast<int>(fieldName(field).size()) * 7;
                                 }});
}

// On a screen of 168 pixels S is 160, so with adjustment 0 the value column is 80 wide.
TEST(FormLayout, PlacesEveryRowByItsType) {
  struct Case {
    std::vector<FieldType> types;
    Rect label, value;
    bool icon;
    int step;
  };
  using enum FieldType;
  const Case cases[] = {
      {{kText, kInteger, kFloat}, {9, 7, 68, 16}, {80, 5, 80, 22}, true, 24},
      {{kLongText, kTextVariant}, {9, 7, 68, 16}, {80, 5, 80, 22}, true, 24},
      {{kPopup}, {9, 7, 68, 16}, {80, 7, 80, 22}, true, 26},
      {{kDate, kTime}, {9, 7, 68, 16}, {80, 5, 80, 24}, true, 26},
      {{kCheckBox}, {1, 8, 77, 16}, {80, 5, 80, 24}, false, 26},
      {{kAutoNumber, kCalculated, kText254}, {1, 7, 77, 16}, {80, 7, 80, 22}, false, 24},
      {{kNote}, {1, 7, 77, 16}, {80, 5, 80, 24}, false, 26},
      {{kLinkedField, kExternal}, {1, 5, 77, 24}, {80, 5, 80, 24}, false, 26},
      {{kLinkField, kLookup}, {1, 5, 77, 24}, {80, 8, 80, 24}, false, 26},
  };
  for (const Case& expected : cases) {
    for (const FieldType type : expected.types) {
      SCOPED_TRACE(codeOf(type));
      const FormLayout layout = layOut(*schemaOf({type, type}), 168);
      ASSERT_EQ(layout.rows.size(), 2u);
      const FormRow& row = layout.rows[0];
      EXPECT_EQ(row.label, expected.label);
      EXPECT_EQ(row.value, expected.value);
      EXPECT_EQ(row.icon, expected.icon ? std::optional(Rect{1, 12, 20, 20}) : std::nullopt);
      EXPECT_EQ(layout.rows[1].value.y - row.value.y, expected.step);
    }
  }
}

TEST(FormLayout, SharesTheWidthByTheAdjustment) {
  const auto schema = schemaOf({FieldType::kText});
  const auto valueWidth = [&](int adjustment, int screen) {
    schema->label_width_adjustment = static_cast<std::int16_t>(adjustment);
    return layOut(*schema, screen).rows[0].value.width;
  };
  EXPECT_EQ(valueWidth(0, 176), 84);
  EXPECT_EQ(valueWidth(2, 240), 118);  // 82 × 232 / 160 = 118.9
  EXPECT_EQ(valueWidth(-70, 240), 14);
  EXPECT_EQ(valueWidth(78, 240), 229);
  EXPECT_EQ(valueWidth(-30000, 240), 14);  // a value from a file stays on the screen
}

TEST(FormLayout, HasOneColumnOfEachOnWideScreens) {
  const auto schema = schemaOf({FieldType::kText, FieldType::kNote, FieldType::kCheckBox,
                                FieldType::kDate, FieldType::kLookup, FieldType::kInteger});
  setFieldName(schema->fields[4], "The longest name");
  for (const int width : {401, 480, 800, 1600}) {
    for (const int adjustment : {int{kNarrowestValues}, 0, int{kWidestValues}}) {
      schema->label_width_adjustment = static_cast<std::int16_t>(adjustment);
      const FormLayout layout = layOut(*schema, width);
      const FormRow& first = layout.rows.front();
      EXPECT_GE(first.label.width, 16 * 7);
      for (std::size_t i = 0; i < layout.rows.size(); ++i) {
        const FormRow& row = layout.rows[i];
        EXPECT_EQ(row.label.x, first.label.x);
        EXPECT_EQ(row.value.x, first.value.x);
        EXPECT_EQ(row.value.y, first.value.y + static_cast<int>(i) * 28);
        EXPECT_EQ(row.label.y + row.label.height / 2, row.value.y + row.value.height / 2);
        EXPECT_EQ(row.value.width, first.value.width);  // notes, too, show more of themselves
        EXPECT_LE(row.value.x + row.value.width, width);
        EXPECT_LE(row.icon.value_or(Rect{}).x + 10, row.label.x);
      }
      EXPECT_LE(first.value.x, first.label.x + first.label.width + 8);  // beside its label
    }
  }
}

TEST(FormLayout, FollowsTheDisplayOrderAndLeavesOutWhatTheFormHides) {
  const auto schema = schemaOf({FieldType::kText, FieldType::kSeparator, FieldType::kUnused,
                                FieldType::kInteger, FieldType::kDate});
  schema->display_order[0] = 3;
  schema->display_order[3] = 0;
  schema->display_order[4] = 3;  // twice, and a slot that there is not
  schema->display_order[5] = 200;
  schema->fields[4].record_view_flag = 0;
  const FormLayout layout = layOut(*schema, 240);
  ASSERT_EQ(layout.rows.size(), 2u);
  EXPECT_EQ(layout.rows[0].slot, 3);
  EXPECT_EQ(layout.rows[1].slot, 0);
  EXPECT_EQ(layout.rows[1].value.y, 5 + 24 + 22);  // the separator leaves its gap
}

}  // namespace
}  // namespace tabelion
