// A question whose answers are buttons, one below the other, with a check box where one is wanted.
#pragma once

#include <string>
#include <vector>

#include "services/application.h"
#include "services/modal.h"

namespace tabelion {

struct QuestionButton {
  ControlId id = 0;
  std::u16string text;
};

struct ButtonQuestion {
  int resource = 0;
  std::u16string title;
  std::u16string text;  // several lines
  std::vector<QuestionButton> buttons;
  ControlId focus = 0;         // the button that Enter presses first
  QuestionButton back;         // one of them: what the Back key and the right soft key mean
  QuestionButton check_box{};  // none when it has no number
  bool checked = false;        // the box, before and after
};

// The button that was pressed, 0 when the dialog closed by itself.
ControlId AskWithButtons(Application& app, ButtonQuestion& question);

}  // namespace tabelion
