// "Field=VALUE" of the commands that store a record.
#pragma once

#include <string>
#include <vector>

#include "engine/database.h"
#include "engine/packed_record.h"
#include "interchange/text_encoding.h"
#include "platform/result.h"

namespace tabelion {

// Puts the values into the record. They are written as in the cells of an import, check boxes also
// as yes, no, true and false; an empty one takes the value away. "NAME.key" is the number of the
// record that a link field points to; what is not named of a link stays. Refused are fields that
// take their value from elsewhere (auto-numbers, linked fields, lookups, calculated fields), values
// that are enciphered in this record, and a field that is named twice. The record is to be thrown
// away when anything was refused.
Status assignFields(const Database& database, const TextEncoding& encoding,
                    const std::vector<std::string>& assignments, UnpackedRecord& record);

}  // namespace tabelion
