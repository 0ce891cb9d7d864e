#include "screens/kit/stored_box.h"

#include "services/message.h"
#include "services/screen_text.h"

namespace tabelion {

void RefuseBox(Application& app, Dialog& dialog, ControlId box, const std::u16string& why,
               const std::u16string& title) {
  Control& refused = dialog.control(box);
  if (IsAlone(app.closing)) {
    const std::string database = areaText(CurrentDatabase(app).header.name);
    return app.not_stored.push_back(ScreenText(app, database) + u": " + refused.text());
  }
  ShowMessage(app, why, title, MessageIcon::kExclamation);
  refused.focus();
  refused.selectText();
}

std::optional<std::string> TextOfBox(Application& app, Dialog& dialog, ControlId box,
                                     std::size_t most_bytes, const std::u16string& title) {
  const Result<std::string> stored = StoredText(app, dialog.control(box).text());
  if (stored.ok() && stored->size() <= most_bytes) return *stored;
  RefuseBox(app, dialog, box,
            stored.ok() ? u"The text is longer than fits here."
                        : u"The text " + FromUtf8(stored.error().text) + u".",
            title);
  return std::nullopt;
}

}  // namespace tabelion
