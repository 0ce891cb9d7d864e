// One filter criterion, prepared for a pass over the records.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "engine/database.h"
#include "query/query_settings.h"

namespace tabelion {

// Compares stored values, never display texts. Bytes that a value lacks count as zero, so an empty
// number is 0 and an empty date no date; an empty time is no time.
class CriterionTest {
 public:
  CriterionTest(const Database& database, const FilterBlock& criterion,
                const QuerySettings& settings);

  // The field that is tested. A record without it does not pass; a slot behind the last one, which
  // a damaged file can name, no record has.
  int slot() const { return slot_; }
  bool passes(ByteView value) const;
  // Grows with the work that a value is.
  int cost() const;

 private:
  enum class Kind : unsigned char {
    kNever,
    kAlways,
    kCheckBox,
    kSigned,
    kUnsigned,  // dates too
    kTime,
    kPopup,
    kResult,  // whole numbers among calculated results
    kNumber,
    kLink,
    kText,
  };
  void prepareCalculated(const FieldDefinition& field, const FilterBlock& criterion);
  void setNumbers(const FilterBlock& criterion);
  void setSigned(const FilterBlock& criterion, Kind kind);
  void setRange(Kind kind, std::int64_t low, std::int64_t high);
  bool isWithin(std::int64_t value) const { return low_ <= value && value <= high_; }

  Kind kind_ = Kind::kNever;
  bool decimal_comma_ = false;
  int slot_ = 0;
  std::int64_t low_ = 0;  // all bounds are inclusive
  std::int64_t high_ = 0;
  double from_ = 0;
  double to_ = 0;
  std::array<std::uint8_t, kPopupKeySize> key_{};
  std::string word_;  // in lower case
};

}  // namespace tabelion
