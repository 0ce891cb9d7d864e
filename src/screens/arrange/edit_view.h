// The dialog with a view's name and what choosing the view does.
#pragma once

#include "services/application.h"

namespace tabelion {

inline constexpr ControlId kViewName = 1130;
inline constexpr ControlId kViewAction = 1131;
inline constexpr ControlId kViewTarget = 1132;
inline constexpr ControlId kViewLiveUpdate = 1133;

enum class ViewEditing {
  kNew,     // of what the database shows now
  kCopy,    // of the view
  kChange,  // the view itself
};
// The view comes into being with OK, as one step; leaving the dialog in another way makes and
// changes nothing. The index of the view that was stored, or -1.
int ShowEditView(Application& app, ViewEditing edit, int view = -1);

}  // namespace tabelion
