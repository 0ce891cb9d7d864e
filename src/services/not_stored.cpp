#include "services/not_stored.h"

#include <utility>

#include "services/message.h"
#include "services/screen_text.h"
#include "services/setting_table.h"

namespace tabelion {

void TellNotStored(Application& app) {
  std::u16string lines;
  for (const std::u16string& line : std::exchange(app.not_stored, {})) lines += u"\n" + line;
  Settings& settings = app.platform.settings;
  if (lines.empty()) {
    const auto kept = ReadSetting(settings, Setting::kNotStored);
    if (!kept || kept->empty()) return;
    WriteSetting(settings, Setting::kNotStored, {});
    lines = FromUtf8(*kept);
  }
  ShowMessage(app,
              u"This was typed, not understood, and not stored when the program closed the "
              u"database by itself:" +
                  lines,
              u"Message", MessageIcon::kInformation);
}

void KeepNotStored(Application& app) {
  std::u16string lines;
  for (const std::u16string& line : std::exchange(app.not_stored, {})) lines += u"\n" + line;
  if (lines.empty()) return;
  const std::string text = TextEncoding::utf8().fromUtf16(lines).bytes;
  WriteSetting(app.platform.settings, Setting::kNotStored,
               text.substr(0, CapacityOf(Setting::kNotStored) - 1));
}

}  // namespace tabelion
