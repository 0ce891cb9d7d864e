#include "screens/files/database_info.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>

#include "query/time_text.h"
#include "screens/kit/commands.h"
#include "screens/kit/screen_numbers.h"
#include "services/file_management.h"
#include "services/folders.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

constexpr int kMargin = 4;
constexpr int kLineHeight = 17;
constexpr int kCharacterWidth = 8;
constexpr int kGap = 3;
constexpr ControlId kLabels[] = {kInfoAuthor,  kInfoName,    kInfoSize,
                                 kInfoRecords, kInfoCreated, kInfoModified};

DialogTemplate infoTemplate() {
  DialogTemplate dialog;
  dialog.resource = kDatabaseInfoScreen;
  dialog.title = u"Database Info";
  const auto label = [&](ControlId id, const char16_t* text) {
    dialog.controls.push_back({.id = id, .kind = ControlKind::kLabel, .text = text});
  };
  label(kInfoAuthor, u"Author :");
  label(kInfoName, u"Database Name :");
  label(kInfoSize, u"Database Size :");
  label(kInfoRecords, u"No. of Records :");
  label(kInfoCreated, u"Created On :");
  label(kInfoModified, u"Date Modified :");
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
      dialog.control(kInfoSize).setText(
          FromUtf8(fmt::format("Database Size :{:.2f} Kb", kilobytes)));
    }
    onResize(dialog);
  }
  // A label is as high as its text may need; a name may be of wide letters alone, or have one word
  // that leaves half a line empty.
  void onResize(Dialog& dialog) override {
    const int width = dialog.screenSize().width - 2 * kMargin;
    const int characters = std::max(1, width / kCharacterWidth);
    int y = kGap;
    for (const ControlId id : kLabels) {
      Control& label = dialog.control(id);
      int lines = 1 + (static_cast<int>(label.text().size()) - 1) / characters;
      if (lines > 1 && (id == kInfoAuthor || id == kInfoName)) ++lines;
      label.setPlace({kMargin, y, width, lines * kLineHeight});
      y += lines * kLineHeight + kGap;
    }
    dialog.setContentHeight(y);
  }

 private:
  void Done(Dialog& dialog) { dialog.end(kDialogDone); }
  // Header and schema say as much as the whole database would.
  void showContents(Dialog& dialog) {
    const auto summary = std::make_unique<DatabaseSummary>();
    if (!ReadDatabaseSummary(app_, path_, *summary)) return;
    const TextEncoding encoding = EncodingOf(app_, summary->schema);
    dialog.control(kInfoAuthor)
        .setText(u"Author :" + encoding.toUtf16(areaText(summary->schema.author)));
    dialog.control(kInfoName).setText(u"Database Name :" +
                                      encoding.toUtf16(areaText(summary->header.name)));
    dialog.control(kInfoRecords)
        .setText(FromUtf8(
            fmt::format("No.of Records : {}", summary->header.record_count - kSchemaRecords)));
  }
  void showDate(Dialog& dialog, ControlId id, const std::u16string& name, FileDate which) {
    const auto date = GetFileDate(app_, path_, which);
    if (!date) return;
    TimeValue time;
    time.hour = static_cast<std::uint8_t>(date->hour);
    time.minute = static_cast<std::uint8_t>(date->minute);
    time.second = static_cast<std::uint8_t>(date->second);
    dialog.control(id).setText(
        name + FromUtf8(fmt::format("{}/{}/{}\t {}", date->month, date->day, date->year,
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
