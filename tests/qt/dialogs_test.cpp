// Dialogs over dialogs, message boxes, timers, and the closing of the window.
#include "scripted_run.h"

namespace tabelion {

class DialogsTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void nestedDialogsReturnTheirResults();
  void messageBoxesGiveTheAnswerOfTheKey();
  void timersAndPostedMessagesArrive();
  void closingTheWindowIsAWishThatTheProgramHears();
  void popupMenuStaysInTheFrame();
  void controlsComeAndGoWhileTheirHandlersRun();
};

namespace {

constexpr CommandId kOpen = 70;

DialogTemplate screenOf(int resource, std::vector<ControlTemplate> controls = {}) {
  DialogTemplate result;
  result.resource = resource;
  result.title = u"Screen " + QString::number(resource).toStdU16String();
  result.controls = std::move(controls);
  result.menu_bar.left = {kOpen, u"Open", true, false, {}};
  return result;
}

// Ends with its own number on Back.
void endOnBack(RecordingHandler& handler, int result) {
  handler.on_command = [result](Dialog& dialog, CommandId command) {
    if (command == kBackCommand) dialog.end(result);
  };
}

}  // namespace

void DialogsTest::nestedDialogsReturnTheirResults() {
  QtDialogs dialogs({{240, 320}, 1});
  RecordingHandler outer;
  RecordingHandler inner;
  RecordingHandler refused;
  refused.init = [](Dialog& dialog) { dialog.end(9); };
  endOnBack(inner, 10);
  int from_inner = 0;
  outer.on_command = [&](Dialog& dialog, CommandId command) {
    if (command == kOpen) {
      QCOMPARE(dialogs.runModal(screenOf(3), refused), 9);  // never shown
      from_inner = dialogs.runModal(screenOf(2), inner);
      return;
    }
    dialog.end(5);
    dialog.setTitle(u"Still here");  // the call goes on to its end
    dialog.end(6);                   // the first result holds
  };
  Script script(dialogs);
  const auto edits = {makeControlTemplate(1, ControlKind::kEdit, {0, 0, 90, 22}),
                      makeControlTemplate(2, ControlKind::kEdit, {0, 30, 90, 22})};
  script.key(Qt::Key_Tab).key(Qt::Key_F1).then([&] {
    QCOMPARE(script.screen()->resource(), 2);
    QCOMPARE(dialogs.frame().shownTitle(), "Screen 2");
    QVERIFY(!dialogs.frame().layers()[0]->isVisible());
  });
  script.key(Qt::Key_Escape).then([&] {
    QCOMPARE(dialogs.frame().shownTitle(), "Screen 1");
    QVERIFY(script.screen()->control(2).hasFocus());  // where it was
  });
  script.key(Qt::Key_Return);
  QCOMPARE(script.run(screenOf(1, edits), outer), 5);
  QCOMPARE(from_inner, 10);
  QCOMPARE(outer.activations, 2);
}

void DialogsTest::messageBoxesGiveTheAnswerOfTheKey() {
  const struct {
    MessageButtons buttons;
    Qt::Key key;
    MessageAnswer answer;
  } cases[] = {
      {MessageButtons::kOk, Qt::Key_Return, MessageAnswer::kOk},
      {MessageButtons::kOk, Qt::Key_Escape, MessageAnswer::kOk},
      {MessageButtons::kOk, Qt::Key_F1, MessageAnswer::kOk},
      {MessageButtons::kYesNo, Qt::Key_Return, MessageAnswer::kYes},
      {MessageButtons::kYesNo, Qt::Key_F1, MessageAnswer::kYes},
      {MessageButtons::kYesNo, Qt::Key_F2, MessageAnswer::kNo},
      {MessageButtons::kYesNo, Qt::Key_Backspace, MessageAnswer::kNo},
  };
  QtDialogs dialogs({{240, 320}, 2});
  for (const auto& one : cases) {
    RecordingHandler handler;
    MessageAnswer answer =
        one.answer == MessageAnswer::kNo ? MessageAnswer::kYes : MessageAnswer::kNo;
    handler.on_command = [&](Dialog& dialog, CommandId) {
      std::u16string text = u"First line\n\tindented & <b>plain</b>";
      for (int i = 0; i < 60; ++i) text += u"\nand more";
      answer = dialogs.message({text, u"Title", one.buttons, MessageIcon::kQuestion});
      dialog.end(1);
    };
    Script script(dialogs);
    script.key(Qt::Key_F1).then([&] {
      QVERIFY(script.question() != nullptr);
      QVERIFY(dialogs.frame().layers()[0]->isVisible());
    });
    script.key(Qt::Key_A).key(Qt::Key_Down).key(one.key);
    script.run(screenOf(1), handler);
    QCOMPARE(answer, one.answer);
  }
}

void DialogsTest::timersAndPostedMessagesArrive() {
  QtDialogs dialogs({{240, 320}, 1});
  RecordingHandler handler;
  std::vector<int> ticks;
  std::size_t messages_in_call = 99;
  handler.init = [&](Dialog& dialog) {
    dialog.post(1);
    dialog.startTimer(7, 5);
    dialog.startTimer(8, 1);
    dialog.stopTimer(8);
  };
  handler.on_command = [&](Dialog& dialog, CommandId) {
    dialog.post(2);
    dialogs.message({u"Wait", u"", MessageButtons::kOk, MessageIcon::kNone});
    messages_in_call = handler.messages.size();
  };
  handler.timer = [&](Dialog& dialog, int number) {
    ticks.push_back(number);
    if (ticks.size() == 3) dialog.end(10);
  };
  Script script(dialogs);
  script.then([] {}).then([&] { QCOMPARE(handler.messages, std::vector<int>{1}); });
  script.key(Qt::Key_Return).key(Qt::Key_Return);
  QCOMPARE(script.run(screenOf(1), handler), 10);
  QCOMPARE(ticks, (std::vector<int>{7, 7, 7}));
  QCOMPARE(messages_in_call, 1U);  // the posted one waited for the end of the call
  QCOMPARE(handler.messages, (std::vector<int>{1, 2}));
}

void DialogsTest::closingTheWindowIsAWishThatTheProgramHears() {
  QtDialogs dialogs({{240, 320}, 1});
  RecordingHandler handler;
  int wishes = 0;
  handler.on_command = [&](Dialog& dialog, CommandId command) {
    if (command == kOpen) {
      dialogs.message({u"Save?", u"", MessageButtons::kYesNo, MessageIcon::kQuestion});
    }
    if (wishes == 2) dialog.end(0);
  };
  dialogs.whenWindowCloses([&] {
    ++wishes;
    dialogs.dismissBoxes();
  });
  Script script(dialogs);
  const auto close = [&] { QVERIFY(!dialogs.frame().close()); };
  script.then(close).then([&] { QVERIFY(dialogs.frame().isVisible()); });
  script.key(Qt::Key_F1).then(close);  // the question goes, and the command comes to its end
  QCOMPARE(script.run(screenOf(1), handler), 0);
  QCOMPARE(wishes, 2);
  QVERIFY(dialogs.frame().close());
}

void DialogsTest::popupMenuStaysInTheFrame() {
  QtDialogs dialogs({{240, 320}, 1.3});
  RecordingHandler handler;
  CommandId chosen = -1;
  handler.on_command = [&](Dialog& dialog, CommandId command) {
    if (command == kOpen) chosen = dialogs.popupMenu({230, 250}, {{5, u"Five", true, false, {}}});
    if (command == kBackCommand) dialog.end(1);
  };
  Script script(dialogs);
  script.key(Qt::Key_F1).then([&] {
    const MenuOverlay& menus = dialogs.frame().menus();
    QVERIFY(menus.rect().contains(menus.panel()->geometry()));
  });
  script.key(Qt::Key_Return).then([&] { QCOMPARE(chosen, 5); });
  script.key(Qt::Key_F1).key(Qt::Key_Escape).then([&] { QCOMPARE(chosen, 0); });
  script.then([&] { dialogs.frame().resize(400, 500); }).key(Qt::Key_Escape);
  script.run(screenOf(1), handler);
  QCOMPARE(handler.resizes, 1);
}

void DialogsTest::controlsComeAndGoWhileTheirHandlersRun() {
  class Removing final : public DialogHandler {
   public:
    void onNotice(Dialog& dialog, ControlId id, Notice notice) override {
      if (notice != Notice::kActivated && notice != Notice::kEdited) return;
      dialog.removeControl(id);
      dialog.addControl(makeControlTemplate(id + 1, ControlKind::kEdit, {0, 0, 90, 22})).focus();
    }
    void onCommand(Dialog& dialog, CommandId command) override {
      if (command == kBackCommand) dialog.end(1);
    }
  };
  QtDialogs dialogs({{240, 320}, 1});
  Removing handler;
  Script script(dialogs);
  script.key(Qt::Key_Return).type("a").type("b").then([&] {
    QCOMPARE(script.screen()->controls().size(), 1U);
    QVERIFY(script.screen()->control(4).hasFocus());
  });
  script.key(Qt::Key_Escape);
  script.run(screenOf(1, {makeControlTemplate(1, ControlKind::kButton, {0, 0, 90, 22}, u"Go")}),
             handler);
}

}  // namespace tabelion

QTEST_MAIN(tabelion::DialogsTest)
#include "dialogs_test.moc"
