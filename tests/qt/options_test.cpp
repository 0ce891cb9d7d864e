// The command line of the program.
#include <QTest>
#include <filesystem>
#include <iostream>
#include <sstream>

#include "app/options.h"
#include "app/window_memory.h"
#include "support/memory_settings.h"

namespace tabelion {

class OptionsTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void optionsAndOtherWordsAreTold();
  void wrongOnesAreRefused();
  void theWindowIsAsLargeAsItWasLeft();
};

namespace {

ParsedOptions parse(std::vector<const char*> words) {
  words.insert(words.begin(), "tabelion");
  return parseOptions(int(words.size()), words.data());
}

}  // namespace

void OptionsTest::optionsAndOtherWordsAreTold() {
  const ParsedOptions parsed = parse({"--screen", "320x240", "--zoom", "1.5", "--documents", "/d",
                                      "--code-page", "CP1251", "AppRunToHandleNotification", "17"});
  QVERIFY(!parsed.exit_code);
  QCOMPARE(parsed.options.screen->width, 320);
  QCOMPARE(parsed.options.screen->height, 240);
  QCOMPARE(parsed.options.zoom, 1.5);
  QCOMPARE(parsed.options.documents_folder, std::string("/d"));
  QCOMPARE(parsed.options.code_page, std::string("CP1251"));
  QCOMPARE(parsed.options.command_line, std::string("AppRunToHandleNotification 17"));
  QCOMPARE(parsed.options.open_file, std::string());
  const std::string here = std::filesystem::canonical(".").string();
  QCOMPARE(parse({"--open", "./my a.PDB"}).options.open_file, here + "/my a.PDB");
  QCOMPARE(parse({"--open", "--zoom", "2"}).options.open_file, std::string());
  QCOMPARE(parse({"--open=/nowhere/a.PDB"}).options.open_file, std::string("/nowhere/a.PDB"));
  QCOMPARE(parse({"--scheme", "dark-contrast"}).options.scheme, Scheme::kDarkContrast);
  QVERIFY(!parse({}).options.scheme && !parse({}).options.screen);
  QCOMPARE(
      hintAboutFile({"./here.PDB"}),
      std::string("there is no file ./here.PDB. A database is opened with --open ./here.PDB."));
  QCOMPARE(hintAboutFile({here}), "A database is opened with --open " + here + ".");
  QCOMPARE(hintAboutFile({"AppRunToHandleNotification", "1.5"}), std::string());
  QCOMPARE(hintAboutFile({"17"}), std::string());
  QCOMPARE(parse({"--version"}).exit_code, std::optional<int>(0));
  QCOMPARE(parse({"--help"}).exit_code, std::optional<int>(0));
}

void OptionsTest::wrongOnesAreRefused() {
  for (const char* screen : {"240", "240x", "x320", "240x320x", "-240x320", "1x1", "9999x320"}) {
    QCOMPARE(parse({"--screen", screen}).exit_code, std::optional<int>(kExitUsage));
  }
  QCOMPARE(parse({"--scheme", "blue"}).exit_code, std::optional<int>(kExitUsage));
  QCOMPARE(parse({"--open", "a.PDB", "--tour", "d"}).exit_code, std::optional<int>(kExitUsage));
  for (const char* zoom : {"0", "-1", "much", "1000"}) {
    QCOMPARE(parse({"--zoom", zoom}).exit_code, std::optional<int>(kExitUsage));
  }
  // What is said about them moves no cursor.
  std::ostringstream said;
  std::streambuf* const before = std::cerr.rdbuf(said.rdbuf());
  parse({"--screen", "\x1b[2J"});
  parse({"\x1b[2J.PDB"});
  std::cerr.rdbuf(before);
  QVERIFY(said.str().find('\x1b') == std::string::npos);
  QVERIFY(said.str().find("[2J.PDB") != std::string::npos);
}

void OptionsTest::theWindowIsAsLargeAsItWasLeft() {
  MemorySettings settings;
  QVERIFY(!RememberedWindow(settings, {1920, 1080}));
  const WindowSize left{{320, 400}, 2.25};
  RememberWindow(settings, {1920, 1080}, {{240, 320}, 2});
  RememberWindow(settings, {800, 600}, {{240, 320}, 1.5});
  RememberWindow(settings, {1920, 1080}, left);
  QVERIFY(RememberedWindow(settings, {1920, 1080}) == left);
  QVERIFY((RememberedWindow(settings, {800, 600}) == WindowSize{{240, 320}, 1.5}));
  QVERIFY(!RememberedWindow(settings, {1280, 720}));
  // A desktop that shows a panel since then has less room than it had.
  QVERIFY((FittedWindow(left, {720, 540}) == WindowSize{{320, 400}, 1.35}));
  QVERIFY((FittedWindow({{2000, 400}, 2}, {800, 600}) == WindowSize{{1600, 400}, 0.5}));
}

}  // namespace tabelion

QTEST_MAIN(tabelion::OptionsTest)
#include "options_test.moc"
