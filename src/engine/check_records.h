// The checks of single records, whole of what check.h promises but for the frame of the file.
//
// Each takes the bytes of one record (any bytes) and appends what deviates from the format to
// `found`, in the order of the bytes; it changes nothing else and never gives up early. `base` is
// the record's offset in the file, and every deviation is given as an offset in the file.
#pragma once

#include <vector>

#include "engine/check.h"
#include "engine/database_record.h"

namespace tabelion {

// The database record, parsed: its marks and texts, the orders, fields, sort keys and views.
// `record_count` is the header's: data records and the 102 of the schema.
void checkSchema(const DatabaseRecord& schema, std::size_t base, int record_count,
                 std::vector<Deviation>& found);
// The record of a field slot (0 to 99): its items and ranges, and where the items say their texts
// lie.
void checkFieldRecord(ByteView record, std::size_t slot, std::size_t base,
                      std::vector<Deviation>& found);
// The last record of the schema: its type byte, its count of entries and its closing bytes.
void checkExtensionRecord(ByteView record, std::size_t base, std::vector<Deviation>& found);
// A data record: its prefix and stamp, the lengths of its values, and each value against its
// field's type. `position` is its number among the data records, from 0.
void checkDataRecord(const DatabaseRecord& schema, ByteView record, std::size_t position,
                     std::size_t base, std::vector<Deviation>& found);

}  // namespace tabelion
