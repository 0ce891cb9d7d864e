#include "interchange/cell_text.h"

#include <algorithm>
#include <charconv>

#include <fmt/format.h>

#include "engine/ascii.h"
#include "engine/calendar.h"
#include "engine/schema_places.h"
#include "engine/stored_value.h"
#include "interchange/hex.h"
#include "query/date_text.h"
#include "query/field_value.h"
#include "query/typed_tokens.h"

namespace tabelion {
namespace {

bool isZero(ByteView bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](std::uint8_t byte) { return byte == 0; });
}

template <class Number>
CellText numberCell(Number number, CellScratch& scratch) {
  const auto end =
      std::to_chars(scratch.digits.data(), scratch.digits.data() + scratch.digits.size(), number);
  return {{scratch.digits.data(), static_cast<std::size_t>(end.ptr - scratch.digits.data())}};
}

char* putTwoDigits(char* at, unsigned number) {
  at[0] = static_cast<char>('0' + number / 10);
  at[1] = static_cast<char>('0' + number % 10);
  return at + 2;
}

CellText dateCell(std::uint32_t days, CellScratch& scratch) {
  if (days == 0) return {};
  const CalendarDate date = dateOfDayCount(days);
  char* at = scratch.digits.data();
  if (date.year <= kLastYear) {
    at = putTwoDigits(at, static_cast<unsigned>(date.year / 100));
    at = putTwoDigits(at, static_cast<unsigned>(date.year % 100));
  } else {
    at = std::to_chars(at, at + 16, date.year).ptr;
  }
  *at++ = '-';
  at = putTwoDigits(at, static_cast<unsigned>(date.month));
  *at++ = '-';
  at = putTwoDigits(at, static_cast<unsigned>(date.day));
  return {{scratch.digits.data(), static_cast<std::size_t>(at - scratch.digits.data())}};
}

CellText timeCell(ByteView stored, CellScratch& scratch) {
  std::array<std::uint8_t, 3> parts{};
  std::copy_n(stored.begin(), std::min(stored.size(), parts.size()), parts.begin());
  if (parts[2] == kNoTimeHour) return {};
  char* at = scratch.digits.data();
  for (const std::size_t part : {2, 1, 0}) {
    if (part != 2) *at++ = ':';
    const unsigned number = parts[part];
    at = number < 100 ? putTwoDigits(at, number) : std::to_chars(at, at + 3, number).ptr;
  }
  return {{scratch.digits.data(), static_cast<std::size_t>(at - scratch.digits.data())}};
}

// Numbers are stored as text, with a comma where that was the setting.
CellText numberTextCell(std::string_view stored, CellScratch& scratch) {
  const bool plain = isDecimalNumber(stored);
  if (!plain && stored.find(',') != std::string_view::npos) {
    scratch.text.assign(stored);
    std::replace(scratch.text.begin(), scratch.text.end(), ',', '.');
    if (isDecimalNumber(scratch.text)) return {scratch.text};
  }
  return {stored, plain, plain};
}

CellText popupCell(const PopupNames& popups, ByteView stored, CellScratch& scratch) {
  std::array<std::uint8_t, kPopupKeySize> padded{};
  if (stored.size() < padded.size()) {
    std::copy(stored.begin(), stored.end(), padded.begin());
    stored = padded;
  }
  if (const std::string* name = popups.nameOf(stored)) return {*name, false};
  if (isZero(stored)) return {};
  scratch.text.assign(1, '?');
  scratch.text.append(toHex(stored));
  return {scratch.text};
}

CellText linkCell(bool is_key, ByteView stored, CellScratch& scratch) {
  const bool is_empty = stored.size() <= kLinkHeadSize;
  if (!is_key) {
    if (is_empty) return {};
    return {storedText(stored.subspan(kLinkHeadSize)), false, false};
  }
  const std::uint32_t key = numberOfValue(stored);
  if (is_empty && key == 0) return {};
  return numberCell(key, scratch);
}

// Digits alone; -1 when there is anything else, or nothing.
int parseDigits(std::string_view text) {
  int number = text.empty() ? -1 : 0;
  for (const char c : text) {
    if (!isDigit(c)) return -1;
    number = number * 10 + (c - '0');
  }
  return number;
}

template <class... Parts>
Error refused(fmt::format_string<Parts...> sentence, Parts&&... parts) {
  return makeError(ErrorKind::kInvalid, fmt::format(sentence, std::forward<Parts>(parts)...));
}

void putLe32(Bytes& value, std::uint32_t number) {
  value.resize(value.size() + 4);
  storeLe32(&value[value.size() - 4], number);
}

Status putDate(const CalendarDate& date, std::string_view text, Bytes& value) {
  if (date.year < kFirstYear) return refused("\"{}\" lies before {}", text, kFirstYear);
  const bool in_range = date.month >= 1 && date.month <= 12 && date.day >= 1;
  const std::uint32_t days = in_range ? daysSince1904(date.month, date.day, date.year) : 0;
  if (!in_range || dateOfDayCount(days) != date) {
    return refused("\"{}\" is not a day of the calendar", text);
  }
  if (days == 0) return refused("\"{}\" is what a date without a value is kept as", text);
  putLe32(value, days);
  return Done{};
}

// Three numbers in the order of the format, the year whole.
std::optional<CalendarDate> dateInForm(std::string_view text, const FormatSettings& formats) {
  std::size_t longest = 0;
  std::size_t digits = 0;
  for (const char c : text) {
    digits = isDigit(c) ? digits + 1 : 0;
    longest = std::max(longest, digits);
  }
  return longest == 4 ? exactDateOfText(text, formats) : std::nullopt;
}

Status readDate(std::string_view text, const FormatSettings* formats, Bytes& value) {
  if (formats != nullptr) {
    if (const auto date = dateInForm(text, *formats)) return putDate(*date, text, value);
  }
  const bool shaped = text.size() == 10 && text[4] == '-' && text[7] == '-';
  CalendarDate date;
  date.year = shaped ? parseDigits(text.substr(0, 4)) : -1;
  date.month = shaped ? parseDigits(text.substr(5, 2)) : -1;
  date.day = shaped ? parseDigits(text.substr(8, 2)) : -1;
  if (date.year < 0 || date.month < 0 || date.day < 0) {
    std::string example = "2024-03-31";
    if (formats != nullptr) {
      example.clear();
      appendDate(example, CalendarDate{3, 31, 2024}, formats->edit_date);
    }
    return refused("\"{}\" is not a date like {}", text, example);
  }
  return putDate(date, text, value);
}

Status readTime(std::string_view text, Bytes& value) {
  const bool has_seconds = text.size() == 8 && text[5] == ':';
  const bool shaped = (text.size() == 5 || has_seconds) && text[2] == ':';
  const int hour = shaped ? parseDigits(text.substr(0, 2)) : -1;
  const int minute = shaped ? parseDigits(text.substr(3, 2)) : -1;
  const int second = has_seconds ? parseDigits(text.substr(6, 2)) : 0;
  if (hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59) {
    return refused("\"{}\" is not a time like 17:05 or 17:05:09", text);
  }
  for (const int part : {second, minute, hour, 0}) {
    value.push_back(static_cast<std::uint8_t>(part));
  }
  return Done{};
}

Status readPopup(const PopupNames& popups, std::string_view text, Bytes& value) {
  const ItemKey* key = popups.keyOf(text);
  if (key == nullptr) key = popups.keyOf(text = withoutBlanks(text));
  if (key != nullptr) {
    value.insert(value.end(), key->begin(), key->begin() + kPopupKeySize);
    return Done{};
  }
  if (text.empty()) {
    value.resize(value.size() + kPopupKeySize);
    return Done{};
  }
  const auto bytes = text[0] == '?' ? fromHex(text.substr(1)) : std::nullopt;
  if (!bytes || bytes->size() > kPopupKeySize) {
    return refused("\"{}\" is not an item of the list", text);
  }
  value.insert(value.end(), bytes->begin(), bytes->end());
  return Done{};
}

Status readNumberText(std::string_view text, bool calculated, Bytes& value) {
  if (!isDecimalNumber(text) && !(calculated && text == "Error!")) {
    return refused("\"{}\" is not a number", text);
  }
  if (text.size() >= kNumberTextSize) {
    return refused("\"{}\" is longer than the {} characters of a number", text,
                   kNumberTextSize - 1);
  }
  value.insert(value.end(), text.begin(), text.end());
  value.push_back(0);
  return Done{};
}

// The text and its NUL; `most` is the longest text that the field takes.
Status readText(const TextEncoding& encoding, std::string_view text, std::size_t most,
                Bytes& value) {
  const std::size_t begin = value.size();
  if (const auto fault = encoding.appendFromUtf8(value, text)) {
    return refused("{}", describeFault(*fault, encoding));
  }
  const std::size_t size = value.size() - begin;
  if (size > most) return refused("the text takes {} bytes; the field holds {}", size, most);
  if (size > 0 && std::memchr(value.data() + begin, 0, size))
    return refused("the text holds a NUL");
  value.push_back(0);
  return Done{};
}

Status readExternal(std::string_view text, std::size_t size, Bytes& value) {
  const auto bytes = fromHex(text);
  if (!bytes || bytes->size() > size) {
    return refused("must be hexadecimal digits of at most {} bytes", size);
  }
  value.insert(value.end(), bytes->begin(), bytes->end());
  return Done{};
}

// A text is what stands there, blanks and all.
bool keepsBlanks(ValueForm form) {
  return form == ValueForm::kText || form == ValueForm::kNote || form == ValueForm::kLookup ||
         form == ValueForm::kPopupKey;
}

}  // namespace

CellText cellText(const TableColumn& column, const PopupNames& popups, ByteView stored,
                  CellScratch& scratch) {
  if (stored.empty()) return {};
  switch (traitsOf(column.type).form) {
    case ValueForm::kInteger:
      return numberCell(static_cast<std::int32_t>(numberOfValue(stored)), scratch);
    case ValueForm::kKey:
      return numberCell(numberOfValue(stored), scratch);
    case ValueForm::kNumberText:
    case ValueForm::kResult:
      return numberTextCell(storedText(stored), scratch);
    case ValueForm::kPopupKey:
      return popupCell(popups, stored, scratch);
    case ValueForm::kFlag:
      return {stored[0] != 0 ? "1" : "0"};
    case ValueForm::kDays:
      return dateCell(numberOfValue(stored), scratch);
    case ValueForm::kClock:
      return timeCell(stored, scratch);
    case ValueForm::kLink:
      return linkCell(column.is_link_key, stored, scratch);
    case ValueForm::kBlock:
      if (isZero(stored)) return {};
      scratch.text = toHex(stored);
      return {scratch.text};
    case ValueForm::kNone:
    case ValueForm::kText:
    case ValueForm::kNote:
    case ValueForm::kLookup:
      break;
  }
  return {storedText(stored), false, false};
}

std::optional<std::uint32_t> parseAutoNumber(std::string_view text, FieldType type) {
  if (type == FieldType::kLinkedField) return wholeNumber<std::uint32_t>(text);
  const auto number = wholeNumber<std::int32_t>(text);
  if (!number) return std::nullopt;
  return static_cast<std::uint32_t>(*number);
}

Status readLinkCells(const TextEncoding& encoding, std::string_view text, std::string_view key,
                     Bytes& value) {
  if (text.empty() && key.empty()) return Done{};
  const auto number =
      key.empty() ? std::optional<std::uint32_t>(0) : wholeNumber<std::uint32_t>(key);
  if (!number) return refused("\"{}\" is not the number of a record", key);
  putLe32(value, *number);
  value.resize(value.size() + kLinkHeadSize - 4);
  return readText(encoding, text, kLinkSize - kLinkHeadSize - 1, value);
}

Status readCell(const CellReader& reader, std::string_view text, Bytes& value) {
  const FieldType type = reader.column.type;
  if (!keepsBlanks(traitsOf(type).form)) text = withoutBlanks(text);
  if (text.empty()) return Done{};
  switch (traitsOf(type).form) {
    case ValueForm::kInteger:
    case ValueForm::kKey: {
      const auto number = parseAutoNumber(text, type);
      if (!number) return refused("\"{}\" is not a whole number of 32 bits", text);
      putLe32(value, *number);
      return Done{};
    }
    case ValueForm::kNumberText:
    case ValueForm::kResult:
      return readNumberText(text, type == FieldType::kCalculated, value);
    case ValueForm::kPopupKey:
      return readPopup(reader.popups, text, value);
    case ValueForm::kFlag: {
      const auto is_checked = checkOfText(text);
      if (!is_checked) return refused("\"{}\" is not 0 or 1, yes or no", text);
      value.push_back(*is_checked ? 1 : 0);
      return Done{};
    }
    case ValueForm::kDays:
      return readDate(text, reader.dates, value);
    case ValueForm::kClock:
      return readTime(text, value);
    case ValueForm::kBlock:
      return readExternal(text, fieldValueSize(reader.field), value);
    case ValueForm::kNone:
    case ValueForm::kText:
    case ValueForm::kNote:
    case ValueForm::kLink:
    case ValueForm::kLookup:
      break;
  }
  return readText(reader.encoding, text, fieldValueSize(reader.field) - 1, value);
}

bool isDecimalNumber(std::string_view text) {
  std::size_t i = 0;
  const auto digits = [&] {
    const std::size_t begin = i;
    while (i < text.size() && isDigit(text[i])) ++i;
    return i - begin;
  };
  if (i < text.size() && (text[i] == '-' || text[i] == '+')) ++i;
  std::size_t count = digits();
  if (i < text.size() && text[i] == '.') {
    ++i;
    count += digits();
  }
  if (count == 0) return false;
  if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
    ++i;
    if (i < text.size() && (text[i] == '-' || text[i] == '+')) ++i;
    if (digits() == 0) return false;
  }
  return i == text.size();
}

}  // namespace tabelion
