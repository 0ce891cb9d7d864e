// Memory that runs out in a handler ends the loops one by one, not the program.
#include <QTest>
#include <QTimer>
#include <new>

#include "platform/qt/guarded_loop.h"
#include "platform/qt/qt_dialogs.h"

namespace tabelion {

class MemoryTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void aShortageReachesWhoeverRanTheFirstLoop();
};

namespace {

DialogTemplate screen(const char16_t* title) {
  DialogTemplate made;
  made.title = title;
  made.menu_bar.left = {7, u"Go"};
  return made;
}

// Runs out of memory at its command.
class Greedy : public DialogHandler {
 public:
  void onInit(Dialog& dialog) override { dialog.startTimer(1, 1); }
  void onTimer(Dialog&, int) override { throw std::bad_alloc(); }
};

// Opens a greedy one over itself.
class Below : public DialogHandler {
 public:
  explicit Below(QtDialogs& dialogs) : dialogs_(dialogs) {}
  void onInit(Dialog& dialog) override { dialog.startTimer(1, 1); }
  void onTimer(Dialog& dialog, int) override {
    dialog.stopTimer(1);
    Greedy greedy;
    dialogs_.runModal(screen(u"Above"), greedy);
    went_on = true;
  }
  bool went_on = false;

 private:
  QtDialogs& dialogs_;
};

}  // namespace

void MemoryTest::aShortageReachesWhoeverRanTheFirstLoop() {
  QtDialogs dialogs;
  Below below(dialogs);
  QVERIFY_THROWS_EXCEPTION(std::bad_alloc, dialogs.runModal(screen(u"Below"), below));
  QVERIFY(!below.went_on);
  QVERIFY(dialogs.frame().layers().empty());
  // And the window can still say so.
  QTimer::singleShot(1, [&] { dialogs.dismissBoxes(); });
  QCOMPARE(dialogs.message({u"No memory", u"Tabelion"}), MessageAnswer::kOk);
}

}  // namespace tabelion

int main(int argc, char** argv) {
  tabelion::GuardedApplication application(argc, argv);
  tabelion::MemoryTest test;
  return QTest::qExec(&test, argc, argv);
}
#include "memory_test.moc"
