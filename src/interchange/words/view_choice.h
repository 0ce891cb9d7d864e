// How commands name views.
#pragma once

#include <string_view>

#include "engine/database.h"
#include "interchange/text_encoding.h"
#include "platform/result.h"

namespace tabelion {

// The index of the view with this name (UTF-8): exactly, the first where several share it, else
// the only one in any case of its ASCII letters. The error names the text and the views there are.
// A database without views gets its "Default View" here, as when the window opens its menu.
Result<int> viewNamed(Database& database, const TextEncoding& encoding, std::string_view name);

}  // namespace tabelion
