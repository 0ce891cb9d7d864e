#include "query/field_value.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <optional>
#include <utility>

#include "engine/packed_record.h"
#include "engine/schema_places.h"
#include "query/date_text.h"
#include "query/field_text.h"
#include "query/number_text.h"
#include "query/text_case.h"
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

void putTerminated(Bytes& into, std::string_view text) {
  if (text.empty()) return;
  into.insert(into.end(), text.begin(), text.end());
  into.push_back(0);
}

void putLittle(Bytes& into, std::uint32_t number) {
  std::array<std::uint8_t, 4> bytes;
  storeLe32(bytes.data(), number);
  into.insert(into.end(), bytes.begin(), bytes.end());
}

Status checkText(std::string_view text, std::size_t most) {
  if (text.size() > most) return refused("is longer than " + std::to_string(most) + " bytes");
  if (text.find('\0') != std::string_view::npos) return refused("contains a zero byte");
  return Done{};
}

Status putText(Bytes& into, std::string_view text, std::size_t most) {
  if (Status checked = checkText(text, most); !checked.ok()) return checked;
  putTerminated(into, text);
  return Done{};
}

Status putInteger(Bytes& into, std::string_view text, std::int64_t least, std::int64_t most) {
  text = withoutBlanks(text);
  if (text.empty()) return Done{};
  std::string_view digits = text;
  if (digits.starts_with('+') && !digits.starts_with("+-")) digits.remove_prefix(1);
  std::int64_t number = 0;
  const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  const bool whole = read.ptr == digits.data() + digits.size();
  if (read.ec == std::errc::invalid_argument || !whole) return refused("is not a whole number");
  if (read.ec != std::errc{} || number < least || number > most) {
    return refused("is not between " + std::to_string(least) + " and " + std::to_string(most));
  }
  putLittle(into, static_cast<std::uint32_t>(number));
  return Done{};
}

// Whether all of the text is one number with a decimal point.
bool isNumber(std::string_view text) {
  if (text.starts_with('-') || text.starts_with('+')) text.remove_prefix(1);
  const std::size_t digit = text.starts_with('.') ? 1 : 0;
  if (text.size() <= digit || !isDigits(text.substr(digit, 1), 1)) return false;
  double value = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
  return read.ec == std::errc{} && read.ptr == text.data() + text.size();
}

enum class DecimalMark { kPoint, kAsTyped };

Status putNumber(Bytes& into, const Input& input, DecimalMark mark) {
  const std::string_view typed = withoutBlanks(input.text);
  if (typed.empty()) return Done{};
  if (typed.size() > kLongestNumberText) {
    return refused("is not a number of at most " + std::to_string(kLongestNumberText) +
                   " characters");
  }
  std::string text(typed);
  if (input.settings.choices.decimal_comma) std::replace(text.begin(), text.end(), ',', '.');
  if (!isNumber(text)) return refused("is not a number");
  putTerminated(into, mark == DecimalMark::kAsTyped ? typed : text);
  return Done{};
}

// A key that no item has.
Bytes freeKey(const FieldRecord& items) {
  Bytes key(kPopupKeySize, 0);
  while (findItem(items, key)) --key.back();  // fewer items than values of a byte
  return key;
}

Status putPopup(Bytes& into, const Input& input) {
  for (const PopupItem& item : input.items.items) {
    if (!input.text.empty() && item.text == input.text) {
      const ByteView key = item.valueKey();
      into.insert(into.end(), key.begin(), key.end());
      return Done{};
    }
  }
  if (!input.text.empty() && input.text != kNoValueText) {
    return refused("is not in the field's list");
  }
  const Bytes key = freeKey(input.items);
  into.insert(into.end(), key.begin(), key.end());
  return Done{};
}

Status putCheckBox(Bytes& into, std::string_view text) {
  text = withoutBlanks(text);
  const auto is_checked = text.empty() ? std::optional(false) : checkOfText(text);
  if (!is_checked) return refused("is neither 1 nor 0, yes nor no");
  into.push_back(*is_checked ? 1 : 0);
  return Done{};
}

std::optional<std::uint32_t> daysOfText(const Input& input) {
  const std::string_view text = withoutBlanks(input.text);
  const auto date = input.care == InputCare::kPerson ? understoodDateOfText(text, input.settings)
                                                     : exactDateOfText(text, input.settings);
  if (!date) return std::nullopt;
  return daysSince1904(date->month, date->day, date->year);
}

Error refusedDate(const Input& input) {
  return refused("is not a date from 1904 to 9999 like " + exampleDate(input.settings));
}

Status putDate(Bytes& into, const Input& input) {
  const auto days = daysOfText(input);
  if (!days) return refusedDate(input);
  putLittle(into, *days);
  return Done{};
}

Status putTime(Bytes& into, const Input& input) {
  const std::string_view text = withoutBlanks(input.text);
  const TimeValue before = timeOfValue(input.previous);
  const auto put = [&](int second, int minute, int hour) {
    for (const int part : {second, minute, hour}) into.push_back(static_cast<std::uint8_t>(part));
    into.push_back(before.fourth);
  };
  if (text.empty()) {
    put(0, 0, kNoTimeHour);
    return Done{};
  }
  const bool exact = isExactTime(text, input.settings);
  const TypedTime time =
      exact ? timeOfText(text, input.settings) : understoodTimeOfText(text, input.settings);
  if (time.result != kParseAccepted || (input.care == InputCare::kFile && !exact)) {
    return refused("is not a time like " + exampleTime(input.settings));
  }
  const bool same =
      !input.previous.empty() && before.hour == time.hour && before.minute == time.minute;
  const int kept = same ? before.second : 0;
  put(time.second < 0 ? kept : time.second, time.minute, time.hour);
  return Done{};
}

// "h:mm:ss" as results of kind time are shown.
Status putDuration(Bytes& into, const Input& input) {
  std::string_view text = withoutBlanks(input.text);
  if (text.empty()) return Done{};
  const bool negative = text.starts_with('-');
  if (negative) text.remove_prefix(1);
  const TypedTokens typed = splitTyped(text, ':');
  const auto& [hours, minutes, seconds] = typed.tokens;
  if (!isDigits(hours, 11) || !isDigits(minutes, 2) || !isDigits(seconds, 2) ||
      !typed.rest.empty()) {
    return refused("is not a duration");
  }
  const std::int64_t count =
      (leadingInteger(hours) * 60 + leadingInteger(minutes)) * 60 + leadingInteger(seconds);
  putTerminated(into, std::to_string(negative ? -count : count));
  return Done{};
}

Status putResult(Bytes& into, const Input& input) {
  switch (resultMeaning(input.field)) {
    case ResultMeaning::kNumber:
    case ResultMeaning::kWholeNumber:
      return putNumber(into, input, DecimalMark::kAsTyped);
    case ResultMeaning::kDuration:
      return putDuration(into, input);
    case ResultMeaning::kDate: {
      if (withoutBlanks(input.text).empty()) return Done{};
      const auto days = daysOfText(input);
      if (!days) return refusedDate(input);
      putTerminated(into, std::to_string(*days));
      return Done{};
    }
    case ResultMeaning::kUnknown:
      break;
  }
  return refused("belongs to a calculated field without a kind of result");
}

Status putLinkText(Bytes& into, const Input& input) {
  if (Status checked = checkText(input.text, kLinkSize - kLinkHeadSize - 1); !checked.ok()) {
    return checked;
  }
  if (input.text.empty() && input.previous.empty()) return Done{};
  const Bytes value = linkValue(linkKey(input.previous), input.text, input.previous);
  into.insert(into.end(), value.begin(), value.end());
  return Done{};
}

// Whether the text is what a form shows for the value of before.
bool isUnchanged(const Input& input) {
  if (input.previous.empty()) return false;
  if (input.field.type == FieldType::kNote) return storedText(input.previous) == input.text;
  FormatSettings edited = input.settings;
  edited.show_date = edited.edit_date;
  edited.show_time = edited.edit_time;
  std::string shown;
  const bool has_text =
      appendValueText(shown, input.field, input.items, input.previous, edited) ||
      input.field.type == FieldType::kLinkedField;  // it shows none, which is what came back
  return has_text && shown == input.text;
}

Status putNewValue(Bytes& into, const Input& input) {
  const std::size_t area = fieldValueSize(input.field);
  switch (traitsOf(input.field.type).form) {
    case ValueForm::kText:
      return putText(into, input.text, area == 0 ? 0 : area - 1);
    case ValueForm::kNote:
      return putText(into, input.text, kNoteSize - 1);
    case ValueForm::kInteger:
      return putInteger(into, input.text, std::numeric_limits<std::int32_t>::min(),
                        std::numeric_limits<std::int32_t>::max());
    case ValueForm::kKey:
      return putInteger(into, input.text, 0, std::numeric_limits<std::uint32_t>::max());
    case ValueForm::kNumberText:
      return putNumber(into, input, DecimalMark::kPoint);
    case ValueForm::kPopupKey:
      return putPopup(into, input);
    case ValueForm::kFlag:
      return putCheckBox(into, input.text);
    case ValueForm::kDays:
      return putDate(into, input);
    case ValueForm::kClock:
      return putTime(into, input);
    case ValueForm::kLink:
      return putLinkText(into, input);
    case ValueForm::kResult:
      return putResult(into, input);
    case ValueForm::kNone:
    case ValueForm::kLookup:
    case ValueForm::kBlock:
      break;
  }
  return refused("belongs to a field that takes no text");
}

}  // namespace

std::optional<bool> checkOfText(std::string_view text) {
  constexpr std::string_view kChecked[] = {"1", "yes", "y", "true", "on", "x", "checked"};
  constexpr std::string_view kUnchecked[] = {"0", "no", "n", "false", "off", "unchecked"};
  const auto is = [&](std::string_view word) { return compareAnyCase(text, word) == 0; };
  if (std::any_of(std::begin(kChecked), std::end(kChecked), is)) return true;
  if (std::any_of(std::begin(kUnchecked), std::end(kUnchecked), is)) return false;
  return std::nullopt;
}

Bytes linkValue(std::uint32_t key, std::string_view text, ByteView previous) {
  Bytes value(kLinkHeadSize + text.size() + 1, 0);
  std::copy_n(previous.begin(), std::min(previous.size(), kLinkHeadSize), value.begin());
  storeLe32(value.data(), key);
  std::copy(text.begin(), text.end(), value.begin() + kLinkHeadSize);
  return value;
}

Status appendValueOfText(Bytes& into, const FieldDefinition& field, const FieldRecord& items,
                         std::string_view text, const FormatSettings& settings, ByteView previous,
                         InputCare care) {
  const Input input{field, items, text, settings, previous, care};
  const std::size_t begin = into.size();
  if (isUnchanged(input)) {
    into.insert(into.end(), previous.begin(), previous.end());
    return Done{};
  }
  if (Status put = putNewValue(into, input); !put.ok()) return put;
  fitValue(field, into, begin);
  return Done{};
}

Result<Bytes> valueOfText(const FieldDefinition& field, const FieldRecord& items,
                          std::string_view text, const FormatSettings& settings, ByteView previous,
                          InputCare care) {
  Bytes value;
  const Status status = appendValueOfText(value, field, items, text, settings, previous, care);
  if (!status) return status.error();
  return value;
}

}  // namespace tabelion
