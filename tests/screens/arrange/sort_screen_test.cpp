#include "screens/arrange/sort_screen.h"

#include "screens/kit/screen_numbers.h"
#include "screens/records/record_list.h"
#include "support/phone_world.h"

namespace tabelion {
namespace {

const std::vector<TestField> kFields = {
    {"Title"}, {"Pages", FieldType::kInteger}, {"Kind"}, {"Lent", FieldType::kCheckBox}};
const TestRows kBooks = {{"Emma", "474", "Novel", "1"},
                         {"Dubliners", "152", "Tales", "0"},
                         {"Middlemarch", "880", "Novel", "0"},
                         {"Alice", "96", "Tales", "1"}};

class SortDialog : public testing::Test {
 protected:
  ScreenScript screen() { return world.phone.at(kSortScreen); }
  ScreenScript list() { return world.phone.at(kRecordListScreen); }
  // From the list, where `record` is the current one.
  ScreenScript open() {
    list().choose({u"Menu", u"Tools", u"Sort"});
    return screen();
  }
  void run(const std::string& path) {
    app.preferences.auto_save_on_close = true;
    list().choose({u"Menu", u"Close"});
    world.phone.play([&] { ShowRecordList(app, path); });
  }
  static auto shows(const std::vector<std::u16string>& expected) {
    return [=](FakeDialog& dialog) {
      FakeControl& rows = dialog.fake(kRecordList);
      ASSERT_EQ(rows.rowCount(), static_cast<int>(expected.size()));
      for (int row = 0; row < rows.rowCount(); ++row) {
        EXPECT_EQ(narrow(rows.paintRow(row).words()[0]),
                  narrow(expected[static_cast<std::size_t>(row)]));
      }
    };
  }
  static auto selected(int row) {
    return [=](FakeDialog& dialog) { EXPECT_EQ(dialog.fake(kRecordList).selectedRow(), row); };
  }

  PhoneWorld world;
  Application app{world.platform};
};

TEST_F(SortDialog, SortsByThreeLevelsAsOneStepAndKeepsTheCurrentRecord) {
  const std::string path = world.add("Books", kFields, kBooks);
  list().row(kRecordList, 2);  // Middlemarch
  open().pick(SortFieldChoice(0), u"Kind").pick(SortWayChoice(0), u"Reverse");
  screen().pick(SortFieldChoice(1), u"Lent").pick(SortFieldChoice(2), u"Title").choose({u"OK"});
  list()
      .look(shows({u"Dubliners", u"Alice", u"Middlemarch", u"Emma"}))
      .look(selected(2))
      .look([](FakeDialog& dialog) {
        const auto& columns = dialog.list(kRecordList).columns();
        EXPECT_EQ(columns[1].sort, SortMark::kNone);
        EXPECT_EQ(columns[2].sort, SortMark::kReverse);
        EXPECT_EQ(columns[2].sort_level, 1);
        EXPECT_EQ(narrow(columns[2].spoken), "Kind, sorted in reverse, level 1");
        EXPECT_EQ(columns[0].sort, SortMark::kForward);
        EXPECT_EQ(columns[0].sort_level, 3);
      })
      .choose({u"Menu", u"Undo Sort"})
      .look(shows({u"Emma", u"Dubliners", u"Middlemarch", u"Alice"}))
      .look(selected(2))
      .look([&](FakeDialog&) { EXPECT_FALSE(CurrentDatabase(app).dirty); })
      .choose({u"Menu", u"Redo Sort"});
  // The dialog shows what is in force; Cancel drops what was chosen.
  open().look([](FakeDialog& dialog) {
    EXPECT_EQ(dialog.control(SortFieldChoice(0)).selection(), 3);
    EXPECT_EQ(dialog.control(SortWayChoice(0)).selection(), 1);
    EXPECT_EQ(dialog.control(SortWayChoice(1)).selection(), 0);
  });
  screen().pick(SortFieldChoice(0), u"Pages").press(Key::kBack);
  list().look(shows({u"Dubliners", u"Alice", u"Middlemarch", u"Emma"}));
  // No first level: nothing is sorted, and no column is marked.
  open().pick(SortFieldChoice(0), u"No Field").choose({u"OK"});
  list()
      .look(shows({u"Dubliners", u"Alice", u"Middlemarch", u"Emma"}))
      .look([](FakeDialog& dialog) {
        for (const ListColumn& column : dialog.list(kRecordList).columns()) {
          EXPECT_EQ(column.sort, SortMark::kNone);
        }
      });
  run(path);
  const auto stored = world.read(path);
  EXPECT_EQ(stored->schema.sort[0].field, kNoField);
  EXPECT_EQ(stored->schema.sort[1].field, 3);
  EXPECT_EQ(world.cell(path, 1, 0), "Alice");
}

// The algorithm is not stable: sorting equal records again would change their order.
TEST_F(SortDialog, OkOnUnchangedLevelsLeavesAnOrderThatStandsAndMendsOneThatDoesNot) {
  TestRows rows;
  for (int i = 0; i < 40; ++i) rows.push_back({"Book " + std::to_string(i % 3), "", "x"});
  const auto database = world.make("Books", kFields, rows);
  database->schema.sort[0].field = 2;  // all equal
  std::string path = world.store(*database);
  open().choose({u"OK"});
  list().look([&](FakeDialog&) {
    EXPECT_TRUE(CurrentDatabase(app).dirty);
    EXPECT_EQ(app.level().history.UndoName(CurrentDatabase(app)), nullptr);
    for (std::uint32_t i = 0; i < 40; ++i) {
      EXPECT_EQ(CurrentDatabase(app).records[i].unique_id, database->records[i].unique_id) << i;
    }
  });
  run(path);

  database->schema.sort[0].field = 0;  // in force, and not the order of the file
  path = world.store(*database);
  open().choose({u"OK"});
  list().look([&](FakeDialog& dialog) {
    FakeControl& shown = dialog.fake(kRecordList);
    EXPECT_EQ(shown.paintRow(0).words()[0], u"Book 0");
    EXPECT_EQ(shown.paintRow(39).words()[0], u"Book 2");
  });
  run(path);
}

TEST_F(SortDialog, ARefusedFieldKeepsItOpenAndChangesNothing) {
  const auto database = world.make("Books", kFields, kBooks);
  database->schema.fields[2].encrypt_flag = 1;
  const std::string path = world.store(*database);
  const std::u16string refusal =
      u"This field (Kind) is flagged for encrypted, and therefore cannot be sorted!";
  open().pick(SortFieldChoice(0), u"Title").pick(SortFieldChoice(1), u"Kind").choose({u"OK"});
  world.phone.says(refusal, u"Sort");
  screen().look([&](FakeDialog&) {
    EXPECT_EQ(CurrentDatabase(app).schema.sort[0].field, kNoField);
    EXPECT_FALSE(CurrentDatabase(app).dirty);
  });
  // Nobody is there any more: told later, and nothing is changed.
  app.preferences.auto_close_enabled = true;
  app.preferences.auto_close_period_ms = 60000;
  screen().look([](FakeDialog& dialog) { dialog.startTimer(kAutoCloseTimer, 60000); });
  screen().fire(kAutoCloseTimer);
  world.phone.play([&] { EXPECT_EQ(ShowRecordList(app, path), kDialogAutoClosed); });
  EXPECT_EQ(app.not_stored, (std::vector<std::u16string>{u"Books, Sort: " + refusal}));
  EXPECT_EQ(world.read(path)->schema.sort[0].field, kNoField);
}

TEST_F(SortDialog, AutoCloseStoresWhatWasChosen) {
  app.preferences.auto_close_enabled = true;
  app.preferences.auto_close_period_ms = 60000;
  const std::string path = world.add("Books", kFields, kBooks);
  open().pick(SortFieldChoice(0), u"Pages").fire(kAutoCloseTimer);
  world.phone.play([&] { EXPECT_EQ(ShowRecordList(app, path), kDialogAutoClosed); });
  EXPECT_EQ(world.cell(path, 0, 0), "Alice");
}

TEST_F(SortDialog, SaysWhichFieldAPositionMeans) {
  const auto database =
      world.make("Books", {{"Note", FieldType::kNote}, {"Title"}, {"Pages", FieldType::kInteger}},
                 {{"", "Emma", "474"}, {"", "Alice", "96"}});
  database->schema.sort[0].field = 2;  // its position is behind the list
  database->schema.sort[0].order = 0;
  const std::string path = world.store(*database);
  open().look([](FakeDialog& dialog) {
    const FakeControl& field = dialog.fake(SortFieldChoice(0));
    EXPECT_EQ(field.choices, (std::vector<std::u16string>{u"No Field", u"Title", u"Pages"}));
    EXPECT_EQ(field.text(), u"Pages");
    EXPECT_FALSE(dialog.fake(SortNote(0)).face.visible);
  });
  screen().pick(SortWayChoice(0), u"Forward").pick(SortFieldChoice(1), u"Pages");
  screen().look([](FakeDialog& dialog) {
    EXPECT_TRUE(dialog.fake(SortNote(1)).face.visible);
    EXPECT_EQ(dialog.fake(SortNote(1)).text(), u"This entry sorts by \"Title\".");
  });
  screen().choose({u"OK"});
  list().look([&](FakeDialog&) {
    const auto& sort = CurrentDatabase(app).schema.sort;
    EXPECT_EQ(sort[0], (SortKey{2, 1}));
    EXPECT_EQ(sort[1], (SortKey{1, 1}));
  });
  run(path);
}

}  // namespace
}  // namespace tabelion
