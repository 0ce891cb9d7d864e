#include "interchange/words/criterion_parser.h"

#include <algorithm>

#include <fmt/format.h>

#include "interchange/cell_text.h"
#include "interchange/hex.h"
#include "interchange/words/criterion_values.h"
#include "query/date_range.h"
#include "query/date_text.h"
#include "query/filter.h"
#include "query/near_names.h"
#include "query/number_text.h"
#include "query/text_case.h"
#include "query/time_text.h"
#include "query/typed_tokens.h"

namespace tabelion {
namespace {

enum class Comparison : unsigned char {
  kContains,
  kIs,
  kIsNot,
  kBetween,
  kAtMost,
  kAtLeast,
  kBelow,
  kAbove,
};
struct ComparisonWord {
  std::string_view word;
  Comparison meaning;
};
// The longer ones before those that they start with.
constexpr ComparisonWord kComparisonWords[] = {
    {"contains", Comparison::kContains},
    {"between", Comparison::kBetween},
    {"is between", Comparison::kBetween},
    {"is not in", Comparison::kIsNot},
    {"is not", Comparison::kIsNot},
    {"is in", Comparison::kIs},
    {"is", Comparison::kIs},
    {"in", Comparison::kIs},
    {"<=", Comparison::kAtMost},
    {">=", Comparison::kAtLeast},
    {"!=", Comparison::kIsNot},
    {"=", Comparison::kIs},
    {"<", Comparison::kBelow},
    {">", Comparison::kAbove},
};

std::optional<Comparison> readComparison(WordReader& words) {
  for (const ComparisonWord& known : kComparisonWords) {
    if (words.readWords(known.word)) return known.meaning;
  }
  return std::nullopt;
}

// A key that no item has, as exports write it.
std::optional<Bytes> keyOfHex(std::string_view text) {
  if (!text.starts_with('?')) return std::nullopt;
  auto key = fromHex(text.substr(1));
  return key && key->size() == kPopupKeySize ? key : std::nullopt;
}

class ValueParser {
 public:
  ValueParser(WordReader& words, const Database& database, const TextEncoding& encoding,
              FilterBlock& criterion)
      : words_(words),
        database_(database),
        encoding_(encoding),
        criterion_(criterion),
        kind_(criterionKind(database.schema.fields[criterion.field])) {}

  void read() {
    words_.skipBlanks();
    operator_at_ = words_.at();
    const auto found = readComparison(words_);
    if (!found) {
      return words_.expected("\"contains\", \"is\", \"between\", \"=\", \"<=\" or \">=\"");
    }
    Comparison comparison = *found;
    if (comparison == Comparison::kIsNot) {
      criterion_.mode ^= kFilterNot;
      comparison = Comparison::kIs;
    }
    switch (kind_) {
      case CriterionKind::kText:
        return readText(comparison);
      case CriterionKind::kItem:
        return comparison == Comparison::kIs ? readItem() : refuse("\"is\" and an item");
      case CriterionKind::kCheckBox:
        return comparison == Comparison::kIs ? readCheckBox()
                                             : refuse("\"is checked\" or \"is unchecked\"");
      case CriterionKind::kNumber:
        return readNumbers(comparison);
      default:
        return readWholes(comparison);
    }
  }

 private:
  void refuse(std::string_view what) {
    words_.fail(operator_at_, fmt::format("this field takes {}", what));
  }

  bool isDate() const { return kind_ == CriterionKind::kDate || kind_ == CriterionKind::kDays; }

  // What is left, in quotes or without.
  std::string readAll() {
    if (auto quoted = words_.readQuoted()) return *quoted;
    std::string all(words_.rest());
    words_.seek(words_.end());
    return all;
  }

  void readText(Comparison comparison) {
    if (comparison == Comparison::kIs && words_.readWords("empty")) return;
    if (comparison == Comparison::kIs) {
      return words_.fail(operator_at_,
                         "a filter asks what a text contains, not what all of it is: use "
                         "\"contains\" or \"is empty\"");
    }
    if (comparison != Comparison::kContains) return refuse("\"contains\" or \"is empty\"");
    words_.skipBlanks();
    const std::size_t begin = words_.at();
    const std::string text = readAll();
    if (text.empty()) return words_.fail(begin, "a text is expected; \"is empty\" asks for none");
    const Encoded encoded = encoding_.fromUtf8(text);
    if (!encoded.ok()) return words_.fail(begin, describeFault(*encoded.fault, encoding_));
    if (!setAreaText(criterion_.value1, encoded.bytes)) {
      words_.fail(begin,
                  fmt::format("the text is longer than {} bytes", criterion_.value1.size() - 1));
    }
  }

  // Names are taken as they are written before any case counts. Without an item of such a name
  // "empty" is the value that no item has.
  void readItem() {
    words_.skipBlanks();
    const std::size_t begin = words_.at();
    const std::string text = readAll();
    const FieldRecord& items = database_.fields[criterion_.field];
    const PopupNames names(items, encoding_);
    std::vector<std::string> known;
    ByteView chosen;
    for (const PopupItem& item : items.items) {
      const std::string* name = names.nameOf(item.valueKey());
      if (name == nullptr) continue;
      known.push_back(*name);
      if (*name == text || (chosen.empty() && compareAnyCase(*name, text) == 0)) {
        chosen = item.valueKey();
      }
    }
    if (const auto raw = keyOfHex(text); raw && chosen.empty()) {
      std::copy(raw->begin(), raw->end(), criterion_.value1.begin());
    } else if (!chosen.empty()) {
      std::copy(chosen.begin(), chosen.end(), criterion_.value1.begin());
    } else if (compareAnyCase(text, "empty") != 0) {
      const auto near = nearNames(text, known);
      words_.fail(begin, fmt::format("\"{}\" is not an item of the list{}{}", text,
                                     near.empty() ? "" : "; there is ", alternatives(near)));
    }
  }

  void readCheckBox() {
    if (words_.readWords("unchecked")) return;
    criterion_.number1 = 1;
    if (words_.readWords("checked")) return;
    words_.skipBlanks();
    const std::size_t begin = words_.at();
    const std::string_view byte = words_.readToken();
    criterion_.number1 = static_cast<std::uint32_t>(leadingInteger(byte));
    if (isDigits(byte, 3)) return;
    words_.seek(begin);
    words_.expected(expectedValue(kind_, formats_));
  }

  std::string readNumber() {
    words_.skipBlanks();
    const std::size_t begin = words_.at();
    if (auto number = numberOfWords(words_.readToken(), formats_)) return *number;
    words_.seek(begin);
    words_.expected(expectedValue(kind_, formats_));
    return "0";
  }

  std::string readBeyond(bool upwards) {
    words_.skipBlanks();
    const std::size_t begin = words_.at();
    if (auto next = nextNumber(readNumber(), upwards)) return *next;
    words_.fail(begin, "no value is beyond this one");
    return {};
  }

  void readNumbers(Comparison comparison) {
    NumberRange range;
    switch (comparison) {
      case Comparison::kIs:
        range.low = range.high = readNumber();
        break;
      case Comparison::kAtMost:
        range.high = readNumber();
        break;
      case Comparison::kAtLeast:
        range.low = readNumber();
        break;
      case Comparison::kBelow:
        range.high = readBeyond(false);
        break;
      case Comparison::kAbove:
        range.low = readBeyond(true);
        break;
      case Comparison::kBetween:
        range.low = readNumber();
        if (!words_.readWords("and")) return words_.expected("\"and\"");
        range.high = readNumber();
        break;
      default:
        return refuse("\"between\", \"=\", \"<=\", \">=\", \"<\" or \">\"");
    }
    storeNumbers(range, criterion_);
  }

  std::int64_t readWhole() {
    if (kind_ == CriterionKind::kTime && words_.readWords(kNoTimeText)) return kNoTimeSeconds;
    if (isDate() && words_.readWords(kNoDateText)) return 0;
    words_.skipBlanks();
    const std::size_t begin = words_.at();
    if (const auto value = wholeOfText(kind_, words_.readToken(), formats_)) return *value;
    words_.seek(begin);
    words_.expected(expectedValue(kind_, formats_));
    return 0;
  }

  void readWholes(Comparison comparison) {
    if (comparison == Comparison::kIs && readWithoutValue()) return;
    WholeRange range = allValues(kind_);
    const WholeRange all = range;
    const bool is_open = comparison != Comparison::kIs && comparison != Comparison::kBetween;
    if (comparison == Comparison::kContains || (kind_ == CriterionKind::kDuration && is_open)) {
      return refuse(kind_ == CriterionKind::kDuration
                        ? "\"between\" or \"=\""
                        : "\"between\", \"=\", \"<=\", \">=\", \"<\" or \">\"");
    }
    words_.skipBlanks();
    const std::size_t begin = words_.at();
    const std::int64_t value = readWhole();
    switch (comparison) {
      case Comparison::kBetween:
        if (!words_.readWords("and")) return words_.expected("\"and\"");
        range = {value, readWhole()};
        break;
      case Comparison::kAtMost:
        range.high = value;
        break;
      case Comparison::kAtLeast:
        range.low = value;
        break;
      case Comparison::kBelow:
        range.high = value - 1;
        break;
      case Comparison::kAbove:
        range.low = value + 1;
        break;
      default:
        range = {value, value};
        break;
    }
    if (is_open && (range.high < all.low || range.low > all.high)) {
      return words_.fail(begin, "no value is beyond this one");
    }
    storeRange(kind_, range, criterion_);
  }

  // "empty" and, for dates, the named ranges.
  bool readWithoutValue() {
    const bool is_time = kind_ == CriterionKind::kTime;
    if ((isDate() && (words_.readWords("empty") || words_.readWords("no date"))) ||
        (is_time && (words_.readWords("empty") || words_.readWords("no time")))) {
      if (kind_ == CriterionKind::kDate) criterion_.number1 = kNoDateRange;
      if (is_time) criterion_.value1[2] = kNoTimeHour;
      if (is_time) std::fill_n(criterion_.value2.begin(), 3, kNoTimeHour);
      return true;
    }
    if (kind_ != CriterionKind::kDate) return false;
    for (std::size_t code = kCustomDateRange + 1; code < kDateRangeNames.size(); ++code) {
      const std::size_t begin = words_.at();
      if (readRangeName(kDateRangeNames[code])) {
        criterion_.number1 = static_cast<std::uint32_t>(code);
        return true;
      }
      words_.seek(begin);
    }
    return false;
  }

  // "Last X days" with a number for the X; a single "day" does as well.
  bool readRangeName(std::string_view name) {
    const std::size_t x = name.find(" X ");
    if (x == std::string_view::npos) return words_.readWords(name);
    if (!words_.readWords(name.substr(0, x))) return false;
    const std::string_view number = words_.readToken();
    const std::string_view unit = name.substr(x + 3);
    if (!words_.readWords(unit) && !words_.readWords(unit.substr(0, unit.size() - 1))) return false;
    const auto value = wholeOfText(CriterionKind::kInteger, number, formats_);
    criterion_.number2 = static_cast<std::uint32_t>(value.value_or(0));
    return value.has_value();
  }

  WordReader& words_;
  const Database& database_;
  const TextEncoding& encoding_;
  FilterBlock& criterion_;
  CriterionKind kind_;
  FormatSettings formats_ = isoSettings();
  std::size_t operator_at_ = 0;
};

}  // namespace

bool readOperator(WordReader& words) {
  return readComparison(words).has_value();
}

void readCriterionValue(WordReader& words, const Database& database, const TextEncoding& encoding,
                        FilterBlock& criterion) {
  ValueParser(words, database, encoding, criterion).read();
  if (!words.error() && !words.isDone()) words.expected("the end of the condition");
}

}  // namespace tabelion
