// Conditions in words, taken apart: joins, groups and fields.
#include <algorithm>
#include <optional>

#include <fmt/format.h>

#include "interchange/words/criterion_parser.h"
#include "interchange/words/criterion_values.h"
#include "interchange/words/field_choice.h"
#include "interchange/words/filter_words.h"

namespace tabelion {
namespace {

class FilterParser {
 public:
  FilterParser(const Database& database, const TextEncoding& encoding)
      : database_(database), encoding_(encoding), names_(database, encoding) {}

  // One text with one condition or more.
  Status read(std::string_view text, bool is_last);

  FilterCriteria criteria() const {
    FilterCriteria criteria;
    std::copy(criteria_.begin(), criteria_.end(), criteria.begin());
    return criteria;
  }

 private:
  void readCondition(WordReader& words, bool is_first, bool is_last);
  void readOpening(WordReader& words, bool is_first, FilterBlock& criterion);
  std::optional<int> readField(WordReader& words) const;
  bool isConditionAhead(WordReader words) const;
  bool isComparedFieldAhead(WordReader words) const;
  std::size_t endOfCondition(const WordReader& words) const;
  void failOnField(WordReader& words) const;
  std::size_t closeGroups(WordReader& words, bool is_last, FilterBlock& criterion);

  const Database& database_;
  const TextEncoding& encoding_;
  const FieldNames names_;
  std::vector<FilterBlock> criteria_;
  std::size_t open_groups_ = 0;
};

// The longest start that is a field's name.
std::optional<int> FilterParser::readField(WordReader& words) const {
  if (const auto quoted = words.readQuoted()) return names_.find(*quoted);
  words.skipBlanks();
  const std::size_t begin = words.at();
  for (const std::size_t length : names_.lengths()) {
    const std::size_t end = begin + length;
    if (length == 0 || end > words.end() || !words.isWordEnd(end)) continue;
    if (words.text()[end - 1] == ' ') continue;
    if (const auto slot = names_.find(words.text().substr(begin, length))) {
      words.seek(end);
      return slot;
    }
  }
  return std::nullopt;
}

bool FilterParser::isComparedFieldAhead(WordReader words) const {
  return readField(words) && readOperator(words);
}

bool FilterParser::isConditionAhead(WordReader words) const {
  if (isComparedFieldAhead(words)) return true;
  words.readSign('(');
  words.readWords("not");
  return isComparedFieldAhead(words);
}

// Where the "and" or "or" of the next condition stands. Texts in quotes are passed over.
std::size_t FilterParser::endOfCondition(const WordReader& words) const {
  WordReader ahead = words;
  while (!ahead.isDone()) {
    const std::size_t begin = ahead.at();
    if ((ahead.readWords("and") || ahead.readWords("or")) && isConditionAhead(ahead)) return begin;
    ahead.seek(begin);
    if (!ahead.readQuoted()) ahead.readToken();
  }
  return words.end();
}

// "and", "or", "(" and "not", unless a field is called so.
void FilterParser::readOpening(WordReader& words, bool is_first, FilterBlock& criterion) {
  const std::size_t begin = words.at();
  bool is_joined = false;
  if (!isComparedFieldAhead(words)) {
    if (words.readWords("or")) {
      is_joined = true;
      criterion.mode |= kFilterOr;
    } else {
      is_joined = words.readWords("and");
    }
  }
  if (is_joined && criteria_.empty()) words.fail(begin, "there is no condition before this one");
  if (!is_joined && !is_first) {
    words.seek(begin);
    return words.expected("\"and\" or \"or\"");
  }
  if (words.readSign('(')) {
    criterion.grouping |= kFilterOpens;
    ++open_groups_;
  }
  if (!isComparedFieldAhead(words) && words.readWords("not")) criterion.mode |= kFilterNot;
  if (!words.readSign('(')) return;
  words.fail(words.at() - 1, (criterion.mode & kFilterNot) != 0
                                 ? "\"not\" turns one condition round, not a group"
                                 : "one group at most starts at a condition");
}

void FilterParser::failOnField(WordReader& words) const {
  words.skipBlanks();
  const std::size_t begin = words.at();
  std::size_t end = begin;
  for (WordReader ahead = words; !ahead.isDone() && !readOperator(ahead); ahead.readToken()) {
    end = std::min(ahead.text().find(' ', ahead.at()), ahead.end());
  }
  const auto choice = names_.choose(words.text().substr(begin, end - begin));
  if (end == begin || choice.ok()) return words.expected("the name of a field");
  words.fail(begin, choice.error().text);
}

// Takes the closing brackets off the end of a condition, of which the last may have several, and
// returns where its value ends.
std::size_t FilterParser::closeGroups(WordReader& words, bool is_last, FilterBlock& criterion) {
  std::size_t end = words.at() + words.rest().size();
  const std::size_t most = is_last ? open_groups_ : std::min<std::size_t>(open_groups_, 1);
  for (std::size_t closed = 0; closed < most; ++closed) {
    if (end <= words.at() || words.text()[end - 1] != ')') break;
    criterion.grouping |= kFilterCloses;
    --open_groups_;
    --end;
    while (end > words.at() && words.text()[end - 1] == ' ') --end;
  }
  return end;
}

void FilterParser::readCondition(WordReader& words, bool is_first, bool is_last) {
  FilterBlock criterion;
  criterion.enabled = 1;
  const std::size_t begin = words.at();
  readOpening(words, is_first, criterion);
  if (words.error()) return;
  words.skipBlanks();
  const std::size_t field_at = words.at();
  const auto slot = readField(words);
  if (!slot) {
    words.seek(field_at);
    return failOnField(words);
  }
  criterion.field = static_cast<std::uint16_t>(*slot);
  const FieldDefinition& field = database_.schema.fields[criterion.field];
  if (criterionKind(field) == CriterionKind::kNothing) {
    return words.fail(field_at, fmt::format("records cannot be filtered by a field of type {}",
                                            traitsOf(field.type).name));
  }
  if (criteria_.size() == kFilterCriteria) {
    return words.fail(begin, fmt::format("a filter has at most {} conditions", kFilterCriteria));
  }
  const std::size_t end_of_text = words.end();
  const std::size_t end = endOfCondition(words);
  words.endAt(end);
  words.skipBlanks();
  words.endAt(closeGroups(words, is_last && end == end_of_text, criterion));
  readCriterionValue(words, database_, encoding_, criterion);
  words.endAt(end_of_text);
  words.seek(end);
  criteria_.push_back(criterion);
}

Status FilterParser::read(std::string_view text, bool is_last) {
  WordReader words(text);
  words.skipBlanks();
  if (words.isDone()) words.expected("a condition");
  // The first condition of a text needs no "and".
  bool is_first = true;
  while (!words.error() && (is_first || !words.isDone())) {
    readCondition(words, is_first, is_last);
    is_first = false;
  }
  if (is_last && open_groups_ > 0) {
    words.fail(text.size(), "\")\" is expected: a group has no end");
  }
  if (words.error()) return *words.error();
  return Done{};
}

}  // namespace

Result<FilterCriteria> filterOfWords(const Database& database, const TextEncoding& encoding,
                                     const std::vector<std::string>& conditions) {
  FilterParser parser(database, encoding);
  for (const std::string& text : conditions) {
    const Status read = parser.read(text, &text == &conditions.back());
    if (!read.ok()) return read.error();
  }
  return parser.criteria();
}

}  // namespace tabelion
