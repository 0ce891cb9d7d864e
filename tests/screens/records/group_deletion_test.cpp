// Deleting the records within a filter, outside it, or all of them.
#include "screens/files/save_question.h"
#include "screens/kit/screen_numbers.h"
#include "screens/records/record_list.h"
#include "security/access_rights.h"
#include "services/open_database.h"
#include "support/phone_world.h"

namespace tabelion {
namespace {

constexpr char16_t kQuestion[] = u"Records deletion is an irreversible operation, still continue?";

class GroupDeletion : public testing::Test {
 protected:
  GroupDeletion() {
    database = world.make("Songs", {{"Title"}, {"Bars", FieldType::kInteger}},
                          {{"A", "1"}, {"B", "2"}, {"C", "3"}, {"D", "4"}, {"E", "5"}});
    FilterBlock& criterion = database->schema.filters[0];
    criterion.enabled = 1;
    criterion.field = 1;
    criterion.number1 = 2;
    criterion.number2 = 4;
  }
  void play(bool changed) {
    const std::string path = world.store(*database);
    Application app(world.platform);
    open_app = &app;
    list().choose({u"Menu", u"Close"});
    if (changed) world.phone.at(kSaveQuestionScreen).activate(kDiscardChangesButton);
    world.phone.play([&] { ShowRecordList(app, path); });
  }
  ScreenScript list() { return world.phone.at(kRecordListScreen); }
  void choose(const std::u16string& group, MessageAnswer answer) {
    list().choose({u"Menu", u"Delete", group});
    world.phone.asks(kQuestion, u"Delete?", answer);
  }
  // What the list shows, the selected row in brackets, and how many records there are.
  std::function<void(FakeDialog&)> shows(const std::string& titles, std::uint32_t count) {
    return [=, this](FakeDialog& dialog) {
      FakeControl& rows = dialog.fake(kRecordList);
      std::string text;
      for (int row = 0; row < rows.rowCount(); ++row) {
        const std::string title = narrow(rows.paintRow(row).words().at(0));
        text += row == rows.selectedRow() ? "[" + title + "]" : title;
      }
      EXPECT_EQ(text, titles);
      EXPECT_EQ(CurrentDatabase(*open_app).records.count(), count);
    };
  }

  PhoneWorld world;
  Application* open_app = nullptr;
  std::unique_ptr<Database> database;
};

TEST_F(GroupDeletion, TakesItsGroupAsOneStep) {
  list().row(kRecordList, 1).look(shows("B[C]D", 5));
  choose(u"Within Filter", MessageAnswer::kNo);
  list().look(shows("B[C]D", 5));
  choose(u"Within Filter", MessageAnswer::kYes);
  list().look(shows("", 2)).choose({u"Menu", u"Undo Delete of 3 records"}).look(shows("B[C]D", 5));
  choose(u"Outside Filter", MessageAnswer::kYes);
  list().look(shows("B[C]D", 3)).press(Key::kUndo);
  choose(u"All Records", MessageAnswer::kYes);
  list().look(shows("", 0)).choose({u"Menu", u"Undo Delete of 5 records"}).look(shows("B[C]D", 5));
  choose(u"Outside Filter", MessageAnswer::kYes);
  play(true);
}

TEST_F(GroupDeletion, NeedsTheRightToDelete) {
  setSecurityCode(database->schema, Operation::kDelete, kCodeRefused);
  list().choose({u"Menu", u"Delete", u"All Records"});
  world.phone.says(u"Sorry, You do Not have Security Access to Perform this Operation!",
                   u"ACCESS DENIED");
  list().look(shows("[B]CD", 5));
  play(false);
}

// A question that is dismissed because everything closes is no Yes.
TEST_F(GroupDeletion, NobodysSilenceDeletesNothing) {
  choose(u"All Records", MessageAnswer::kNobody);
  list().look(shows("[B]CD", 5));
  play(false);
}

}  // namespace
}  // namespace tabelion
