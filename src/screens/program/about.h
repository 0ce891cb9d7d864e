// The about box: what the program is, which version, and where its help is.
#pragma once

#include "services/application.h"
#include "services/modal.h"

namespace tabelion {

inline constexpr ControlId kAboutLogo = 101;
inline constexpr ControlId kAboutName = 1;
inline constexpr ControlId kAboutVersion = 2;
inline constexpr ControlId kAboutPurpose = 3;
inline constexpr ControlId kAboutKeys = 4;

// kDialogDone, or kDialogAutoClosed.
int ShowAbout(Application& app);

}  // namespace tabelion
