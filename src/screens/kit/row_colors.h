// What the rows of lists are painted with.
#pragma once

#include "platform/dialogs.h"

namespace tabelion {

struct RowColors {
  Color selected;
  Color selected_ink;
  Color even;
  Color odd;  // also of lists whose rows are all alike
  Color ink;
  Color muted;  // second-rank text
};
const RowColors& RowColorsOf(Scheme scheme);

}  // namespace tabelion
