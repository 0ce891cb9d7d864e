#include "query/record_change.h"

#include <algorithm>
#include <numeric>

#include "engine/schema_places.h"
#include "query/sort.h"

namespace tabelion {
namespace {

constexpr int kTodayWhenEmpty = 2;  // default options of dates; the first one of times too
constexpr int kTodayWhenEmptyToo = 3;

bool isEmptyDate(const std::optional<Bytes>& value) {
  return !value || std::all_of(value->begin(), value->end(), [](auto byte) { return byte == 0; });
}

bool isEmptyTime(const std::optional<Bytes>& value) {
  return !value || value->size() < 3 || (*value)[2] == kNoTimeHour;
}

}  // namespace

void fillDefaults(const DatabaseRecord& schema, UnpackedRecord& record, const CalendarTime& now) {
  for (std::size_t i = 0; i < kFieldSlots; ++i) {
    const FieldDefinition& field = schema.fields[i];
    if (isMasked(field, record.prefix)) continue;
    const int option = fieldDefaultOption(field);
    auto& value = record.slots[i];
    if (field.type == FieldType::kDate &&
        (option == kTodayWhenEmpty || option == kTodayWhenEmptyToo) && isEmptyDate(value)) {
      value = Bytes(4);
      storeLe32(value->data(), daysSince1904(now.month, now.day, now.year));
    } else if (field.type == FieldType::kTime && option == kTodayWhenEmpty && isEmptyTime(value)) {
      value = Bytes{static_cast<std::uint8_t>(now.second), static_cast<std::uint8_t>(now.minute),
                    static_cast<std::uint8_t>(now.hour), 0};
    }
  }
}

std::uint32_t storeRecord(Database& database, Engine& engine, std::uint32_t position,
                          UnpackedRecord record, const QuerySettings& settings,
                          const CorruptFormula& corrupt) {
  const bool is_new = position == kNoPosition;
  fillDefaults(database.schema, record, settings.now);
  recomputeRecord(database, record, is_new ? database.records.count() : position, settings,
                  corrupt);
  Bytes packed;
  if (!packFitted(database.schema, record, packed)) return kNoPosition;
  if (is_new) {
    position = appendRecord(database, engine, packed, true);
    if (position == kNoPosition) return kNoPosition;
    // The numbers that it was given just now may be part of a formula.
    for (int slot = 0; slot < kFieldSlots; ++slot) {
      if (database.schema.fields[static_cast<std::size_t>(slot)].type == FieldType::kCalculated) {
        recomputeField(database, slot, position, settings);
      }
    }
  } else {
    if (database.schema.modification_stamp_option != 0) touchStamp(packed, settings.now);
    if (!database.records.replace(position, packed)) return kNoPosition;
    setDirty(database);
  }
  const std::uint32_t place = replaceInOrder(database, position, settings.formats);
  recomputeDependents(database, settings);
  return place;
}

void deleteRecords(Database& database, std::vector<std::uint32_t> positions,
                   const QuerySettings& settings) {
  if (positions.empty()) return;
  std::sort(positions.begin(), positions.end());
  database.records.removeAll(std::move(positions));
  setDirty(database);
  recomputeDependents(database, settings);
}

std::vector<std::uint32_t> positionsOfGroup(const Database& database, RecordGroup group,
                                            const QuerySettings& settings, const LinkFilter* link) {
  std::vector<std::uint32_t> positions;
  if (group == RecordGroup::kAll) {
    positions.resize(database.records.count());
    std::iota(positions.begin(), positions.end(), 0u);
  } else {
    const RecordFilter filter(database, settings, link);
    collectPositions(database, filter, group == RecordGroup::kWithinFilter, positions);
  }
  return positions;
}

}  // namespace tabelion
