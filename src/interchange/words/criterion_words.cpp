#include "interchange/words/criterion_words.h"

#include <algorithm>

#include <fmt/format.h>

#include "engine/ascii.h"
#include "interchange/hex.h"
#include "interchange/table_columns.h"
#include "query/date_range.h"
#include "query/number_text.h"

namespace tabelion {
namespace {

std::string inQuotes(std::string_view text) {
  std::string result(1, '"');
  for (const char c : text) {
    if (c == '"') result += c;
    result += c;
  }
  return result + '"';
}

// A bound that only "greater" or "less" can have made of a shorter number reads as these.
std::string openWords(const std::string& bound, bool is_low) {
  const auto next = nextNumber(bound, !is_low);
  if (next && next->size() + 4 <= bound.size()) return (is_low ? "> " : "< ") + *next;
  return (is_low ? ">= " : "<= ") + bound;
}

std::string numberRangeWords(const FilterBlock& criterion, const FormatSettings& formats) {
  const auto [low, high] = storedNumbers(criterion);
  std::string words;
  if (low == high) {
    words = "= " + low;
  } else if (low == kBelowAllNumbers) {
    words = openWords(high, false);
  } else if (high == kAboveAllNumbers) {
    words = openWords(low, true);
  } else {
    words = fmt::format("between {} and {}", low, high);
  }
  if (formats.choices.decimal_comma) std::replace(words.begin(), words.end(), '.', ',');
  return words;
}

std::string itemWords(const Database& database, const TextEncoding& encoding,
                      const FilterBlock& criterion) {
  const PopupNames names(database.fields[criterion.field], encoding);
  const ByteView key = ByteView(criterion.value1).first(kPopupKeySize);
  if (const std::string* name = names.nameOf(key)) return "is " + inQuotes(*name);
  const bool is_empty = std::all_of(key.begin(), key.end(), [](auto byte) { return byte == 0; });
  return is_empty ? "is empty" : "is ?" + toHex(key);
}

std::string wholeRangeWords(CriterionKind kind, const WholeRange& range,
                            const FormatSettings& formats) {
  const WholeRange all = allValues(kind);
  const bool is_duration = kind == CriterionKind::kDuration;
  const bool is_date = kind == CriterionKind::kDate || kind == CriterionKind::kDays;
  if (is_date && range == WholeRange{0, 0}) return "is empty";
  if (kind == CriterionKind::kTime && range.low >= kNoTimeSeconds) return "is empty";
  const std::string low = wholeText(kind, range.low, formats);
  const std::string high = wholeText(kind, range.high, formats);
  if (range.low == range.high) return "= " + low;
  if (!is_duration && range.low == all.low) return "<= " + high;
  if (!is_duration && range.high == all.high) return ">= " + low;
  return fmt::format("between {} and {}", low, high);
}

std::string namedRangeWords(const FilterBlock& criterion) {
  std::string name(kDateRangeNames[criterion.number1]);
  if (dateRangeHasX(static_cast<int>(criterion.number1))) {
    name.replace(name.find('X'), 1, std::to_string(static_cast<std::int32_t>(criterion.number2)));
  }
  return "is " + name;
}

CriterionTexts numberTexts(const NumberRange& range, const FormatSettings& formats) {
  CriterionTexts texts{range.low == kBelowAllNumbers ? "" : range.low,
                       range.high == kAboveAllNumbers ? "" : range.high};
  if (!formats.choices.decimal_comma) return texts;
  std::replace(texts.first.begin(), texts.first.end(), '.', ',');
  std::replace(texts.second.begin(), texts.second.end(), '.', ',');
  return texts;
}

std::optional<TypedFault> storeText(const TextEncoding& encoding, const std::string& text,
                                    FilterBlock& criterion) {
  const Encoded encoded = encoding.fromUtf8(text);
  if (!encoded.ok()) return TypedFault{false, describeFault(*encoded.fault, encoding)};
  if (setAreaText(criterion.value1, encoded.bytes)) return std::nullopt;
  return TypedFault{false,
                    fmt::format("the text is longer than {} bytes", criterion.value1.size() - 1)};
}

TypedFault notAValue(CriterionKind kind, bool in_second, const CriterionTexts& typed,
                     const FormatSettings& formats) {
  // A range of dates is chosen from a list, not typed.
  if (kind == CriterionKind::kDate) kind = CriterionKind::kDays;
  return {in_second, fmt::format("\"{}\" is not {}", in_second ? typed.second : typed.first,
                                 expectedValue(kind, formats))};
}

TypedFault nothingBetween(const CriterionTexts& typed) {
  return {true, fmt::format("nothing lies between {} and {}", typed.first, typed.second)};
}

std::optional<TypedFault> storeTypedNumbers(const CriterionTexts& typed,
                                            const FormatSettings& formats, FilterBlock& criterion) {
  NumberRange range;
  for (const bool in_second : {false, true}) {
    const std::string& text = in_second ? typed.second : typed.first;
    if (text.empty()) continue;
    const auto number = numberOfWords(text, formats);
    if (!number) return notAValue(CriterionKind::kNumber, in_second, typed, formats);
    (in_second ? range.high : range.low) = *number;
  }
  if (numberOfText(range.low, false) > numberOfText(range.high, false)) {
    return nothingBetween(typed);
  }
  storeNumbers(range, criterion);
  return std::nullopt;
}

std::optional<TypedFault> storeTypedWholes(CriterionKind kind, const CriterionTexts& typed,
                                           const FormatSettings& formats, FilterBlock& criterion) {
  WholeRange range = allValues(kind);
  for (const bool in_second : {false, true}) {
    const std::string& text = in_second ? typed.second : typed.first;
    if (text.empty()) continue;
    const auto value = wholeOfText(kind, text, formats);
    if (!value) return notAValue(kind, in_second, typed, formats);
    (in_second ? range.high : range.low) = *value;
  }
  if (range.low > range.high) return nothingBetween(typed);
  storeRange(kind, range, criterion);
  return std::nullopt;
}

}  // namespace
std::string fieldWords(const Database& database, const TextEncoding& encoding, int slot) {
  std::string name = fmt::format("field {}", slot);
  for (const TableColumn& column : tableColumns(database.schema, encoding)) {
    if (column.slot == slot && !column.is_link_key) name = column.name;
  }
  const bool is_plain = std::all_of(name.begin(), name.end(), [](char c) {
    return static_cast<unsigned char>(c) >= 0x80 || isDigit(c) || isLetter(c) || c == '.' ||
           c == '-' || c == '_';
  });
  return is_plain ? name : inQuotes(name);
}

std::string criterionWords(const Database& database, const TextEncoding& encoding,
                           const FilterBlock& criterion, const FormatSettings& formats) {
  if (criterion.field >= kFieldSlots) return "is anything";
  const CriterionKind kind = criterionKind(database.schema.fields[criterion.field]);
  switch (kind) {
    case CriterionKind::kNothing:
      return "is anything";
    case CriterionKind::kText: {
      const std::string text = areaText(criterion.value1);
      return text.empty() ? "is empty" : "contains " + inQuotes(encoding.toUtf8(text));
    }
    case CriterionKind::kItem:
      return itemWords(database, encoding, criterion);
    case CriterionKind::kCheckBox:
      if (criterion.number1 == 1) return "is checked";
      return criterion.number1 == 0 ? "is unchecked" : fmt::format("is {}", criterion.number1);
    case CriterionKind::kNumber:
      return numberRangeWords(criterion, formats);
    case CriterionKind::kDate:
      if (criterion.number1 != kCustomDateRange && criterion.number1 < kDateRangeNames.size()) {
        return namedRangeWords(criterion);
      }
      break;
    default:
      break;
  }
  return wholeRangeWords(kind, storedRange(kind, criterion), formats);
}

CriterionTexts criterionTexts(CriterionKind kind, const TextEncoding& encoding,
                              const FilterBlock& criterion, const FormatSettings& formats) {
  switch (kind) {
    case CriterionKind::kNothing:
    case CriterionKind::kItem:
    case CriterionKind::kCheckBox:
      return {};
    case CriterionKind::kText:
      return {encoding.toUtf8(areaText(criterion.value1)), {}};
    case CriterionKind::kNumber:
      return numberTexts(storedNumbers(criterion), formats);
    case CriterionKind::kDate:
      if (criterion.number1 != kCustomDateRange) return {};
      break;
    default:
      break;
  }
  const WholeRange range = storedRange(kind, criterion);
  const WholeRange all = allValues(kind);
  return {range.low == all.low ? "" : wholeText(kind, range.low, formats),
          range.high == all.high ? "" : wholeText(kind, range.high, formats)};
}

std::optional<TypedFault> storeCriterionTexts(CriterionKind kind, const TextEncoding& encoding,
                                              const CriterionTexts& typed,
                                              const FormatSettings& formats,
                                              FilterBlock& criterion) {
  switch (kind) {
    case CriterionKind::kNothing:
    case CriterionKind::kItem:
    case CriterionKind::kCheckBox:
      return std::nullopt;
    case CriterionKind::kText:
      return storeText(encoding, typed.first, criterion);
    case CriterionKind::kNumber:
      return storeTypedNumbers(typed, formats, criterion);
    default:
      return storeTypedWholes(kind, typed, formats, criterion);
  }
}

}  // namespace tabelion
