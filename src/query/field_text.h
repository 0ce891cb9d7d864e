// A field's value as text: the one form in which screens, sorting, filters, finding, reports and
// exports see it. Texts are 8-bit, in the database's code page.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "engine/database.h"
#include "engine/stored_value.h"
#include "query/format_settings.h"

namespace tabelion {

inline constexpr std::string_view kNoValueText = "No Value";    // a pop-up key without an item
inline constexpr std::string_view kResultErrorText = "Error!";  // a result that has no text
inline constexpr std::size_t kMaxLookupText = 254;
inline constexpr std::size_t kNoBound = SIZE_MAX;

// Produces the text of a lookup field; empty where the linked database is not at hand.
using LookupText = std::function<std::string(int slot, ByteView record)>;

struct TextOptions {
  // Room for the text and a closing NUL, in bytes: texts are cut to one byte less, in a UTF-8
  // database before a character that would be split.
  std::size_t capacity = kNoBound;
  // The stored form: types 10 and 11 give their number, encrypted values nothing.
  bool raw = false;
  const LookupText* lookup = nullptr;
};

struct FieldText {
  std::string text;
  // The call's result: false for an absent slot, an encrypted value (the text is then a run of
  // "X") and a type without a text form. An empty value is a value.
  bool has_value = false;
};

FieldText fieldText(const Database& database, ByteView record, int slot,
                    const FormatSettings& settings, const TextOptions& options = {});

// The same, appended; the result is FieldText::has_value.
bool appendFieldText(std::string& into, const Database& database, ByteView record, int slot,
                     const FormatSettings& settings, const TextOptions& options = {});

// The same for a caller that walks the slots itself: `value` is a value in clear, so ask isMasked
// first. A lookup field, which needs its record, gives empty text here.
bool appendValueText(std::string& into, const FieldDefinition& field, const FieldRecord& items,
                     ByteView value, const FormatSettings& settings,
                     const TextOptions& options = {});

// Whether a field's value is enciphered in this record, so that its text is a run of "X", one for
// each stored byte. Such a text is never to be written back.
bool isMasked(const FieldDefinition& field, ByteView record);

// What a form shows for editing: as fieldText without a bound, but dates and times in the form in
// which they are read (FormatSettings), and notes as their text. valueOfText gives the value back.
FieldText editText(const Database& database, ByteView record, int slot,
                   const FormatSettings& settings, const LookupText* lookup = nullptr);

// Whether a field has a value, for controls that depend on another field being filled. Absent,
// zero-length and encrypted values count as empty; so does, by type, what has nothing to say: an
// empty text, a number 0, "No Value", an unticked box, no date, no time, a link without a target.
// Types 6, 13 and 18 are never empty while they are present.
// Compat: a 254-byte text is empty when its leading number is 0, as any word's is
// (FieldText.HasAValueByType).
bool hasValue(const Database& database, ByteView record, int slot, const FormatSettings& settings);

}  // namespace tabelion
