#include "services/changes/recorder.h"

#include <algorithm>
#include <utility>

namespace tabelion {

StepRecorder::StepRecorder(Database& database, SchemaExtent extent, SchemaCopy& copy)
    : database_(database), extent_(extent), copy_(copy) {
  copySchemaBytes(database.schema, extent, copy.database_record);
  copy.field_records.clear();
  if (extent == SchemaExtent::kWhole) {
    for (const FieldRecord& field : database.fields) {
      copy.field_records.push_back(FieldRecordBytes(field));
    }
  }
  database.records.setWatcher(this);
}

std::vector<Change> StepRecorder::Finish() {
  AddSchemaChanges();
  std::reverse(changes_.begin(), changes_.end());
  return std::move(changes_);
}

void StepRecorder::AddSchemaChanges() {
  for (const SchemaPlace& place :
       changedSchemaValues(database_.schema, extent_, copy_.database_record)) {
    const ByteView old = ByteView(copy_.database_record).subspan(place.offset, place.size);
    changes_.push_back(SchemaReplaced{0, place.offset, Bytes(old.begin(), old.end())});
  }
  for (std::size_t slot = 0; slot < copy_.field_records.size(); ++slot) {
    Bytes& old = copy_.field_records[slot];
    if (FieldRecordBytes(database_.fields[slot]) == old) continue;
    changes_.push_back(SchemaReplaced{static_cast<int>(slot) + 1, 0, std::move(old)});
  }
}

// A record that this step has touched a moment ago is not kept a second time.
void StepRecorder::onReplaced(std::uint32_t position, Record old) {
  if (!changes_.empty()) {
    const auto* replaced = std::get_if<RecordReplaced>(&changes_.back());
    if (replaced != nullptr && replaced->position == position) return;
    const auto* inserted = std::get_if<RecordsRemoved>(&changes_.back());
    if (inserted != nullptr && inserted->positions.back() == position) return;
  }
  changes_.push_back(RecordReplaced{position, std::move(old)});
}

void StepRecorder::onInserted(std::uint32_t position) {
  if (!changes_.empty()) {
    auto* before = std::get_if<RecordsRemoved>(&changes_.back());
    if (before != nullptr && before->positions.back() < position) {
      before->positions.push_back(position);
      return;
    }
  }
  changes_.push_back(RecordsRemoved{{position}});
}

void StepRecorder::onRemoved(std::vector<std::uint32_t> positions, std::vector<Record> records) {
  changes_.push_back(RecordsInserted{std::move(positions), std::move(records)});
}

void StepRecorder::onMoved(std::uint32_t from, std::uint32_t to) {
  changes_.push_back(RecordMoved{to, from});
}

void StepRecorder::onRearranged(std::span<const std::uint32_t> order) {
  OrderReplaced back{std::vector<std::uint32_t>(order.size())};
  bool moved = false;
  for (std::uint32_t i = 0; i < order.size(); ++i) {
    back.order[order[i]] = i;
    moved |= order[i] != i;
  }
  if (moved) changes_.push_back(std::move(back));
}

}  // namespace tabelion
