// Text between the 8-bit core and the UTF-16 screens.
#pragma once

#include <string>
#include <string_view>

#include "interchange/text_encoding.h"
#include "services/application.h"

namespace tabelion {

// How a database's texts are encoded: by its own code page, else by the user's.
TextEncoding EncodingOf(const Application& app, const DatabaseRecord& schema);

// A text of the current database.
inline std::u16string ScreenText(const Application& app, std::string_view stored) {
  return app.level().encoding.toUtf16(stored);
}
// The other way round; the error ends a sentence about the value.
Result<std::string> StoredText(const Application& app, std::u16string_view shown);
// Whether a character that is typed can be stored.
inline bool CanStore(const Application& app, char32_t character) {
  return app.level().encoding.canEncode(character);
}

// The ASCII and Latin-1 letters of a name in lower case: how people order and look up names.
std::u16string FoldedName(const std::u16string& name);

// Paths, settings and error values are UTF-8.
inline std::u16string FromUtf8(std::string_view text) {
  return TextEncoding::utf8().toUtf16(text);
}

}  // namespace tabelion
