#include "services/changes/record_steps.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

namespace tabelion {
namespace {

// Where the current record stands once those at `positions` (rising) are gone.
std::uint32_t currentAfter(std::uint32_t current, const std::vector<std::uint32_t>& positions) {
  const auto gone = std::lower_bound(positions.begin(), positions.end(), current);
  const auto before = current - static_cast<std::uint32_t>(gone - positions.begin());
  const bool is_gone = gone != positions.end() && *gone == current;
  return is_gone && before > 0 ? before - 1 : before;
}

}  // namespace

std::uint32_t StoreRecord(History& history, ChangeTarget target, Engine& engine,
                          std::uint32_t position, UnpackedRecord record,
                          const QuerySettings& settings, const CorruptFormula& corrupt) {
  std::uint32_t place = kNoPosition;
  history.Perform(target, position == kNoPosition ? "New record" : "Edit of record", [&] {
    place = storeRecord(target.database, engine, position, std::move(record), settings, corrupt);
    if (place != kNoPosition) target.current_record = place;
  });
  return place;
}

void ReplaceRecord(History& history, ChangeTarget target, std::string name, std::uint32_t position,
                   ByteView bytes) {
  history.Perform(target, std::move(name), [&] {
    if (target.database.records.replace(position, bytes)) setDirty(target.database);
  });
}

void DeleteRecords(History& history, ChangeTarget target, std::vector<std::uint32_t> positions,
                   const QuerySettings& settings) {
  const std::size_t count = positions.size();
  std::string name = count == 1 ? "Delete of record" : fmt::format("Delete of {} records", count);
  std::sort(positions.begin(), positions.end());
  history.Perform(target, std::move(name), [&] {
    if (target.current_record < target.database.records.count()) {
      target.current_record = currentAfter(target.current_record, positions);
    }
    deleteRecords(target.database, std::move(positions), settings);
  });
}

std::size_t DeleteRecordGroup(History& history, ChangeTarget target, RecordGroup group,
                              const QuerySettings& settings, const LinkFilter* link) {
  std::vector<std::uint32_t> positions = positionsOfGroup(target.database, group, settings, link);
  const std::size_t count = positions.size();
  DeleteRecords(history, target, std::move(positions), settings);
  return count;
}

}  // namespace tabelion
