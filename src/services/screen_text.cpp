#include "services/screen_text.h"

namespace tabelion {

TextEncoding EncodingOf(const Application& app, const DatabaseRecord& schema) {
  for (const std::string& name : {databaseCodePage(schema), app.preferences.code_page}) {
    if (name.empty()) continue;
    if (auto encoding = TextEncoding::open(name); encoding.ok()) return *encoding;
  }
  return *TextEncoding::open(kDefaultCodePage);
}

Result<std::string> StoredText(const Application& app, std::u16string_view shown) {
  Encoded stored = app.level().encoding.fromUtf16(shown);
  if (stored.ok()) return std::move(stored.bytes);
  return makeError(ErrorKind::kInvalid,
                   "cannot be stored: " + describeFault(*stored.fault, app.level().encoding));
}

}  // namespace tabelion
