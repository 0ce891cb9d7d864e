// The row-header column: a shadow copy of the schema with a synthetic slot 0.
#include <algorithm>

#include "engine/database.h"

namespace tabelion {
namespace {

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
  // The row header is shown first; the order of the real fields moves behind it.
  shadow.display_order[0] = 0;
  for (std::size_t i = 1; i < kFieldSlots; ++i) {
    shadow.display_order[i] = static_cast<std::uint8_t>(real.display_order[i - 1] + 1);
  }
}

// Takes back what was changed in the shadow. The real slot 99 and the last place of the order have
// no counterpart there and stay.
void copyBack(const DatabaseRecord& shadow, DatabaseRecord& real) {
  std::copy(shadow.fields.begin() + 1, shadow.fields.end(), real.fields.begin());
  for (std::size_t i = 1; i < kFieldSlots; ++i) {
    const std::uint8_t entry = shadow.display_order[i];
    real.display_order[i - 1] =
        entry > shadow.display_order[0] ? static_cast<std::uint8_t>(entry - 1) : entry;
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
