// The screen that shows statistics over one field, and a picture of its values beside them. In the
// picture, Left and Right go to the report of the field before and behind.
#pragma once

#include "services/application.h"

namespace tabelion {

inline constexpr ControlId kReportField = 1120;
inline constexpr ControlId kReportText = 1121;
inline constexpr ControlId kReportPicture = 1122;

// Changes nothing in the database. kDialogClosed or kDialogAutoClosed.
int ShowRunReport(Application& app);

}  // namespace tabelion
