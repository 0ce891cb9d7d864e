// The checks of single records; see check.h. `base` is the record's offset in the file.
#pragma once

#include <vector>

#include "engine/check.h"
#include "engine/database_record.h"

namespace tabelion {

void checkSchema(const DatabaseRecord& schema, std::size_t base, int record_count,
                 std::vector<Deviation>& found);
void checkFieldRecord(ByteView record, std::size_t slot, std::size_t base,
                      std::vector<Deviation>& found);
void checkExtensionRecord(ByteView record, std::size_t base, std::vector<Deviation>& found);
void checkDataRecord(const DatabaseRecord& schema, ByteView record, std::size_t position,
                     std::size_t base, std::vector<Deviation>& found);

}  // namespace tabelion
