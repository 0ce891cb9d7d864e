// A box whose text goes into a place of the database that holds so many bytes.
#pragma once

#include <optional>
#include <string>

#include "services/application.h"

namespace tabelion {

// The text of the edit as the database stores it. None, after a message under `title` and with the
// box selected, when it is longer than `most_bytes` there: a character may take several.
std::optional<std::string> TextOfBox(Application& app, Dialog& dialog, ControlId box,
                                     std::size_t most_bytes, const std::u16string& title);

}  // namespace tabelion
