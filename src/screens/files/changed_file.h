// The question what to do when a database is saved whose file another program has changed.
#pragma once

#include <string>

#include "services/application.h"

namespace tabelion {

inline constexpr ControlId kOverwriteTheirsButton = 2;
inline constexpr ControlId kKeepBothButton = 3;
inline constexpr ControlId kCancelSaveButton = 4;

// For Application::ask_changed_file. Back is Cancel; a dialog that closes by itself keeps both.
ChangedFileChoice AskChangedFile(Application& app, const std::string& path);

}  // namespace tabelion
