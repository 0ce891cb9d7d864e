// The question what to do about a file that is there already.
#pragma once

#include <string>

#include "services/application.h"
#include "services/file_management.h"

namespace tabelion {

inline constexpr ControlId kOverwriteButton = 2;
inline constexpr ControlId kSyncButton = 3;
inline constexpr ControlId kIgnoreButton = 4;
inline constexpr ControlId kNoQuestionBox = 5;

// Back is Ignore. The check box decides whether the question comes again.
CopyChoice AskCopyQuestion(Application& app, const std::string& path, bool form_file);

// For the services that need an answer.
CopyQuestion CopyQuestionDialog(Application& app);

}  // namespace tabelion
