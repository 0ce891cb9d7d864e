#include "screens/arrange/filter_screen.h"

#include "interchange/words/filter_words.h"
#include "screens/kit/pick_date.h"
#include "screens/kit/screen_numbers.h"
#include "screens/records/record_list.h"
#include "support/phone_world.h"

namespace tabelion {
namespace {

using Part = FilterPart;

const std::vector<TestField> kFields = {{"Title"},
                                        {"Pages", FieldType::kInteger},
                                        {"Price", FieldType::kFloat},
                                        {"Kind", FieldType::kPopup},
                                        {"Lent", FieldType::kCheckBox},
                                        {"Bought", FieldType::kDate},
                                        {"Read at", FieldType::kTime},
                                        {"Remarks", FieldType::kNote}};
const TestRows kBooks = {{"Emma", "474", "9.50", "", "1", "2020-05-09", "17:05:00"},
                         {"Dubliners", "152", "7", "", "0", "", ""},
                         {"Middlemarch", "880", "12.25", "", "0", "2021-12-31", "08:30:00"},
                         {"Alice", "96", "5", "", "1", "2021-01-02", ""}};

class FilterDialog : public testing::Test {
 protected:
  FilterDialog() { app.preferences.auto_save_on_close = true; }

  std::unique_ptr<Database> books() {
    auto database = world.make("Books", kFields, kBooks);
    database->fields[3].items = {{.key = {'N'}, .text = "Novel"}, {.key = {'T'}, .text = "Tales"}};
    return database;
  }
  ScreenScript screen() { return world.phone.at(kFilterScreen); }
  ScreenScript list() { return world.phone.at(kRecordListScreen); }
  ScreenScript open() {
    list().choose({u"Menu", u"Tools", u"Filter"});
    return screen();
  }
  void run(const std::string& path) {
    list().choose({u"Menu", u"Close"});
    world.phone.play([&] { ShowRecordList(app, path); });
  }
  std::vector<std::string> words() {
    const Database& database = CurrentDatabase(app);
    return wordsOfFilter(database, app.level().encoding, database.schema.filters);
  }
  static auto shows(const std::vector<std::string>& titles, const std::string& title) {
    return [=](FakeDialog& dialog) {
      FakeControl& rows = dialog.fake(kRecordList);
      std::vector<std::string> shown;
      for (int row = 0; row < rows.rowCount(); ++row) {
        shown.push_back(narrow(rows.paintRow(row).words()[0]));
      }
      EXPECT_EQ(shown, titles);
      EXPECT_EQ(narrow(dialog.title), title);
    };
  }
  static auto note(int criterion, const std::string& text) {
    return [=](FakeDialog& dialog) {
      const FakeControl& label = dialog.fake(FilterControl(criterion, Part::kNote));
      EXPECT_EQ(narrow(label.text()), text);
      EXPECT_EQ(label.face.visible, !text.empty());
    };
  }
  // Which parts of the first criterion show below its field.
  static auto unfolds(const std::vector<Part>& parts) {
    return [=](FakeDialog& dialog) {
      for (int part = static_cast<int>(Part::kRange); part < static_cast<int>(Part::kNote);
           ++part) {
        const FakeControl& control = dialog.fake(FilterControl(0, static_cast<Part>(part)));
        if (control.face.kind == ControlKind::kLabel) continue;
        const bool expected =
            std::find(parts.begin(), parts.end(), static_cast<Part>(part)) != parts.end();
        EXPECT_EQ(control.face.visible, expected) << part;
      }
    };
  }

  PhoneWorld world;
  Application app{world.platform};
  static constexpr auto at = FilterControl;
};

TEST_F(FilterDialog, ShowsWhatPassesAsOneStepAndSaysSo) {
  const std::string path = world.store(*books());
  open().tick(at(0, Part::kEnabled)).write(at(0, Part::kFirst), u"e").tick(at(1, Part::kEnabled));
  screen().pick(at(1, Part::kField), u"Lent").pick(at(1, Part::kJoin), u"OR").choose({u"OK"});
  list().look(shows({"Emma", "Dubliners", "Middlemarch", "Alice"}, "Filter: 4 of 4 records"));
  open().pick(at(1, Part::kCheck), u"Checked").pick(at(1, Part::kJoin), u"AND");
  screen().tick(at(1, Part::kNot)).press(Key::kEnter);
  list()
      .look(shows({"Dubliners", "Middlemarch"}, "Filter: 2 of 4 records"))
      .look([&](FakeDialog&) {
        EXPECT_EQ(words(),
                  (std::vector<std::string>{"Title contains \"e\"", "and not Lent is checked"}));
      })
      .choose({u"Menu", u"Undo Filter"})
      .look(shows({"Emma", "Dubliners", "Middlemarch", "Alice"}, "Filter: 4 of 4 records"))
      .choose({u"Menu", u"Undo Filter"})
      .look(shows({"Emma", "Dubliners", "Middlemarch", "Alice"}, "Tabelion"))
      .choose({u"Menu", u"Redo Filter"})
      .choose({u"Menu", u"Redo Filter"});
  // Left by Back nothing changes; nor does OK on what was not touched.
  open().choose({u"Menu", u"Turn All Off"}).press(Key::kBack);
  list().choose({u"Menu", u"Save"});
  world.phone.says(u"File Saved", u"Update");
  open().choose({u"OK"});
  list().look(shows({"Dubliners", "Middlemarch"}, "Filter: 2 of 4 records")).look([&](FakeDialog&) {
    EXPECT_FALSE(CurrentDatabase(app).dirty);
  });
  // Switched off, the criteria stay what they were.
  open().choose({u"Menu", u"Turn All Off"}).choose({u"OK"});
  list().look(shows({"Emma", "Dubliners", "Middlemarch", "Alice"}, "Tabelion"));
  open().look(unfolds({})).tick(at(0, Part::kEnabled)).look([](FakeDialog& dialog) {
    EXPECT_EQ(dialog.fake(at(0, Part::kFirst)).text(), u"e");
  });
  screen().press(Key::kBack);
  run(path);
}

TEST_F(FilterDialog, UnfoldsForEveryTypeWhatItIsComparedWith) {
  world.clock.local_now = {.year = 2021, .month = 3, .day = 31, .weekday = 3};
  const std::string path = world.store(*books());
  const auto field = [&](const std::u16string& name) {
    return screen().pick(at(0, Part::kField), name);
  };
  const auto stores = [&](const std::vector<std::string>& expected, const std::string& criterion) {
    screen().choose({u"OK"});
    list().look([=, this](FakeDialog& dialog) {
      EXPECT_EQ(words(), std::vector<std::string>{criterion});
      shows(expected, "Filter: " + std::to_string(expected.size()) + " of 4 records")(dialog);
    });
    open();
  };
  open().tick(at(0, Part::kEnabled)).look(unfolds({Part::kFirst}));
  screen().look(note(0, "Empty: the records without a text there."));
  field(u"Pages").look(unfolds({Part::kFirst, Part::kSecond})).look(note(0, ""));
  screen().write(at(0, Part::kFirst), u"100").write(at(0, Part::kSecond), u"500");
  stores({"Emma", "Dubliners"}, "Pages between 100 and 500");
  field(u"Price").write(at(0, Part::kSecond), u"9.5");
  stores({"Emma", "Dubliners", "Alice"}, "Price <= 9.5");
  field(u"Kind").look(unfolds({Part::kItem})).activate(at(0, Part::kItem));
  world.phone.offers(u"Tales");
  stores({}, "Kind is \"Tales\"");
  screen().look(
      [](FakeDialog& dialog) { EXPECT_EQ(dialog.fake(at(0, Part::kItem)).text(), u"Tales"); });
  field(u"Lent").look(unfolds({Part::kCheck})).pick(at(0, Part::kCheck), u"Unchecked");
  stores({"Dubliners", "Middlemarch"}, "Lent is unchecked");
  const std::vector<Part> bounds{Part::kFirst, Part::kFirstPick, Part::kSecond, Part::kSecondPick};
  field(u"Read at").look(unfolds(bounds)).write(at(0, Part::kFirst), u"9:00");
  stores({"Emma"}, "\"Read at\" >= 09:00:00");

  auto dates = bounds;
  dates.push_back(Part::kRange);
  field(u"Bought").look(unfolds(dates)).activate(at(0, Part::kFirstPick));
  world.phone.at(kPickDateScreen).press(Key::kHome).press(Key::kEnter);
  stores({"Middlemarch"}, "Bought >= 2021-03-01");
  screen().pick(at(0, Part::kRange), u"Last Month").look(unfolds({Part::kRange}));
  screen().look(note(0, "2/1/2021 to 2/28/2021"));
  screen().pick(at(0, Part::kRange), u"Last X days").look(unfolds({Part::kRange, Part::kCount}));
  screen().write(at(0, Part::kCount), u"90").look(note(0, "12/31/2020 to 3/31/2021"));
  stores({"Alice"}, "Bought is Last 90 days");
  screen().look([](FakeDialog& dialog) {
    EXPECT_EQ(dialog.fake(at(0, Part::kRange)).choices.size(), 23u);
    EXPECT_EQ(dialog.fake(at(0, Part::kCountLabel)).text(), u"Last");
    EXPECT_EQ(dialog.fake(at(0, Part::kUnit)).text(), u"Days");
  });
  screen().press(Key::kBack);
  run(path);
}

TEST_F(FilterDialog, SaysWhereACriterionIsNotUnderstoodAndStoresNothing) {
  const std::string path = world.store(*books());
  open().tick(at(0, Part::kEnabled)).write(at(0, Part::kFirst), u"e").tick(at(2, Part::kEnabled));
  screen().pick(at(2, Part::kField), u"Price").write(at(2, Part::kFirst), u"ten");
  const std::string fault = "\"ten\" is not a number such as 12.50";
  // When the box is left, and again where the dialog is to be.
  screen().focus(at(2, Part::kSecond)).look(note(2, fault));
  screen().write(at(2, Part::kSecond), u"5").look(note(2, "")).choose({u"OK"});
  screen().look(note(2, fault)).look([&](FakeDialog& dialog) {
    EXPECT_TRUE(dialog.fake(at(2, Part::kFirst)).hasFocus());
    EXPECT_EQ(words(), std::vector<std::string>{});
    EXPECT_FALSE(CurrentDatabase(app).dirty);
  });
  screen().write(at(2, Part::kFirst), u"10").choose({u"OK"});
  screen().look(note(2, "nothing lies between 10 and 5")).write(at(2, Part::kFirst), u"x");
  // Nobody is there to mend it: the whole filter stays as it was, and that is told later.
  app.preferences.auto_close_enabled = true;
  app.preferences.auto_close_period_ms = 60000;
  screen().look([](FakeDialog& dialog) { dialog.startTimer(kAutoCloseTimer, 60000); });
  screen().fire(kAutoCloseTimer);
  world.phone.play([&] { EXPECT_EQ(ShowRecordList(app, path), kDialogAutoClosed); });
  EXPECT_EQ(app.not_stored,
            (std::vector<std::u16string>{u"Books, Filter 3: \"x\" is not a number such as 12.50"}));
  EXPECT_FALSE(isFilterInUse(world.read(path)->schema));
}

TEST_F(FilterDialog, KeepsWhatItDoesNotShow) {
  const auto database = books();
  FilterBlock& odd = database->schema.filters[1];
  odd.enabled = 7;
  odd.field = 7;  // a note, that records cannot be filtered by
  odd.value1[3] = 9;
  odd.mode = 0x81;
  FilterBlock& check = database->schema.filters[2];
  check.enabled = 1;
  check.field = 4;
  check.number1 = 5;  // neither checked nor unchecked
  const std::string path = world.store(*database);
  const auto before = database->schema.filters;
  open().look(note(1, "Records cannot be filtered by this field."));
  screen().tick(at(2, Part::kOpens)).tick(at(1, Part::kOpens)).choose({u"OK"});
  run(path);
  auto expected = before;
  expected[1].grouping = 1;
  expected[2].grouping = 1;
  EXPECT_EQ(world.read(path)->schema.filters, expected);
}

}  // namespace
}  // namespace tabelion
