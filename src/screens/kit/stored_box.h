// Boxes whose text goes into the database, and what becomes of a text that cannot.
#pragma once

#include <optional>
#include <string>

#include "services/application.h"

namespace tabelion {

// Says under `title` why the box's text is not stored, and selects it there. Where nobody is there
// to be told, the text is kept for when somebody is (services/not_stored.h).
void RefuseBox(Application& app, Dialog& dialog, ControlId box, const std::u16string& why,
               const std::u16string& title);

// The text of the box as the database stores it. None, once it was refused, when it takes more than
// `most_bytes` there: a character may take several.
std::optional<std::string> TextOfBox(Application& app, Dialog& dialog, ControlId box,
                                     std::size_t most_bytes, const std::u16string& title);

}  // namespace tabelion
