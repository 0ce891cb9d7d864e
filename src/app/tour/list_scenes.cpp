#include "app/tour/list_scenes.h"

#include <fmt/format.h>

#include <utility>

#include "platform/qt/list_view.h"
#include "platform/qt/step_box.h"
#include "screens/kit/pick_date.h"
#include "screens/kit/screen_numbers.h"
#include "screens/records/record_form.h"

namespace tabelion {
namespace {

constexpr int kMostFields = 100;
constexpr char kNewItem[] = "Chess";

void moveTo(TourDriver& driver, std::function<bool()> wanted) {
  const ScreenProbe& probe = driver.probe();
  driver.act(kEditRecordScreen, [&probe, wanted = std::move(wanted)] {
    for (int i = 0; i < kMostFields && !wanted(); ++i) probe.press(Qt::Key_Down);
  });
}

void editList(TourDriver& driver) {
  const ScreenProbe& probe = driver.probe();
  moveTo(driver,
         [&probe] { return dynamic_cast<StepBox*>(probe.widget(probe.focus())) != nullptr; });
  driver.choose(kEditRecordScreen, QStringList{"Popup"});
  driver.choose(kPopupListScreen, QStringList{"New"});
  driver.act(kPopupTextScreen, [&probe] { probe.type(kNewItem); });
  driver.press(kPopupTextScreen, Qt::Key_Return);
  driver.see(kPopupListScreen, "Chose Popup and added an item", "popup-list", [&probe] {
    const ListView* list = probe.list();
    const QString row = list->rowText(list->selectedRow());
    return Seen{row == kNewItem,
                fmt::format("{} rows, \"{}\" is selected", list->rowCount(), row.toStdString())};
  });
  driver.choose(kPopupListScreen, QStringList{"Undo New popup item"});
  driver.press(kPopupListScreen, Qt::Key_Escape);
}

void pickDate(TourDriver& driver) {
  const ScreenProbe& probe = driver.probe();
  const auto quick = [&probe] { return probe.focus() - FormValue(0) + FormQuick(0); };
  moveTo(driver, [&probe, quick] { return probe.widget(quick()) != nullptr; });
  driver.press(kEditRecordScreen, Qt::Key_Tab);
  driver.press(kEditRecordScreen, Qt::Key_Return);
  driver.see(kEditRecordScreen, "Opened the choices of a date", "date-choices", [&probe] {
    return Seen{probe.menu().contains("Choose Date.."),
                "they are " + probe.menu().join(", ").toStdString()};
  });
  driver.press(kEditRecordScreen, Qt::Key_End);
  driver.press(kEditRecordScreen, Qt::Key_Return);
  driver.press(kPickDateScreen, Qt::Key_PageDown);
  driver.press(kPickDateScreen, Qt::Key_Right, 2);
  driver.see(kPickDateScreen, "Chose one in the calendar", "pick-date", [&probe] {
    const QString words = probe.text(kDateWords);
    return Seen{!words.isEmpty(), "it says \"" + words.toStdString() + "\""};
  });
  driver.press(kPickDateScreen, Qt::Key_Return);
  driver.choose(kEditRecordScreen, QStringList{"Cancel"});
}

}  // namespace

void editListAndPickDate(TourDriver& driver) {
  driver.press(kRecordListScreen, Qt::Key_Return);
  editList(driver);
  pickDate(driver);
}

}  // namespace tabelion
