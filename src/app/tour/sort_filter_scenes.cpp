#include "app/tour/sort_filter_scenes.h"

#include <fmt/format.h>

#include <algorithm>

#include "platform/qt/list_view.h"
#include "screens/arrange/filter_screen.h"
#include "screens/arrange/sort_screen.h"
#include "screens/kit/screen_numbers.h"

namespace tabelion {

namespace {

constexpr int kMostFields = 100;
constexpr int kTabsToField = 4;  // from the tick of the first criterion
constexpr char kWanted[] = "a";  // a letter that some texts have

}  // namespace

void tourSort(TourDriver& driver) {
  const ScreenProbe& probe = driver.probe();
  driver.choose(kRecordListScreen, QStringList{"Tools", "Sort"});
  driver.press(kSortScreen, Qt::Key_Tab);
  driver.press(kSortScreen, Qt::Key_Right);
  driver.see(kSortScreen, "Chose Sort and turned its first level round", "sort", [&probe] {
    const QString field = probe.text(SortFieldChoice(0));
    const QString way = probe.text(SortWayChoice(0));
    return Seen{field != "No Field" && way == "Reverse",
                fmt::format("by {}, {}", field.toStdString(), way.toStdString())};
  });
  driver.press(kSortScreen, Qt::Key_F1);
  driver.see(kRecordListScreen, "Said OK", "sorted", [&probe] {
    const ListView* list = probe.list();
    const auto& columns = list->columns();
    const auto marked = std::find_if(columns.begin(), columns.end(), [](const ListColumn& column) {
      return column.sort == SortMark::kReverse && column.sort_level <= 1;
    });
    return Seen{marked != columns.end(),
                fmt::format("the columns read \"{}\"", list->headingWords().toStdString())};
  });
  driver.choose(kRecordListScreen, QStringList{"Undo Sort"});
}

void tourFilter(TourDriver& driver) {
  const ScreenProbe& probe = driver.probe();
  driver.choose(kRecordListScreen, QStringList{"Tools", "Filter"});
  driver.press(kFilterScreen, Qt::Key_Space);
  driver.press(kFilterScreen, Qt::Key_Tab, kTabsToField);
  driver.act(kFilterScreen, [&probe] {
    for (int i = 0; i < kMostFields && !probe.texts().contains("Must Contain"); ++i) {
      probe.press(Qt::Key_Right);
    }
    probe.press(Qt::Key_Tab);
    probe.type(kWanted);
  });
  driver.see(kFilterScreen, "Chose Filter and said what a text must contain", "filter", [&probe] {
    const QString field = probe.text(FilterControl(0, FilterPart::kField));
    const QString text = probe.text(FilterControl(0, FilterPart::kFirst));
    return Seen{text == kWanted,
                fmt::format("{} must contain \"{}\"", field.toStdString(), text.toStdString())};
  });
  driver.press(kFilterScreen, Qt::Key_F1);
  driver.see(kRecordListScreen, "Said OK", "filtered", [&probe] {
    const QString shown = QString("Filter: %1 of ").arg(probe.list()->rowCount());
    return Seen{probe.title().startsWith(shown), probe.title().toStdString()};
  });
  driver.choose(kRecordListScreen, QStringList{"Undo Filter"});
}

}  // namespace tabelion
