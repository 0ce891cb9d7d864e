// The dialog that says what is known about a database without opening it.
#pragma once

#include <string>

#include "services/application.h"
#include "services/modal.h"

namespace tabelion {

inline constexpr ControlId kInfoName = 1;
inline constexpr ControlId kInfoAuthor = 2;
inline constexpr ControlId kInfoSize = 3;
inline constexpr ControlId kInfoRecords = 4;
inline constexpr ControlId kInfoCreated = 5;
inline constexpr ControlId kInfoModified = 6;

// Always ends with 1. Labels whose part of the file cannot be read keep their plain text.
int ShowDatabaseInfo(Application& app, const std::string& path);

}  // namespace tabelion
