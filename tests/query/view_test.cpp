#include "query/view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/schema_places.h"
#include "query/query_fixtures.h"

namespace tabelion {
namespace {

using ::testing::ElementsAre;

// Three fields: "Name" text, "Amount" integer, "Paid" check box; three records.
class ViewTest : public ::testing::Test {
 protected:
  ViewTest() {
    initSchema(database.schema);
    const std::pair<const char*, FieldType> fields[] = {{"Name", FieldType::kText},
                                                        {"Amount", FieldType::kInteger},
                                                        {"Paid", FieldType::kCheckBox}};
    for (std::size_t slot = 0; slot < std::size(fields); ++slot) {
      setFieldName(database.schema.fields[slot], fields[slot].first);
      database.schema.fields[slot].type = fields[slot].second;
    }
    add("Cleo", 3, 1);
    add("Ada", 1, 0);
    add("Bob", 2, 1);
    clearDirty(database);
    settings.formats = chosen(0);
  }
  void add(std::string name, std::uint8_t amount, std::uint8_t paid) {
    UnpackedRecord record;
    record.slots[0] = bytesOf(name + '\0');
    record.slots[1] = Bytes{amount, 0, 0, 0};
    record.slots[2] = Bytes{paid};
    Bytes packed;
    ASSERT_TRUE(packRecord(record, packed));
    database.records.insert(database.records.count(), packed, {});
  }
  int addNamed(std::string name) {
    const int view = addView(database);
    EXPECT_EQ(storeViewSettings(database, view, {std::move(name), false, {}, false}), "");
    return view;
  }
  View& view(int index) { return database.schema.views[static_cast<std::size_t>(index)]; }
  std::string shown() const {
    std::string text;
    for (const std::uint32_t position : database.record_index) {
      text += fieldText(database, database.records[position].bytes(), 0, settings.formats).text;
      text += ' ';
    }
    return text;
  }

  Database database;
  QuerySettings settings;
};

TEST_F(ViewTest, MenuMakesTheDefaultViewAndTheTwentyFirstIsRefused) {
  EXPECT_THAT(viewsMenu(database), ElementsAre("Default View"));
  EXPECT_EQ(database.schema.current_view, kNoView);
  EXPECT_FALSE(isDirty(database)) << "opening a menu is no change";
  EXPECT_FALSE(deleteView(database, 0));
  EXPECT_EQ(viewsMenu(database).size(), 1u);
  while (addView(database) >= 0) continue;
  EXPECT_EQ(database.schema.view_count, 20);
  EXPECT_EQ(copyView(database, 3), -1);
  EXPECT_EQ(viewSettings(database.schema, 19).name, "New View");
  EXPECT_EQ(view(19).action, kAdjustView);
  EXPECT_TRUE(deleteView(database, 19));
  EXPECT_EQ(copyView(database, 3), 19);
  database.schema.view_count = 65535;  // a file may say anything
  EXPECT_EQ(viewsMenu(database).size(), 20u);
}

TEST_F(ViewTest, NewViewIsWhatTheDatabaseShows) {
  database.schema.fields[1].column_width = 0;
  database.schema.fields[2].record_view_flag = 0;
  database.schema.sort[0] = {0, 0};
  database.schema.filters[0].enabled = 1;
  std::swap(database.schema.display_order[0], database.schema.display_order[2]);
  const int made = addView(database);
  EXPECT_TRUE(isDirty(database));
  EXPECT_THAT(viewColumns(database.schema, made), ElementsAre(2, 0));
  EXPECT_FALSE(viewFieldSettings(database.schema, made, 2).in_record_view);
  const ViewChange change = chooseView(database, made);
  EXPECT_TRUE(change.chosen);
  EXPECT_FALSE(change.sort_changed || change.filter_changed);
}

TEST_F(ViewTest, DeletedViewGivesItsPlaceToTheLaterOnes) {
  for (const char* name : {"A", "B", "C", "D"}) addNamed(name);
  database.schema.current_view = 2;
  ASSERT_TRUE(deleteView(database, 1));
  EXPECT_THAT(viewsMenu(database), ElementsAre("A", "C", "D"));
  EXPECT_EQ(areaText(view(3).name), "") << "the last slot's name is cleared";
  EXPECT_EQ(database.schema.current_view, 1) << "still C";
  ASSERT_TRUE(deleteView(database, 1));
  EXPECT_EQ(database.schema.current_view, kNoView);
  EXPECT_FALSE(deleteView(database, 2));
}

TEST_F(ViewTest, NamesAreComparedWithTheViewsBeforeAlone) {
  for (const char* name : {"A", "B"}) addNamed(name);
  EXPECT_EQ(storeViewSettings(database, 1, {"A", true, "Other", true}), kViewNameTakenText);
  EXPECT_FALSE(viewSettings(database.schema, 1).switches_database) << "nothing is stored";
  EXPECT_EQ(storeViewSettings(database, 1, {"a", true, "Other", true}), "");
  EXPECT_EQ(storeViewSettings(database, 0, {"a", false, "ignored", false}), "");
  EXPECT_EQ(viewOfName(database.schema, "a"), 0) << "the first of the name";
  EXPECT_EQ(viewSettings(database.schema, 0).target, "");
  EXPECT_EQ(viewSettings(database.schema, 1).target, "Other");
  EXPECT_EQ(storeViewSettings(database, 1, {std::string(40, 'n'), false, {}, false}), "");
  EXPECT_EQ(viewName(database.schema, 1), std::string(31, 'n'));
  EXPECT_EQ(viewSettings(database.schema, 1).target, "Other") << "kept for when it switches again";
}

TEST_F(ViewTest, ChosenViewSortsFiltersAndArranges) {
  viewsMenu(database);
  const int paid = addNamed("Paid");
  view(paid).sort[0] = {0, 1};
  view(paid).filters[0].enabled = 1;
  view(paid).filters[0].field = 2;
  view(paid).filters[0].number1 = 1;
  storeViewOrder(database, paid, std::vector<int>{1, 0});
  storeViewFieldSettings(database, paid, 2, {false, 70, false, false});
  clearDirty(database);

  const ViewChange change = applyView(database, paid, settings);
  EXPECT_TRUE(change.sort_changed && change.filter_changed);
  EXPECT_EQ(shown(), "Bob Cleo ");
  EXPECT_EQ(database.schema.current_view, paid);
  EXPECT_EQ(database.schema.display_order[0], 1);
  EXPECT_LT(database.schema.fields[2].column_width, 1);
  EXPECT_EQ(database.schema.fields[2].export_flag, 0);
  EXPECT_EQ(database.schema.fields[2].record_view_flag, 0);
  EXPECT_EQ(database.schema.sort_pending, 0);
  EXPECT_TRUE(isDirty(database) && database.needs_refresh);

  clearDirty(database);
  applyView(database, paid, settings);
  EXPECT_FALSE(isDirty(database)) << "chosen again, nothing changes";
  applyView(database, 0, settings);
  EXPECT_EQ(shown(), "Ada Bob Cleo ") << "no sort: the order stays, the filter goes";
  EXPECT_FALSE(applyView(database, 2, settings).chosen);
}

TEST_F(ViewTest, SwitchingViewCopiesNothing) {
  const int away = addNamed("Away");
  view(away).sort[0] = {0, 1};
  storeViewSettings(database, away, {"Away", true, "Travel", false});
  database.schema.current_view = kNoView;
  const ViewChange change = applyView(database, away, settings);
  EXPECT_EQ(change.switch_to, "Travel");
  EXPECT_EQ(database.schema.sort[0].field, kNoField);
  EXPECT_EQ(database.schema.current_view, kNoView);
}

TEST_F(ViewTest, HiddenColumnComesBackAsWideAsItWas) {
  const int made = addView(database);
  storeViewFieldSettings(database, made, 0, {true, 90, true, true});
  ViewFieldSettings field = viewFieldSettings(database.schema, made, 0);
  field.in_list = false;
  storeViewFieldSettings(database, made, 0, field);
  EXPECT_LT(view(made).entries[0].column_width, 1);
  EXPECT_THAT(viewColumns(database.schema, made), ElementsAre(1, 2));
  field = viewFieldSettings(database.schema, made, 0);
  EXPECT_FALSE(field.in_list);
  EXPECT_EQ(field.column_width, 90);
  view(made).entries[1].column_width = 0;
  EXPECT_EQ(viewFieldSettings(database.schema, made, 1).column_width, 58);
}

}  // namespace
}  // namespace tabelion
