// The list of a database's views, in which they are made, copied, changed and deleted.
#pragma once

#include "services/application.h"

namespace tabelion {

inline constexpr ControlId kViewList = 1120;

inline constexpr CommandId kNewViewCommand = 40221;
inline constexpr CommandId kCopyViewCommand = 40222;
inline constexpr CommandId kEditViewCommand = 40223;
inline constexpr CommandId kViewFieldsCommand = 40224;

// Each change is a step. When the list is left, the current view shows again as it now is.
void ShowEditViews(Application& app);

}  // namespace tabelion
