// From keys and clicks to what the handler is told.
#include <QClipboard>
#include <QGuiApplication>
#include <QLineEdit>

#include "scripted_run.h"

namespace tabelion {

class KeysTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void keysBecomeCommandsUnlessConsumed();
  void softKeyMenuWorksByKeys();
  void softKeyMenuWorksByMouse();
  void focusGoesThroughEveryUsableControl();
  void refusedCharactersDoNotAppear();
  void untouchedTextComesBackAsItWasSet();
  void undoIsTheBoxesWhileSomethingWasTypedThere();
  void steppersStepOpenAndTakeDigits();
};

namespace {

constexpr CommandId kDone = 77;

MenuEntry entry(CommandId command, const char16_t* text) {
  return {command, text, true, false, {}};
}

DialogTemplate formOf(std::vector<ControlTemplate> controls) {
  DialogTemplate form;
  form.resource = 109;
  form.title = u"Form";
  form.controls = std::move(controls);
  form.menu_bar.left = entry(kDone, u"Done");
  return form;
}

DialogTemplate menuForm() {
  DialogTemplate form = formOf({});
  form.menu_bar.right = {0, u"Menu", true, false, {}};
  MenuEntry& menu = form.menu_bar.right;
  menu.children = {entry(10, u"Greyed"),
                   entry(11, u"First"),
                   entry(0, u""),
                   {0, u"More", true, false, {entry(21, u"Inner one"), entry(22, u"Inner & two")}}};
  menu.children[0].enabled = false;
  for (CommandId id = 30; id < 60; ++id) menu.children.push_back(entry(id, u"Filler"));
  return form;
}

void endOnDone(RecordingHandler& handler) {
  handler.on_command = [](Dialog& dialog, CommandId command) {
    if (command == kDone) dialog.end(command);
  };
}

}  // namespace

void KeysTest::keysBecomeCommandsUnlessConsumed() {
  QtDialogs dialogs({{240, 320}, 1});
  ControlTemplate list = makeControlTemplate(5, ControlKind::kList, {0, 0, 240, 100});
  ControlTemplate secret = makeControlTemplate(7, ControlKind::kEdit, {0, 140, 90, 22});
  secret.back_erases = true;
  DialogTemplate form =
      formOf({list, makeControlTemplate(6, ControlKind::kEdit, {0, 110, 90, 22}), secret});
  RecordingHandler handler;
  endOnDone(handler);
  std::vector<KeyPress> keys;
  bool consume = false;
  handler.key = [&](const KeyPress& press) {
    keys.push_back(press);
    return consume;
  };
  Script script(dialogs);
  script.key(Qt::Key_Return).key(Qt::Key_Backspace).key(Qt::Key_Escape).type("ä7");
  script.then([&] { consume = true; }).key(Qt::Key_Return).key(Qt::Key_Backspace);
  // In an edit box Backspace deletes and Escape is the Back key.
  script.then([&] { consume = false; }).key(Qt::Key_Tab).type("xy").key(Qt::Key_Backspace);
  script.then([&] { QCOMPARE(script.screen()->control(6).text(), u"x"); });
  script.key(Qt::Key_Escape).key(Qt::Key_Return);
  // But where it erases it does nothing else, also when all is gone.
  script.key(Qt::Key_Tab).type("xy").key(Qt::Key_Escape);
  script.then([&] { QCOMPARE(script.screen()->control(7).text(), u"x"); });
  script.key(Qt::Key_Escape).key(Qt::Key_Escape).key(Qt::Key_F1);
  QCOMPARE(script.run(form, handler), kDone);
  const std::vector<CommandId> wanted = {kActionCommand, kBackCommand,   kBackCommand,
                                         kBackCommand,   kActionCommand, kDone};
  QCOMPARE(handler.commands, wanted);
  QCOMPARE(keys.size(), 9U);  // none of those that the edit box used
  QCOMPARE(keys[3].key, Key::kCharacter);
  QCOMPARE(keys[3].character, U'ä');
  QCOMPARE(keys[3].control, 5);
}

void KeysTest::softKeyMenuWorksByKeys() {
  QtDialogs dialogs({{240, 320}, 1});
  DialogTemplate form = menuForm();
  RecordingHandler handler;
  endOnDone(handler);
  handler.menu_opening = [](MenuEntry& menu) { menu.children[1].text = u"Rebuilt"; };
  Script script(dialogs);
  const auto marked = [&] { return dialogs.frame().menus().panel()->marked(); };
  script.key(Qt::Key_F2).then([&] {
    QCOMPARE(marked()->text(), "Rebuilt");  // the greyed one is skipped
    QVERIFY(
        dialogs.frame().menus().geometry().contains(dialogs.frame().menus().panel()->geometry()));
  });
  script.key(Qt::Key_Down).then([&] { QCOMPARE(marked()->text(), "More"); });
  script.key(Qt::Key_Right).then([&] { QCOMPARE(marked()->text(), "Inner one"); });
  script.key(Qt::Key_Left).then([&] { QCOMPARE(marked()->text(), "More"); });
  script.key(Qt::Key_End).then([&] {  // scrolled into the frame
    MenuPanel* panel = dialogs.frame().menus().panel();
    QVERIFY(panel->rect().contains(QRect(marked()->mapTo(panel, QPoint(0, 0)), marked()->size())));
  });
  script.key(Qt::Key_Home).type("m").then([&] { QCOMPARE(marked()->text(), "More"); });
  script.key(Qt::Key_PageDown).then([&] { QCOMPARE(marked()->text(), "Filler"); });
  script.key(Qt::Key_3).key(Qt::Key_2);      // More, Inner & two
  script.key(Qt::Key_F2).key(Qt::Key_1);     // greyed: nothing
  script.key(Qt::Key_Return);                // First
  script.key(Qt::Key_F2).key(Qt::Key_Back);  // dismissed
  script.key(Qt::Key_F2).key(Qt::Key_F2);    // and so
  script.key(Qt::Key_F1);
  QCOMPARE(script.run(form, handler), kDone);
  QCOMPARE(handler.commands, (std::vector<CommandId>{22, 11, kDone}));
}

void KeysTest::softKeyMenuWorksByMouse() {
  QtDialogs dialogs({{240, 320}, 1.5});
  RecordingHandler handler;
  endOnDone(handler);
  Script script(dialogs);
  const auto click = [&](QWidget* widget) { QTest::mouseClick(widget, Qt::LeftButton); };
  const auto softKey = [&](SoftKey key) {
    click(const_cast<SoftKeyButton*>(&dialogs.frame().softKeys().button(key)));
  };
  const auto row = [&](int at) { return dialogs.frame().menus().panel()->rows()[at]; };
  script.then([&] { softKey(SoftKey::kRight); }).then([&] { click(row(3)); });
  script.then([&] { click(row(1)); });
  script.then([&] { softKey(SoftKey::kRight); }).then([&] {
    QTest::mouseClick(&dialogs.frame().menus(), Qt::LeftButton, {}, QPoint(2, 2));
    QVERIFY(!dialogs.frame().menus().isOpen());
  });
  script.then([&] { softKey(SoftKey::kLeft); });
  QCOMPARE(script.run(menuForm(), handler), kDone);
  QCOMPARE(handler.commands, (std::vector<CommandId>{22, kDone}));
}

void KeysTest::focusGoesThroughEveryUsableControl() {
  QtDialogs dialogs({{240, 320}, 1});
  std::vector<ControlTemplate> controls;
  const ControlKind kinds[] = {ControlKind::kLabel,  ControlKind::kEdit,   ControlKind::kEdit,
                               ControlKind::kEdit,   ControlKind::kChoice, ControlKind::kCheckBox,
                               ControlKind::kButton, ControlKind::kIcon,   ControlKind::kMultiEdit};
  for (const ControlKind kind : kinds) {
    const int id = int(controls.size());
    controls.push_back(makeControlTemplate(id, kind, {4, 60 * id, 200, 40}, u"a"));
  }
  controls[2].visible = false;
  controls[3].enabled = false;
  controls[8].text = u"one\ntwo";
  RecordingHandler handler;
  endOnDone(handler);
  handler.init = [](Dialog& dialog) { dialog.setContentHeight(9 * 60); };
  std::vector<int> order;
  const auto selected = [](QWidget* box) { return qobject_cast<QLineEdit*>(box)->selectedText(); };
  Script script(dialogs);
  const auto note = [&] {
    for (const auto& control : script.screen()->controls()) {
      if (!control->seam().hasFocus()) continue;
      order.push_back(control->id());
      const QRect seen(control->widget().mapTo(script.screen(), QPoint(0, 0)),
                       control->widget().size());
      QVERIFY(script.screen()->rect().contains(seen));
    }
  };
  script.then(note).then([&] {  // typing goes on behind the text
    QCOMPARE(selected(script.widget(1)), "");
    QCOMPARE(qobject_cast<QLineEdit*>(script.widget(1))->cursorPosition(), 1);
  });
  for (int i = 0; i < 5; ++i) script.key(Qt::Key_Down).then(note);
  script.key(Qt::Key_Down).then(note);  // out of the second line, round the end
  script.then([&] { QCOMPARE(selected(script.widget(1)), "a"); });  // typing would replace it
  script.key(Qt::Key_Up).then(note).key(Qt::Key_Backtab).then(note);
  script.then([&] { script.screen()->control(5).focus(); }).key(Qt::Key_Space).key(Qt::Key_Enter);
  script.then([&] { script.screen()->control(6).focus(); }).key(Qt::Key_Return);
  script.then([&] {  // a click beside the controls leaves it where it is
    QTest::mouseClick(script.screen(), Qt::LeftButton, {}, QPoint(220, 100));
    QVERIFY(script.screen()->control(6).hasFocus() && script.widget(6)->hasFocus());
  });
  script.then([&] {  // the focus leaves what cannot have it any more
    script.screen()->control(6).setEnabled(false);
    QVERIFY(!script.screen()->control(6).hasFocus());
  });
  script.key(Qt::Key_F1);
  script.run(formOf(controls), handler);
  QCOMPARE(order, (std::vector<int>{1, 4, 5, 6, 8, 8, 1, 8, 6}));
  QCOMPARE(handler.count(5, Notice::kEdited), 2);
  QCOMPARE(handler.count(6, Notice::kActivated), 1);
  QCOMPARE(handler.count(4, Notice::kFocusLost), handler.count(4, Notice::kFocusGained));
}

void KeysTest::refusedCharactersDoNotAppear() {
  QtDialogs dialogs({{240, 320}, 1});
  ControlTemplate line = makeControlTemplate(1, ControlKind::kEdit, {0, 0, 200, 22});
  line.max_length = 6;
  ControlTemplate box = makeControlTemplate(2, ControlKind::kMultiEdit, {0, 40, 200, 60});
  box.max_length = 6;
  RecordingHandler handler;
  endOnDone(handler);
  handler.accepts = [](char32_t character) { return character != U'x' && character < 0x1F000; };
  Script script(dialogs);
  const auto paste = [&](const QString& text) {
    script.then([&script, text] {
      QGuiApplication::clipboard()->setText(text);
      script.press(Qt::Key_V, Qt::ControlModifier);
    });
  };
  for (const int id : {1, 2}) {
    const auto check = [&script, id](const std::u16string& text) {
      script.then([&script, id, text] { QCOMPARE(script.screen()->control(id).text(), text); });
    };
    script.then([&script, id] { script.screen()->control(id).focus(); }).type("axb");
    check(u"ab");
    paste("cxd");  // one refused character refuses the whole
    check(u"ab");
    paste(QString::fromUtf8("\U0001F600"));
    check(u"ab");
    paste("12345");  // does not fit, and is not cut
    check(u"ab");
    script.then([&, id] {
      QCOMPARE(handler.count(id, Notice::kNotAllowed), 1);
      QCOMPARE(handler.count(id, Notice::kTooLong), 1);
    });
    paste("1234");
    check(u"ab1234");
    script.type("5").then([&, id] { QCOMPARE(handler.count(id, Notice::kEdited), 3); });
    check(u"ab1234");
  }
  script.key(Qt::Key_F1);
  script.run(formOf({line, box}), handler);
}

void KeysTest::undoIsTheBoxesWhileSomethingWasTypedThere() {
  QtDialogs dialogs({{240, 320}, 1});
  RecordingHandler handler;
  endOnDone(handler);
  std::vector<Key> told;
  handler.key = [&](const KeyPress& press) {
    if (press.key == Key::kUndo || press.key == Key::kRedo) told.push_back(press.key);
    return false;
  };
  Script script(dialogs);
  const auto chord = [&script](int key, Qt::KeyboardModifiers modifiers = Qt::ControlModifier) {
    script.then([&script, key, modifiers] { script.press(static_cast<Qt::Key>(key), modifiers); });
  };
  for (const int id : {1, 2}) {
    const auto check = [&, id](const std::u16string& text, std::vector<Key> keys) {
      script.then([&script, &told, id, text, keys] {
        QCOMPARE(script.screen()->control(id).text(), text);
        QCOMPARE(told, keys);
      });
    };
    script.then([&script, &told, id] {
      script.screen()->control(id).focus();
      told.clear();
    });
    script.type("ab");
    const std::u16string typed = id == 1 ? u"setab" : u"abset";  // a note begins at its start
    chord(Qt::Key_Z);
    check(u"set", {});
    chord(Qt::Key_Y);
    check(typed, {});
    chord(Qt::Key_Z);
    chord(Qt::Key_Z);
    check(u"set", {Key::kUndo});
    chord(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    chord(Qt::Key_Y);
    check(typed, {Key::kUndo, Key::kRedo});
  }
  script.key(Qt::Key_F1);
  ControlTemplate line = makeControlTemplate(1, ControlKind::kEdit, {0, 0, 200, 22});
  ControlTemplate box = makeControlTemplate(2, ControlKind::kMultiEdit, {0, 40, 200, 60});
  line.text = box.text = u"set";
  QCOMPARE(script.run(formOf({line, box}), handler), kDone);
}

void KeysTest::untouchedTextComesBackAsItWasSet() {
  QtDialogs dialogs({{240, 320}, 1});
  const std::u16string odd = u"one\r\ntwo\u00a0three\tfour\u2028five";
  ControlTemplate line = makeControlTemplate(1, ControlKind::kEdit, {0, 0, 200, 22}, odd);
  line.max_length = 4;  // shorter than what a file may already hold
  ControlTemplate box = makeControlTemplate(2, ControlKind::kMultiEdit, {0, 40, 200, 60}, odd);
  ControlTemplate masked = makeControlTemplate(3, ControlKind::kEdit, {0, 120, 200, 22}, u"abc");
  masked.masked = true;
  RecordingHandler handler;
  endOnDone(handler);
  Script script(dialogs);
  script.key(Qt::Key_End).key(Qt::Key_Tab).key(Qt::Key_Down).then([&] {
    QCOMPARE(script.screen()->control(1).text(), odd);
    QCOMPARE(script.screen()->control(2).text(), odd);
    QCOMPARE(script.screen()->control(3).text(), u"abc");
    QCOMPARE(qobject_cast<QLineEdit*>(script.widget(3))->displayText(), "***");
  });
  script.type("!").then([&] {  // an edit keeps what it does not touch
    QVERIFY(script.screen()->control(2).text().find(u"two\u00a0three\tfour") !=
            std::u16string::npos);
  });
  script.key(Qt::Key_F1);
  script.run(formOf({line, box, masked}), handler);
}

void KeysTest::steppersStepOpenAndTakeDigits() {
  QtDialogs dialogs({{240, 320}, 1});
  ControlTemplate spin = makeControlTemplate(2, ControlKind::kSpin, {0, 40, 100, 22}, u"5");
  spin.minimum = 1;
  spin.maximum = 60;
  RecordingHandler handler;
  endOnDone(handler);
  handler.init = [](Dialog& dialog) {
    dialog.control(1).setChoices({u"No Value", u"Friend", u"Family", u"Work"});
    dialog.control(1).select(0);
  };
  Script script(dialogs);
  const auto check = [&](ControlId id, int value) {
    script.then(
        [&script, id, value] { QCOMPARE(script.screen()->control(id).selection(), value); });
  };
  script.key(Qt::Key_Right).key(Qt::Key_Left).key(Qt::Key_Left);
  check(1, 0);
  script.type("ff");
  check(1, 2);
  script.key(Qt::Key_Return).key(Qt::Key_Down).key(Qt::Key_Return);
  check(1, 3);
  script.key(Qt::Key_Space).key(Qt::Key_Escape);  // closed without a choice
  check(1, 3);
  script.key(Qt::Key_Down).key(Qt::Key_Left);
  check(2, 4);
  script.type("45");
  check(2, 45);
  script.type("6");  // 456 is too much: a new number begins
  check(2, 6);
  script.key(Qt::Key_F1);
  script.run(formOf({makeControlTemplate(1, ControlKind::kChoice, {0, 0, 100, 22}), spin}),
             handler);
  QCOMPARE(handler.count(1, Notice::kEdited), 5);
}

}  // namespace tabelion

QTEST_MAIN(tabelion::KeysTest)
#include "keys_test.moc"
