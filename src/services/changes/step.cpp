#include "services/changes/step.h"

#include <algorithm>
#include <utility>

#include "engine/schema_bytes.h"

namespace tabelion {
namespace {

// Each does one change and gives the one that takes it back.

Change apply(Database& database, RecordReplaced change) {
  change.record.swap(database.records[change.position]);
  return change;
}

Change apply(Database& database, RecordsInserted change) {
  database.records.insertAll(change.positions, std::move(change.records));
  return RecordsRemoved{std::move(change.positions)};
}

Change apply(Database& database, RecordsRemoved change) {
  std::vector<Record> records = database.records.takeAll(change.positions);
  return RecordsInserted{std::move(change.positions), std::move(records)};
}

Change apply(Database& database, RecordMoved change) {
  database.records.move(change.from, change.to);
  return RecordMoved{change.to, change.from};
}

Change apply(Database& database, OrderReplaced change) {
  database.records.rearrange(change.order);
  OrderReplaced back{std::vector<std::uint32_t>(change.order.size())};
  for (std::uint32_t i = 0; i < change.order.size(); ++i) back.order[change.order[i]] = i;
  return back;
}

Change apply(Database& database, SchemaReplaced change) {
  if (change.record == 0) {
    std::vector<std::uint8_t> whole(kDatabaseRecordSize);
    copySchemaBytes(database.schema, SchemaExtent::kWhole,
                    std::span<std::uint8_t, kDatabaseRecordSize>(whole));
    setSchemaBytes(database.schema, change.offset, change.bytes);
    std::copy_n(whole.begin() + static_cast<std::ptrdiff_t>(change.offset), change.bytes.size(),
                change.bytes.begin());
  } else {
    FieldRecord& field = database.fields[static_cast<std::size_t>(change.record - 1)];
    Bytes old = FieldRecordBytes(field);
    // It was written by FieldRecordBytes, so it can be read.
    (void)readFieldRecord(change.bytes, field);
    change.bytes = std::move(old);
  }
  return change;
}

struct SizeOf {
  std::size_t operator()(const RecordReplaced& change) const { return change.record.ownSize(); }
  std::size_t operator()(const RecordsInserted& change) const {
    std::size_t size = change.positions.capacity() * sizeof(std::uint32_t) +
                       change.records.capacity() * sizeof(Record);
    for (const Record& record : change.records) size += record.ownSize();
    return size;
  }
  std::size_t operator()(const RecordsRemoved& change) const {
    return change.positions.capacity() * sizeof(std::uint32_t);
  }
  std::size_t operator()(const RecordMoved&) const { return 0; }
  std::size_t operator()(const OrderReplaced& change) const {
    return change.order.capacity() * sizeof(std::uint32_t);
  }
  std::size_t operator()(const SchemaReplaced& change) const { return change.bytes.capacity(); }
};

}  // namespace

Step ApplyStep(Database& database, Step step) {
  for (Change& change : step.changes) {
    change = std::visit([&](auto& each) { return apply(database, std::move(each)); }, change);
  }
  std::reverse(step.changes.begin(), step.changes.end());
  std::swap(step.from, step.to);
  if (database.row_header) setRowHeader(database, true);  // its copy of the schema follows
  database.needs_refresh = true;
  return step;
}

std::size_t MemoryOf(const Step& step) {
  std::size_t size = sizeof(Step) + step.name.capacity() + step.changes.capacity() * sizeof(Change);
  for (const Change& change : step.changes) size += std::visit(SizeOf{}, change);
  return size;
}

Bytes FieldRecordBytes(const FieldRecord& field) {
  Bytes bytes;
  RecordIOFile writer;
  writer.attachForWrite(bytes);
  writeFieldRecord(field, writer);
  writer.endRecord(field.attributes, field.unique_id);
  return bytes;
}

}  // namespace tabelion
