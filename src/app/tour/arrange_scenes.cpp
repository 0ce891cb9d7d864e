#include "app/tour/arrange_scenes.h"

#include <fmt/format.h>

#include "platform/qt/list_view.h"
#include "screens/arrange/fields_setup.h"
#include "screens/arrange/search_database.h"
#include "screens/kit/screen_numbers.h"
#include "screens/records/record_list.h"

namespace tabelion {
namespace {

void search(TourDriver& driver, const QString& text) {
  const ScreenProbe& probe = driver.probe();
  driver.choose(kRecordListScreen, QStringList{"Tools", "Find"});
  driver.act(kSearchScreen, [&probe, text] { probe.type(text); });
  driver.see(kSearchScreen, "Chose Find and typed a text", "search", [&probe, text] {
    const QString typed = probe.text(kSearchText);
    return Seen{typed == text, "it searches for \"" + typed.toStdString() + "\""};
  });
  driver.press(kSearchScreen, Qt::Key_F1);
  driver.see(kRecordListScreen, "Searched", "found", [&probe, text] {
    const QString row = probe.list()->rowText(probe.list()->selectedRow());
    return Seen{row.contains(text), "the list stands at \"" + row.toStdString() + "\""};
  });
}

void chooseView(TourDriver& driver) {
  const ScreenProbe& probe = driver.probe();
  driver.press(kRecordListScreen, Qt::Key_F2);
  driver.press(kRecordListScreen, Qt::Key_Return);  // Views, the first entry
  driver.see(kRecordListScreen, "Opened the menu of the views", "views-menu", [&probe] {
    return Seen{probe.menu().contains("Edit Views "),
                fmt::format("it offers {}", probe.menu().join(", ").toStdString())};
  });
  driver.press(kRecordListScreen, Qt::Key_2);
  driver.see(kRecordListScreen, "Chose the second view", "view", [&probe] {
    const QString name = probe.text(kViewLabel);
    return Seen{name != "Default View",
                fmt::format("\"{}\" lists {} records in {} columns", name.toStdString(),
                            probe.list()->rowCount(), probe.list()->columns().size())};
  });
}

void editViews(TourDriver& driver) {
  const ScreenProbe& probe = driver.probe();
  driver.choose(kRecordListScreen, QStringList{"Views", "Edit Views "});
  driver.see(kEditViewsScreen, "Chose Edit Views", "edit-views", [&probe] {
    const int views = probe.list()->rowCount();
    return Seen{views >= 2, fmt::format("{} views are listed", views)};
  });
  driver.press(kEditViewsScreen, Qt::Key_Return);
  driver.see(kEditViewScreen, "Opened the view", "edit-view", [&probe] {
    return Seen{probe.texts().contains("Adjust View"), "it arranges the list"};
  });
  driver.press(kEditViewScreen, Qt::Key_F2);
  driver.choose(kEditViewsScreen, QStringList{"Fields Setup"});
  driver.see(kFieldsSetupScreen, "Chose Fields Setup", "fields-setup", [&probe] {
    const QString field = probe.text(kSetupField);
    return Seen{!field.isEmpty(), fmt::format("{}, \"{}\"", probe.text(kSetupPlace).toStdString(),
                                              field.toStdString())};
  });
  driver.press(kFieldsSetupScreen, Qt::Key_Escape);
  driver.press(kEditViewsScreen, Qt::Key_Escape);
}

}  // namespace

void searchAndSwitchViews(TourDriver& driver, const QString& text) {
  search(driver, text);
  chooseView(driver);
  editViews(driver);
  const ScreenProbe& probe = driver.probe();
  for (int step = 0; step < 2; ++step) {  // the choice of the view, then the search
    driver.act(kRecordListScreen, [&probe] { probe.press(Qt::Key_Z, Qt::ControlModifier); });
  }
  driver.see(kRecordListScreen, "Took both back", "view-undone", [&probe] {
    const QString name = probe.text(kViewLabel);
    return Seen{name == "Default View", "the view is \"" + name.toStdString() + "\" again"};
  });
}

}  // namespace tabelion
