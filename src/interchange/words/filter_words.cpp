#include "interchange/words/filter_words.h"

#include <algorithm>

#include <fmt/format.h>

#include "interchange/cell_text.h"
#include "interchange/hex.h"
#include "interchange/words/criterion_values.h"
#include "query/date_range.h"
#include "query/number_text.h"

namespace tabelion {
namespace {

std::string quoted(std::string_view text) {
  std::string result(1, '"');
  for (const char c : text) {
    if (c == '"') result += c;
    result += c;
  }
  return result + '"';
}

// As an export names it; in quotes unless it is a name of plain words that say nothing else here.
std::string fieldWords(const Database& database, const TextEncoding& encoding, int slot) {
  std::string name = fmt::format("field {}", slot);
  for (const TableColumn& column : tableColumns(database.schema, encoding)) {
    if (column.slot == slot && !column.is_link_key) name = column.name;
  }
  const bool is_plain = std::all_of(name.begin(), name.end(), [](char c) {
    return static_cast<unsigned char>(c) >= 0x80 || (c >= '0' && c <= '9') ||
           (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '.' || c == '-' || c == '_';
  });
  return is_plain ? name : quoted(name);
}

// With a point, as conditions are read, whatever the text of the criterion has.
std::string numberWords(const std::array<std::uint8_t, 40>& area) {
  std::string text = areaText(area);
  std::replace(text.begin(), text.end(), ',', '.');
  if (isDecimalNumber(text)) return text;
  return fmt::format("{}", numberOfText(text, false));
}

std::string numberRangeWords(const FilterBlock& criterion) {
  const std::string low = numberWords(criterion.value1);
  const std::string high = numberWords(criterion.value2);
  if (low == high) return "= " + low;
  if (low == kBelowAllNumbers) return "<= " + high;
  if (high == kAboveAllNumbers) return ">= " + low;
  return fmt::format("between {} and {}", low, high);
}

std::string itemWords(const Database& database, const TextEncoding& encoding,
                      const FilterBlock& criterion) {
  const PopupNames names(database.fields[criterion.field], encoding);
  const ByteView key = ByteView(criterion.value1).first(kPopupKeySize);
  if (const std::string* name = names.nameOf(key)) return "is " + quoted(*name);
  const bool is_empty = std::all_of(key.begin(), key.end(), [](auto byte) { return byte == 0; });
  return is_empty ? "is empty" : "is ?" + toHex(key);
}

std::string wholeRangeWords(CriterionKind kind, const WholeRange& range) {
  const WholeRange all = allValues(kind);
  const bool is_duration = kind == CriterionKind::kDuration;
  const bool is_date = kind == CriterionKind::kDate || kind == CriterionKind::kDays;
  if (is_date && range == WholeRange{0, 0}) return "is empty";
  if (kind == CriterionKind::kTime && range.low >= kNoTimeSeconds) return "is empty";
  const std::string low = wholeText(kind, range.low);
  const std::string high = wholeText(kind, range.high);
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

std::string valueWords(const Database& database, const TextEncoding& encoding,
                       const FilterBlock& criterion) {
  if (criterion.field >= kFieldSlots) return "is anything";
  const CriterionKind kind = criterionKind(database.schema.fields[criterion.field]);
  switch (kind) {
    case CriterionKind::kNothing:
      return "is anything";
    case CriterionKind::kText: {
      const std::string text = areaText(criterion.value1);
      return text.empty() ? "is empty" : "contains " + quoted(encoding.toUtf8(text));
    }
    case CriterionKind::kItem:
      return itemWords(database, encoding, criterion);
    case CriterionKind::kCheckBox:
      if (criterion.number1 == 1) return "is checked";
      return criterion.number1 == 0 ? "is unchecked" : fmt::format("is {}", criterion.number1);
    case CriterionKind::kNumber:
      return numberRangeWords(criterion);
    case CriterionKind::kDate:
      if (criterion.number1 != kCustomDateRange && criterion.number1 < kDateRangeNames.size()) {
        return namedRangeWords(criterion);
      }
      break;
    default:
      break;
  }
  return wholeRangeWords(kind, storedRange(kind, criterion));
}

}  // namespace

std::vector<std::string> wordsOfFilter(const Database& database, const TextEncoding& encoding,
                                       const FilterCriteria& criteria) {
  std::vector<std::string> conditions;
  std::size_t open_groups = 0;
  for (const FilterBlock& criterion : criteria) {
    if (criterion.enabled == 0) continue;
    std::string words;
    if (!conditions.empty()) words = (criterion.mode & kFilterOr) != 0 ? "or " : "and ";
    if ((criterion.grouping & kFilterOpens) != 0) {
      words += '(';
      ++open_groups;
    }
    if ((criterion.mode & kFilterNot) != 0) words += "not ";
    words += fieldWords(database, encoding, criterion.field);
    words += ' ' + valueWords(database, encoding, criterion);
    // A bracket that closes nothing does nothing.
    if ((criterion.grouping & kFilterCloses) != 0 && open_groups > 0) {
      words += ')';
      --open_groups;
    }
    conditions.push_back(std::move(words));
  }
  // What is left open runs to the end.
  if (!conditions.empty()) conditions.back().append(open_groups, ')');
  return conditions;
}

}  // namespace tabelion
