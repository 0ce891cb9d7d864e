#include "screens/lists/popup_list.h"

#include "screens/list_test.h"
#include "screens/lists/popup_text.h"
#include "screens/records/record_form.h"
#include "security/access_rights.h"

namespace tabelion {
namespace {

enum Slot { kName, kKind };

// A database of things of several kinds, and the list of kinds opened from the first one's form.
class PopupList : public ListTest {
 protected:
  void SetUp() override {
    database = world.make("Things", {{"Name"}, {"Kind", FieldType::kPopup}}, {});
    fill("a.b..c.de");
  }
  // The items in one line: their names, each behind a dot per level. Their keys tell their names.
  void fill(const std::string& line) {
    PopupItems& items = database->fields[kKind].items;
    items.clear();
    for (std::size_t i = 0; i < line.size(); ++i) {
      PopupItem item;
      while (line[i] == '.') ++i, ++item.key[kItemLevelOffset];
      item.text = std::string(1, line[i]);
      item.key[0] = static_cast<std::uint8_t>(line[i]);
      items.push_back(item);
    }
  }
  std::string tree() const {
    std::string line;
    for (const PopupItem& item : database->fields[kKind].items) {
      line += std::string(static_cast<std::size_t>(item.level()), '.') + item.text;
    }
    return line;
  }
  void addThing(const std::string& kind) { world.addRow(*database, {"thing", kind}); }

  // The form is left with Done.
  void play() {
    form().choose({u"Done"});
    ListTest::play();
  }
  ScreenScript popups() { return world.phone.at(kPopupListScreen); }
  ScreenScript text() { return world.phone.at(kPopupTextScreen); }
  void open(int row = 0) {
    list().row(kRecordList, row).press(Key::kEnter);
    form().focus(FormValue(kKind)).choose({u"Menu", u"Popup"});
  }
  // The level shown, as "title: rows", the selected one in brackets.
  static Look sees(const std::u16string& level) {
    return [level](FakeDialog& dialog) {
      FakeControl& items = dialog.fake(kPopupItems);
      std::u16string seen = dialog.title + u":";
      for (int row = 0; row < items.rowCount(); ++row) {
        const std::u16string name = items.paintRow(row).words()[0] == u">"
                                        ? items.paintRow(row).words()[1] + u">"
                                        : items.paintRow(row).words()[0];
        seen += row == items.selectedRow() ? u" [" + name + u"]" : u" " + name;
      }
      EXPECT_EQ(narrow(seen), narrow(level));
    };
  }
  std::string kindOf(std::uint32_t record) {
    return fieldText(*database, database->records[record].bytes(), kKind, isoSettings()).text;
  }
};

TEST_F(PopupList, LevelsAreWalkedAndAnItemTaken) {
  addThing("c");
  open();
  popups()
      .look(sees(u"Kind: b: No Value [c]"))
      .look(
          offers({u"Menu"}, {u"Back Level", u"Move Up", u"Move Down", u"Demote", u"Promote", u"New",
                             u"Rename", u"Delete", u"-Next Level", u"-Undo", u"-Redo", u"Cancel"}))
      .row(kPopupItems, 0)
      .look(offers({u"Menu"},
                   {u"-Back Level", u"-Move Up", u"-Move Down", u"-Demote", u"-Promote", u"New",
                    u"-Rename", u"-Delete", u"-Next Level", u"-Undo", u"-Redo", u"Cancel"}));
  popups().press(Key::kLeft).look(sees(u"Kind: a: No Value [b>] d"));
  popups().choose({u"Menu", u"Back Level"}).look(sees(u"Kind: No Value [a>] e"));
  popups().type(u"E").press(Key::kRight);  // nothing lies below it
  popups().press(Key::kEnter);
  form().look(selects(FormValue(kKind), 4));
  play();
  EXPECT_EQ(kindOf(0), "e");
  EXPECT_EQ(tree(), "a.b..c.de");
}

TEST_F(PopupList, EditsAreStepsThatUndoTakesBack) {
  addThing("c");
  addThing("d");
  open(1);
  popups().look(sees(u"Kind: a: No Value b> [d]")).choose({u"Menu", u"New"});
  text().press(Key::kEnter);
  world.phone.says(u"You must enter a Popup Value", u"Popup Error");
  text().type(u"b").press(Key::kEnter);
  world.phone.says(u"There is a \"b\" on this level already.", u"Popup Error");
  text().type(u"N").press(Key::kEnter);
  popups().look(sees(u"Kind: a: No Value b> d [N]")).choose({u"Menu", u"Demote"});
  popups().look(sees(u"Kind: d: No Value [N]")).choose({u"Menu", u"Demote"});
  world.phone.says(u"There is no item before it on this level to go below.", u"Demote");
  popups().press(Key::kLeft).choose({u"Menu", u"Move Up"}).look(sees(u"Kind: a: No Value [d>] b>"));
  popups().choose({u"Menu", u"Promote"}).look(sees(u"Kind: No Value a> [d>] e"));
  popups().choose({u"Menu", u"Promote"});
  world.phone.says(u"The item is on the top level already.", u"Promote");
  popups().choose({u"Menu", u"Rename"});
  text().write(kPopupTextBox, u"Dog").press(Key::kEnter);
  popups().look(sees(u"Kind: No Value a> [Dog>] e"));
  popups().choose({u"Menu", u"Undo Rename of popup item"});
  popups().press(Key::kRedo).press(Key::kUndo, 2).look(sees(u"Kind: a: No Value [d>] b>"));
  popups().choose({u"Menu", u"Redo Promotion of popup item"}).choose({u"Menu", u"Cancel"});
  form().choose({u"Menu", u"Undo Promotion of popup item"}).choose({u"Menu", u"Popup"});
  popups().look([](FakeDialog& dialog) {  // what was done before this screen is not its to undo
    EXPECT_EQ(dialog.menuTexts({u"Menu"})[9], u"-Undo");
  });
  popups().press(Key::kBack);
  play();
  EXPECT_EQ(tree(), "a.d..N.b..ce");
  EXPECT_EQ(kindOf(0) + kindOf(1), "cd");
}

TEST_F(PopupList, NewItemsGoBehindTheSelectedOneOrBelowTheParentShown) {
  addThing("a");
  open();
  const auto add = [&](const std::u16string& name) {
    popups().choose({u"Menu", u"New"});
    text().type(name).press(Key::kEnter);
  };
  add(u"N");  // behind all that lies below a
  popups().look(sees(u"Kind: No Value a> [N] e")).row(kPopupItems, 1);
  popups().press(Key::kRight).row(kPopupItems, 0);
  add(u"F");
  popups().look(sees(u"Kind: a: No Value [F] b> d")).press(Key::kLeft).row(kPopupItems, 0);
  add(u"Z");
  popups().look(sees(u"Kind: No Value a> N e [Z]")).choose({u"Done"});
  play();
  EXPECT_EQ(tree(), "a.F.b..c.dNeZ");
  EXPECT_EQ(kindOf(0), "Z");
}

TEST_F(PopupList, DeletedItemsAreAskedAboutWhereRecordsUseThem) {
  addThing("c");
  addThing("b");
  addThing("e");
  open(2);
  const auto remove = [&](const std::u16string& question = {}, bool yes = true) {
    popups().choose({u"Menu", u"Delete"});
    if (question.empty()) return;
    world.phone.asks(question, u"Confirm Delete", yes ? MessageAnswer::kYes : MessageAnswer::kNo);
  };
  const char16_t branch[] =
      u"\"b\" and the 1 item below it are used by 2 records, which will show \"No Value\". "
      u"Delete them?";
  remove(u"\"e\" is used by 1 record, which will show \"No Value\". Delete it?");
  popups().look(sees(u"Kind: No Value [a>]")).press(Key::kRight);
  remove(branch, false);
  popups().row(kPopupItems, 2);
  remove();  // nobody would miss it
  popups().look(sees(u"Kind: a: No Value [b>]"));
  remove(branch);
  popups().look(sees(u"Kind: No Value [a]"));
  popups().choose({u"Menu", u"Undo Delete of 2 popup items"}).press(Key::kBack);
  form().look(selects(FormValue(kKind), 3));  // "No Value"
  form().write(FormValue(kName), u"kept");
  play();
  EXPECT_EQ(tree(), "a.b..c");
  EXPECT_EQ(kindOf(0) + kindOf(1) + kindOf(2), "cbNo Value");
  EXPECT_EQ((*slotValue(database->records[2].bytes(), kKind))[0], 'e')
      << "the value stays, in case the item comes back";
}

TEST_F(PopupList, SortedRecordsFollowANewNameAndTheFormItsRecord) {
  database->schema.sort[0] = {kKind, 1};
  addThing("a");
  addThing("e");
  open();
  popups().choose({u"Menu", u"Rename"});
  text().write(kPopupTextBox, u"zebra").press(Key::kEnter);
  popups().press(Key::kBack);
  form().write(FormValue(kName), u"striped");
  play();
  EXPECT_EQ(kindOf(0) + " " + kindOf(1), "e zebra");
  EXPECT_EQ(fieldText(*database, database->records[1].bytes(), kName, isoSettings()).text,
            "striped");
}

TEST_F(PopupList, FullListsTakeNoMore) {
  fill(std::string(60, 'a'));
  addThing("");
  open();
  popups().choose({u"Menu", u"New"});
  world.phone.says(u"You have reached the maximum number of popups allowed!", u"Sorry!");
  popups().choose({u"Menu", u"Cancel"});
  play();
  EXPECT_EQ(database->fields[kKind].items.size(), 60u);
}

TEST_F(PopupList, WithoutTheRightItemsAreOnlyChosen) {
  setSecurityCode(database->schema, Operation::kEditPopups, kCodeRefused);
  addThing("c");
  open();
  popups().look([](FakeDialog& dialog) { EXPECT_EQ(dialog.menu_bar.right.text, u"Back Level"); });
  popups().choose({u"Back Level"}).choose({u"Back Level"}).choose({u"Cancel"});
  form().activate(FormValue(kKind));
  world.phone.offers(u"No Value");
  play();
  EXPECT_EQ(kindOf(0), "No Value");
}

}  // namespace
}  // namespace tabelion
