// How commands name fields.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "engine/database.h"
#include "interchange/text_encoding.h"
#include "platform/result.h"
#include "query/near_names.h"

namespace tabelion {

// The slot of the field with this name (UTF-8): exactly, else in any case of its ASCII letters.
// Fields that share a name are told apart as the columns of an export are, "NAME #SLOT". The error
// names the text, and the fields that may be meant.
Result<int> chooseField(const Database& database, const TextEncoding& encoding,
                        std::string_view name);

// The same for several, "Name,Born": the text is split at commas unless a field has the whole as
// its name; blanks around a name do not count.
Result<std::vector<int>> chooseFields(const Database& database, const TextEncoding& encoding,
                                      std::string_view names);

}  // namespace tabelion
