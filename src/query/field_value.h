// Text back into the bytes that a record stores, for forms, imports and plug-ins.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "engine/database_record.h"
#include "engine/field_record.h"
#include "platform/result.h"
#include "query/format_settings.h"

namespace tabelion {

// Who sees the result. A person may type "1/2/26" or "17:05" on the 12-hour clock, and is shown
// what was understood before it is stored: that is the caller's part. Nobody looks at a date in a
// file of 60,000 rows, so there a date or time that is not one as it stands is refused. What a
// person typed and a file may hold needs no showing.
enum class InputCare { kPerson, kFile };

// The value bytes of `text` for a field, or an Error whose text is the end of a sentence about the
// value ("is longer than 40 bytes"), in ASCII; the caller says which field and row.
//
// `previous` is the value that is stored now, empty when there is none. A text that is what
// editText shows for it gives exactly these bytes back, whatever they are, so a form may write back
// all its fields. A time without seconds whose hour and minute are those of before keeps its
// seconds, every time keeps the fourth byte and every link its head.
//
// A new value has as many bytes as its type (fitValue).
//
//   texts (1, 12, 14, 17, 7)  the text and its NUL; an empty one gives no bytes, a note its zeros.
//                             No NULs inside; at most width, 2001, width, 253 and 2000 bytes
//   2, 6 · 10                 a whole number of 32 bits, signed · unsigned; empty is 0
//   3                         a number of at most 16 characters, kept as typed but with a decimal
//                             point, which reads right under either decimal setting
//   4                         the first item with exactly this text; "No Value" or empty a key that
//                             no item has
//   5                         1 or 0, also in words (checkOfText); empty 0
//   8, 9                      by the user's choice of format; empty is no date, no time
//   11                        the display text, at most 255 bytes
//   15                        the shown form of a result by its kind (imports; formulas replace it)
//   0, 13, 16, 18             refused: nothing is stored, or nothing that has a text
Result<Bytes> valueOfText(const FieldDefinition& field, const FieldRecord& items,
                          std::string_view text, const FormatSettings& settings,
                          ByteView previous = {}, InputCare care = InputCare::kPerson);

// The same for many values, appended to `into`; what was there stays as it was when the text is
// refused.
Status appendValueOfText(Bytes& into, const FieldDefinition& field, const FieldRecord& items,
                         std::string_view text, const FormatSettings& settings,
                         ByteView previous = {}, InputCare care = InputCare::kPerson);

// What a text says of a check box, in any case: 1, yes, y, true, on, x or checked; 0, no, n, false,
// off or unchecked. None for any other text.
std::optional<bool> checkOfText(std::string_view text);

// A link to the record with this key. What follows the key in the head stays as in `previous`.
Bytes linkValue(std::uint32_t key, std::string_view text, ByteView previous = {});

}  // namespace tabelion
