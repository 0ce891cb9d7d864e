#include "screens/files/database_info.h"

#include <fmt/format.h>

#include <memory>
#include <utility>
#include <vector>

#include "query/time_text.h"
#include "screens/kit/commands.h"
#include "screens/kit/row_layout.h"
#include "screens/kit/screen_numbers.h"
#include "services/file_management.h"
#include "services/folders.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

constexpr std::pair<ControlId, const char16_t*> kLabels[] = {
    {kInfoAuthor, u"Author :"},      {kInfoName, u"Database Name :"},
    {kInfoSize, u"Database Size :"}, {kInfoRecords, u"No. of Records :"},
    {kInfoCreated, u"Created On :"}, {kInfoModified, u"Date Modified :"}};

DialogTemplate infoTemplate() {
  DialogTemplate dialog;
  dialog.resource = kDatabaseInfoScreen;
  dialog.title = u"Database Info";
  for (const auto& [id, text] : kLabels) {
    dialog.controls.push_back({.id = id, .kind = ControlKind::kLabel, .text = text});
    dialog.controls.push_back({.id = InfoValue(id), .kind = ControlKind::kLabel});
  }
  return dialog;
}

class DatabaseInfoScreen : public CommandScreen<DatabaseInfoScreen> {
 public:
  DatabaseInfoScreen(Application& app, const std::string& path) : app_(app), path_(path) {}

  CommandTable<DatabaseInfoScreen> Commands(Dialog&) {
    return {.left = {kDoneCommand, u"Done", &DatabaseInfoScreen::Done},
            .keys = {{kActionCommand, {}, &DatabaseInfoScreen::Done},
                     {kBackCommand, {}, &DatabaseInfoScreen::Done}}};
  }
  void onInit(Dialog& dialog) override {
    ShowCommands(dialog);
    showContents(dialog);
    showDate(dialog, kInfoCreated, u"Created On :", FileDate::kCreated);
    showDate(dialog, kInfoModified, u"Modified On :", FileDate::kModified);
    if (const auto info = app_.platform.files.info(path_); info.ok()) {
      const float kilobytes = static_cast<float>(info->size) * 0.001F;
      show(dialog, kInfoSize, u"Database Size :", FromUtf8(fmt::format("{:.2f} Kb", kilobytes)));
    }
    onResize(dialog);
  }
  void onResize(Dialog& dialog) override {
    std::vector<LayoutRow> rows;
    for (const auto& [label, text] : kLabels) {
      rows.push_back(LabeledRow(label, {TextCell(InfoValue(label))}));
    }
    PlaceRows(dialog, rows);
  }

 private:
  void Done(Dialog& dialog) { dialog.end(kDialogDone); }
  // Header and schema say as much as the whole database would.
  void showContents(Dialog& dialog) {
    const auto summary = std::make_unique<DatabaseSummary>();
    if (!ReadDatabaseSummary(app_, path_, *summary)) return;
    const TextEncoding encoding = EncodingOf(app_, summary->schema);
    show(dialog, kInfoAuthor, u"Author :", encoding.toUtf16(areaText(summary->schema.author)));
    show(dialog, kInfoName, u"Database Name :", encoding.toUtf16(areaText(summary->header.name)));
    show(dialog, kInfoRecords, u"No.of Records :",
         FromUtf8(std::to_string(summary->header.record_count - kSchemaRecords)));
  }
  static void show(Dialog& dialog, ControlId label, const std::u16string& text,
                   const std::u16string& value) {
    dialog.control(label).setText(text);
    dialog.control(InfoValue(label)).setText(value);
  }
  void showDate(Dialog& dialog, ControlId id, const std::u16string& name, FileDate which) {
    const auto date = GetFileDate(app_, path_, which);
    if (!date) return;
    TimeValue time;
    time.hour = static_cast<std::uint8_t>(date->hour);
    time.minute = static_cast<std::uint8_t>(date->minute);
    time.second = static_cast<std::uint8_t>(date->second);
    show(dialog, id, name,
         FromUtf8(fmt::format("{}/{}/{}\t {}", date->month, date->day, date->year,
                              timeText(time, app_.level().formats))));
  }

  Application& app_;
  const std::string path_;
};

}  // namespace

int ShowDatabaseInfo(Application& app, const std::string& path) {
  DatabaseInfoScreen screen(app, path);
  RunModalDialog(app, infoTemplate(), screen);
  return kDialogDone;
}

}  // namespace tabelion
