// The walk over the records that a report counts.
#pragma once

#include "engine/database.h"
#include "engine/packed_record.h"
#include "query/field_text.h"
#include "query/filter.h"

namespace tabelion {

// Calls visit(value, is_masked) for each record that passes. The value is empty where its text
// would be: not there, without bytes, enciphered (masked).
template <class Visit>
void forEachReportValue(const Database& database, int slot, const RecordFilter& filter,
                        Visit visit) {
  const FieldDefinition& field = database.schema.fields[static_cast<std::size_t>(slot)];
  const bool everything = filter.passesEverything();
  const RecordStore& records = database.records;
  const std::size_t reach = records.count() > 0 ? slotEnd(records[0].bytes(), slot) : 0;
  for (std::uint32_t position = 0; position < records.count(); ++position) {
    records.fetchAhead(position, reach);
    const ByteView bytes = records[position].bytes();
    if (!everything && !filter.passes(bytes)) continue;
    const SlotPlace place = findSlot(bytes, slot);
    const bool is_masked = isMasked(field, bytes);
    if (!place.present() || is_masked) {
      visit(ByteView(), is_masked);
    } else {
      visit(bytes.subspan(static_cast<std::size_t>(place.offset), place.length), false);
    }
  }
}

}  // namespace tabelion
