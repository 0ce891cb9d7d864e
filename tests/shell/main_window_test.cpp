#include "shell/main_window.h"

#include "screens/files/changed_file.h"
#include "screens/files/save_question.h"
#include "screens/kit/screen_numbers.h"
#include "screens/program/preferences_screen.h"
#include "screens/records/edit_record.h"
#include "screens/records/record_list.h"
#include "services/modal.h"
#include "support/menu_walk.h"
#include "support/phone_world.h"

namespace tabelion {
namespace {

class Chooser : public testing::Test {
 protected:
  ScreenScript chooser() { return world.phone.at(kChooserScreen); }
  void run(const StartOptions& options = {}, const AlarmStep& alarm = {}) {
    world.phone.play([&] { EXPECT_EQ(RunTabelion(world.platform, options, alarm), 0); });
  }
  // What another start, the desktop or the session says while a screen is shown.
  auto hears(RequestKind kind, const std::string& text = {}) {
    return [this, kind, text](FakeDialog&) { world.instance.send({kind, text, {}}); };
  }
  static auto shows(const std::vector<std::u16string>& names) {
    return [names](FakeDialog& dialog) {
      const FakeControl& list = dialog.fake(kDatabaseList);
      std::vector<std::u16string> rows;
      for (int row = 0; row < list.rowCount(); ++row) {
        rows.push_back(dialog.handler.rowText(dialog, kDatabaseList, row));
      }
      EXPECT_EQ(rows, names);
    };
  }
  void putSamples() {
    const std::string path = world.add("Recipes", {{"Dish"}}, {{"Soup"}});
    world.files.put("/samples/Recipes.PDB", world.files.bytes(path));
    ASSERT_TRUE(world.files.remove(path).ok());
  }

  PhoneWorld world;
  const std::u16string offer = u"Install Sample Database? (Y/N)";
};

TEST_F(Chooser, OffersSamplesUntilNo) {
  putSamples();
  world.phone.asks(offer, u"QUESTION", MessageAnswer::kYes);
  chooser().look(shows({u"Recipes"})).choose({u"Menu", u"Exit"});
  run();
  EXPECT_EQ(world.setting("SampleDBs"), "0");

  // Yes left the question armed; without samples it comes twice, since the list is filled twice.
  ASSERT_TRUE(world.files.remove("/documents/Tabelion/Recipes.PDB").ok());
  ASSERT_TRUE(world.files.remove("/samples/Recipes.PDB").ok());
  world.phone.asks(offer, u"QUESTION", MessageAnswer::kYes);
  world.phone.asks(offer, u"QUESTION", MessageAnswer::kNo);
  chooser().look(shows({})).press(Key::kEnter).choose({u"Menu", u"Refresh"});
  chooser().choose({u"Menu", u"Exit"});
  run();
  EXPECT_EQ(world.setting("SampleDBs"), "1");
  chooser().choose({u"Menu", u"Exit"});
  run();
}

TEST_F(Chooser, ShowsOneCategoryAtATime) {
  for (const char* name : {"Wines", "Tasks", "Plans"}) {
    const auto database = world.make(name, {{"Name"}}, {});
    if (name[0] != 'W') setAreaText(database->schema.category, "Work");
    world.store(*database);
  }
  chooser()
      .look(shows({u"Plans", u"Tasks", u"Wines"}))
      .look([](FakeDialog& dialog) {
        EXPECT_EQ(dialog.menuTexts({u"All"}),
                  (std::vector<std::u16string>{u"*All", u"Work", u"Unfiled"}));
        EXPECT_EQ(dialog.fake(kDatabaseList).headings(),
                  std::vector<std::u16string>{u"Choose Database:"});
        EXPECT_EQ(dialog.fake(kDatabaseList).columns()[0].width, 230);
        EXPECT_EQ(dialog.fake(kDatabaseList).paintRow(1).words(),
                  std::vector<std::u16string>{u"Tasks"});
      })
      .choose({u"All", u"Work"})
      .look(shows({u"Plans", u"Tasks"}))
      .choose({u"Work", u"Unfiled"})
      .look(shows({u"Wines"}))
      .choose({u"Unfiled", u"All"})
      .look(shows({u"Plans", u"Tasks", u"Wines"}))
      .choose({u"Menu", u"Exit"});
  run();
}

TEST_F(Chooser, OpensChangesAndSavesTheSelectedDatabase) {
  world.add("Apples", {{"Sort"}}, {{"Cox"}});
  const std::string path = world.add("Pears", {{"Sort"}}, {{"Conference"}, {"Kieffer"}});
  const auto before = world.read(path);
  chooser().press(Key::kDown).press(Key::kEnter);
  world.phone.at(kRecordListScreen).press(Key::kDown).press(Key::kEnter);
  world.phone.at(kEditRecordScreen).write(FormValue(0), u"Größe").press(Key::kEnter);
  world.phone.at(kRecordListScreen).choose({u"Menu", u"Save"});
  world.phone.says(u"File Saved", u"Update");
  world.phone.at(kRecordListScreen).choose({u"Menu", u"Close"});
  chooser().choose({u"Menu", u"Exit"});
  run();
  EXPECT_EQ(world.cell(path, 1, 0),
            "Gr\xF6\xDF"
            "e");
  const auto after = world.read(path);
  EXPECT_TRUE(std::ranges::equal(before->records[0].bytes(), after->records[0].bytes()));
}

TEST_F(Chooser, CodePageOfThisRunIsTheOneGiven) {
  const std::string path = world.add("Apples", {{"Sort"}}, {{"Cox"}});
  chooser().press(Key::kEnter);
  world.phone.at(kRecordListScreen).press(Key::kEnter);
  world.phone.at(kEditRecordScreen).write(FormValue(0), u"Ж").press(Key::kEnter);
  world.phone.at(kRecordListScreen).choose({u"Menu", u"Close"});
  world.phone.at(kSaveQuestionScreen).activate(kSaveChangesButton);
  chooser().choose({u"Menu", u"Exit"});
  run({.command_line = "", .code_page = "CP1251"});
  EXPECT_EQ(world.cell(path, 0, 0), "\xC6");
  EXPECT_EQ(world.setting("CodePage"), "(none)");
}

TEST_F(Chooser, AutoSaveWritesAnOpenDatabaseAndNothingElse) {
  world.set("AutoSaveSeconds", "30");
  const std::string path = world.add("Apples", {{"Sort"}}, {{"Cox"}, {"Idared"}});
  chooser()
      .look([](FakeDialog& dialog) { EXPECT_EQ(dialog.timers[kAutoSaveTimer], 30000); })
      .fire(kAutoSaveTimer)
      .look([&](FakeDialog&) { EXPECT_EQ(world.files.replaces, 1); })
      .press(Key::kEnter);
  world.phone.at(kRecordListScreen).press(Key::kDown).press(Key::kEnter);
  world.phone.at(kEditRecordScreen).write(FormValue(0), u"Braeburn").press(Key::kPageUp);
  world.phone.at(kEditRecordScreen)
      .write(FormValue(0), u"half ty")
      .fireOf(kChooserScreen, kAutoSaveTimer)
      .look([&](FakeDialog& dialog) {
        EXPECT_EQ(world.cell(path, 1, 0), "Braeburn");
        EXPECT_EQ(world.cell(path, 0, 0), "Cox");
        EXPECT_EQ(dialog.fake(FormValue(0)).text(), u"half ty");
        world.files.fail_replace_at = 0;
      })
      .fireOf(kChooserScreen, kAutoSaveTimer);
  world.phone.says(
      u"ERROR:File could not be saved\nCould not write /documents/Tabelion/Apples.PDB: the disk is "
      u"full",
      u"Update");
  world.phone.at(kEditRecordScreen).choose({u"Menu", u"Cancel"});
  world.phone.at(kRecordListScreen).choose({u"Menu", u"Close"});
  chooser().choose({u"Menu", u"Exit"});
  run();

  // The timer follows what is chosen in a database.
  world.set("AutoSaveSeconds", "0");
  const auto preferences = [&](const std::u16string& seconds, int period_ms) {
    world.phone.at(kRecordListScreen).choose({u"Menu", u"Preferences"});
    world.phone.at(kPreferencesScreen)
        .tick(kSaveByTimeBox)
        .look([=](FakeDialog& dialog) { dialog.fake(kSaveSeconds).setText(seconds); })
        .choose({u"Done"});
    world.phone.at(kRecordListScreen).look([=](FakeDialog& dialog) {
      const auto& timers = dialog.phone.open(kChooserScreen).timers;
      EXPECT_EQ(timers.contains(kAutoSaveTimer) ? timers.at(kAutoSaveTimer) : 0, period_ms);
    });
  };
  chooser().look([](FakeDialog& dialog) { EXPECT_TRUE(dialog.timers.empty()); }).press(Key::kEnter);
  preferences(u"20", 20000);
  preferences(u"", 0);
  world.phone.at(kRecordListScreen).choose({u"Menu", u"Close"});
  chooser().choose({u"Menu", u"Exit"});
  run();
}

TEST_F(Chooser, LaterStartHandsOverWhatItWasStartedFor) {
  for (const auto outcome : {Instance::Outcome::kHandedOver, Instance::Outcome::kNobodyAnswers}) {
    world.instance.outcome = outcome;
    run({.open_file = "/elsewhere/Wines.PDB", .activation_token = "t1"});  // shows nothing
    EXPECT_EQ(world.instance.started.kind, RequestKind::kOpenFile);
    EXPECT_EQ(world.instance.started.text, "/elsewhere/Wines.PDB");
    EXPECT_EQ(world.instance.started.activation_token, "t1");
  }
}

TEST_F(Chooser, OpensTheFileThatTheDesktopNames) {
  const std::string apples = world.add("Apples", {{"Sort"}}, {{"Cox"}});
  const std::string pears = world.add("Pears", {{"Sort"}}, {{"Kieffer"}});
  const auto named = [](const std::u16string& name) {
    return [name](FakeDialog& list) { EXPECT_EQ(list.fake(kNameLabel).text(), name); };
  };
  auto list = world.phone.at(kRecordListScreen);
  list.look(named(u"Pears")).press(Key::kEnter);
  // The one that is open, then another: No, and Yes with a text half typed.
  world.phone.at(kEditRecordScreen)
      .write(FormValue(0), u"Willi")
      .look(hears(RequestKind::kOpenFile, pears))
      .look(hears(RequestKind::kOpenFile, apples));
  const std::u16string question = u"Save and close \"Pears\", and open \"Apples.PDB\"?";
  world.phone.asks(question, u"QUESTION", MessageAnswer::kNo);
  world.phone.at(kEditRecordScreen).look(hears(RequestKind::kOpenFile, apples));
  world.phone.asks(question, u"QUESTION", MessageAnswer::kYes);
  list.look(named(u"Apples")).look(hears(RequestKind::kActivate)).press(Key::kBack);
  chooser().look(hears(RequestKind::kOpenFile, pears));
  list.look(named(u"Pears")).press(Key::kBack);
  chooser().choose({u"Menu", u"Exit"});
  run({.open_file = pears});
  EXPECT_EQ(world.cell(pears, 0, 0), "Willi");
  EXPECT_EQ(world.phone.brought_to_front, 5);
}

TEST_F(Chooser, PlainCommandLineOpensNothing) {
  const std::string path = world.add("Apples", {{"Sort"}}, {{"Cox"}});
  chooser().look(hears(RequestKind::kCommandLine, path)).choose({u"Menu", u"Exit"});
  run({.command_line = path}, [](const std::string&) {
    ADD_FAILURE() << "an alarm was looked for";
    return std::nullopt;
  });
}

// A list that is open says so when something arrives that it can make nothing of.
TEST_F(Chooser, AMessageFromElsewhereIsOnlyNoted) {
  world.add("Apples", {{"Sort"}}, {{"Cox"}});
  chooser().press(Key::kEnter);
  world.phone.at(kRecordListScreen)
      .look(hears(RequestKind::kCommandLine, {}))  // a second start comes to the front, no more
      .look(hears(RequestKind::kCommandLine, "hello"));
  world.phone.says(u"We are in OnCopyDate function", u"WM_COPYDATA active");
  world.phone.at(kRecordListScreen).press(Key::kEnter);
  world.phone.at(kEditRecordScreen)
      .look(hears(RequestKind::kCommandLine, "hello"))
      .choose({u"Menu", u"Cancel"});
  world.phone.at(kRecordListScreen).press(Key::kBack);
  chooser().choose({u"Menu", u"Exit"});
  run();
}

TEST_F(Chooser, AlarmLeadsToItsRecordUnlessAScreenIsOpen) {
  const std::string path = world.add("Apples", {{"Sort"}}, {{"Cox"}, {"Idared"}, {"Jonagold"}});
  const std::string alarm = "AppRunToHandleNotification 17";
  const auto selects = [](int row) {
    return [row](FakeDialog& list) { EXPECT_EQ(list.fake(kRecordList).selectedRow(), row); };
  };
  world.phone.at(kRecordListScreen).look(selects(2)).look(hears(RequestKind::kCommandLine, alarm));
  world.phone.says(
      u"Cannot Open this record because you are in the midst of edit record. Please Open this "
      u"record manually.",
      u"Message");
  world.phone.at(kRecordListScreen).press(Key::kBack);
  chooser().choose({u"Menu", u"Exit"});
  run({.command_line = alarm}, [&](const std::string& command_line) {
    EXPECT_EQ(command_line, alarm);
    return AlarmRecord{path, 2};
  });
}

TEST_F(Chooser, EndOfTheSessionStoresWhatIsHalfTyped) {
  const std::string path = world.add("Apples", {{"Sort"}}, {{"Cox"}});
  chooser().press(Key::kEnter);
  world.phone.at(kRecordListScreen).press(Key::kEnter);
  world.phone.at(kEditRecordScreen)
      .write(FormValue(0), u"Brae")
      .choose({u"Menu", u"Delete Record"});
  world.phone.while_message = [&] { world.instance.send({RequestKind::kQuit, {}, {}}); };
  run();
  EXPECT_EQ(world.cell(path, 0, 0), "Brae");

  world.phone.while_message = [] {};
  chooser().look(hears(RequestKind::kQuit));
  run();

  // What could not be stored is told at the next start, once.
  const std::string diary = world.add("Diary", {{"On", FieldType::kDate}}, {{"2024-02-29"}});
  world.phone.at(kRecordListScreen).press(Key::kEnter);
  world.phone.at(kEditRecordScreen).write(FormValue(0), u"5/6/26").look(hears(RequestKind::kQuit));
  run({.open_file = diary});
  world.phone.says(
      u"This was typed, not understood, and not stored when the program closed the database by "
      u"itself:\nDiary, \"On\": 5/6/26",
      u"Message");
  chooser().choose({u"Menu", u"Exit"});
  run();
  chooser().choose({u"Menu", u"Exit"});
  run();
}

TEST_F(Chooser, TypingSelectsTheDatabaseThatBeginsSo) {
  for (const char* name : {"Plums", "pears", "\xC4pfel"}) world.add(name, {{"Sort"}}, {});
  const auto selects = [](const std::u16string& name, const std::u16string& title) {
    return [=](FakeDialog& dialog) {
      const int row = dialog.fake(kDatabaseList).selectedRow();
      EXPECT_EQ(dialog.handler.rowText(dialog, kDatabaseList, row), name);
      EXPECT_EQ(dialog.title, title);
    };
  };
  chooser().type(u"P\u00C4").look(selects(u"pears", u"Find: P"));
  chooser().type(u"l").look(selects(u"Plums", u"Find: Pl")).fire(kFindTimer);
  chooser().type(u"\u00E4").look(selects(u"\u00C4pfel", u"Find: \u00E4"));
  chooser().press(Key::kBack, 2).choose({u"Menu", u"Exit"});
  run();
}

TEST_F(Chooser, AFileThatIsNotThereIsCalledMissing) {
  world.add("Apples", {{"Sort"}}, {});
  world.phone.says(u"There is no file \"/nowhere/Gone.PDB\".", u"Open Database");
  chooser().choose({u"Menu", u"Exit"});
  run({.open_file = "/nowhere/Gone.PDB"});
}

TEST_F(Chooser, BackAsksBeforeItEndsTheProgram) {
  const std::u16string question = u"Do you want to leave Tabelion?";
  world.add("Apples", {{"Sort"}}, {});
  chooser().press(Key::kBack);
  world.phone.asks(question, u"QUESTION", MessageAnswer::kNo);
  chooser().press(Key::kBack);
  world.phone.asks(question, u"QUESTION", MessageAnswer::kYes);
  run();
}

// From the form upwards each screen does as it does when it is left, and may ask.
TEST_F(Chooser, ClosingTheWindowLeavesEveryScreenInOrder) {
  const std::string path =
      world.add("Apples", {{"Sort"}, {"Picked", FieldType::kDate}}, {{"Cox", "2024-09-01"}});
  const auto close = [this](FakeDialog&) { world.phone.close_window(); };
  world.set("AutoSave", "1");
  chooser().press(Key::kEnter);
  world.phone.at(kRecordListScreen).press(Key::kEnter);
  auto form = world.phone.at(kEditRecordScreen);
  form.write(FormValue(0), u"Brae").write(FormValue(1), u"9/31/2024").look(close);
  world.phone.says(u"\"Picked\" is not a date from 1904 to 9999 like 12/31/2025.", u"Edit Record");
  form.write(FormValue(1), u"9/30/2024").look(close);
  run();
  EXPECT_EQ(world.cell(path, 0, 0), "Brae");
  EXPECT_EQ(world.cell(path, 0, 1), "2024-09-30");

  // Nothing was entered in the new record; the preferences are kept as Done keeps them.
  chooser().press(Key::kEnter);
  world.phone.at(kRecordListScreen).choose({u"New Record"});
  form.look(close);
  run();
  EXPECT_EQ(world.read(path)->records.count(), 1u);
  chooser().press(Key::kEnter);
  world.phone.at(kRecordListScreen).choose({u"Menu", u"Preferences"});
  world.phone.at(kPreferencesScreen).tick(kSaveByTimeBox).write(kSaveSeconds, u"90").look(close);
  run();
  EXPECT_EQ(world.setting("AutoSaveSeconds"), "90");

  // A question in the way is not answered by it.
  world.phone.while_message = [&] { world.phone.close_window(); };
  chooser().choose({u"Menu", u"Delete"});
  run();
  EXPECT_TRUE(world.files.exists(path));
}

TEST_F(Chooser, QuestionThatGivesWayToAFileIsNotANo) {
  const std::string pears = world.add("Pears", {{"Sort"}}, {{"Kieffer"}});
  world.files.put("/documents/Gift.TBP", world.files.bytes(pears));
  world.phone.while_message = [&] { world.instance.send({RequestKind::kOpenFile, pears, {}}); };
  auto list = world.phone.at(kRecordListScreen);
  list.look([&](FakeDialog& screen) {
        EXPECT_EQ(screen.fake(kNameLabel).text(), u"Pears");
        world.phone.while_message = [] {};
      })
      .press(Key::kBack);
  chooser().choose({u"Menu", u"Exit"});
  run();
  EXPECT_TRUE(world.files.exists("/documents/Gift.TBP"));
}

TEST_F(Chooser, ListsTheSecondFileThatASaveLeaves) {
  const std::string path = world.add("Pears", {{"Sort"}}, {{"Kieffer"}});
  const auto theirs = world.files.bytes(path);
  chooser().press(Key::kEnter);
  world.phone.at(kRecordListScreen).press(Key::kEnter);
  world.phone.at(kEditRecordScreen).write(FormValue(0), u"Williams").press(Key::kEnter);
  world.phone.at(kRecordListScreen)
      .look([&](FakeDialog&) { world.files.put(path, theirs); })
      .press(Key::kBack);
  world.phone.at(kSaveQuestionScreen).activate(kSaveChangesButton);
  world.phone.at(kChangedFileScreen).activate(kKeepBothButton);
  chooser().look(shows({u"Pears", u"Pears 2"})).choose({u"Menu", u"Exit"});
  run();
  EXPECT_EQ(world.files.bytes(path), theirs);
  EXPECT_EQ(world.cell("/documents/Tabelion/Pears 2.PDB", 0, 0), "Williams");
}

TEST_F(Chooser, EveryEntryComesBackAndRemovesNothing) {
  const std::string path = world.add("Towns", {{"Name"}}, {{"Berlin"}});
  const auto chosen = walkMenus(world.phone, {.screen = kChooserScreen,
                                              .program = [&] { run(); },
                                              .after =
                                                  [&](const MenuPath& entry) {
                                                    EXPECT_TRUE(world.files.exists(path))
                                                        << narrow(entry.back());
                                                  }});
  EXPECT_GE(chosen.size(), 8u);
}

TEST_F(Chooser, MenuFollowsTheSelectedDatabase) {
  const std::string path = world.add("Pears", {{"Sort"}}, {{"Kieffer"}});
  world.files.card = "/card";
  const auto offers = [](const std::vector<std::u16string>& entries) {
    return [entries](FakeDialog& dialog) {
      std::vector<std::u16string> menu = dialog.menuTexts({u"Menu"});
      EXPECT_EQ(std::vector<std::u16string>(menu.begin() + 3, menu.begin() + 6), entries);
    };
  };
  chooser()
      .look(offers({u"Delete", u"Copy to Card", u"Move to Card"}))
      .choose({u"Menu", u"Copy to Card"})
      .press(Key::kDown)
      .look(shows({u"Pears", u"Pears, Card"}))
      .look(offers({u"Delete", u"Copy to Main Folder", u"Move to Main Folder"}))
      .choose({u"Menu", u"Delete"});
  world.phone.asks(u"Pears", u"Delete?", MessageAnswer::kYes);
  chooser()
      .look(shows({u"Pears"}))
      .look([&](FakeDialog&) { world.files.card.clear(); })
      .look(offers({u"Delete", u"-Copy to Card", u"-Move to Card"}))
      .choose({u"Menu", u"Delete"});
  world.phone.asks(u"Pears", u"Delete?", MessageAnswer::kYes);
  world.phone.asks(offer, u"QUESTION", MessageAnswer::kNo);
  chooser()
      .look(offers({u"-Delete", u"-Copy to Card", u"-Move to Card"}))
      .choose({u"Menu", u"Exit"});
  run();
  EXPECT_FALSE(world.files.exists(path));
}

TEST_F(Chooser, WhereMemoryEndsTheChangesGoIntoACopy) {
  const std::string path = world.add("Pears", {{"Sort"}}, {{"Kieffer"}, {"Bosc"}});
  const auto stored = world.files.bytes(path);
  chooser().press(Key::kEnter);
  world.phone.at(kRecordListScreen).press(Key::kEnter);
  world.phone.at(kEditRecordScreen).write(FormValue(0), u"Williams").press(Key::kEnter);
  world.phone.at(kRecordListScreen).press(Key::kEnter);
  world.phone.at(kEditRecordScreen).look([](FakeDialog&) { throw std::bad_alloc(); });
  world.phone.says(
      u"There is not enough memory to go on, so Tabelion ends. The files hold what was saved last.",
      u"Tabelion");
  world.phone.says(
      u"When the program had to end, \"/documents/Tabelion/Pears.PDB\" could not be saved. It is, "
      u"with what was changed, in \"/documents/Pears.PDB\".",
      u"Update");
  world.phone.play([&] { EXPECT_EQ(RunTabelion(world.platform, {}), kExitNoMemory); });
  EXPECT_EQ(world.files.bytes(path), stored);
  EXPECT_EQ(world.cell("/documents/Pears.PDB", 0, 0), "Williams");
}

}  // namespace
}  // namespace tabelion
