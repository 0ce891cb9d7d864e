// Run Report, from the list.
#include "screens/output/run_report.h"

#include "screens/list_test.h"

namespace tabelion {
namespace {

constexpr char16_t kNoField[] = u"You must first select a field to run the report on!";

class RunReport : public ListTest {
 protected:
  void SetUp() override {
    database =
        world.make("Trips",
                   {{"Place"},
                    {"Cost", FieldType::kInteger},
                    {"Kind", FieldType::kPopup},
                    {"Paid", FieldType::kCheckBox}},
                   {{"Bern", "12", "", "1"}, {"Oslo", "7", "", "0"}, {"Rome", "-4", "", "1"}});
  }
  void play() {
    const auto before = world.files.bytes(world.store(*database));
    ListTest::play();
    EXPECT_EQ(world.files.bytes(database->path), before);  // nothing changed
  }
  ScreenScript report() { return world.phone.at(kRunReportScreen); }
  ScreenScript open() {
    list().choose({u"Menu", u"Reports"});
    return report();
  }
  static Look shows(bool text, bool picture) {
    return [text, picture](FakeDialog& dialog) {
      EXPECT_EQ(dialog.fake(kReportText).face.visible, text);
      EXPECT_EQ(dialog.fake(kReportPicture).face.visible, picture);
    };
  }
};

TEST_F(RunReport, ListsFieldsAsksForOneAndShowsItsTextAndPictureInTurn) {
  open()
      .look(choosesFrom(kReportField, {u"Cost", u"Paid"}))
      .look(selects(kReportField, -1))
      .look(shows(true, false))
      .choose({u"Run Report"});
  world.phone.says(kNoField, u"ERROR");
  report()
      .pick(kReportField, u"Paid")
      .pick(kReportField, u"Cost")
      .look([](FakeDialog& dialog) {
        EXPECT_NE(dialog.fake(kReportText).text().find(u"Sum:\r\n\t\t15\r\n"),
                  std::u16string::npos);
      })
      .look(shows(true, false))
      .choose({u"Picture"})
      .look(shows(false, true))
      .look(hasFocus(kReportPicture))
      .look([](FakeDialog& dialog) {
        FakeControl& picture = dialog.fake(kReportPicture);
        EXPECT_TRUE(picture.spoken().starts_with(u"Picture, 3 records by value"));
        EXPECT_EQ(picture.paintCanvas().fills.size(), 3u);
      })
      .press(Key::kRight, 2)  // to the last field
      .look(selects(kReportField, 1))
      .look([](FakeDialog& dialog) {
        EXPECT_NE(narrow(dialog.fake(kReportPicture).spoken()).find("Checked: 2, 67%"),
                  std::string::npos);
      })
      .look(shows(false, true))
      .press(Key::kLeft)
      .choose({u"Text"})
      .look(shows(true, false))
      .choose({u"Menu", u"Run Report"})
      .press(Key::kBack);
  play();
}

TEST_F(RunReport, PopupFieldsHaveAPictureOnly) {
  open()
      .pick(kReportField, u"Cost")
      .choose({u"Menu", u"Popup Chart", u"Kind"})
      .look(shows(false, true))
      .look(selects(kReportField, -1))
      .look(reads(kReportText, u""))
      .look(speaks(kReportPicture, u"Picture, Kind: 3 records. No Value: 3, 100%."))
      .choose({u"Run Report"});
  world.phone.says(kNoField, u"ERROR");
  report().pick(kReportField, u"Paid").look(shows(true, false)).choose({u"Menu", u"Close"});
  play();
}

TEST_F(RunReport, LargerScreensShowBoth) {
  world.phone.screen = {800, 600};
  open()
      .pick(kReportField, u"Cost")
      .look(shows(true, true))
      .look([this](FakeDialog& dialog) {
        EXPECT_EQ(dialog.menu_bar.left.text, u"Run Report");
        Rect text = dialog.fake(kReportText).place();
        Rect picture = dialog.fake(kReportPicture).place();
        EXPECT_GE(picture.x, text.x + text.width);
        world.phone.screen = {480, 640};
        dialog.handler.onResize(dialog);
        text = dialog.fake(kReportText).place();
        picture = dialog.fake(kReportPicture).place();
        EXPECT_GE(picture.y, text.y + text.height);
        EXPECT_LE(dialog.content_height, dialog.screenSize().height);
        world.phone.screen = {240, 320};
        dialog.handler.onResize(dialog);
      })
      .look(shows(true, false))
      .press(Key::kBack);
  play();
}

TEST_F(RunReport, EmptyDatabasesAndThoseWithoutSuchFieldsAreFine) {
  database->records.clear();
  open()
      .pick(kReportField, u"Paid")
      .choose({u"Picture"})
      .look(speaks(kReportPicture, u"Picture, No records."))
      .press(Key::kBack);
  play();
  database = world.make("Names", {{"Name"}}, {{"Ash"}});
  open().choose({u"Run Report"});
  world.phone.says(kNoField, u"ERROR");
  report().look(offers({u"Menu"}, {u"Close"})).press(Key::kBack);
  play();
}

}  // namespace
}  // namespace tabelion
