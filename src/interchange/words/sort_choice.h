// How commands name the levels of a sort: "Kind,Count:desc".
#pragma once

#include <string_view>

#include "engine/database.h"
#include "interchange/text_encoding.h"
#include "platform/result.h"
#include "query/sort_fields.h"

namespace tabelion {

// At most three levels parted by commas; a field is named as chooseField takes it, with ":desc" or
// ":asc" behind it for the direction (ascending where there is neither). Fields that cannot be
// sorted are refused with the sentence that the Sort dialog has for them.
Result<SortSelection> chooseSort(const Database& database, const TextEncoding& encoding,
                                 std::string_view levels);

}  // namespace tabelion
