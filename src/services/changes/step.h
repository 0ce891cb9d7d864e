// A change to a database as a value: what is done, in words and in full, so that it can be done,
// taken back and done again.
//
// A step holds everything that it puts into the database; doing it gives the step that takes it
// back, which holds everything that went out. Positions are those of the moment in which a change's
// turn comes, so a step fits the one state of a database that it was made for.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "engine/database.h"
#include "engine/record_store.h"

namespace tabelion {

// Another record stands at the position: its bytes, attributes and unique ID.
struct RecordReplaced {
  std::uint32_t position = 0;
  Record record;
};
// Records come in so that they stand at these positions: rising, each once.
struct RecordsInserted {
  std::vector<std::uint32_t> positions;
  std::vector<Record> records;
};
struct RecordsRemoved {
  std::vector<std::uint32_t> positions;  // rising, each once
};
struct RecordMoved {
  std::uint32_t from = 0;
  std::uint32_t to = 0;
};
// The record from position order[i] stands at i.
struct OrderReplaced {
  std::vector<std::uint32_t> order;
};
// A piece of the schema, whatever it is, as the file has it: values of the database record from an
// offset on (engine/schema_bytes.h), or a field record (the pop-up list) as a whole.
struct SchemaReplaced {
  int record = 0;          // 0 the database record, 1 to 100 the field record of slot record - 1
  std::size_t offset = 0;  // in the database record
  Bytes bytes;
};
using Change = std::variant<RecordReplaced, RecordsInserted, RecordsRemoved, RecordMoved,
                            OrderReplaced, SchemaReplaced>;

// What a step leads from and to, beside the database's content.
struct Standing {
  std::uint32_t current_record = 0;
  bool dirty = false;
};

struct Step {
  std::string name;  // what a person did: "Edit of record"; UTF-8
  std::vector<Change> changes;
  Standing from;
  Standing to;
};

// Does the step; the step that takes it back. Leaves `from` and `to` to whoever keeps steps, except
// that they change places. The list of records shown is to be refreshed afterwards.
Step ApplyStep(Database& database, Step step);

// The bytes that a step keeps in memory beside the database.
std::size_t MemoryOf(const Step& step);

// A field record as the file has it.
Bytes FieldRecordBytes(const FieldRecord& field);

}  // namespace tabelion
