// Which record the start of a text, typed in the list, leads to.
#pragma once

#include <optional>
#include <string>

#include "services/application.h"

namespace tabelion {

// The row of the first record, in the present order, whose text in the field that they are sorted
// by (else in the first column) begins with what was typed, in any case. An enciphered text begins
// with nothing.
std::optional<int> FindListRow(Application& app, const std::u16string& typed);

}  // namespace tabelion
