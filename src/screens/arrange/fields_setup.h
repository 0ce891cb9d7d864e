// The dialog in which the fields of a view are chosen: as columns of the list, for the form, for
// export, and in which order.
#pragma once

#include "services/application.h"

namespace tabelion {

inline constexpr ControlId kSetupField = 1140;
inline constexpr ControlId kSetupInList = 1141;
inline constexpr ControlId kSetupWidth = 1142;
inline constexpr ControlId kSetupInRecord = 1143;
inline constexpr ControlId kSetupExport = 1144;
inline constexpr ControlId kSetupPlace = 1145;  // "Field 2 of 7"

inline constexpr CommandId kMoveUpCommand = 40231;
inline constexpr CommandId kMoveDownCommand = 40232;

// What was set up is stored with OK, as one step.
void ShowFieldsSetup(Application& app, int view);

}  // namespace tabelion
