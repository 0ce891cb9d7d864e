// Which records pass: six criteria, evaluated from left to right with NOT, AND, OR and groups
// (DatabaseRecord::filters), and, in a linked database, the one record they must belong to.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine/database.h"
#include "query/query_settings.h"

namespace tabelion {

inline constexpr int kFilterCriteria = 6;

// FilterBlock::mode and FilterBlock::grouping.
inline constexpr std::uint8_t kFilterNot = 1;
inline constexpr std::uint8_t kFilterOr = 2;
inline constexpr std::uint8_t kFilterOpens = 1;
inline constexpr std::uint8_t kFilterCloses = 2;

// Records of a linked database that belong to one record elsewhere: those whose field has exactly
// this text in its stored form.
struct LinkFilter {
  int slot = 0;
  std::string text;
};

// Whether any criterion is enabled.
bool isFilterInUse(const DatabaseRecord& schema);

// The filter of a database, prepared for a pass over its records: bounds, date ranges and texts are
// worked out once. Refers to the database, whose schema must not change meanwhile.
class RecordFilter {
 public:
  RecordFilter(const Database& database, const QuerySettings& settings,
               const LinkFilter* link = nullptr);
  // With other criteria than the database's own.
  RecordFilter(const Database& database, const std::array<FilterBlock, kFilterCriteria>& criteria,
               const QuerySettings& settings, const LinkFilter* link = nullptr);
  ~RecordFilter();
  RecordFilter(const RecordFilter&) = delete;
  RecordFilter& operator=(const RecordFilter&) = delete;

  bool passes(ByteView record) const;
  // How far into a record like this one the first test looks (RecordStore::fetchAhead).
  std::size_t reachIn(ByteView record) const;
  bool passesEverything() const;  // no criterion is enabled and there is no link filter

 private:
  struct Prepared;
  std::unique_ptr<Prepared> prepared_;
};

// One criterion alone, whether enabled or not, without its NOT.
bool recordPassesCriterion(const Database& database, int criterion, ByteView record,
                           const QuerySettings& settings);

// The positions of the records that pass, or of those that do not, in record order. What the vector
// held goes; its memory is used again.
void collectPositions(const Database& database, const RecordFilter& filter, bool passing,
                      std::vector<std::uint32_t>& positions);

// Fills Database::record_index with the positions of the records that pass, in record order.
void rebuildFilterIndex(Database& database, const QuerySettings& settings,
                        const LinkFilter* link = nullptr);

}  // namespace tabelion
