#include "screens/records/record_list.h"

#include "screens/records/list_columns.h"
#include "screens/records/record_screens.h"
#include "services/open_database.h"

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

class RecordList : public RecordScreens {};

TEST_F(RecordList, ShowsColumnsAndPaintsRows) {
  database = world.make("Books", kBookFields, kBooks);
  database->schema.fields[1].column_width = 33;  // 49.5 pixels
  database->schema.fields[2].column_width = 1;   // 1.5 pixels
  database->schema.fields[4].column_width = 0;
  list().look([](FakeDialog& dialog) {
    EXPECT_EQ(dialog.fake(kNameLabel).text(), u"Books");
    EXPECT_EQ(dialog.fake(kViewLabel).text(), u"Default View");
    FakeControl& list = dialog.fake(kRecordList);
    EXPECT_THAT(list.headings(), testing::ElementsAre(u"Title", u"Pages", u"Lent"));
    EXPECT_EQ(list.columns()[0].width, 87);
    EXPECT_EQ(list.columns()[1].width, 49);
    EXPECT_EQ(list.columns()[2].width, 1);
    EXPECT_EQ(list.rowCount(), 3);

    const PaintedRow first = list.paintRow(0);  // selected
    ASSERT_EQ(first.fills.size(), 1u);
    EXPECT_EQ(first.fills[0].color, (Color{64, 188, 255}));
    EXPECT_THAT(first.words(), testing::ElementsAre(u"Emma", u"474"));
    EXPECT_EQ(first.texts[0].area, (Rect{1, 0, 85, 20}));
    EXPECT_EQ(first.texts[1].area, (Rect{88, 0, 47, 20}));
    ASSERT_EQ(first.pictures.size(), 1u);
    EXPECT_EQ(first.pictures[0].picture, Picture::kChecked);
    EXPECT_EQ(first.pictures[0].at.x, 136);  // too narrow for air at its sides
    EXPECT_EQ(list.paintRow(1).fills[0].color, (Color{255, 255, 255}));
    EXPECT_EQ(list.paintRow(1).pictures[0].picture, Picture::kUnchecked);
    EXPECT_EQ(list.paintRow(2).fills[0].color, (Color{224, 224, 224}));
    dialog.phone.scheme = Scheme::kDark;
    const PaintedRow dark = list.paintRow(2);
    EXPECT_LT(dark.fills[0].color.green + 100, dark.texts[0].color.green);
    EXPECT_NE(list.paintRow(0).fills[0].color, dark.fills[0].color);
    EXPECT_TRUE(list.paintRow(3).texts.empty());
    EXPECT_EQ(dialog.handler.rowText(dialog, kRecordList, 0), u"Emma, 474, 1");
  });
  EXPECT_EQ(closeAndRun(), kDialogClosed);
  EXPECT_FALSE(IsDatabaseOpen(app));
}

TEST_F(RecordList, FitsTheScreen) {
  database = world.make("Books", kBookFields, kBooks);
  for (const Size size : {Size{240, 320}, Size{320, 240}, Size{480, 640}}) {
    world.phone.screen = size;
    const int hidden = std::min(30, std::max(0, 4 * 87 - size.width));  // 4 columns of 87 pixels
    list()
        .look([&](FakeDialog& dialog) {
          EXPECT_EQ(dialog.fake(kRecordList).place(),
                    (Rect{0, 26, size.width, dialog.screenSize().height - 26}));
          const Rect name = dialog.fake(kNameLabel).place();
          const Rect view = dialog.fake(kViewLabel).place();
          EXPECT_EQ(name.x + name.width, view.x);
          EXPECT_GE(view.x + view.width, size.width - 2);
          EXPECT_LE(view.x + view.width, size.width);
        })
        .press(Key::kRight)
        .look([&](FakeDialog& dialog) {
          EXPECT_EQ(dialog.fake(kRecordList).scrolled, hidden);
          EXPECT_EQ(dialog.fake(kRecordList).paintRow(0).texts[0].area.x, 1 - hidden);
        })
        .press(Key::kLeft)
        .look([](FakeDialog& dialog) { EXPECT_EQ(dialog.fake(kRecordList).scrolled, 0); });
    closeAndRun();
  }
}

TEST_F(RecordList, WideScreensShowTextsThatPhonesCut) {
  const std::string town(12, 'o');      // 84 pixels and a little air
  const std::string history(100, 'h');  // more than any column gets
  database = world.make("Towns", {{"No"}, {"Town"}, {"History", FieldType::kText, 120}},
                        {{"1", town, history}});
  for (std::size_t i = 0; i < 3; ++i) database->schema.fields[i].column_width = 50;
  const auto widths = [&](int screen) {
    std::vector<int> found;
    world.phone.screen = {screen, 320};
    list().look([&](FakeDialog& dialog) {
      for (const auto& column : dialog.fake(kRecordList).columns()) found.push_back(column.width);
    });
    closeAndRun();
    return found;
  };
  EXPECT_EQ(widths(320), (std::vector<int>{75, 75, 75}));
  EXPECT_EQ(widths(480), (std::vector<int>{75, 92, 297})) << "all that is left";
  EXPECT_EQ(widths(800), (std::vector<int>{75, 92, 320}));
}

TEST_F(RecordList, QuickFindSelectsTheFirstThatBeginsSo) {
  database = world.make("Towns", {{"Name"}},
                        {{"Alba"}, {"Bern 1"}, {"BERN 12"}, {"Cork"}, {std::string(35, 'z')}});
  const auto says = [](const std::u16string& title) {
    return [title](FakeDialog& dialog) { EXPECT_EQ(dialog.title, title); };
  };
  list().type(u"bern").look(selects(1)).type(u" 12").look(selects(2));
  list().type(u"x").look(selects(2));  // no such town: forgotten
  list().press(Key::kBack).look(selects(1)).look(says(u"Find: bern 1"));
  list().press(Key::kBack,
               6 + 2);  // all gone; the database stays open, however often it is pressed
  list().type(u"c").look(selects(3)).fire(kFindTimer).look(says(u"Tabelion"));  // a pause
  list().type(u"b").look(selects(1)).type(u"ern 12").fire(kFindTimer);
  list().type(u"cork").look(selects(3)).press(Key::kDown).look(selects(4)).press(Key::kUp, 4);
  list().type(std::u16string(40, u'z')).look(selects(4));  // only 29 count
  list().press(Key::kBack, 28).type(u"Z").look(selects(4));
  list().press(Key::kUp).press(Key::kBack);  // after a move Back leaves the screen
  run();
}

TEST_F(RecordList, QuickFindPassesByWhatIsEnciphered) {
  database = world.make("Towns", {{"Name"}}, {{"Alba"}, {"Xanten"}});
  database->schema.fields[0].encrypt_flag = 1;
  database->schema.encryption_mode = kEncryptRecordsByHand;
  world.markEnciphered(*database, 0);
  list().type(u"x").look(selects(1));
  closeAndRun();
}

// Compat: whatever the order.
TEST_F(RecordList, FirstRowOpensRecordZero) {
  database = world.make("Books", {{"Title"}}, {{"a"}, {"b"}, {"c"}});
  app.engine.steps.refresh = [](Database& opened) {
    opened.record_index = {2, 1, 0};
    return 1;
  };
  list().row(kRecordList, 0).look([](FakeDialog& dialog) {
    EXPECT_THAT(dialog.fake(kRecordList).paintRow(0).words(), testing::ElementsAre(u"c"));
  });
  list().press(Key::kEnter);
  form().look(shows(0, u"a")).choose({u"Menu", u"Cancel"});
  open(1);
  form().look(shows(0, u"b")).choose({u"Menu", u"Cancel"});
  closeAndRun();
}

TEST_F(RecordList, EmptyDatabaseOpensAFormThatTakesNothing) {
  database = world.make("Empty", {{"Title"}, {"Read", FieldType::kCheckBox}}, {});
  list().look(hasRows(0)).press(Key::kEnter);
  form().type(u"x").look(shows(0, u"")).look([](FakeDialog& dialog) {
    EXPECT_FALSE(dialog.fake(FormValue(1)).face.enabled);
  });
  form().choose({u"Done"});
  closeAndRun();
}

TEST_F(RecordList, SavesAndComesBackToTheSameRecord) {
  path = world.add("Books", kBookFields, kBooks);
  list().press(Key::kDown, 2);
  save();
  list().look([&](FakeDialog&) { world.files.fail_replace_at = 0; }).choose({u"Menu", u"Save"});
  world.phone.says(
      u"ERROR:File could not be saved\nCould not write /documents/Tabelion/Books.PDB: the disk is "
      u"full",
      u"Update");
  close();
  runFile();
  list().look(selects(2));
  close();
  runFile();
  ASSERT_EQ(world.phone.boxes.size(), 2u);
  EXPECT_EQ(world.phone.boxes[0].icon, MessageIcon::kInformation);
  EXPECT_EQ(world.phone.boxes[1].icon, MessageIcon::kError);
}

TEST_F(RecordList, AFileThatIsNowhereLeavesTheScreenEmpty) {
  world.files.card = "/card";
  path = world.add("Books", kBookFields, kBooks);
  const auto file = world.files.bytes(path);
  ASSERT_TRUE(world.files.remove(path).ok());
  list()
      .look(hasRows(0))
      .look([](FakeDialog& dialog) {
        EXPECT_EQ(dialog.fake(kNameLabel).text(), u"");
        EXPECT_THAT(dialog.menuTexts({u"Menu"}),
                    testing::IsSupersetOf({u"-Delete", u"-Save", u"-Undo", u"Close"}));
      })
      .choose({u"New Record"})
      .type(u"e")
      .press(Key::kEnter)
      .press(Key::kBack);
  list().look(hasRows(3)).press(Key::kBack);
  world.phone.play([&] {
    ShowRecordList(app, path);
    world.files.put("/card/Tabelion/Books.PDB", file);  // the same file, moved to the card
    ShowRecordList(app, path);
  });
}

// Nothing is asked for and nothing deciphered.
TEST_F(RecordList, RefusesADatabaseWhoseFormCannotBe) {
  database = world.make("Bad", {{"Title"}}, {{"a"}});
  database->schema.label_width_adjustment = 86;
  database->schema.fields[0].encrypt_flag = 1;
  database->schema.encryption_mode = kEncryptWholeDatabase;
  world.markEnciphered(*database, 0);
  world.phone.says(u"This database appears to be corrupt.", u"Open Database");
  EXPECT_EQ(run(), kDialogClosed);
  EXPECT_FALSE(IsDatabaseOpen(app));
}

TEST_F(RecordList, AskingForThePasswordGoesOnAfterAWrongOne) {
  database = world.make("Safe", {{"Title"}}, {{"gold"}});
  database->schema.security_word = 1;
  setAreaText(database->schema.access_password, "sesame");
  password(u"sesam");
  world.phone.says(u"Invalid Password", u"Error");
  closeAndRun();
  cancelPassword();
  runFile();
}

}  // namespace
}  // namespace tabelion
