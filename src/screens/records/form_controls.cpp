#include "screens/records/form_controls.h"

#include <algorithm>

#include "engine/field_types.h"

namespace tabelion {
namespace {

constexpr std::size_t kButtonCharacters = 10;

bool isText(FieldType type) {
  return type == FieldType::kText || type == FieldType::kLongText ||
         type == FieldType::kTextVariant || type == FieldType::kText254 || type == FieldType::kNote;
}

bool hasLineBreak(const std::u16string& text) {
  return text.find_first_of(u"\n\r") != std::u16string::npos;
}

}  // namespace

ControlKind FormControlKind(FieldType type, const std::u16string& text) {
  switch (type) {
    case FieldType::kPopup:
      return ControlKind::kChoice;
    case FieldType::kCheckBox:
      return ControlKind::kCheckBox;
    case FieldType::kNote:
      return ControlKind::kButton;
    case FieldType::kExternal:
      return ControlKind::kLabel;
    default:
      return isText(type) && hasLineBreak(text) ? ControlKind::kButton : ControlKind::kEdit;
  }
}

bool IsShownOnly(FieldType type) {
  return type == FieldType::kAutoNumber || type == FieldType::kCalculated ||
         type == FieldType::kLookup || type == FieldType::kLinkedField ||
         type == FieldType::kLinkField || type == FieldType::kExternal;
}

Picture FormIconPicture(FieldType type) {
  switch (type) {
    case FieldType::kInteger:
    case FieldType::kFloat:
      return Picture::kFieldNumber;
    case FieldType::kPopup:
      return Picture::kFieldPopup;
    case FieldType::kDate:
      return Picture::kFieldDate;
    case FieldType::kTime:
      return Picture::kFieldTime;
    default:
      return Picture::kFieldText;
  }
}

int MaxTypedLength(const FieldDefinition& field) {
  switch (field.type) {
    case FieldType::kText:
    case FieldType::kTextVariant:
      return std::max(1, field.width);
    case FieldType::kLongText:
      return static_cast<int>(kLongTextSize) - 1;
    case FieldType::kText254:
      return static_cast<int>(kText254Size) - 1;
    case FieldType::kNote:
      return static_cast<int>(kNoteSize) - 1;
    case FieldType::kFloat:
      return static_cast<int>(kNumberTextSize) - 1;
    case FieldType::kInteger:
      return 11;
    default:
      return 0;
  }
}

std::u16string ButtonText(const std::u16string& text) {
  if (text.empty()) return u"Note…";
  const std::size_t line = std::min(text.find(u'\n'), text.size());
  if (line == text.size() && line <= kButtonCharacters) return text;
  std::size_t length = std::min(line, kButtonCharacters - 1);
  if (length > 0 && (text[length - 1] & 0xFC00) == 0xD800) --length;  // half a character
  return text.substr(0, length) + u"…";
}

bool IsNumberText(const std::u16string& text, bool decimal_comma) {
  int points = 0;
  for (const char16_t c : text) {
    if (c == u'.' || (decimal_comma && c == u',')) {
      ++points;
    } else if (c < u'0' || c > u'9') {
      return false;
    }
  }
  return points <= 1;
}

}  // namespace tabelion
