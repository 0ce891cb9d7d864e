// Finding a text in one field or in all, among the records that pass the filter.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engine/database.h"
#include "query/filter.h"
#include "query/query_settings.h"

namespace tabelion {

inline constexpr std::string_view kNotFoundText = "Not Found in Database!";
inline constexpr std::size_t kMaxSearchText = 34;

struct SearchSettings {
  int field = -1;  // slot, -1 all fields
  bool case_sensitive = false;
  bool begins = false;
  std::string text;  // at most kMaxSearchText bytes are stored
  bool operator==(const SearchSettings&) const = default;
};
SearchSettings searchSettings(const DatabaseRecord& schema);
// Cuts the text to what the database can hold and marks the database dirty.
void storeSearchSettings(Database& database, const SearchSettings& search);

// The search dialog's list of fields: "All Fields" and the names of all 100, whatever their type.
std::vector<std::string> searchFieldNames(const DatabaseRecord& schema);

// Without `case_sensitive`, `text` is in lower case already. Enciphered values never match.
bool fieldMatches(const Database& database, ByteView record, int slot, std::string_view text,
                  bool case_sensitive, bool begins, const QuerySettings& settings);

struct FoundField {
  std::uint32_t position = kNoPosition;  // kNoPosition: nothing found
  int slot = -1;
  bool operator==(const FoundField&) const = default;
};
// A search, prepared for one pass or several. Refers to the database and the settings, which must
// not change meanwhile.
class RecordFinder {
 public:
  RecordFinder(const Database& database, const SearchSettings& search,
               const QuerySettings& settings, const LinkFilter* link = nullptr);
  ~RecordFinder();
  RecordFinder(const RecordFinder&) = delete;
  RecordFinder& operator=(const RecordFinder&) = delete;

  // From record `start` on up to the one before `end`, in record order and without wrapping around;
  // with all fields, the first record is searched from `start_slot` on, every later one from slot
  // 0.
  FoundField find(std::uint32_t start, int start_slot = 0, std::uint32_t end = kNoPosition) const;

 private:
  struct Prepared;
  std::unique_ptr<Prepared> prepared_;
};

// One pass.
FoundField findFrom(const Database& database, const SearchSettings& search, std::uint32_t start,
                    int start_slot, const QuerySettings& settings,
                    const LinkFilter* link = nullptr);

}  // namespace tabelion
