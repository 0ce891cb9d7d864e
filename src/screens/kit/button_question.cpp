#include "screens/kit/button_question.h"

#include "screens/kit/commands.h"
#include "screens/kit/row_layout.h"

namespace tabelion {
namespace {

constexpr ControlId kQuestionText = 1;
constexpr int kButtonWidth = 200;

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
  // The answers stand at the bottom, however long the text is.
  void onResize(Dialog& dialog) override {
    std::vector<LayoutRow> rows{TextRow(kQuestionText), SpringRow()};
    for (const QuestionButton& button : question_.buttons) {
      rows.push_back(Centered({.cells = {ButtonCell(button.id)}}));
      rows.back().cells[0].width = kButtonWidth;
    }
    if (question_.check_box.id != 0) rows.push_back(CheckRow(question_.check_box.id));
    PlaceRows(dialog, rows, {.margin = 8});
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
