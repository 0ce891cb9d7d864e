// The dialog that says what is known about a database without opening it.
#pragma once

#include <string>

#include "services/application.h"
#include "services/modal.h"

namespace tabelion {

// A label each, with what it is the label of beside it.
inline constexpr ControlId kInfoName = 1;
inline constexpr ControlId kInfoAuthor = 2;
inline constexpr ControlId kInfoSize = 3;
inline constexpr ControlId kInfoRecords = 4;
inline constexpr ControlId kInfoCreated = 5;
inline constexpr ControlId kInfoModified = 6;
inline constexpr ControlId InfoValue(ControlId label) {
  return label + 100;
}

// Always ends with 1. Where a part of the file cannot be read, nothing stands beside its label.
int ShowDatabaseInfo(Application& app, const std::string& path);

}  // namespace tabelion
