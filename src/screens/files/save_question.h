// The question what becomes of changes when a database is closed.
#pragma once

#include <string>

#include "services/application.h"

namespace tabelion {

inline constexpr ControlId kSaveChangesButton = 2;
inline constexpr ControlId kDiscardChangesButton = 3;
inline constexpr ControlId kStayButton = 4;

SaveChoice AskToSave(Application& app, const std::u16string& text);

}  // namespace tabelion
