#include "query/field_value.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

#include "engine/schema_places.h"
#include "query/date_text.h"
#include "query/field_text.h"
#include "query/number_text.h"
#include "query/time_text.h"
#include "query/typed_tokens.h"

namespace tabelion {
namespace {

constexpr std::size_t kLongestNumberText = kNumberTextSize - 1;

struct Input {
  const FieldDefinition& field;
  const FieldRecord& items;
  std::string_view text;
  const FormatSettings& settings;
  ByteView previous;
  InputCare care;
};

Error refused(std::string reason) {
  return makeError(ErrorKind::kInvalid, std::move(reason));
}

std::string_view trimmed(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(" \t\r\n");
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(" \t\r\n") - begin + 1);
}

Bytes terminated(std::string_view text) {
  Bytes bytes(text.begin(), text.end());
  if (!bytes.empty()) bytes.push_back(0);
  return bytes;
}

Bytes little(std::uint32_t number) {
  Bytes bytes(4);
  storeLe32(bytes.data(), number);
  return bytes;
}

Result<Bytes> textValue(std::string_view text, std::size_t most) {
  if (text.find('\0') != std::string_view::npos) return refused("contains a zero byte");
  if (text.size() > most) return refused("is longer than " + std::to_string(most) + " bytes");
  return terminated(text);
}

Result<Bytes> integerValue(std::string_view text, std::int64_t least, std::int64_t most) {
  text = trimmed(text);
  if (text.empty()) return Bytes{};
  std::string_view digits = text;
  if (digits.starts_with('+') && !digits.starts_with("+-")) digits.remove_prefix(1);
  std::int64_t number = 0;
  const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  const bool whole = read.ptr == digits.data() + digits.size();
  if (read.ec == std::errc::invalid_argument || !whole) return refused("is not a whole number");
  if (read.ec != std::errc{} || number < least || number > most) {
    return refused("is not between " + std::to_string(least) + " and " + std::to_string(most));
  }
  return little(static_cast<std::uint32_t>(number));
}

// Whether all of the text is one number with a decimal point.
bool isNumber(std::string_view text) {
  if (text.starts_with('-') || text.starts_with('+')) text.remove_prefix(1);
  const std::size_t digit = text.starts_with('.') ? 1 : 0;
  if (!isDigits(text.substr(0, digit + 1).substr(digit), 1)) return false;
  double value = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
  return read.ec == std::errc{} && read.ptr == text.data() + text.size();
}

Result<Bytes> numberValue(const Input& input, bool as_typed) {
  const std::string_view typed = trimmed(input.text);
  std::string text(typed);
  if (input.settings.choices.decimal_comma) std::replace(text.begin(), text.end(), ',', '.');
  if (text.empty()) return Bytes{};
  if (!isNumber(text)) return refused("is not a number");
  if (text.size() > kLongestNumberText) {
    return refused("is a number of more than " + std::to_string(kLongestNumberText) +
                   " characters");
  }
  return terminated(as_typed ? typed : text);
}

// A key that no item has.
Bytes freeKey(const FieldRecord& items) {
  Bytes key(kPopupKeySize, 0);
  while (findItem(items, key)) --key.back();  // fewer items than values of a byte
  return key;
}

Result<Bytes> popupValue(const Input& input) {
  for (const PopupItem& item : input.items.items) {
    if (!input.text.empty() && item.text == input.text) {
      const ByteView key = item.valueKey();
      return Bytes(key.begin(), key.end());
    }
  }
  if (input.text.empty() || input.text == kNoValueText) return freeKey(input.items);
  return refused("is not in the field's list");
}

Result<Bytes> checkBoxValue(std::string_view text) {
  text = trimmed(text);
  const auto is = [&](std::string_view word) {
    return text.size() == word.size() && containsAnyCase(text, word);
  };
  if (is("1") || is("yes") || is("true")) return Bytes{1};
  if (text.empty() || is("0") || is("no") || is("false")) return Bytes{0};
  return refused("is neither 1 nor 0");
}

Result<std::uint32_t> daysOfText(const Input& input) {
  const std::string_view text = trimmed(input.text);
  if (input.care == InputCare::kFile && !isExactDate(text, input.settings)) {
    return refused("is not a date");
  }
  const CalendarDate date = dateOfText(text, input.settings);
  if (date.year < kFirstYear || date.year > kLastYear) {
    return refused("is not a date from 1904 to 9999");
  }
  return daysSince1904(date.month, date.day, date.year);
}

Result<Bytes> timeValue(const Input& input) {
  const std::string_view text = trimmed(input.text);
  const TimeValue before = timeOfValue(input.previous);
  if (text.empty()) return Bytes{0, 0, kNoTimeHour, before.fourth};
  if (input.care == InputCare::kFile && !isExactTime(text, input.settings)) {
    return refused("is not a time");
  }
  const TypedTime time = timeOfText(text, input.settings);
  if (time.result != kParseAccepted) return refused("is not a time");
  int second = time.second;
  if (second < 0) {
    const bool same =
        !input.previous.empty() && before.hour == time.hour && before.minute == time.minute;
    second = same ? before.second : 0;
  }
  return Bytes{static_cast<std::uint8_t>(second), static_cast<std::uint8_t>(time.minute),
               static_cast<std::uint8_t>(time.hour), before.fourth};
}

// "h:mm:ss" as results of kind time are shown.
Result<Bytes> durationValue(const Input& input) {
  std::string_view text = trimmed(input.text);
  if (text.empty()) return Bytes{};
  const bool negative = text.starts_with('-');
  if (negative) text.remove_prefix(1);
  const TypedTokens typed = splitTyped(text, ':');
  const auto& [hours, minutes, seconds] = typed.tokens;
  if (!isDigits(hours, 12) || !isDigits(minutes, 2) || !isDigits(seconds, 2) ||
      !typed.rest.empty()) {
    return refused("is not a duration");
  }
  const std::int64_t count =
      (leadingInteger(hours) * 60 + leadingInteger(minutes)) * 60 + leadingInteger(seconds);
  return terminated(std::to_string(negative ? -count : count));
}

Result<Bytes> resultValue(const Input& input) {
  if (input.text == kResultErrorText) return refused("is not a result");
  switch (effectiveType(input.field)) {
    case kFloat:
    case kInteger:
      return numberValue(input, true);
    case kTime:
      return durationValue(input);
    case kDate: {
      if (trimmed(input.text).empty()) return Bytes{};
      const auto days = daysOfText(input);
      if (!days) return days.error();
      return terminated(std::to_string(*days));
    }
    default:
      return refused("belongs to a calculated field without a kind of result");
  }
}

Result<Bytes> linkTextValue(const Input& input) {
  constexpr std::size_t kMost = kLinkSize - kLinkHeadSize - 1;
  const auto text = textValue(input.text, kMost);
  if (!text) return text.error();
  if (input.text.empty() && input.previous.empty()) return Bytes{};
  return linkValue(linkKey(input.previous), input.text, input.previous);
}

// Whether the text is what a form shows for the value of before.
bool isUnchanged(const Input& input) {
  if (input.previous.empty()) return false;
  if (input.field.type == kNote) return storedText(input.previous) == input.text;
  FormatSettings edited = input.settings;
  edited.show_date = edited.edit_date;
  edited.show_time = edited.edit_time;
  std::string shown;
  return appendValueText(shown, input.field, input.items, input.previous, edited) &&
         shown == input.text;
}

Result<Bytes> newValue(const Input& input) {
  const std::size_t area = fieldValueSize(input.field);
  switch (input.field.type) {
    case kText:
    case kTextVariant:
    case kLongText:
    case kText254:
      return textValue(input.text, area == 0 ? 0 : area - 1);
    case kNote:
      if (input.text.empty()) return Bytes{0};
      return textValue(input.text, kNoteSize - 1);
    case kInteger:
    case kAutoNumber:
      return integerValue(input.text, std::numeric_limits<std::int32_t>::min(),
                          std::numeric_limits<std::int32_t>::max());
    case kLinkedField:
      return integerValue(input.text, 0, std::numeric_limits<std::uint32_t>::max());
    case kFloat:
      return numberValue(input, false);
    case kPopup:
      return popupValue(input);
    case kCheckBox:
      return checkBoxValue(input.text);
    case kDate: {
      const auto days = daysOfText(input);
      if (!days) return days.error();
      return little(*days);
    }
    case kTime:
      return timeValue(input);
    case kLinkField:
      return linkTextValue(input);
    case kCalculated:
      return resultValue(input);
    default:
      return refused("belongs to a field that takes no text");
  }
}

}  // namespace

Bytes linkValue(std::uint32_t key, std::string_view text, ByteView previous) {
  Bytes value(kLinkHeadSize + text.size() + 1, 0);
  std::copy_n(previous.begin(), std::min(previous.size(), kLinkHeadSize), value.begin());
  storeLe32(value.data(), key);
  std::copy(text.begin(), text.end(), value.begin() + kLinkHeadSize);
  return value;
}

Result<Bytes> valueOfText(const FieldDefinition& field, const FieldRecord& items,
                          std::string_view text, const FormatSettings& settings, ByteView previous,
                          InputCare care) {
  const Input input{field, items, text, settings, previous, care};
  if (isUnchanged(input)) return Bytes(previous.begin(), previous.end());
  return newValue(input);
}

}  // namespace tabelion
