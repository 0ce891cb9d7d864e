// The order of the records. A database keeps its records in sort order: sorting rearranges the
// record store itself, and lists, finds and exports walk it as it stands.
//
// Up to three levels, each a field and a direction (DatabaseRecord::sort). The order of records
// that compare equal, or whose comparisons contradict each other, is part of the result: it comes
// from the one algorithm below and is the same everywhere.
#pragma once

#include <cstdint>

#include "engine/database.h"
#include "query/query_settings.h"

namespace tabelion {

// The sign of a - b for one field, of b - a when `forward` is off.
//   1, 12, 14, 17  text, case folded         2, 6, 8  32-bit difference, wrapping
//   3, 15          numbers (15 of kinds 1 to 3: leading integers; of no kind that there is: equal)
//   4              the items' texts, case folded      5  the stored bytes
//   9              hour, minute, second; no time last  11  the text, empty first
//   others         always equal
// Compat: integers more than 2^31 apart order the wrong way round
// (Sort.IntegersFarApartOrderTheWrongWayRound). A record without the field is before the other one,
// also when that one has none either: -1 for `a`, else 1 for `b`.
int compareFieldValues(const Database& database, ByteView a, ByteView b, int slot, bool forward,
                       const FormatSettings& formats);

// Through the three levels; a level without a field ends the comparison as equal.
int compareRecords(const Database& database, std::uint32_t a, std::uint32_t b,
                   const FormatSettings& formats);

// Puts all records into order and marks the database dirty. Nothing happens without a level 1 or
// with fewer than two records. `followed`, when given, is a record's position and stays that
// record's.
void sortRecords(Database& database, const FormatSettings& formats,
                 std::uint32_t* followed = nullptr);

// Whether every record compares equal to the next or before it, so that a sort is no need.
bool isInOrder(const Database& database, const FormatSettings& formats);

// Moves one record, whose value was just changed, to before the first record that it sorts
// strictly before, or to the end; among equals it comes last. Returns where it stands now.
std::uint32_t replaceInOrder(Database& database, std::uint32_t position,
                             const FormatSettings& formats);

}  // namespace tabelion
