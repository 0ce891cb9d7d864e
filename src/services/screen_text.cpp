#include "services/screen_text.h"

#include "engine/ascii.h"

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

std::u16string FoldedName(const std::u16string& name) {
  std::u16string folded = lowerCaseText(name);
  for (char16_t& c : folded) {
    const bool latin = c >= u'\u00C0' && c <= u'\u00DE' && c != u'\u00D7';
    if (latin) c = static_cast<char16_t>(c + 0x20);
  }
  return folded;
}

}  // namespace tabelion
