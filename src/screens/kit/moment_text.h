// Dates and times in boxes, by the rules of the record form.
#pragma once

#include <string>

#include "services/application.h"

namespace tabelion {

// As a box shows a value, so that it reads back. `type` is kDate or kTime.
std::u16string BoxTextOf(const Application& app, FieldType type, ByteView value);
// What a text means that a person sees before it is stored; the error ends a sentence about it. A
// time without seconds keeps those of `previous` where hour and minute are the same.
Result<Bytes> ValueOfBoxText(const Application& app, FieldType type, const std::u16string& text,
                             ByteView previous);

}  // namespace tabelion
