#include "screens/files/closing_questions.h"

#include "screens/files/save_question.h"
#include "screens/kit/button_question.h"
#include "screens/kit/screen_numbers.h"
#include "screens/program/ask_password.h"
#include "services/file_names.h"
#include "services/save_database.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

FailedSaveAnswer askFailedSave(Application& app, const std::string& path,
                               const std::vector<std::string>& folders) {
  const QuestionButton stay{kKeepOpenButton, u"Keep Open"};
  ButtonQuestion question{.resource = kFailedSaveScreen,
                          .title = u"Update",
                          .text = SaveFailureText(app) + u"\nWhere should \"" +
                                  FromUtf8(FileNameOf(path)) + u"\" be saved instead?",
                          .buttons = {},
                          .focus = kKeepOpenButton,
                          .back = stay};
  ControlId id = kFirstFolderButton;
  for (const std::string& folder : folders) {
    question.buttons.push_back({id++, FromUtf8(folder)});
  }
  question.buttons.push_back({kGiveUpChangesButton, u"Close Without Saving"});
  question.buttons.push_back(stay);
  const ControlId pressed = AskWithButtons(app, question);
  if (pressed >= kFirstFolderButton) {
    return {FailedSaveChoice::kElsewhere,
            folders[static_cast<std::size_t>(pressed - kFirstFolderButton)]};
  }
  return {pressed == kGiveUpChangesButton ? FailedSaveChoice::kGiveUp : FailedSaveChoice::kStay};
}

}  // namespace

ClosingQuestions AskWhenClosing(Application& app) {
  return {.password = AskEncryptionPassword(app),
          .save = [&app](const std::u16string& text) { return AskToSave(app, text); },
          .failed_save =
              [&app](const std::string& path, const std::vector<std::string>& folders) {
                return askFailedSave(app, path, folders);
              }};
}

}  // namespace tabelion
