// What takes back whatever is done to a database between two moments. Internal to changes/.
#pragma once

#include <array>
#include <span>
#include <vector>

#include "engine/schema_bytes.h"
#include "services/changes/step.h"

namespace tabelion {

// The schema as it was; kept between steps so that a step allocates nothing for it.
struct SchemaCopy {
  std::array<std::uint8_t, kDatabaseRecordSize> database_record;
  std::vector<Bytes> field_records;
};

// Watches the records and compares the schema. Of the schema, what lies outside the extent is not
// seen. Exactly one watches a database at a time.
class StepRecorder final : private RecordWatcher {
 public:
  StepRecorder(Database& database, SchemaExtent extent, SchemaCopy& copy);
  ~StepRecorder() override { database_.records.setWatcher(nullptr); }

  // The changes that take everything back, in the order in which they do.
  std::vector<Change> Finish();

 private:
  void onReplaced(std::uint32_t position, Record old) override;
  void onInserted(std::uint32_t position) override;
  void onRemoved(std::vector<std::uint32_t> positions, std::vector<Record> records) override;
  void onMoved(std::uint32_t from, std::uint32_t to) override;
  void onRearranged(std::span<const std::uint32_t> order) override;
  void AddSchemaChanges();

  Database& database_;
  SchemaExtent extent_;
  SchemaCopy& copy_;
  std::vector<Change> changes_;  // the last one takes back what was done first
};

}  // namespace tabelion
