#include "screens/lists/popup_text.h"

#include <algorithm>

#include "screens/kit/commands.h"
#include "screens/kit/row_layout.h"
#include "screens/kit/screen_numbers.h"
#include "screens/kit/stored_box.h"
#include "services/message.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

constexpr ControlId kQuestionLabel = 2;
constexpr char16_t kErrorTitle[] = u"Popup Error";
constexpr std::size_t kMostBytesPerCharacter = 4;

class PopupTextScreen : public CommandScreen<PopupTextScreen> {
 public:
  PopupTextScreen(Application& app, const PopupTextQuestion& question)
      : app_(app), question_(question) {}

  CommandTable<PopupTextScreen> Commands(Dialog&) {
    return {.left = {kDoneCommand, u"Done", &PopupTextScreen::Done},
            .right = {kCancelCommand, u"Cancel", &PopupTextScreen::Cancel},
            .keys = {{kActionCommand, {}, &PopupTextScreen::Done},
                     {kBackCommand, {}, &PopupTextScreen::Cancel}}};
  }
  void onInit(Dialog& dialog) override {
    ShowCommands(dialog);
    onResize(dialog);
    dialog.control(kPopupTextBox).focus();
    dialog.control(kPopupTextBox).selectText();
  }
  void onResize(Dialog& dialog) override {
    PlaceRows(dialog, {TextRow(kQuestionLabel), BoxRow(kPopupTextBox)}, {.margin = 8});
  }
  bool acceptsCharacter(Dialog&, ControlId, char32_t character) override {
    return CanStore(app_, character);
  }
  bool OnAutoClose(Dialog& dialog) override;

  std::optional<std::string> answer;

 private:
  void Done(Dialog& dialog) {
    if (Take(dialog)) dialog.end(kDialogDone);
  }
  void Cancel(Dialog& dialog) { dialog.end(kDialogClosed); }
  bool Take(Dialog& dialog);
  bool Refuse(Dialog& dialog, const std::u16string& text) {
    ShowMessage(app_, text, kErrorTitle, MessageIcon::kExclamation);
    dialog.control(kPopupTextBox).focus();
    dialog.control(kPopupTextBox).selectText();
    return false;
  }

  Application& app_;
  const PopupTextQuestion& question_;
};

bool PopupTextScreen::Take(Dialog& dialog) {
  const std::u16string shown = dialog.control(kPopupTextBox).text();
  if (shown.find_first_not_of(u' ') == std::u16string::npos) {
    return Refuse(dialog, u"You must enter a Popup Value");
  }
  const auto text = TextOfBox(app_, dialog, kPopupTextBox,
                              kMostPopupCharacters * kMostBytesPerCharacter, kErrorTitle);
  if (!text) return false;
  if (question_.is_taken(*text)) {
    return Refuse(dialog, u"There is a \"" + shown + u"\" on this level already.");
  }
  answer = *text;
  return true;
}

// Where nobody is there to be asked, a text that cannot be taken is told to whoever comes back.
bool PopupTextScreen::OnAutoClose(Dialog& dialog) {
  const std::u16string shown = dialog.control(kPopupTextBox).text();
  if (shown == question_.text) return true;
  if (!IsAlone(app_.closing)) return Take(dialog);
  const Result<std::string> text = StoredText(app_, shown);
  if (text.ok() && shown.find_first_not_of(u' ') != std::u16string::npos &&
      !question_.is_taken(*text)) {
    answer = *text;
  } else {
    app_.not_stored.push_back(question_.title + u": " + shown);
  }
  return true;
}

}  // namespace

std::optional<std::string> AskPopupText(Application& app, const PopupTextQuestion& question) {
  DialogTemplate dialog;
  dialog.resource = kPopupTextScreen;
  dialog.title = question.title;
  dialog.controls = {
      {.id = kQuestionLabel, .kind = ControlKind::kLabel, .text = u"Enter new popup value:"},
      {.id = kPopupTextBox,
       .kind = ControlKind::kEdit,
       .text = question.text,
       .accessible_name = u"Enter new popup value:",
       // A longer one that a file holds can be kept.
       .max_length = std::max(kMostPopupCharacters, static_cast<int>(question.text.size()))}};
  PopupTextScreen screen(app, question);
  RunModalDialog(app, dialog, screen);
  return screen.answer;
}

}  // namespace tabelion
