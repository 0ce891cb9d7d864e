// Search Database, Find and Find Again, from the list.
#include "screens/arrange/search_database.h"
#include "screens/list_test.h"
#include "screens/records/record_form.h"

namespace tabelion {
namespace {

constexpr char16_t kNotFound[] = u"Not Found in Database!";

class FindScreens : public ListTest {
 protected:
  void SetUp() override {
    database =
        world.make("Plants", {{"Name"}, {"Kind"}, {"Shop"}, {"Bought", FieldType::kDate}, {"Tip"}},
                   {{"Ash", "tree", "Garden"},
                    {"Fern", "shade", "garden"},
                    {"Iris", "bulb", "Hill", "", "dry"},
                    {"Oak", "tree", "Hill"},
                    {"Rue", "herb", "GARDEN"}});
    for (FieldDefinition& field : database->schema.fields) field.column_width = 100;
    database->schema.fields[4].column_width = 0;
    database->schema.sort[0] = {0, 1};
  }
  ScreenScript search() { return world.phone.at(kSearchScreen); }
  ScreenScript find() {
    list().choose({u"Menu", u"Tools", u"Find"});
    return search();
  }
  ScreenScript again() { return list().choose({u"Menu", u"Tools", u"Find Again"}); }
  void findNoMore() {
    again();
    world.phone.says(kNotFound, u"Find");
  }
  static Look stands(const std::string& name) {
    return [name](FakeDialog& dialog) {
      FakeControl& rows = dialog.fake(kRecordList);
      EXPECT_EQ(narrow(rows.paintRow(rows.selectedRow()).words().at(0)), name);
    };
  }
  static Look scrolled(int pixels) {
    return [pixels](FakeDialog& dialog) { EXPECT_EQ(dialog.fake(kRecordList).scrolled, pixels); };
  }
  // Where in the selected row the mark of what was found begins; -1: there is none.
  static Look marked(int x) {
    return [x](FakeDialog& dialog) {
      FakeControl& rows = dialog.fake(kRecordList);
      const PaintedRow row = rows.paintRow(rows.selectedRow());
      EXPECT_EQ(row.fills.size() > 1 ? row.fills[1].area.x : -1, x);
    };
  }
};

TEST_F(FindScreens, EachHitBecomesTheCurrentRecordUntilThereIsNoMore) {
  list().press(Key::kDown, 3);
  again();  // nothing was searched for yet
  search()
      .look(hasFocus(kSearchText))
      .look(selects(kSearchField, 0))
      .look([](FakeDialog& dialog) {
        const Texts& fields = dialog.fake(kSearchField).choices;
        ASSERT_EQ(fields.size(), 101u);
        EXPECT_EQ(fields[0] + fields[3] + fields[100], u"All FieldsShopField 100");
      })
      .type(u"Garden")
      .press(Key::kEnter);
  list()
      .look(stands("Ash"))
      .look(scrolled(3 * 150 - 240))  // the column Shop is in sight
      .look(marked(2 * 150 - (3 * 150 - 240) + 1));
  again();
  list().look(stands("Fern")).press(Key::kUp).look(marked(-1)).press(Key::kUp);
  again();  // from the one that was found last, wherever the user went
  list().look(stands("Rue"));
  findNoMore();
  findNoMore();
  list().look(stands("Rue"));
  find()
      .look(reads(kSearchText, u"Garden"))
      .look([](FakeDialog& dialog) { EXPECT_TRUE(dialog.fake(kSearchText).text_selected); })
      .pick(kSearchCase, u"Case Sensitive")
      .write(kSearchText, u"den")
      .choose({u"OK"});
  list().look(stands("Ash"));
  find().pick(kSearchMatch, u"Field begins with...").choose({u"OK"});
  world.phone.says(kNotFound, u"Find");
  findNoMore();  // that search has found nothing yet
  find().write(kSearchText, u"dry").choose({u"OK"});
  list().look(stands("Iris")).look(titled(u"Found in Tip"));  // which has no column
  list().press(Key::kUp).look(titled(u"Tabelion"));
  find().pick(kSearchField, u"Kind").write(kSearchText, u"tr").choose({u"OK"});
  list().look(stands("Ash"));
  again();
  list().look(stands("Oak")).look(scrolled(2 * 150 - 240));
  play();
  EXPECT_EQ(database->schema.search_field, 1);
  EXPECT_EQ(areaText(database->schema.search_text), "tr");
}

TEST_F(FindScreens, CancelKeepsTheOldSearchAndUndoBringsItBack) {
  setAreaText(database->schema.search_text, "hill");
  find().type(u"tree").press(Key::kBack).choose({u"Cancel"});
  again();
  list().look(stands("Iris"));
  find().write(kSearchText, u"tree").choose({u"OK"});
  list().look(stands("Ash")).choose({u"Menu", u"Undo Change of search"});
  list().look(stands("Iris"));
  again();
  list().look(stands("Iris"));
  play();
  EXPECT_EQ(areaText(database->schema.search_text), "hill");
}

TEST_F(FindScreens, RecordsThatMoveDoNotLeadTheSearchAstray) {
  FilterBlock& filter = database->schema.filters[0];  // trees alone
  filter.enabled = 1;
  filter.field = 1;
  setAreaText(filter.value1, "tree");
  setAreaText(database->schema.search_text, "a");
  again();
  list().look(stands("Ash")).press(Key::kEnter);
  form().write(FormValue(0), u"Pear").choose({u"Done"});
  list().look(stands("Pear"));
  findNoMore();  // Pear stands behind Oak now
  play();
}

TEST_F(FindScreens, WhatTakesTooManyBytesIsNotCut) {
  setAreaText(database->schema.code_page, "UTF-8");
  find().type(std::u16string(18, u'\u017E')).choose({u"OK"});
  world.phone.says(u"The text is longer than fits here.", u"Search Database");
  search().press(Key::kBack).write(kSearchText, u"Iris").choose({u"OK"});
  list().look(stands("Iris"));
  play();
}

}  // namespace
}  // namespace tabelion
