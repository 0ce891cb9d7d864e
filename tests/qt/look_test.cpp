// What is seen at every zoom, and what is said of it.
#include <QAccessible>
#include <QFontMetrics>
#include <QScreen>
#include <cmath>

#include "platform/qt/desktop_look.h"
#include "platform/qt/theme.h"
#include "scripted_run.h"

namespace tabelion {

class LookTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void textFitsAtEveryZoom_data();
  void textFitsAtEveryZoom();
  void theScreenGrowsWithTheWindow();
  void everySchemeIsReadableAndTakenAtOnce();
  void everythingHasAnAccessibleName();
  void canvasIsPaintedSpokenAndPressed();
  void waitingAndProgressAreShown();
};

namespace {

DialogTemplate form() {
  DialogTemplate result;
  result.title = u"Edit Record";
  result.controls = {makeControlTemplate(1, ControlKind::kLabel, {9, 7, 104, 16}, u"Telephone"),
                     makeControlTemplate(2, ControlKind::kEdit, {116, 5, 116, 22}, u"Ågjp 0123"),
                     makeControlTemplate(3, ControlKind::kLabel, {9, 33, 104, 16}, u"Kind"),
                     makeControlTemplate(4, ControlKind::kChoice, {116, 31, 116, 22}, u"Friend"),
                     makeControlTemplate(5, ControlKind::kLabel, {9, 59, 104, 16}, u"Member"),
                     makeControlTemplate(6, ControlKind::kCheckBox, {116, 57, 116, 24}),
                     makeControlTemplate(7, ControlKind::kButton, {116, 83, 116, 24}, u"Note"),
                     makeControlTemplate(8, ControlKind::kMultiEdit, {4, 110, 200, 40})};
  result.controls[7].accessible_name = u"Remarks";
  result.menu_bar.left = {1, u"Done", true, false, {}};
  result.menu_bar.right = {0, u"Menu", true, false, {{5, u"Save", true, false, {}}}};
  return result;
}

// The smallest rectangle round what is not the colour of the top left corner.
QRect inkOf(const QImage& image) {
  const QRgb paper = image.pixel(0, 0);
  QRect ink;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (image.pixel(x, y) != paper) ink |= QRect(x, y, 1, 1);
    }
  }
  return ink;
}

}  // namespace

void LookTest::textFitsAtEveryZoom_data() {
  QTest::addColumn<double>("zoom");
  for (const double zoom : {1.0, 1.5, 2.0, 3.0}) QTest::addRow("%.1f", zoom) << zoom;
}

void LookTest::textFitsAtEveryZoom() {
  QFETCH(double, zoom);
  QtDialogs dialogs({{240, 320}, zoom});
  RecordingHandler handler;
  handler.on_command = [](Dialog& dialog, CommandId) { dialog.end(1); };
  Script script(dialogs);
  script.then([&] {
    const QImage whole = dialogs.frame().grab().toImage();
    QCOMPARE(whole.size(), QSize(qRound(240 * zoom), qRound(320 * zoom)));
    // Labels, boxes and soft keys: the text is no wider than its place and not cut at its edges.
    for (const ControlId id : {1, 2, 4, 7}) {
      QWidget* widget = script.widget(id);
      const QFontMetrics metrics(widget->font());
      const QString text = toQt(script.screen()->control(id).text());
      QVERIFY(metrics.height() <= widget->height());
      QVERIFY(metrics.horizontalAdvance(text) + qRound(8 * zoom) <= widget->width());
    }
    const QRect label = inkOf(script.widget(1)->grab().toImage());
    QVERIFY(label.top() > 0 && label.bottom() < script.widget(1)->height() - 1);
    QVERIFY(label.height() >= qFloor(8 * zoom));  // enlarged by fonts, in full
    const QWidget& key = dialogs.frame().softKeys().button(SoftKey::kLeft);
    const QRect done = inkOf(const_cast<QWidget&>(key).grab().toImage());
    QVERIFY(done.top() > 0 && done.bottom() < key.height() - 1 && done.right() < key.width() - 1);
    // A form's box is as high as the text of its neighbours at any zoom.
    QCOMPARE(script.widget(2)->height(), qRound(27 * zoom) - qRound(5 * zoom));
  });
  script.key(Qt::Key_F1);
  script.run(form(), handler);
}

void LookTest::theScreenGrowsWithTheWindow() {
  QCOMPARE(comfortableZoom({240, 320}, {1920, 1050}, 96), 2.0);
  QCOMPARE(comfortableZoom({240, 320}, {3840, 2100}, 192), 4.0);
  QCOMPARE(comfortableZoom({240, 320}, {800, 600}, 96), 1.5);
  QtDialogs dialogs({{320, 240}, 1.25});
  RecordingHandler handler;
  handler.on_command = [](Dialog& dialog, CommandId) { dialog.end(1); };
  Script script(dialogs);
  script.then([&] {
    QCOMPARE(script.screen()->fullScreenSize().width, 320);
    QCOMPARE(script.screen()->screenSize().height, 240 - 22 - 24);
    dialogs.frame().resize(500, 500);
    QCOMPARE(script.screen()->fullScreenSize().width, 400);
    QCOMPARE(handler.resizes, 1);
  });
  script.key(Qt::Key_Plus, Qt::ControlModifier).then([&] {
    QCOMPARE(dialogs.frame().scale().zoom(), 1.5);
    QCOMPARE(script.screen()->fullScreenSize().width, 400);
    QCOMPARE(script.widget(1)->geometry(), dialogs.frame().scale().rect({9, 7, 104, 16}));
    // Never larger than the desktop: then the screen has fewer pixels of its own.
    dialogs.frame().setZoom(5);
    const QSize desktop = dialogs.frame().screen()->availableSize();
    QCOMPARE(dialogs.frame().size(), desktop);
    QCOMPARE(dialogs.frame().scale().zoom(), 5);
    QCOMPARE(script.screen()->fullScreenSize().width, desktop.width() / 5);
  });
  script.key(Qt::Key_F1);
  script.run(form(), handler);
}

void LookTest::everySchemeIsReadableAndTakenAtOnce() {
  const auto luminance = [](QRgb rgb) {
    const auto part = [](int value) {
      const double v = value / 255.0;
      return v <= 0.03928 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(qRed(rgb)) + 0.7152 * part(qGreen(rgb)) + 0.0722 * part(qBlue(rgb));
  };
  const auto contrast = [&](QRgb a, QRgb b) {
    const double one = luminance(a) + 0.05;
    const double other = luminance(b) + 0.05;
    return std::max(one, other) / std::min(one, other);
  };
  QtDialogs dialogs({{240, 320}, 1});
  RecordingHandler handler;
  handler.on_command = [](Dialog& dialog, CommandId) { dialog.end(1); };
  Script script(dialogs);
  script.then([&] {
    const QImage light = dialogs.frame().grab().toImage();
    for (const Scheme scheme :
         {Scheme::kDark, Scheme::kLightContrast, Scheme::kDarkContrast, Scheme::kLight}) {
      dialogs.frame().setScheme(scheme);
      const theme::Colours& c = theme::colours();
      for (const QRgb paper : {c.paper, c.panel, c.focus_paper}) {
        QVERIFY(contrast(c.ink, paper) >= 7);
        QVERIFY(contrast(c.ink_soft, paper) >= 6);
      }
      for (const auto& [ink, paper] : {std::pair{c.bar_ink, c.bar},
                                       {c.bar_ink, c.bar_pressed},
                                       {c.on_focus, c.focus},
                                       {c.ink, c.selection}}) {
        QVERIFY(contrast(ink, paper) >= 4.5);
      }
      QVERIFY(contrast(c.line, c.paper) >= 3 && contrast(c.focus, c.paper) >= 3);
      const QImage now = dialogs.frame().grab().toImage();
      // Of the screen, a text box and a scroll area in it.
      QCOMPARE(now.pixel(2, 60), c.paper);
      QCOMPARE(now.pixel(120, theme::kTitleHeight + 115), c.paper);
      QCOMPARE(now == light, scheme == Scheme::kLight);
    }
  });
  script.key(Qt::Key_F1);
  script.run(form(), handler);
  const QPalette light(Qt::white);
  QPalette dark;
  dark.setColor(QPalette::Window, Qt::black);
  dark.setColor(QPalette::WindowText, Qt::white);
  QCOMPARE(schemeOf(dark, ""), Scheme::kDark);
  QCOMPARE(schemeOf(light, "Adwaita:dark"), Scheme::kDark);
  QCOMPARE(schemeOf(light, "Adwaita"), Scheme::kLight);
  QCOMPARE(schemeOf(light, "HighContrast"), Scheme::kLightContrast);
  QCOMPARE(schemeOf(dark, "HighContrastInverse"), Scheme::kDarkContrast);
}

void LookTest::everythingHasAnAccessibleName() {
  QtDialogs dialogs({{240, 320}, 1});
  RecordingHandler handler;
  handler.on_command = [&](Dialog& dialog, CommandId command) {
    if (command == 1) dialogs.message({u"File Saved", u"Update", MessageButtons::kOk, {}});
    if (command == kBackCommand) dialog.end(1);
  };
  Script script(dialogs);
  const auto of = [](QWidget* widget) { return QAccessible::queryAccessibleInterface(widget); };
  script.then([&] {
    const std::pair<ControlId, QString> names[] = {
        {2, "Telephone"}, {4, "Kind"}, {6, "Member"}, {7, "Note"}, {8, "Remarks"}};
    for (const auto& [id, name] : names) {
      QCOMPARE(of(script.widget(id))->text(QAccessible::Name), name);
    }
    QCOMPARE(of(script.widget(2))->text(QAccessible::Value), "Ågjp 0123");
    QCOMPARE(of(script.widget(4))->role(), QAccessible::ComboBox);
    QCOMPARE(of(script.widget(4))->text(QAccessible::Value), "Friend");
    QCOMPARE(of(script.widget(6))->role(), QAccessible::CheckBox);
    QCOMPARE(of(script.screen())->text(QAccessible::Name), "Edit Record");
    auto& key = const_cast<SoftKeyButton&>(dialogs.frame().softKeys().button(SoftKey::kRight));
    QCOMPARE(of(&key)->text(QAccessible::Name), "Menu");
    script.screen()->control(1).setText(u"Mobile");
  });
  script.key(Qt::Key_F2).then([&] {
    QCOMPARE(of(script.widget(2))->text(QAccessible::Name), "Mobile");
    QAccessibleInterface* row = of(dialogs.frame().menus().panel()->rows()[0]);
    QCOMPARE(row->role(), QAccessible::MenuItem);
    QCOMPARE(row->text(QAccessible::Name), "Save");
  });
  script.key(Qt::Key_Escape).key(Qt::Key_F1).then([&] {
    QAccessibleInterface* box = of(script.question());
    QCOMPARE(box->role(), QAccessible::AlertMessage);
    QCOMPARE(box->text(QAccessible::Name), "Update");
    QCOMPARE(of(script.focusWidget())->text(QAccessible::Name), "Update: File Saved");
  });
  script.key(Qt::Key_Return).key(Qt::Key_Escape);
  script.run(form(), handler);
}

void LookTest::canvasIsPaintedSpokenAndPressed() {
  struct CanvasHandler : RecordingHandler {
    void onPaintCanvas(Dialog&, ControlId, CanvasPainter& painter) override {
      painter.fill({0, 0, 10, 10}, {200, 0, 0});
      painter.line({0, 15}, {19, 15}, {0, 0, 200}, 1);
    }
    std::u16string canvasText(Dialog&, ControlId) override { return pressed ? u"seven" : u"six"; }
    void onCanvasPressed(Dialog& dialog, ControlId id, Point at) override {
      pressed = at == Point{5, 7};
      dialog.control(id).repaint();
    }
    bool pressed = false;
  } handler;
  handler.key = [](const KeyPress& press) { return press.key == Key::kLeft; };
  handler.on_command = [](Dialog& dialog, CommandId) { dialog.end(1); };
  DialogTemplate dialog = form();
  dialog.controls = {makeControlTemplate(1, ControlKind::kCanvas, {0, 0, 40, 20})};
  dialog.controls[0].accessible_name = u"Days";
  dialog.controls[0].takes_focus = true;
  QtDialogs dialogs({{240, 320}, 2});
  Script script(dialogs);
  script.then([&] {
    QWidget* canvas = script.widget(1);
    QVERIFY(script.screen()->control(1).hasFocus());
    const QImage image = canvas->grab().toImage();
    QCOMPARE(image.pixelColor(10, 10), QColor(200, 0, 0));
    QCOMPARE(image.pixelColor(20, 31), QColor(0, 0, 200));
    QCOMPARE(image.pixelColor(30, 20), QColor::fromRgb(theme::colours().paper));
    const auto name = [&] {
      return QAccessible::queryAccessibleInterface(canvas)->text(QAccessible::Name);
    };
    QCOMPARE(name(), "Days, six");
    QTest::mouseClick(canvas, Qt::LeftButton, {}, {11, 14});
    QCOMPARE(name(), "Days, seven");
  });
  script.key(Qt::Key_Left).key(Qt::Key_F1);
  script.run(dialog, handler);
}

void LookTest::waitingAndProgressAreShown() {
  QtDialogs dialogs({{240, 320}, 1});
  RecordingHandler handler;
  handler.on_command = [](Dialog& dialog, CommandId) { dialog.end(1); };
  Script script(dialogs);
  script.then([&] {
    const QImage idle = dialogs.frame().grab().toImage();
    dialogs.setWaitCursor(true);
    dialogs.setWaitCursor(true);
    dialogs.setWaitCursor(false);
    QVERIFY(QGuiApplication::overrideCursor() != nullptr);
    QVERIFY(dialogs.frame().grab().toImage() != idle);
    dialogs.setWaitCursor(false);
    QVERIFY(QGuiApplication::overrideCursor() == nullptr);
    QCOMPARE(dialogs.frame().grab().toImage(), idle);
    const auto progress = dialogs.progress(u"Sorting");
    progress->set(1, 4);
    const QImage quarter = dialogs.frame().grab().toImage();
    progress->set(3, 4);
    QVERIFY(dialogs.frame().grab().toImage() != quarter);
  });
  script.key(Qt::Key_F1);
  script.run(form(), handler);
}

}  // namespace tabelion

QTEST_MAIN(tabelion::LookTest)
#include "look_test.moc"
