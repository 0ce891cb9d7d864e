// A text that is looked for in the values of one field, prepared for a pass over the records.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engine/database.h"
#include "query/query_settings.h"
#include "query/time_text.h"

namespace tabelion {

// What is looked for. Without `case_sensitive` the text is in lower case.
struct SearchText {
  std::string_view text;
  bool case_sensitive = false;
  bool begins = false;

  // In the text as it stands, and in one that is folded as the search is.
  bool isIn(std::string_view value) const;
  bool isInFolded(std::string_view value) const;
};

// How each type is compared:
//
//   1, 17, 12, 14   the text; none is found in an empty one      folded
//   4               the item's text, "No Value" without one      folded
//   11              the text behind the head, when there is one  folded
//   3               the stored text; none in an empty one        as it stands
//   16              the text that it shows                       as it stands
//   2, 6            the number, when digits alone are looked for
//   5               "1" and "0"
//   8               the date                                     as it stands
//   9               the time                                     as it stands
//   15              the result's text, of kind 3 its date        as it stands
//   others          never
//
// An empty value has an empty text, an empty time that of no time.
// Compat: where a value stands as it is, only the text looked for is folded, so that its capitals
// are found by a case-sensitive search alone; no date is "No Date", but that of a result "NO DATE";
// a result of kind 2 is taken for the time whose second, minute and hour are its number's low three
// bytes (Find.KeptOddities).
class FieldSearch {
 public:
  FieldSearch(const Database& database, int slot, const SearchText& search,
              const QuerySettings& settings);

  // False when no value whatever matches.
  bool canMatch() const { return kind_ != Kind::kNever; }
  // `record` is whose slot has the value.
  bool matches(ByteView record, ByteView value) const;

 private:
  enum class Kind : unsigned char {
    kNever,
    kFolded,
    kLongFolded,
    kPopup,
    kLink,
    kAsItStands,
    kLookup,
    kNumber,
    kCheckBox,
    kDate,
    kTime,
    kResult,
    kResultTime,
    kResultDate,
  };
  Kind kindOf(const FieldDefinition& field);
  Kind kindOfResult(const FieldDefinition& field);
  Kind preparePopup();
  Kind prepareDate(Kind kind);
  Kind prepareTime(Kind kind);
  bool isPossibleIn(std::string_view letters) const;
  bool matchesShown(ByteView value) const;
  bool matchesText(std::string_view text) const;
  bool matchesItem(ByteView key) const;
  bool matchesDate(std::uint32_t days) const;
  bool matchesTime(const TimeValue& time) const;

  const Database& database_;
  const QuerySettings& settings_;
  SearchText search_;
  int slot_;
  bool without_value_ = false;         // it is in the text of no item, no date, no time
  bool with_value_ = true;             // it can be in that of a date or a time
  std::vector<std::uint8_t> in_item_;  // per pop-up item
  Kind kind_;                          // set last: what is above goes with it
};

}  // namespace tabelion
