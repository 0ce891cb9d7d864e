// Auto-close in the real window, by real timers: nobody is there, and everything closes.
#include <QElapsedTimer>

#include "screens/kit/screen_numbers.h"
#include "screens/records/edit_record.h"
#include "screens/records/record_list.h"
#include "scripted_run.h"
#include "support/phone_world.h"

namespace tabelion {

class AutoCloseTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void whatIsOnTheScreenIsStoredAndEverythingCloses_data();
  void whatIsOnTheScreenIsStoredAndEverythingCloses();
};

namespace {

constexpr int kPeriodMs = 300;

}  // namespace

void AutoCloseTest::whatIsOnTheScreenIsStoredAndEverythingCloses_data() {
  QTest::addColumn<QList<int>>("keys");  // on the form, after a text was typed
  QTest::addColumn<int>("top");          // the screen that is left alone; 0: a message box
  QTest::addColumn<bool>("menu");        // with a menu open
  const int menu = Qt::Key_F2;
  QTest::newRow("form") << QList<int>{} << kEditRecordScreen << false;
  QTest::newRow("menu") << QList<int>{menu} << kEditRecordScreen << true;
  QTest::newRow("choices") << QList<int>{Qt::Key_Down, Qt::Key_Down, Qt::Key_Return}
                           << kEditRecordScreen << true;
  QTest::newRow("question") << QList<int>{menu, Qt::Key_5} << 0 << false;
  QTest::newRow("note") << QList<int>{Qt::Key_Down, Qt::Key_Return} << kNoteScreen << false;
}

void AutoCloseTest::whatIsOnTheScreenIsStoredAndEverythingCloses() {
  QFETCH(QList<int>, keys);
  QFETCH(int, top);
  QFETCH(bool, menu);
  PhoneWorld world;
  const std::string path = world.add(
      "Diary", {{"Title"}, {"Text", FieldType::kNote}, {"Kind", FieldType::kPopup}}, {{"Monday"}});
  QtDialogs dialogs({{240, 320}, 1});
  Platform platform{world.files, world.clock,    world.locale, world.settings,
                    dialogs,     world.instance, "/samples"};
  Application app(platform);
  app.preferences.auto_close_enabled = true;
  app.preferences.auto_close_period_ms = kPeriodMs;
  Script script(dialogs);
  QElapsedTimer alone;
  script.then([] {}).then([] {}).key(Qt::Key_Return).type("Tues");
  for (const int key : keys) script.key(static_cast<Qt::Key>(key));
  if (top == kNoteScreen) script.type("It rai");
  script.then([] {}).then([&] {  // a menu of values opens when the key's own work is over
    alone.start();
    QCOMPARE(ScreenProbe(dialogs.frame()).resource(), top);
    QCOMPARE(dialogs.frame().menus().isOpen(), menu);
  });
  QCOMPARE(script.run([&] { return ShowRecordList(app, path); }), kDialogAutoClosed);
  QVERIFY(alone.elapsed() >= kPeriodMs / 2);
  QVERIFY(!menu || !dialogs.frame().menus().isOpen());
  QVERIFY(!IsDatabaseOpen(app));
  const auto stored = world.read(path);
  QCOMPARE(stored->records.count(), 1U);
  QCOMPARE(world.cell(path, 0, 0), std::string("MondayTues"));
  const auto note = slotValue(stored->records[0].bytes(), 1);
  QCOMPARE(std::string(storedText(*note)), std::string(top == kNoteScreen ? "It rai" : ""));
}

}  // namespace tabelion

QTEST_MAIN(tabelion::AutoCloseTest)
#include "auto_close_test.moc"
