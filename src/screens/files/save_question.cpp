#include "screens/files/save_question.h"

#include "screens/kit/button_question.h"
#include "screens/kit/screen_numbers.h"

namespace tabelion {

SaveChoice AskToSave(Application& app, const std::u16string& text) {
  const QuestionButton stay{kStayButton, u"Stay"};
  ButtonQuestion question{
      .resource = kSaveQuestionScreen,
      .title = u"QUESTION",
      .text = text,
      .buttons = {{kSaveChangesButton, u"Save"}, {kDiscardChangesButton, u"Discard"}, stay},
      .focus = kSaveChangesButton,
      .back = stay};
  switch (AskWithButtons(app, question)) {
    case kSaveChangesButton:
      return SaveChoice::kSave;
    case kDiscardChangesButton:
      return SaveChoice::kDiscard;
    case kStayButton:
      return SaveChoice::kStay;
    default:
      return SaveChoice::kNobody;
  }
}

}  // namespace tabelion
