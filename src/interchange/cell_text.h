// A field's value as the text of a table cell, the same in every locale, and back.
//
//   text kinds, notes   the text
//   integers            decimal digits; the relationship key unsigned, the others signed
//   floats, calculated  the stored number, with a point
//   check box           0 or 1
//   date                YYYY-MM-DD           time   HH:MM:SS (its fourth byte has no text)
//   pop-up              the item's name; a value that no item has: "?" and its 14 bytes as hex
//   link                its text; the key has a column of its own
//   external            hexadecimal digits; zeros alone are no value
//
// No value is an empty cell. An empty cell is no value, of integers and check boxes 0. A value that
// is shorter than its type reads as padded with zeros. Texts are 8-bit here when `is_utf8` is off.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "engine/packed_record.h"
#include "interchange/table_columns.h"
#include "platform/result.h"
#include "query/format_settings.h"

namespace tabelion {

struct CellText {
  std::string_view text;  // into the record, the pop-up names or `scratch`
  bool is_plain = true;   // ASCII digits and signs alone: nothing to convert or to quote
  bool is_utf8 = true;    // else still in the database's code page
};

// Room for the texts that are made up; a value of 65535 bytes as hex is the longest.
struct CellScratch {
  std::array<char, 64> digits;
  std::string text;
};

// `stored` is the field's value in the record; `popups` the names of the column's items.
CellText cellText(const TableColumn& column, const PopupNames& popups, ByteView stored,
                  CellScratch& scratch);

// Text as a value, appended to `value`, which may have fewer bytes than its type (fitValue); an
// empty text gives none. The error says what is wrong, without the place, and what was appended
// then is to be thrown away. Blanks around
// anything but a text do not count. Dates may be in the form of `dates` as well, with a whole year:
// 5.9.24 is of no century. Check boxes may be in words.
struct CellReader {
  const TableColumn& column;
  const FieldDefinition& field;
  const PopupNames& popups;
  const TextEncoding& encoding;
  const FormatSettings* dates = nullptr;
};
Status readCell(const CellReader& reader, std::string_view text, Bytes& value);
// The two columns of a link field make one value.
Status readLinkCells(const TextEncoding& encoding, std::string_view text, std::string_view key,
                     Bytes& value);
// A record number of an auto-number or relationship key column; none when it is not one.
std::optional<std::uint32_t> parseAutoNumber(std::string_view text, FieldType type);

// A decimal number, whole: sign, digits with a point among them, exponent.
bool isDecimalNumber(std::string_view text);

}  // namespace tabelion
