// The row-header column: a shadow copy of the schema with a synthetic slot 0.
#include <algorithm>

#include "engine/database.h"

namespace tabelion {
namespace {

bool hasCounterpart(int real_slot) {
  return real_slot < kFieldSlots - 1;
}

void buildShadow(const DatabaseRecord& real, DatabaseRecord& shadow) {
  shadow = real;
  std::copy(real.fields.begin(), real.fields.end() - 1, shadow.fields.begin() + 1);
  FieldDefinition& header = shadow.fields[0];
  header = FieldDefinition{};
  header.type = FieldType::kText;
  header.width = 150;
  header.column_width = 0;
  header.export_flag = 0;
  header.record_view_flag = 1;
  setFieldName(header, "_rowhdr_");
  // The row header is shown first, the real fields behind it in their order. The real slot 99 has
  // no counterpart, so that all others have a place.
  std::size_t place = 0;
  shadow.display_order[place++] = 0;
  for (const std::uint8_t slot : real.display_order) {
    if (hasCounterpart(slot) && place < kFieldSlots) {
      shadow.display_order[place++] = static_cast<std::uint8_t>(slot + 1);
    }
  }
  // A damaged order may name a slot twice and others not at all.
  for (; place < kFieldSlots; ++place) shadow.display_order[place] = 0;
}

// Takes back what was changed in the shadow. The real slot 99 and its place in the order stay.
void copyBack(const DatabaseRecord& shadow, DatabaseRecord& real) {
  std::copy(shadow.fields.begin() + 1, shadow.fields.end(), real.fields.begin());
  auto next = shadow.display_order.begin();
  for (std::uint8_t& slot : real.display_order) {
    if (!hasCounterpart(slot)) continue;
    next = std::find_if(next, shadow.display_order.end(), [](std::uint8_t s) { return s != 0; });
    if (next == shadow.display_order.end()) return;
    slot = static_cast<std::uint8_t>(*next++ - 1);
  }
}

}  // namespace

void setRowHeader(Database& database, bool on) {
  if (on) {
    if (!database.shadow) database.shadow = std::make_unique<DatabaseRecord>();
    buildShadow(database.schema, *database.shadow);
  } else if (database.row_header && database.shadow) {
    copyBack(*database.shadow, database.schema);
  }
  database.row_header = on;
}

const DatabaseRecord& schemaShown(const Database& database) {
  return database.row_header && database.shadow ? *database.shadow : database.schema;
}

}  // namespace tabelion
