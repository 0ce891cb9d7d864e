#include "screens/files/copy_question.h"

#include "screens/kit/button_question.h"
#include "screens/kit/screen_numbers.h"
#include "services/file_names.h"
#include "services/screen_text.h"
#include "services/setting_table.h"

namespace tabelion {
namespace {

std::u16string questionText(const std::string& path, bool form_file) {
  if (form_file) {
    return u"\nWould you like to overwrite form file stored with the current form file?";
  }
  return u"\"" + FromUtf8(FileNameOf(path)) +
         u"\" is there already.\nSync keeps the newer of the two, also when no message is shown "
         u"again.";
}

}  // namespace

CopyChoice AskCopyQuestion(Application& app, const std::string& path, bool form_file) {
  Settings& settings = app.platform.settings;
  const auto silent = ReadNumberSetting(settings, Setting::kSyncOverwrite);
  if (!silent) WriteNumberSetting(settings, Setting::kSyncOverwrite, 0);
  const QuestionButton ignore{kIgnoreButton, form_file ? u"No" : u"Ignore"};
  ButtonQuestion question{.resource = kCopyQuestionScreen,
                          .title = u"Copy",
                          .text = questionText(path, form_file),
                          .buttons = {{kOverwriteButton, form_file ? u"Yes" : u"Overwrite"}},
                          .focus = form_file ? kIgnoreButton : kSyncButton,
                          .back = ignore,
                          .check_box = {kNoQuestionBox, u"Do not show message again"},
                          .checked = silent == 1};
  if (!form_file) question.buttons.push_back({kSyncButton, u"Sync"});
  question.buttons.push_back(ignore);
  const ControlId pressed = AskWithButtons(app, question);
  if (pressed == 0) return CopyChoice::kIgnore;
  WriteNumberSetting(settings, Setting::kSyncOverwrite, question.checked ? 1 : 0);
  if (pressed == kOverwriteButton) return CopyChoice::kOverwrite;
  return pressed == kSyncButton ? CopyChoice::kSync : CopyChoice::kIgnore;
}

CopyQuestion CopyQuestionDialog(Application& app) {
  return [&app](const std::string& path, bool form_file) {
    return AskCopyQuestion(app, path, form_file);
  };
}

}  // namespace tabelion
