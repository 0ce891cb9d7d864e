#include "screens/records/form_controls.h"

#include <algorithm>

#include "engine/schema_places.h"

namespace tabelion {
namespace {

constexpr int kLongestInteger = 11;  // the sign and the digits of 32 bits

bool hasLineBreak(const std::u16string& text) {
  return text.find_first_of(u"\n\r") != std::u16string::npos;
}

}  // namespace

ControlKind FormControlKind(FieldType type, const std::u16string& text) {
  switch (traitsOf(type).form) {
    case ValueForm::kText:
      return hasLineBreak(text) ? ControlKind::kButton : ControlKind::kEdit;
    case ValueForm::kNote:
      return ControlKind::kButton;
    case ValueForm::kPopupKey:
      return ControlKind::kChoice;
    case ValueForm::kFlag:
      return ControlKind::kCheckBox;
    case ValueForm::kBlock:
      return ControlKind::kLabel;
    case ValueForm::kNone:
    case ValueForm::kNumberText:
    case ValueForm::kResult:
    case ValueForm::kInteger:
    case ValueForm::kKey:
    case ValueForm::kDays:
    case ValueForm::kClock:
    case ValueForm::kLink:
    case ValueForm::kLookup:
      break;
  }
  return ControlKind::kEdit;
}

bool IsShownOnly(FieldType type) {
  const FieldTypeTraits& traits = traitsOf(type);
  if (traits.form == ValueForm::kLink || traits.form == ValueForm::kBlock) return true;
  switch (traits.source) {
    case ValueSource::kCounter:
    case ValueSource::kFormula:
    case ValueSource::kOtherDatabase:
      return true;
    case ValueSource::kPerson:
    case ValueSource::kNobody:
      break;
  }
  return false;
}

Picture FormIconPicture(FieldType type) {
  switch (traitsOf(type).form) {
    case ValueForm::kInteger:
    case ValueForm::kNumberText:
      return Picture::kFieldNumber;
    case ValueForm::kPopupKey:
      return Picture::kFieldPopup;
    case ValueForm::kDays:
      return Picture::kFieldDate;
    case ValueForm::kClock:
      return Picture::kFieldTime;
    case ValueForm::kNone:
    case ValueForm::kText:
    case ValueForm::kNote:
    case ValueForm::kResult:
    case ValueForm::kKey:
    case ValueForm::kFlag:
    case ValueForm::kLink:
    case ValueForm::kLookup:
    case ValueForm::kBlock:
      break;
  }
  return Picture::kFieldText;
}

int MaxTypedLength(const FieldDefinition& field) {
  const FieldTypeTraits& traits = traitsOf(field.type);
  switch (traits.form) {
    case ValueForm::kText:
    case ValueForm::kNote:
    case ValueForm::kNumberText:
      return std::max(1, static_cast<int>(fieldValueSize(field)) - 1);  // a NUL closes the text
    case ValueForm::kInteger:
      return traits.source == ValueSource::kPerson ? kLongestInteger : 0;
    case ValueForm::kNone:
    case ValueForm::kResult:
    case ValueForm::kKey:
    case ValueForm::kPopupKey:
    case ValueForm::kFlag:
    case ValueForm::kDays:
    case ValueForm::kClock:
    case ValueForm::kLink:
    case ValueForm::kLookup:
    case ValueForm::kBlock:
      break;
  }
  return 0;
}

std::u16string ButtonText(const std::u16string& text, std::size_t characters) {
  if (text.empty()) return u"Note…";
  const std::size_t line = std::min(text.find(u'\n'), text.size());
  if (line == text.size() && line <= characters) return text;
  std::size_t length = std::min(line, characters - 1);
  if (length > 0 && (text[length - 1] & 0xFC00) == 0xD800) --length;  // half a character
  return text.substr(0, length) + u"…";
}

bool IsNumberText(std::u16string_view text, std::u16string_view before, bool decimal_comma) {
  if (before.starts_with(u'-') && text.starts_with(u'-')) text.remove_prefix(1);
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

bool IsPartOf(std::u16string_view text, std::u16string_view whole) {
  std::size_t at = 0;
  for (std::size_t i = 0; i < whole.size() && at < text.size(); ++i) {
    if (whole[i] == text[at]) ++at;
  }
  return at == text.size();
}

}  // namespace tabelion
