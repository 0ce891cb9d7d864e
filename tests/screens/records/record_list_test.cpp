#include "screens/records/record_list.h"

#include <gmock/gmock.h>

#include "screens/kit/screen_numbers.h"
#include "screens/records/edit_record.h"
#include "screens/records/list_columns.h"
#include "security/database_encryption.h"
#include "services/open_database.h"
#include "support/phone_world.h"

namespace tabelion {
namespace {

const std::vector<TestField> kBookFields = {{"Title"},
                                            {"Pages", FieldType::kInteger},
                                            {"Lent", FieldType::kCheckBox},
                                            {"Note", FieldType::kNote},
                                            {"Bought", FieldType::kDate}};
const TestRows kBooks = {{"Emma", "474", "1", "old", "2020-05-09"},
                         {"Dubliners", "152", "0", "", ""},
                         {"Middlemarch", "880", "0", "long", "2021-12-31"}};

TEST(RecordList, ShowsColumnsAndPaintsRows) {
  PhoneWorld world;
  const auto database = world.make("Books", kBookFields, kBooks);
  database->schema.fields[1].column_width = 33;  // 49.5 pixels
  database->schema.fields[2].column_width = 1;   // 1.5 pixels
  database->schema.fields[4].column_width = 0;
  const std::string path = world.store(*database);
  Application app(world.platform);
  world.phone.at(kRecordListScreen)
      .look([](FakeDialog& dialog) {
        EXPECT_EQ(dialog.fake(kNameLabel).text(), u"Books");
        EXPECT_EQ(dialog.fake(kViewLabel).text(), u"Default View");
        EXPECT_EQ(dialog.fake(kViewLabel).font_pixels, 12);
        FakeControl& list = dialog.fake(kRecordList);
        EXPECT_EQ(list.headings(), (std::vector<std::u16string>{u"Title", u"Pages", u"Lent"}));
        EXPECT_EQ(list.columns()[0].width, 87);
        EXPECT_EQ(list.columns()[1].width, 49);
        EXPECT_EQ(list.columns()[2].width, 1);
        EXPECT_EQ(list.rowCount(), 3);

        const PaintedRow first = list.paintRow(0);  // selected
        ASSERT_EQ(first.fills.size(), 1u);
        EXPECT_EQ(first.fills[0].color, (Color{64, 188, 255}));
        EXPECT_EQ(first.words(), (std::vector<std::u16string>{u"Emma", u"474"}));
        EXPECT_EQ(first.texts[0].area, (Rect{1, 0, 85, 20}));
        EXPECT_EQ(first.texts[1].area, (Rect{88, 0, 47, 20}));
        ASSERT_EQ(first.pictures.size(), 1u);
        EXPECT_EQ(first.pictures[0].picture, Picture::kChecked);
        EXPECT_EQ(first.pictures[0].at.x, 136);  // too narrow for air at its sides
        EXPECT_EQ(list.paintRow(1).fills[0].color, (Color{255, 255, 255}));
        EXPECT_EQ(list.paintRow(1).pictures[0].picture, Picture::kUnchecked);
        EXPECT_EQ(list.paintRow(2).fills[0].color, (Color{224, 224, 224}));
        EXPECT_EQ(first.texts[0].color, (Color{0, 0, 0}));
        dialog.phone.scheme = Scheme::kDark;
        const PaintedRow dark = list.paintRow(2);
        EXPECT_LT(dark.fills[0].color.green + 100, dark.texts[0].color.green);
        EXPECT_NE(list.paintRow(0).fills[0].color, dark.fills[0].color);
        dialog.phone.scheme = Scheme::kLight;
        EXPECT_TRUE(list.paintRow(3).texts.empty());
        EXPECT_EQ(dialog.handler.rowText(dialog, kRecordList, 0), u"Emma, 474, 1");
      })
      .choose({u"Menu", u"Close"});
  world.phone.play([&] { EXPECT_EQ(ShowRecordList(app, path), kDialogClosed); });
  EXPECT_FALSE(IsDatabaseOpen(app));
}

TEST(RecordList, FitsTheScreen) {
  for (const Size size : {Size{240, 320}, Size{320, 240}, Size{480, 640}}) {
    PhoneWorld world(size);
    const std::string path = world.add("Books", kBookFields, kBooks);
    Application app(world.platform);
    world.phone.at(kRecordListScreen)
        .look([&](FakeDialog& dialog) {
          const Rect list = dialog.fake(kRecordList).place();
          EXPECT_EQ(list, (Rect{0, 26, size.width, dialog.screenSize().height - 26}));
          const Rect name = dialog.fake(kNameLabel).place();
          const Rect view = dialog.fake(kViewLabel).place();
          if (size.width == 320) {
            EXPECT_EQ(name, (Rect{0, 0, 200, 25}));
            EXPECT_EQ(view, (Rect{200, 2, 120, 25}));
          }
          EXPECT_EQ(name.x + name.width, view.x);
          EXPECT_GE(view.x + view.width, size.width - 2);
          EXPECT_LE(view.x + view.width, size.width);
        })
        .press(Key::kRight)
        .look([&](FakeDialog& dialog) {  // 4 columns of 87 pixels
          const int hidden = std::max(0, 4 * 87 - size.width);
          EXPECT_EQ(dialog.fake(kRecordList).scrolled, std::min(30, hidden));
          EXPECT_EQ(dialog.fake(kRecordList).paintRow(0).texts[0].area.x, 1 - std::min(30, hidden));
        })
        .press(Key::kLeft)
        .look([](FakeDialog& dialog) { EXPECT_EQ(dialog.fake(kRecordList).scrolled, 0); })
        .choose({u"Menu", u"Close"});
    world.phone.play([&] { ShowRecordList(app, path); });
  }
}

TEST(RecordList, WideScreensShowTextsThatPhonesCut) {
  const std::string town(12, 'o');      // 84 pixels and a little air
  const std::string history(100, 'h');  // more than any column gets
  const TestRows rows = {{"1", town, history}};
  const auto widths = [&](int screen) {
    std::vector<int> found;
    PhoneWorld world({screen, 320});
    const auto database =
        world.make("Towns", {{"No"}, {"Town"}, {"History", FieldType::kText, 120}}, rows);
    for (std::size_t i = 0; i < 3; ++i) database->schema.fields[i].column_width = 50;
    const std::string path = world.store(*database);
    Application app(world.platform);
    world.phone.at(kRecordListScreen)
        .look([&](FakeDialog& dialog) {
          for (const auto& column : dialog.fake(kRecordList).columns())
            found.push_back(column.width);
        })
        .choose({u"Menu", u"Close"});
    world.phone.play([&] { ShowRecordList(app, path); });
    return found;
  };
  EXPECT_EQ(widths(320), (std::vector<int>{75, 75, 75}));
  EXPECT_EQ(widths(480), (std::vector<int>{75, 92, 297})) << "all that is left";
  EXPECT_EQ(widths(800), (std::vector<int>{75, 92, 320}));
}

TEST(RecordList, QuickFindSelectsTheFirstThatBeginsSo) {
  PhoneWorld world;
  TestRows rows;
  for (const char* title : {"Alba", "Bern 1", "BERN 12", "Cork"}) rows.push_back({title});
  rows.push_back({std::string(35, 'z')});
  const std::string path = world.add("Towns", {{"Name"}}, rows);
  Application app(world.platform);
  const auto row = [](int expected) {
    return [expected](FakeDialog& dialog) {
      EXPECT_EQ(dialog.fake(kRecordList).selectedRow(), expected);
    };
  };
  world.phone.at(kRecordListScreen)
      .type(u"bern")
      .look(row(1))
      .type(u" 12")
      .look(row(2))
      .type(u"x")  // no such town: forgotten
      .look(row(2))
      .press(Key::kBack)
      .look(row(1))
      .look([](FakeDialog& dialog) { EXPECT_EQ(dialog.title, u"Find: bern 1"); })
      .press(Key::kBack, 6)  // all gone; the database stays open, however often Back is pressed
      .press(Key::kBack, 2)
      .type(u"c")
      .look(row(3))
      .fire(kFindTimer)  // a pause
      .look([](FakeDialog& dialog) { EXPECT_EQ(dialog.title, u"Tabelion"); })
      .type(u"b")
      .look(row(1))
      .type(u"ern 12")
      .fire(kFindTimer)
      .type(u"cork")
      .look(row(3))
      .press(Key::kDown)
      .look(row(4))
      .press(Key::kUp, 4)
      .type(std::u16string(40, u'z'))  // only 29 count
      .look(row(4))
      .press(Key::kBack, 28)
      .type(u"Z")
      .look(row(4))
      .press(Key::kUp)
      .press(Key::kBack);  // after a move Back leaves the screen
  world.phone.play([&] { ShowRecordList(app, path); });
}

TEST(RecordList, QuickFindPassesByWhatIsEnciphered) {
  PhoneWorld world;
  const auto database = world.make("Towns", {{"Name"}}, {{"Alba"}, {"Xanten"}});
  database->schema.fields[0].encrypt_flag = 1;
  database->schema.encryption_mode = kEncryptRecordsByHand;
  world.markEnciphered(*database, 0);
  const std::string path = world.store(*database);
  Application app(world.platform);
  world.phone.at(kRecordListScreen)
      .type(u"x")
      .look([](FakeDialog& dialog) { EXPECT_EQ(dialog.fake(kRecordList).selectedRow(), 1); })
      .choose({u"Menu", u"Close"});
  world.phone.play([&] { ShowRecordList(app, path); });
}

TEST(RecordList, FirstRowOpensRecordZero) {
  PhoneWorld world;
  const std::string path = world.add("Books", {{"Title"}}, {{"a"}, {"b"}, {"c"}});
  Application app(world.platform);
  app.engine.steps.refresh = [](Database& database) {
    database.record_index = {2, 1, 0};
    return 1;
  };
  const auto shows = [](const std::u16string& title) {
    return [title](FakeDialog& dialog) { EXPECT_EQ(dialog.fake(FormValue(0)).text(), title); };
  };
  world.phone.at(kRecordListScreen)
      .row(kRecordList, 0)
      .look([](FakeDialog& dialog) {
        EXPECT_EQ(dialog.fake(kRecordList).paintRow(0).words(), std::vector<std::u16string>{u"c"});
      })
      .press(Key::kEnter);
  world.phone.at(kEditRecordScreen).look(shows(u"a")).choose({u"Menu", u"Cancel"});
  world.phone.at(kRecordListScreen).row(kRecordList, 1).press(Key::kEnter);
  world.phone.at(kEditRecordScreen).look(shows(u"b")).choose({u"Menu", u"Cancel"});
  world.phone.at(kRecordListScreen).choose({u"Menu", u"Close"});
  world.phone.play([&] { ShowRecordList(app, path); });
}

TEST(RecordList, EmptyDatabaseOpensAFormThatTakesNothing) {
  PhoneWorld world;
  const std::string path = world.add("Empty", {{"Title"}, {"Read", FieldType::kCheckBox}}, {});
  Application app(world.platform);
  world.phone.at(kRecordListScreen)
      .look([](FakeDialog& dialog) {
        EXPECT_EQ(dialog.fake(kRecordList).rowCount(), 0);
        EXPECT_EQ(dialog.fake(kRecordList).columns().size(), 2u);
      })
      .press(Key::kEnter);
  world.phone.at(kEditRecordScreen)
      .type(u"x")
      .look([](FakeDialog& dialog) {
        EXPECT_EQ(dialog.fake(FormValue(0)).text(), u"");
        EXPECT_FALSE(dialog.fake(FormValue(1)).face.enabled);
      })
      .choose({u"Done"});
  world.phone.at(kRecordListScreen).choose({u"Menu", u"Close"});
  world.phone.play([&] { ShowRecordList(app, path); });
}

TEST(RecordList, SavesAndComesBackToTheSameRecord) {
  PhoneWorld world;
  const std::string path = world.add("Books", kBookFields, kBooks);
  Application app(world.platform);
  world.phone.at(kRecordListScreen).press(Key::kDown, 2).choose({u"Menu", u"Save"});
  world.phone.says(u"File Saved", u"Update");
  world.phone.at(kRecordListScreen).look([&](FakeDialog&) { world.files.fail_replace_at = 0; });
  world.phone.at(kRecordListScreen).choose({u"Menu", u"Save"});
  world.phone.says(
      u"ERROR:File could not be saved\nCould not write /documents/Tabelion/Books.PDB: the disk is "
      u"full",
      u"Update");
  world.phone.at(kRecordListScreen).choose({u"Menu", u"Close"});
  world.phone.at(kRecordListScreen)
      .look([](FakeDialog& dialog) { EXPECT_EQ(dialog.fake(kRecordList).selectedRow(), 2); })
      .choose({u"Menu", u"Close"});
  world.phone.play([&] {
    ShowRecordList(app, path);
    ShowRecordList(app, path);
  });
  ASSERT_EQ(world.phone.boxes.size(), 2u);
  EXPECT_EQ(world.phone.boxes[0].icon, MessageIcon::kInformation);
  EXPECT_EQ(world.phone.boxes[1].icon, MessageIcon::kError);
  EXPECT_EQ(world.setting("WeekStart"), "0");
}

TEST(RecordList, AFileThatIsNowhereLeavesTheScreenEmpty) {
  PhoneWorld world;
  world.files.card = "/card";
  const std::string path = world.add("Books", kBookFields, kBooks);
  const auto file = world.files.bytes(path);
  Application app(world.platform);
  ASSERT_TRUE(world.files.remove(path).ok());
  world.phone.at(kRecordListScreen)
      .look([](FakeDialog& dialog) {
        EXPECT_EQ(dialog.fake(kRecordList).rowCount(), 0);
        EXPECT_EQ(dialog.fake(kNameLabel).text(), u"");
        EXPECT_THAT(dialog.menuTexts({u"Menu"}),
                    testing::IsSupersetOf({u"-Delete", u"-Save", u"-Undo", u"Close"}));
      })
      .choose({u"New Record"})
      .type(u"e")
      .press(Key::kEnter)
      .press(Key::kBack);
  world.phone.at(kRecordListScreen)
      .look([](FakeDialog& dialog) { EXPECT_EQ(dialog.fake(kRecordList).rowCount(), 3); })
      .press(Key::kBack);
  world.phone.play([&] {
    ShowRecordList(app, path);
    world.files.put("/card/Tabelion/Books.PDB", file);  // the same file, moved to the card
    ShowRecordList(app, path);
  });
}

// Nothing is asked for and nothing deciphered.
TEST(RecordList, RefusesADatabaseWhoseFormCannotBe) {
  PhoneWorld world;
  const auto database = world.make("Bad", {{"Title"}}, {{"a"}});
  database->schema.label_width_adjustment = 86;
  database->schema.fields[0].encrypt_flag = 1;
  database->schema.encryption_mode = kEncryptWholeDatabase;
  world.markEnciphered(*database, 0);
  const std::string path = world.store(*database);
  Application app(world.platform);
  world.phone.says(u"This database appears to be corrupt.", u"Open Database");
  world.phone.play([&] { EXPECT_EQ(ShowRecordList(app, path), kDialogClosed); });
  EXPECT_FALSE(IsDatabaseOpen(app));
}

TEST(RecordList, AskingForThePasswordGoesOnAfterAWrongOne) {
  PhoneWorld world;
  const auto database = world.make("Safe", {{"Title"}}, {{"gold"}});
  database->schema.security_word = 1;
  setAreaText(database->schema.access_password, "sesame");
  const std::string path = world.store(*database);
  Application app(world.platform);
  const int kPassword = kPasswordScreen;
  world.phone.at(kPassword).type(u"sesam").choose({u"OK"});
  world.phone.says(u"Invalid Password", u"Error");
  world.phone.at(kRecordListScreen).choose({u"Menu", u"Close"});
  world.phone.at(kPassword).choose({u"Cancel"});
  world.phone.play([&] {
    ShowRecordList(app, path);
    ShowRecordList(app, path);
  });
}

}  // namespace
}  // namespace tabelion
