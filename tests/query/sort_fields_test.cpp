#include "query/sort_fields.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/schema_places.h"
#include "query/formula.h"

namespace tabelion {
namespace {

using testing::ElementsAre;

class SortFields : public testing::Test {
 protected:
  SortFields() {
    initSchema(database.schema);
    const std::initializer_list<std::pair<const char*, FieldType>> fields = {
        {"Name", FieldType::kText},
        {"Remarks", FieldType::kNote},
        {"Born", FieldType::kDate},
        {"Total", FieldType::kCalculated}};
    for (std::size_t i = 0; const auto& [name, type] : fields) {
      database.schema.fields[i].type = type;
      setFieldName(database.schema.fields[i++], name);
    }
    setFormula({{kFieldToken, 1}});
  }
  void setFormula(std::vector<StoredFormula::Token> tokens) {
    ASSERT_TRUE(setStoredFormula(database.schema.fields[3], {std::move(tokens), {}, 0}));
  }
  Database database;
};

}  // namespace

TEST_F(SortFields, RefusalsNameTheField) {
  EXPECT_EQ(sortRefusal(database, 1), "This type of field (Remarks) cannot currently be sorted!");
  for (const FieldType type :
       {FieldType::kUnused, FieldType::kLinkedField, FieldType::kSeparator, FieldType::kExternal}) {
    database.schema.fields[0].type = type;
    EXPECT_EQ(sortRefusal(database, 0), "This type of field (Name) cannot currently be sorted!");
  }
  for (const FieldType type :
       {FieldType::kText, FieldType::kInteger, FieldType::kFloat, FieldType::kPopup,
        FieldType::kCheckBox, FieldType::kAutoNumber, FieldType::kDate, FieldType::kTime,
        FieldType::kLinkField, FieldType::kLongText, FieldType::kTextVariant, FieldType::kLookup,
        FieldType::kText254}) {
    database.schema.fields[0].type = type;
    EXPECT_TRUE(isSortable(database, 0)) << codeOf(type);
  }
  EXPECT_TRUE(isSortable(database, 3));
  setFormula({{kFieldToken, static_cast<std::uint8_t>(-3)}});  // the date of the record before
  EXPECT_EQ(sortRefusal(database, 3),
            "Since this field (Total) references other records, it's value is relative to it's "
            "position, meaning that it cannot be the basis for a sort!");
  // Encryption comes before all else.
  database.schema.fields[1].encrypt_flag = database.schema.fields[3].encrypt_flag = 1;
  for (const char* name : {"Remarks", "Total"}) {
    EXPECT_EQ(sortRefusal(database, name[0] == 'R' ? 1 : 3),
              std::string("This field (") + name +
                  ") is flagged for encrypted, and therefore cannot be sorted!");
  }
}

TEST_F(SortFields, ThePositionsCountExcludedFieldsToo) {
  EXPECT_THAT(sortFieldNames(database), ElementsAre("Name", "Born", "Total"));
  database.schema.sort[0] = {2, kSortForward};
  // "Total" is what stands third behind "No Field"; the dialog shows it for "Born".
  EXPECT_THAT(sortSelection(database).field, ElementsAre(3, 0, 0));
  EXPECT_EQ(storeSortSelection(database, {{3, 1, 0}, {false, true, false}}), "");
  EXPECT_THAT(database.schema.sort,
              ElementsAre(SortKey{2, 0}, SortKey{0, 1}, SortKey{kNoField, 0}));
  EXPECT_TRUE(database.dirty);
  database.schema.sort[0].order = 7;  // only 1 is forward
  EXPECT_THAT(sortSelection(database).forward, ElementsAre(false, true, false));
}

TEST_F(SortFields, ARefusedLevelChangesNothing) {
  const auto before = database.schema.sort;
  EXPECT_EQ(storeSortSelection(database, {{1, 2, 0}, {true, true, true}}),
            "This type of field (Remarks) cannot currently be sorted!");
  EXPECT_NE(storeSortSelection(database, {{101, 0, 0}, {true, true, true}}), "");
  EXPECT_EQ(database.schema.sort, before);
  EXPECT_FALSE(database.dirty);
}

TEST_F(SortFields, ALiveViewFollows) {
  DatabaseRecord& schema = database.schema;
  schema.view_count = 2;
  schema.current_view = 1;
  const SortSelection by_name{{1, 0, 0}, {true, true, true}};
  EXPECT_EQ(storeSortSelection(database, by_name), "");
  EXPECT_EQ(schema.views[1].sort[0].field, kNoField);
  schema.views[1].live_update = 1;
  EXPECT_EQ(storeSortSelection(database, by_name), "");
  EXPECT_EQ(schema.views[1].sort, schema.sort);
  EXPECT_EQ(schema.views[0].sort[0].field, kNoField);
  // Views that are not there are left alone.
  schema.current_view = kNoView;
  EXPECT_EQ(storeSortSelection(database, {{3, 0, 0}, {}}), "");
  EXPECT_EQ(schema.views[1].sort[0].field, 0);
}

TEST_F(SortFields, AViewShowsTheDatabasesLowerDirections) {
  DatabaseRecord& schema = database.schema;
  schema.view_count = 1;
  schema.sort = {SortKey{2, 1}, SortKey{0, 0}, SortKey{0, 0}};
  schema.views[0].sort = {SortKey{0, 0}, SortKey{2, 1}, SortKey{3, 1}};
  const SortSelection shown = sortSelection(database, 0);
  EXPECT_THAT(shown.field, ElementsAre(1, 3, 4));
  EXPECT_THAT(shown.forward, ElementsAre(false, false, false));
  const auto before = schema.sort;
  EXPECT_EQ(storeSortSelection(database, shown, 0), "");
  EXPECT_THAT(schema.views[0].sort, ElementsAre(SortKey{0, 0}, SortKey{2, 0}, SortKey{3, 0}));
  EXPECT_EQ(schema.sort, before);
  EXPECT_TRUE(database.dirty);
}

}  // namespace tabelion
