#include "services/message.h"

#include "services/screen_text.h"

namespace tabelion {

void ShowMessage(Application& app, const std::u16string& text, const std::u16string& title,
                 MessageIcon icon) {
  if (app.closing == Closing::kSessionEnds) return;  // nobody reads it, and it would wait
  app.platform.dialogs.message({text, title, MessageButtons::kOk, icon});
}

Answer Ask(Application& app, const std::u16string& text, const std::u16string& title,
           MessageIcon icon) {
  if (app.closing == Closing::kSessionEnds) return Answer::kNobody;
  switch (app.platform.dialogs.message({text, title, MessageButtons::kYesNo, icon})) {
    case MessageAnswer::kYes:
      return Answer::kYes;
    case MessageAnswer::kNo:
      return Answer::kNo;
    case MessageAnswer::kOk:
    case MessageAnswer::kNobody:
      break;
  }
  return Answer::kNobody;
}

void ShowEngineMessage(Application& app, const std::string& text) {
  ShowMessage(app, FromUtf8(text), u"ERROR", MessageIcon::kError);
}

void ShowError(Application& app, const Error& error, const std::u16string& title) {
  ShowMessage(app, FromUtf8(error.text), title, MessageIcon::kError);
}

}  // namespace tabelion
