// Which control a field has on the edit form, and what it takes.
#pragma once

#include <string>
#include <string_view>

#include "engine/database_record.h"
#include "platform/dialogs.h"

namespace tabelion {

// A text of several lines gets a button, as a note does, since a box has one line.
ControlKind FormControlKind(FieldType type, const std::u16string& text);
// What nobody types: numbers that the program gives, results, and links, which are followed.
bool IsShownOnly(FieldType type);
Picture FormIconPicture(FieldType type);

// The longest text that can be typed, in characters, 0 = no bound; how many bytes they take is
// checked when the value is stored.
int MaxTypedLength(const FieldDefinition& field);

// On a button: the first words of its text, so many characters at most.
std::u16string ButtonText(const std::u16string& text, std::size_t characters);

// Whether a number box that held `before` may hold this: digits and at most one decimal point,
// behind a minus when there was one before.
bool IsNumberText(std::u16string_view text, std::u16string_view before, bool decimal_comma);
// Whether characters were taken away from `whole` and nothing else was done to it.
bool IsPartOf(std::u16string_view text, std::u16string_view whole);

}  // namespace tabelion
