// Message boxes with the program's texts.
#pragma once

#include <string>

#include "services/application.h"

namespace tabelion {

void ShowMessage(Application& app, const std::u16string& text, const std::u16string& title,
                 MessageIcon icon);

// What came of a question. Nobody's silence is no No: whoever asks decides what it means.
enum class Answer {
  kYes,
  kNo,
  kNobody,  // dismissed unanswered, or not even asked since the session ends
};
// A Yes/No question.
Answer Ask(Application& app, const std::u16string& text, const std::u16string& title,
           MessageIcon icon = MessageIcon::kQuestion);

// What the engine has to say (8-bit; a path in it is UTF-8).
void ShowEngineMessage(Application& app, const std::string& text);
// An error value's sentence (UTF-8).
void ShowError(Application& app, const Error& error, const std::u16string& title);

}  // namespace tabelion
