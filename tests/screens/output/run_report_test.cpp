// Run Report, from the list.
#include "screens/output/run_report.h"

#include "screens/kit/screen_numbers.h"
#include "screens/records/record_list.h"
#include "support/phone_world.h"

namespace tabelion {
namespace {

constexpr char16_t kNoField[] = u"You must first select a field to run the report on!";

class RunReport : public testing::Test {
 protected:
  void SetUp() override { make(); }
  void make() {
    database =
        world.make("Trips",
                   {{"Place"},
                    {"Cost", FieldType::kInteger},
                    {"Kind", FieldType::kPopup},
                    {"Paid", FieldType::kCheckBox}},
                   {{"Bern", "12", "", "1"}, {"Oslo", "7", "", "0"}, {"Rome", "-4", "", "1"}});
  }
  void play() {
    const std::string path = world.store(*database);
    const auto before = world.files.bytes(path);
    Application app(world.platform);
    list().choose({u"Menu", u"Close"});  // nothing changed: no question
    world.phone.play([&] { ShowRecordList(app, path); });
    EXPECT_EQ(world.files.bytes(path), before);
  }
  ScreenScript list() { return world.phone.at(kRecordListScreen); }
  ScreenScript report() { return world.phone.at(kRunReportScreen); }
  ScreenScript open() {
    list().choose({u"Menu", u"Reports"});
    return report();
  }
  static std::function<void(FakeDialog&)> shows(bool text, bool picture) {
    return [text, picture](FakeDialog& dialog) {
      EXPECT_EQ(dialog.fake(kReportText).face.visible, text);
      EXPECT_EQ(dialog.fake(kReportPicture).face.visible, picture);
    };
  }

  PhoneWorld world;
  std::unique_ptr<Database> database;
};

TEST_F(RunReport, ListsFieldsAsksForOneAndShowsItsTextAndPictureInTurn) {
  open()
      .look([](FakeDialog& dialog) {
        EXPECT_EQ(dialog.title, u"Run Report");
        const FakeControl& field = dialog.fake(kReportField);
        EXPECT_EQ(field.choices, (std::vector<std::u16string>{u"Cost", u"Paid"}));
        EXPECT_EQ(field.selection(), -1);
        EXPECT_EQ(dialog.menu_bar.left.text, u"Run Report");
      })
      .look(shows(true, false))
      .choose({u"Run Report"});
  world.phone.says(kNoField, u"ERROR");
  report()
      .pick(kReportField, u"Paid")
      .pick(kReportField, u"Cost")
      .look([](FakeDialog& dialog) {
        EXPECT_EQ(dialog.fake(kReportText).text(),
                  u"Report for Cost\r\nNumber of Entries:\r\n\t3\r\nMinimum Value:\r\n\t-4\r\n"
                  u"Maximum Value:\r\n\t12\r\nSum:\r\n\t\t15\r\nMinimum Total:\r\n\t12\r\n"
                  u"Maximum Total:\r\n\t19\r\nAverage:\r\n\t\t5");
        EXPECT_EQ(dialog.menu_bar.left.text, u"Picture");
      })
      .look(shows(true, false))
      .choose({u"Picture"})
      .look(shows(false, true))
      .look([](FakeDialog& dialog) {
        FakeControl& picture = dialog.fake(kReportPicture);
        EXPECT_TRUE(picture.hasFocus());
        EXPECT_NE(narrow(picture.spoken()).find("Picture, 3 records by value"), std::string::npos);
        const PaintedCanvas painted = picture.paintCanvas();
        EXPECT_EQ(painted.fills.size(), 3u);
        EXPECT_EQ(dialog.menu_bar.left.text, u"Text");
      })
      .press(Key::kRight, 2)  // to the last field
      .look([](FakeDialog& dialog) {
        EXPECT_EQ(dialog.fake(kReportField).selection(), 1);
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
      .look([](FakeDialog& dialog) {
        EXPECT_EQ(dialog.fake(kReportField).selection(), -1);
        EXPECT_EQ(dialog.fake(kReportText).text(), u"");
        EXPECT_EQ(dialog.fake(kReportPicture).spoken(),
                  u"Picture, Kind: 3 records. No Value: 3, 100%.");
      })
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
        Rect text = dialog.fake(kReportText).place();
        Rect picture = dialog.fake(kReportPicture).place();
        EXPECT_GE(picture.x, text.x + text.width);
        EXPECT_EQ(dialog.menu_bar.left.text, u"Run Report");
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
      .look([](FakeDialog& dialog) {
        EXPECT_EQ(dialog.fake(kReportPicture).spoken(), u"Picture, No records.");
      })
      .press(Key::kBack);
  play();
  database = world.make("Names", {{"Name"}}, {{"Ash"}});
  open().choose({u"Run Report"});
  world.phone.says(kNoField, u"ERROR");
  report()
      .look([](FakeDialog& dialog) {
        EXPECT_EQ(dialog.menuTexts({u"Menu"}), std::vector<std::u16string>{u"Close"});
      })
      .press(Key::kBack);
  play();
}

}  // namespace
}  // namespace tabelion
