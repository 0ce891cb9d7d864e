// The views menu, Edit Views, Edit View and Fields Setup, from the list.
#include <gmock/gmock.h>

#include "query/view.h"
#include "screens/arrange/edit_view.h"
#include "screens/arrange/edit_views.h"
#include "screens/arrange/fields_setup.h"
#include "screens/arrange/filter_screen.h"
#include "screens/arrange/sort_screen.h"
#include "screens/list_test.h"
#include "services/modal.h"

namespace tabelion {
namespace {

using ::testing::ElementsAre;

class ViewScreens : public ListTest {
 protected:
  void SetUp() override {
    database = world.make("Plants", {{"Name"}, {"Kind"}, {"Memo", FieldType::kNote}},
                          {{"Ash", "tree"}, {"Fern", "shade"}, {"Oak", "tree"}, {"Rue", "herb"}});
    database->schema.sort[0] = {0, 1};
    viewsMenu(*database);  // "Default View"
  }
  View& add(const std::string& name) {
    const int view = addView(*database);
    EXPECT_EQ(storeViewSettings(*database, view, {name, false, {}, false}), "");
    return database->schema.views[static_cast<std::size_t>(view)];
  }
  // Trees alone, from the last to the first, without their kind.
  void addTrees() {
    View& trees = add("Trees");
    trees.sort[0] = {0, 0};
    trees.entries[1].column_width = 0;
    trees.filters[0].enabled = 1;
    trees.filters[0].field = 1;
    setAreaText(trees.filters[0].value1, "tree");
  }
  ScreenScript views() { return world.phone.at(kEditViewsScreen); }
  ScreenScript view() { return world.phone.at(kEditViewScreen); }
  ScreenScript fields() { return world.phone.at(kFieldsSetupScreen); }
  ScreenScript choose(const std::u16string& name) {
    return list().choose({u"Menu", u"Views", name});
  }
  ScreenScript editViews() {
    choose(u"Edit Views ");
    return views();
  }
  // Headings, rows with the selected one in brackets, and the view's name.
  static Look lists(const std::string& expected) {
    return [expected](FakeDialog& dialog) {
      FakeControl& rows = dialog.fake(kRecordList);
      std::string text;
      for (const std::u16string& heading : rows.headings()) text += narrow(heading) + " ";
      for (int row = 0; row < rows.rowCount(); ++row) {
        const std::string name = narrow(rows.paintRow(row).words().at(0));
        text += row == rows.selectedRow() ? "[" + name + "]" : name;
      }
      EXPECT_EQ(text + " " + narrow(dialog.fake(kViewLabel).text()), expected);
    };
  }
  Look unchanged() {
    return [this](FakeDialog&) { EXPECT_FALSE(isDirty(CurrentDatabase(app))); };
  }
  static Look showsView(int row, const std::u16string& text) {
    return [=](FakeDialog& dialog) {
      EXPECT_EQ(dialog.handler.rowText(dialog, kViewList, row), text);
    };
  }
  static Look standsAt(int row, int of) {
    return [=](FakeDialog& dialog) {
      EXPECT_EQ(dialog.fake(kViewList).selectedRow(), row);
      EXPECT_EQ(dialog.fake(kViewList).rowCount(), of);
    };
  }
};

TEST_F(ViewScreens, AViewArrangesTheListAndUndoBringsTheOldOneBack) {
  addTrees();
  list()
      .look(offers({u"Menu", u"Views"}, {u"Default View", u"Trees", u"Edit Views "}))
      .row(kRecordList, 2)
      .look(lists("Name Kind AshFern[Oak]Rue Default View"));
  choose(u"Trees").look(lists("Name [Oak]Ash Trees")).press(Key::kUndo);
  list()
      .look(lists("Name Kind AshFern[Oak]Rue Default View"))
      .choose({u"Menu", u"Redo Choice of view"})
      .look(lists("Name [Oak]Ash Trees"));
  choose(u"Trees").look(lists("Name [Oak]Ash Trees"));  // nothing changes, so no step
  list().look(offers({u"Menu", u"Views"}, {u"Default View", u"*Trees", u"Edit Views "}));
  list().choose({u"Menu", u"Undo Choice of view"}).look(unchanged()).look([](FakeDialog& dialog) {
    EXPECT_THAT(dialog.menuTexts({u"Menu"}), testing::Contains(u"-Undo"));
  });
  play();
}

TEST_F(ViewScreens, TheFirstOfANameIsChosen) {
  addTrees();
  View& other = add("Herbs");
  other.name = database->schema.views[1].name;
  other.filters = {};
  list().look(offers({u"Menu", u"Views"}, {u"Default View", u"Trees", u"Trees", u"Edit Views "}));
  list().look([](FakeDialog& dialog) { dialog.handler.onCommand(dialog, 40103); });
  list().look(lists("Name Oak[Ash] Trees"));  // the one with the filter
  play();
}

TEST_F(ViewScreens, AViewComesIntoBeingWithOkAlone) {
  editViews()
      .look(offers({u"Menu"}, {u"New", u"Copy", u"Edit View", u"Fields Setup", u"Sort", u"Filter",
                               u"-Delete"}))
      .choose({u"Menu", u"New"});
  view().look(reads(kViewName, u"New View")).look(takesFocus(kViewTarget, false));
  view().type(u"x").choose({u"Cancel"});
  views().look(standsAt(0, 1)).look(unchanged()).choose({u"Menu", u"Copy"});
  view().choose({u"OK"});  // a view before it has that name
  world.phone.says(u"The view with the same name already exists in the list", u"Message");
  view().write(kViewName, u" ").choose({u"OK"});
  world.phone.says(u"A view needs a name.", u"Edit View");
  view().write(kViewName, u"Mine").pick(kViewLiveUpdate, u"Live Update").choose({u"OK"});
  views().look(standsAt(1, 2)).look(showsView(1, u"Mine")).choose({u"Done"});
  list()
      .choose({u"Menu", u"Undo Copy of view"})
      .look(offers({u"Menu", u"Views"}, {u"Default View", u"Edit Views "}))
      .press(Key::kRedo);
  play();
  EXPECT_THAT(viewsMenu(*database), ElementsAre("Default View", "Mine"));
  EXPECT_TRUE(viewSettings(database->schema, 1).live_update);
}

TEST_F(ViewScreens, TheTwentyFirstIsRefusedAndADeletionAsks) {
  for (int view = 1; view < kViewSlots; ++view) add("View " + std::to_string(view));
  database->schema.current_view = 19;
  editViews()
      .look(standsAt(19, 20))
      .look(showsView(19, u"View 19 (current)"))
      .look(offers({u"Menu"}, {u"New", u"-Copy", u"Edit View", u"Fields Setup", u"Sort", u"Filter",
                               u"Delete"}))
      .choose({u"Menu", u"New"});
  world.phone.says(u"Sorry, you have reached the maximum number of Views for this database.",
                   u"New View");
  views().choose({u"Menu", u"Delete"});
  world.phone.asks(u"Do you want to delete the view \"View 19\"?", u"Delete?", MessageAnswer::kNo);
  views().choose({u"Menu", u"Delete"});
  world.phone.asks(u"Do you want to delete the view \"View 19\"?", u"Delete?", MessageAnswer::kYes);
  views().look(standsAt(18, 19)).press(Key::kBack);
  list().look(lists("Name Kind [Ash]FernOakRue Default View"));  // none is current
  list().press(Key::kUndo).look(lists("Name Kind [Ash]FernOakRue View 19"));
  play();
}

TEST_F(ViewScreens, FieldsAreSetUpTogetherOrNotAtAll) {
  const auto setUp = [this] { views().choose({u"Menu", u"Fields Setup"}); };
  editViews().press(Key::kEnter);
  view().choose({u"OK"});  // as it was
  setUp();
  fields().pick(kSetupInRecord, u"Not Visible").pick(kSetupField, u"Kind").press(Key::kBack);
  setUp();
  fields().choose({u"OK"});  // as it was
  views().look(unchanged());
  setUp();
  fields()
      .look(reads(kSetupWidth, u"58"))
      .look(selects(kSetupInRecord, 1))
      .write(kSetupWidth, u"0")
      .pick(kSetupField, u"Kind");
  world.phone.says(u"A column is 1 to 32767 pixels wide.", u"Fields Setup");
  fields()
      .look(selects(kSetupField, 0))
      .pick(kSetupInList, u"Not Visible")
      .look(takesFocus(kSetupWidth, false))
      .pick(kSetupField, u"Memo")
      .look(selects(kSetupInList, 0))
      .look(takesFocus(kSetupInList, false))  // no list has a text for a note
      .pick(kSetupExport, u"Do Not Export")
      .choose({u"Menu", u"Move Up"})
      .look(choosesFrom(kSetupField, {u"Name", u"Memo", u"Kind"}))
      .look(reads(kSetupPlace, u"Field 2 of 3"))
      .press(Key::kPageDown, 2)  // Kind, the last
      .write(kSetupWidth, u"90")
      .look(offers({u"Menu"}, {u"Move Up", u"-Move Down", u"Cancel"}))
      .choose({u"OK"});
  views().choose({u"Done"});
  // The current view was none, so the list follows when it is chosen.
  list().look(lists("Name Kind [Ash]FernOakRue Default View"));
  choose(u"Default View").look(lists("Kind [tree]shadetreeherb Default View"));
  play();
  const DatabaseRecord& schema = database->schema;
  EXPECT_THAT(viewFields(schema, 0), ElementsAre(0, 2, 1));
  EXPECT_EQ(schema.fields[1].column_width, 90);
  EXPECT_EQ(viewFieldSettings(schema, 0, 0).column_width, 58);  // for when it shows again
  EXPECT_TRUE(viewFieldSettings(schema, 0, 0).in_record_view);
  EXPECT_FALSE(viewFieldSettings(schema, 0, 2).exported);
}

TEST_F(ViewScreens, TheCurrentViewFollowsWhatItsEditorChanged) {
  addTrees();
  database->schema.views[1].sort[0] = {0, 1};
  chooseView(*database, 1);
  editViews().choose({u"Menu", u"Fields Setup"});
  fields().pick(kSetupField, u"Kind").pick(kSetupInList, u"Visible").choose({u"Menu", u"Move Up"});
  fields().choose({u"OK"});
  views().choose({u"Menu", u"Sort"});
  world.phone.at(kSortScreen).pick(SortWayChoice(0), u"Reverse").choose({u"OK"});
  views().choose({u"Menu", u"Filter"});
  world.phone.at(kFilterScreen).write(FilterControl(0, FilterPart::kFirst), u"e").choose({u"OK"});
  views().press(Key::kBack);
  list()
      .look(lists("Kind Name herbtreeshade[tree] Trees"))
      .choose({u"Menu", u"Undo Filter"})  // with what followed from all three, done in the end
      .look(lists("Name [Ash]Oak Trees"))
      .press(Key::kUndo, 2);
  editViews().press(Key::kBack);  // looked at alone
  list().look([](FakeDialog& dialog) {
    EXPECT_THAT(dialog.menuTexts({u"Menu"}), testing::Contains(u"Redo Setup of fields"));
  });
  play();
}

TEST_F(ViewScreens, AnotherDatabaseOpensInPlaceOfThisOne) {
  world.add("Tools", {{"Tool"}}, {{"Hoe"}, {"Rake"}});
  add("Shed");
  add("Nowhere");
  EXPECT_EQ(storeViewSettings(*database, 2, {"Nowhere", true, "Gone", false}), "");
  choose(u"Nowhere").look(lists("Name Kind [Ash]FernOakRue Default View"));
  editViews().row(kViewList, 1).press(Key::kEnter);
  view()
      .pick(kViewAction, u"Switch DB")
      .look(choosesFrom(kViewTarget, {u"Plants", u"Tools"}))
      .pick(kViewTarget, u"Tools")
      .choose({u"OK"});
  views().look(showsView(1, u"Shed (Switch DB: Tools)")).row(kViewList, 2).press(Key::kEnter);
  view()
      .look(choosesFrom(kViewTarget, {u"Plants", u"Tools", u"Gone"}))  // stored, so it stays
      .look(selects(kViewTarget, 2))
      .choose({u"OK"});
  views().press(Key::kBack);
  choose(u"Shed").look(lists("Tool [Hoe]Rake Default View")).look(reads(kNameLabel, u"Tools"));
  play();
  EXPECT_EQ(viewSettings(database->schema, 1).target, "Tools");  // saved on the way
  EXPECT_TRUE(world.files.lock("/documents/Tabelion/Plants.PDB", "test").ok());
}

TEST_F(ViewScreens, ANameThatNobodyCanMendIsToldLater) {
  addTrees();
  world.set("AutoCloseOption", "1");
  const std::string path = world.store(*database);
  app.preferences.auto_close_enabled = true;
  app.preferences.auto_close_period_ms = 1000;
  editViews().row(kViewList, 1).press(Key::kEnter);
  view()
      .pick(kViewLiveUpdate, u"Live Update")
      .write(kViewName, u"Default View")
      .fire(kAutoCloseTimer);
  world.phone.play([&] { EXPECT_EQ(ShowRecordList(app, path), kDialogAutoClosed); });
  EXPECT_EQ(app.not_stored, Texts{u"Plants: Default View"});
  database = world.read(path);
  EXPECT_TRUE(viewSettings(database->schema, 1).live_update);
  EXPECT_EQ(viewName(database->schema, 1), "Trees");
}

}  // namespace
}  // namespace tabelion
