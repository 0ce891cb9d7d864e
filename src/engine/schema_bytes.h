// The database record in part, as the bytes that the file has for it: how pieces of the schema are
// compared, kept and put back whatever they are. A place is an offset in the record as it is in the
// file (databaseRecordParts() names them).
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "engine/database_record.h"

namespace tabelion {

enum class SchemaExtent {
  kSettings,  // everything but the field definitions and the views
  kWhole,     // without surplus bytes behind the record
};

// Writes each value of the extent to its place in `into`; the other bytes stay.
void copySchemaBytes(const DatabaseRecord& schema, SchemaExtent extent,
                     std::span<std::uint8_t, kDatabaseRecordSize> into);

struct SchemaPlace {
  std::size_t offset = 0;
  std::size_t size = 0;
};
// The values, each as a whole, that are others now than in a copy of the same extent.
std::vector<SchemaPlace> changedSchemaValues(
    const DatabaseRecord& schema, SchemaExtent extent,
    std::span<const std::uint8_t, kDatabaseRecordSize> copy);

// Gives the values from `offset` on the bytes that the file would have for them: whole values, one
// behind the other, inside the record.
void setSchemaBytes(DatabaseRecord& schema, std::size_t offset, ByteView bytes);

}  // namespace tabelion
