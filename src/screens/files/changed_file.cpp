#include "screens/files/changed_file.h"

#include "screens/kit/button_question.h"
#include "screens/kit/screen_numbers.h"
#include "services/file_names.h"
#include "services/screen_text.h"

namespace tabelion {

ChangedFileChoice AskChangedFile(Application& app, const std::string& path) {
  const QuestionButton cancel{kCancelSaveButton, u"Cancel"};
  ButtonQuestion question{
      .resource = kChangedFileScreen,
      .title = u"Save",
      .text =
          u"Another program has changed \"" + FromUtf8(FileNameOf(path)) +
          u"\" since it was opened here. \"Keep Both\" leaves that file as it is and saves this "
          u"database beside it, with a number behind its name.",
      .buttons = {{kOverwriteTheirsButton, u"Overwrite Theirs"},
                  {kKeepBothButton, u"Keep Both"},
                  cancel},
      .focus = kKeepBothButton,
      .back = cancel};
  switch (AskWithButtons(app, question)) {
    case kOverwriteTheirsButton:
      return ChangedFileChoice::kOverwrite;
    case kCancelSaveButton:
      return ChangedFileChoice::kCancel;
    default:  // also when nobody answered
      return ChangedFileChoice::kKeepBoth;
  }
}

}  // namespace tabelion
