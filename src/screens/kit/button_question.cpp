#include "screens/kit/button_question.h"

#include <algorithm>

#include "screens/kit/commands.h"

namespace tabelion {
namespace {

constexpr ControlId kQuestionText = 1;
constexpr int kMargin = 8;
constexpr int kRow = 26;
constexpr int kStep = kRow + 4;
constexpr int kMostButtonWidth = 200;

class ButtonQuestionScreen : public CommandScreen<ButtonQuestionScreen> {
 public:
  ButtonQuestionScreen(ButtonQuestion& question) : question_(question) {}

  CommandTable<ButtonQuestionScreen> Commands(Dialog&) {
    return {.left = {kActionCommand, u"Select", &ButtonQuestionScreen::Select},
            .right = {kBackCommand, question_.back.text, &ButtonQuestionScreen::Back}};
  }
  void onInit(Dialog& dialog) override {
    ShowCommands(dialog);
    if (question_.check_box.id != 0) {
      dialog.control(question_.check_box.id).setChecked(question_.checked);
    }
    onResize(dialog);
    dialog.control(question_.focus).focus();
  }
  // The text has whatever the answers leave it.
  void onResize(Dialog& dialog) override {
    const Size size = dialog.screenSize();
    const bool has_box = question_.check_box.id != 0;
    const int rows = static_cast<int>(question_.buttons.size()) + (has_box ? 1 : 0);
    int y = std::max(kStep, size.height - rows * kStep);
    dialog.control(kQuestionText).setPlace({kMargin, 2, size.width - 2 * kMargin, y - 4});
    const int width = std::min(size.width - 2 * kMargin, kMostButtonWidth);
    for (const QuestionButton& button : question_.buttons) {
      dialog.control(button.id).setPlace({(size.width - width) / 2, y, width, kRow});
      y += kStep;
    }
    if (!has_box) return;
    dialog.control(question_.check_box.id)
        .setPlace({(size.width - width) / 2, y, size.width - (size.width - width) / 2, kRow});
  }
  void onNotice(Dialog& dialog, ControlId control, Notice notice) override {
    if (notice == Notice::kActivated) end(dialog, control);
  }
  ControlId pressed = 0;

 private:
  void Select(Dialog& dialog) {
    for (const QuestionButton& button : question_.buttons) {
      if (dialog.control(button.id).hasFocus()) return end(dialog, button.id);
    }
  }
  void Back(Dialog& dialog) { end(dialog, question_.back.id); }
  void end(Dialog& dialog, ControlId button) {
    pressed = button;
    if (question_.check_box.id != 0) {
      question_.checked = dialog.control(question_.check_box.id).checked();
    }
    dialog.end(kDialogDone);
  }

  ButtonQuestion& question_;
};

}  // namespace

ControlId AskWithButtons(Application& app, ButtonQuestion& question) {
  DialogTemplate dialog;
  dialog.resource = question.resource;
  dialog.title = question.title;
  dialog.controls = {
      {.id = kQuestionText, .kind = ControlKind::kLabel, .text = question.text, .centered = true}};
  for (const QuestionButton& button : question.buttons) {
    dialog.controls.push_back({.id = button.id, .kind = ControlKind::kButton, .text = button.text});
  }
  if (question.check_box.id != 0) {
    dialog.controls.push_back({.id = question.check_box.id,
                               .kind = ControlKind::kCheckBox,
                               .text = question.check_box.text});
  }
  ButtonQuestionScreen screen(question);
  RunModalDialog(app, dialog, screen);
  return screen.pressed;
}

}  // namespace tabelion
