#include "query/record_index.h"

#include <algorithm>
#include <utility>

#include "query/recompute.h"
#include "query/sort.h"

namespace tabelion {
namespace {

// No record lies there: files end before it.
constexpr std::uint32_t kMarkOffset = 0xFFFFFFFFu;

// Keeps an eye on one record while all are sorted. What a record has beside its
// bytes stays with it, so that its offset in the file can be its mark meanwhile.
class FollowedRecord {
 public:
  FollowedRecord(RecordStore& records, std::uint32_t* position)
      : records_(records), position_(position && *position < records.count() ? position : nullptr) {
    if (position_) offset_ = std::exchange(records_[*position_].offset, kMarkOffset);
  }
  // Puts down where it stands now, and takes the mark off.
  void find() {
    if (!position_) return;
    const auto found = std::find_if(records_.begin(), records_.end(), [](const Record& record) {
      return record.offset == kMarkOffset;
    });
    *position_ = static_cast<std::uint32_t>(found - records_.begin());
    records_[*position_].offset = offset_;
  }

 private:
  RecordStore& records_;
  std::uint32_t* position_;
  std::uint32_t offset_ = 0;
};

}  // namespace

void refreshRecordIndex(Database& database, const QuerySettings& settings, const LinkFilter* link,
                        std::uint32_t* followed) {
  if (database.schema.sort_pending != 0) {
    sortAndRecompute(database, settings, followed);
    database.schema.sort_pending = 0;
  }
  rebuildFilterIndex(database, settings, link);
  database.needs_refresh = false;
}

void sortAndRecompute(Database& database, const QuerySettings& settings, std::uint32_t* followed) {
  FollowedRecord record(database.records, followed);
  sortRecords(database, settings.formats);
  record.find();
  recomputeDependents(database, settings);
}

}  // namespace tabelion
