// The name of a record that stays the same whatever is changed, sorted or enciphered: the part of
// its stamp that identifies it, as 28 hexadecimal digits.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "engine/database.h"
#include "platform/result.h"

namespace tabelion {

inline constexpr std::size_t kRecordIdDigits = 28;
// What the column of ids is called in an export; an import passes it over.
inline constexpr std::string_view kRecordIdColumn = "(id)";

// Empty for a record without a stamp.
std::string recordId(ByteView record);
// Whether a text has the shape of an id, which no record number has.
bool isRecordId(std::string_view text);
// The position of the record with this id. Refused with a sentence when there is none, or more than
// one, as copies of records are.
Result<std::uint32_t> recordWithId(const Database& database, std::string_view id);

}  // namespace tabelion
