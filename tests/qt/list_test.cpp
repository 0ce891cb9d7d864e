// Report lists: painting, selection, and what a screen reader is told of them.
#include <QAccessible>
#include <QElapsedTimer>
#include <QPainter>
#include <QScrollBar>

#include "platform/qt/list_view.h"
#include "platform/qt/painter.h"
#include "scripted_run.h"

namespace tabelion {

class ListTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void keysAndPointerSelectRows();
  void paintsTheVisibleRowsAndNoOthers();
  void cutTextsKeepTheirBeginningAndAGapBehindIt();
  void rowsSpeakToAScreenReader();
};

namespace {

constexpr ControlId kList = 1000;

DialogTemplate listScreen() {
  DialogTemplate result;
  result.resource = 106;
  result.title = u"Records";
  ControlTemplate list = makeControlTemplate(kList, ControlKind::kList, {0, 26, 240, 248});
  list.accessible_name = u"Records of Contacts";
  result.controls = {list};
  return result;
}

void fill(RecordingHandler& handler, int rows) {
  handler.init = [rows](Dialog& dialog) {
    dialog.list(kList).setColumns(
        {{u"Name", 150, SortMark::kForward, 0, u"Name, sorted forward"}, {u"City", 150}});
    dialog.list(kList).setRowCount(rows);
    dialog.list(kList).selectRow(0);
  };
  handler.row_text = [](int row) { return u"Row " + QString::number(row).toStdU16String(); };
  handler.on_command = [](Dialog& dialog, CommandId) { dialog.end(1); };
}

}  // namespace

void ListTest::keysAndPointerSelectRows() {
  QtDialogs dialogs({{240, 320}, 2});
  RecordingHandler handler;
  fill(handler, 100);
  Script script(dialogs);
  const auto selected = [&](int row) {
    script.then([&script, row] {
      QCOMPARE(script.screen()->list(kList).selectedRow(), row);
      auto* view = static_cast<ListView*>(script.widget(kList));
      QVERIFY(view->viewport()->rect().contains(view->rowRect(row)));
    });
  };
  script.key(Qt::Key_Up);
  selected(0);
  script.key(Qt::Key_Down).key(Qt::Key_PageDown).key(Qt::Key_PageUp);
  selected(1);
  script.key(Qt::Key_End).key(Qt::Key_Down);
  selected(99);
  script.key(Qt::Key_Home);
  selected(0);
  script.then([&] {
    auto* view = static_cast<ListView*>(script.widget(kList));
    const QPoint at = view->rowRect(4).center();
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, at);
    QCOMPARE(handler.count(kList, Notice::kActivated), 1);
    ListControl& list = script.screen()->list(kList);
    list.scrollSideways(1000);
    QCOMPARE(view->sideways(), 300 - 240 + theme::kScrollBarWidth);
    list.setRowCount(3);  // the selection stays on a row that exists
    QCOMPARE(list.selectedRow(), 2);
    list.setRowCount(0);
    QCOMPARE(list.selectedRow(), -1);
  });
  script.key(Qt::Key_Down).key(Qt::Key_Return);
  script.run(listScreen(), handler);
  QCOMPARE(handler.count(kList, Notice::kSelectionChanged), 6);
}

void ListTest::paintsTheVisibleRowsAndNoOthers() {
  QtDialogs dialogs({{240, 320}, 2});
  RecordingHandler handler;
  fill(handler, 65000);
  Script script(dialogs);
  script.key(Qt::Key_End).then([&] {
    auto* view = static_cast<ListView*>(script.widget(kList));
    QImage page(view->viewport()->size(), QImage::Format_ARGB32_Premultiplied);
    view->viewport()->render(&page);  // fonts and glyphs are there now
    handler.painted.clear();
    view->viewport()->render(&page);
    QCOMPARE(handler.painted.front(), view->topRow());
    QCOMPARE(handler.painted.back(), 64999);
    QVERIFY(int(handler.painted.size()) <= view->wholeRows() + 1);
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 20; ++i) {
      view->verticalScrollBar()->setValue(3000 * i);
      view->viewport()->render(&page);
    }
    const double each_ms = double(clock.nsecsElapsed()) / 20e6;
    qInfo("one screen of rows in %.2f ms", each_ms);
    QVERIFY2(each_ms < 40, "ten times what a screen of rows may take");
  });
  script.key(Qt::Key_Return);
  script.run(listScreen(), handler);
}

// In the direction that they are read in.
void ListTest::cutTextsKeepTheirBeginningAndAGapBehindIt() {
  const Scale scale(1);
  const ListFonts fonts(scale);
  constexpr int kWidth = 60;
  const auto painted = [&](const QString& text) {
    QImage image(kWidth + 40, 18, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setClipRect(image.rect());
    QtListPainter(painter, scale, fonts)
        .text({20, 0, kWidth, 18}, fromQt(text), {0, 0, 0}, TextWeight::kNormal);
    return image;
  };
  struct Texts {
    const char* start;
    const char* other_start;
    const char* tail;
    const char* other_tail;
    int beginning;  // x of the half that it lies in
    int gap;        // x of what stays free
  };
  for (const Texts& texts : {Texts{"MMMM", "WWWW", "iiiiiiiiaaaaa", "aaaaaiiiiiiii", 20, 77},
                             Texts{"שששש", "אאאא", "בבבבבגגגגג", "גגגגגבבבבב", 50, 20}}) {
    const auto text = [&](const char* start, const char* tail) {
      return painted(QString::fromUtf8(start) + QString::fromUtf8(tail));
    };
    const QRect half(texts.beginning, 0, kWidth / 2, 18);
    const QImage one = text(texts.start, texts.tail);
    QCOMPARE(text(texts.start, texts.other_tail).copy(half), one.copy(half));
    QVERIFY(text(texts.other_start, texts.tail).copy(half) != one.copy(half));
    const QImage gap = one.copy(texts.gap, 0, 3, 18);
    QImage white = gap;
    white.fill(Qt::white);
    QCOMPARE(gap, white);
  }
}

void ListTest::rowsSpeakToAScreenReader() {
  QtDialogs dialogs({{240, 320}, 1});
  RecordingHandler handler;
  fill(handler, 50);
  Script script(dialogs);
  script.key(Qt::Key_Down).then([&] {
    QAccessibleInterface* list = QAccessible::queryAccessibleInterface(script.widget(kList));
    QCOMPARE(list->role(), QAccessible::List);
    QCOMPARE(list->text(QAccessible::Name), "Records of Contacts");
    QCOMPARE(list->childCount(), 50);
    QCOMPARE(list->text(QAccessible::Description), "Name, sorted forward; City");
    QAccessibleInterface* row = list->child(1);
    QCOMPARE(row->role(), QAccessible::ListItem);
    QCOMPARE(row->text(QAccessible::Name), "Row 1");
    QVERIFY(row->state().selected);
    QVERIFY(!list->child(0)->state().selected);
    QVERIFY(list->child(49)->state().offscreen);
    QCOMPARE(list->indexOfChild(row), 1);
    const QPoint at = row->rect().center();
    QCOMPARE(list->childAt(at.x(), at.y()), row);
    script.screen()->list(kList).setRowCount(10);
    QVERIFY(list->child(49) == nullptr);
    QCOMPARE(list->childCount(), 10);
  });
  script.key(Qt::Key_Return);
  script.run(listScreen(), handler);
}

}  // namespace tabelion

QTEST_MAIN(tabelion::ListTest)
#include "list_test.moc"
