#include "query/find.h"

#include <algorithm>
#include <memory>
#include <optional>

#include "engine/packed_record.h"
#include "engine/schema_places.h"
#include "query/field_search.h"
#include "query/text_case.h"
#include "query/text_cut.h"

namespace tabelion {
namespace {

constexpr std::string_view kAllFieldsText = "All Fields";

// The fields in which a text is looked for, in slot order up to the last one that can have it.
class RecordSearch {
 public:
  RecordSearch(const Database& database, int field, const SearchText& search,
               const QuerySettings& settings)
      : database_(database) {
    std::size_t used = 0;
    for (int slot = 0; slot < kFieldSlots; ++slot) {
      if (field >= 0 && slot != field) {
        fields_.emplace_back();
        continue;
      }
      fields_.emplace_back(std::in_place, database, slot, search, settings);
      if (fields_.back()->canMatch()) {
        used = fields_.size();
      } else {
        fields_.back().reset();
      }
    }
    fields_.resize(used);
  }

  bool canMatch() const { return !fields_.empty(); }

  // The first field from `start` on that has the text, or -1.
  int slotIn(ByteView record, int start) const {
    const bool is_encrypted = isRecordEncrypted(record);
    SlotWalker walker(record);
    for (std::size_t slot = 0; slot < fields_.size(); ++slot) {
      const auto value = walker.next();
      if (!value) break;
      if (!fields_[slot] || static_cast<int>(slot) < start) continue;
      if (is_encrypted && database_.schema.fields[slot].encrypt_flag != 0) continue;
      if (fields_[slot]->matches(record, *value)) return static_cast<int>(slot);
    }
    return -1;
  }

 private:
  const Database& database_;
  std::vector<std::optional<FieldSearch>> fields_;
};

}  // namespace

SearchSettings searchSettings(const DatabaseRecord& schema) {
  SearchSettings search;
  if (isSlot(schema.search_field)) search.field = schema.search_field;
  search.case_sensitive = schema.search_case != 0;
  search.begins = schema.search_match != 0;
  search.text = areaText(schema.search_text);
  return search;
}

void storeSearchSettings(Database& database, const SearchSettings& search) {
  DatabaseRecord& schema = database.schema;
  schema.search_field = isSlot(search.field) ? static_cast<std::uint8_t>(search.field) : kNoField;
  schema.search_case = search.case_sensitive ? 1 : 0;
  schema.search_match = search.begins ? 1 : 0;
  std::string_view text = search.text;
  text = text.substr(0, text.find('\0'));
  text = text.substr(0, cutLength(text, kMaxSearchText, databaseCodePage(schema) == "UTF-8"));
  setAreaText(schema.search_text, text);
  setDirty(database);
}

std::vector<std::string> searchFieldNames(const DatabaseRecord& schema) {
  std::vector<std::string> names{std::string(kAllFieldsText)};
  for (const FieldDefinition& field : schema.fields) names.push_back(fieldName(field));
  return names;
}

bool fieldMatches(const Database& database, ByteView record, int slot, std::string_view text,
                  bool case_sensitive, bool begins, const QuerySettings& settings) {
  if (!isSlot(slot)) return false;
  const auto value = slotValue(record, slot);
  if (!value || isMasked(database.schema.fields[static_cast<std::size_t>(slot)], record)) {
    return false;
  }
  const FieldSearch search(database, slot, {text, case_sensitive, begins}, settings);
  return search.matches(record, *value);
}

struct RecordFinder::Prepared {
  Prepared(const Database& of, const SearchSettings& search, const QuerySettings& settings,
           const LinkFilter* link)
      : database(of),
        text(search.case_sensitive ? search.text : lowerCaseText(search.text)),
        field(search.field),
        fields(of, search.field, {text, search.case_sensitive, search.begins}, settings),
        filter(of, settings, link) {}

  const Database& database;
  std::string text;
  int field;
  RecordSearch fields;
  RecordFilter filter;
};

RecordFinder::RecordFinder(const Database& database, const SearchSettings& search,
                           const QuerySettings& settings, const LinkFilter* link)
    : prepared_(std::make_unique<Prepared>(database, search, settings, link)) {}

RecordFinder::~RecordFinder() = default;

FoundField RecordFinder::find(std::uint32_t start, int start_slot, std::uint32_t end) const {
  const RecordStore& records = prepared_->database.records;
  if (!prepared_->fields.canMatch()) return {};
  int from = prepared_->field < 0 ? start_slot : 0;
  end = std::min(end, records.count());
  for (std::uint32_t position = start; position < end; ++position) {
    records.fetchAhead(position, kMaxRecordSize);
    const ByteView record = records[position].bytes();
    if (prepared_->filter.passes(record)) {
      const int slot = prepared_->fields.slotIn(record, from);
      if (slot >= 0) return {position, slot};
    }
    from = 0;
  }
  return {};
}

FoundField findFrom(const Database& database, const SearchSettings& search, std::uint32_t start,
                    int start_slot, const QuerySettings& settings, const LinkFilter* link) {
  return RecordFinder(database, search, settings, link).find(start, start_slot);
}

}  // namespace tabelion
