#include "screens/kit/stored_box.h"

#include "services/message.h"
#include "services/screen_text.h"

namespace tabelion {

std::optional<std::string> TextOfBox(Application& app, Dialog& dialog, ControlId box,
                                     std::size_t most_bytes, const std::u16string& title) {
  const Result<std::string> stored = StoredText(app, dialog.control(box).text());
  if (stored.ok() && stored->size() <= most_bytes) return *stored;
  const std::u16string text = stored.ok() ? u"The text is longer than fits here."
                                          : u"The text " + FromUtf8(stored.error().text) + u".";
  ShowMessage(app, text, title, MessageIcon::kExclamation);
  dialog.control(box).focus();
  dialog.control(box).selectText();
  return std::nullopt;
}

}  // namespace tabelion
