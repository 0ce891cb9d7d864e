// The dialog that says who made a record, and when it was made and changed.
#pragma once

#include "engine/bytes.h"
#include "services/application.h"

namespace tabelion {

// A label each, with what it is the label of beside it.
inline constexpr ControlId kDetailCreatedBy = 1;
inline constexpr ControlId kDetailCreated = 2;
inline constexpr ControlId kDetailModified = 3;
inline constexpr ControlId DetailValue(ControlId label) {
  return label + 100;
}

// A record carries no person's name: who made it is the author that its database names. Its times
// are those of its stamp.
void ShowRecordDetails(Application& app, ByteView record);

}  // namespace tabelion
