// Where the settings of one field lie inside its definition (docs/file-format.md has the table).
//
// Two settings share bytes only where no field can have both: areas E, F and I hold link settings
// for types 10 and 11, the formula for type 15, the lookup for type 16 and the plug-in for 18.
//
//   byte G       decimals of a number (type 3)
//   byte H       default option of dates and times (types 8 and 9)
//   E[0]         10, 11: display field, 255 = none · 16: the link field it looks through
//   E[2]         10, 11: link kind
//   F[0..31]     10, 11: the other database's name
//   F[0..39]     18: plug-in name            I[0..19]  18: its parameter text
//   I[0..19]     16: name of the field shown
//   F[0]         15: token count             F[1..11]  15: token classes
//   F[19]        15: result kind             F[20..30] 15: token values
//   I[0..29]     15: the constants' texts, each NUL-terminated, in index order
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/database_record.h"

namespace tabelion {

inline constexpr int kMaxFormulaTokens = 11;
inline constexpr std::size_t kFormulaConstantsSize = 30;
inline constexpr std::size_t kResultKindOffset = 19;  // in area F

// 8-bit, in the database's code page. False, and nothing changed, for a name of more than 19 bytes
// or with a NUL in it; that it is the only one of its kind is nobody's concern here.
std::string fieldName(const FieldDefinition& field);
bool setFieldName(FieldDefinition& field, std::string_view name);

// Digits behind the point. A file may hold any byte, so 0 to 255.
int fieldDecimals(const FieldDefinition& field);
void setFieldDecimals(FieldDefinition& field, int decimals);

// 0 none; dates: 2 or 3 today when empty at a save; times: 2 the current time.
int fieldDefaultOption(const FieldDefinition& field);
void setFieldDefaultOption(FieldDefinition& field, int option);

struct LinkSettings {
  std::string database;    // 8-bit, at most 31 characters
  int display_field = -1;  // slot in the other database, -1 none
  std::uint8_t kind = 0;   // handed on to the opened level
  bool operator==(const LinkSettings&) const = default;
};
// The settings are those of the field's type: asking a field of another type gives what its bytes
// happen to say, and setting them overwrites its own. This holds for all below.
LinkSettings linkSettings(const FieldDefinition& field);
bool setLinkSettings(FieldDefinition& field, const LinkSettings& link);  // false: name too long

// A lookup shows a named field of the record that a link field of the same record points to.
struct LookupSettings {
  int link_field = -1;      // slot in this database, -1 none
  std::string shown_field;  // name in the other database, at most 19 characters
  bool operator==(const LookupSettings&) const = default;
};
LookupSettings lookupSettings(const FieldDefinition& field);
bool setLookupSettings(FieldDefinition& field, const LookupSettings& lookup);

struct PluginSettings {
  std::string name;       // at most 39 characters
  std::string parameter;  // at most 19 characters
  bool operator==(const PluginSettings&) const = default;
};
// False where a text is too long or holds a NUL; both texts are then as they were or partly set,
// and the definition is to be thrown away.
PluginSettings pluginSettings(const FieldDefinition& field);
bool setPluginSettings(FieldDefinition& field, const PluginSettings& plugin);

// A formula as stored: postfix tokens, and the constants as texts.
struct StoredFormula {
  struct Token {
    std::uint8_t type = 0;  // token class
    std::uint8_t value = 0;
    bool operator==(const Token&) const = default;
  };
  std::vector<Token> tokens;           // at most kMaxFormulaTokens
  std::vector<std::string> constants;  // together with their NULs at most 30 bytes
  std::uint8_t result_kind = 0;
  bool operator==(const StoredFormula&) const = default;
};
StoredFormula storedFormula(const FieldDefinition& field);
bool setStoredFormula(FieldDefinition& field, const StoredFormula& formula);  // false: no room

// The type that a consumer of the value asks for: a calculated field counts as the type of its
// result kind (0 and 4 to 6 float, 1 integer, 2 time, 3 date, others stay 15).
FieldType effectiveType(const FieldDefinition& field);

// What the number text of a calculated field's result means. Of other fields it says nothing.
enum class ResultMeaning { kNumber, kWholeNumber, kDuration, kDate, kUnknown };
ResultMeaning resultMeaning(const FieldDefinition& field);

// The size of the value area of a field of this definition (records unpacked), in bytes: at most
// 65536, since a width has 16 bits; 0 for what has no value.
std::size_t fieldValueSize(const FieldDefinition& field);

}  // namespace tabelion
