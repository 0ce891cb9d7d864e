#include "app/tour/record_scenes.h"

#include <fmt/format.h>

#include "platform/qt/list_view.h"
#include "screens/kit/screen_numbers.h"

namespace tabelion {

void lookAtDetails(TourDriver& driver) {
  const ScreenProbe& probe = driver.probe();
  driver.press(kRecordListScreen, Qt::Key_Return);
  driver.choose(kEditRecordScreen, "Record Details");
  driver.see(kRecordDetailsScreen, "Chose Record Details", "details", [&probe] {
    const QStringList texts = probe.texts();
    return Seen{texts.contains("Created On:"),
                "it says \"" + texts.join("\", \"").toStdString() + "\""};
  });
  driver.press(kRecordDetailsScreen, Qt::Key_F1);
  driver.choose(kEditRecordScreen, "Cancel");
}

void deleteAndTakeBack(TourDriver& driver, std::size_t count) {
  const ScreenProbe& probe = driver.probe();
  const auto lists = [&probe](int rows) {
    return [&probe, rows] {
      return Seen{probe.list()->rowCount() == rows,
                  fmt::format("{} records listed", probe.list()->rowCount())};
    };
  };
  driver.choose(kRecordListScreen, QStringList{"Delete", "All Records"});
  driver.see(kAnyQuestion, "Chose to delete all records", "delete-all", [&probe] {
    return Seen{probe.messageText().startsWith("Records deletion"),
                "it asks \"" + probe.messageText().toStdString() + "\""};
  });
  driver.press(kAnyQuestion, Qt::Key_F1);
  driver.see(kRecordListScreen, "Answered Yes", "deleted-all", lists(0));
  const QString undo = QString("Undo Delete of %1 records").arg(count);
  driver.choose(kRecordListScreen, undo);
  driver.see(kRecordListScreen, "Chose " + undo.toStdString(), "undone",
             lists(static_cast<int>(count)));
}

}  // namespace tabelion
