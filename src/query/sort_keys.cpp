#include "query/sort_keys.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "engine/bytes.h"
#include "query/text_case.h"

namespace tabelion {

// Makes the keys in one pass over the records.
class SortKeyMaker {
 public:
  SortKeyMaker(const RecordStore& records, const std::vector<SortLevel>& levels, bool marks_missing)
      : records_(records), levels_(levels), marks_missing_(marks_missing) {}

  // False when a field is missing and that was not reckoned with.
  bool run(SortKeys& keys);
  bool hasOrder() const { return has_order_; }

 private:
  void putRecord(ByteView record);
  void putLevel(std::size_t level, const SortOperand& operand);
  void putText(std::string_view text, std::uint8_t turned);
  void putNumber(std::uint64_t number, std::size_t bytes, bool forward);
  void noteInteger(std::size_t level, std::int64_t value);
  SortElement store(SortKeys& keys, std::uint32_t position);

  const RecordStore& records_;
  const std::vector<SortLevel>& levels_;
  bool marks_missing_;
  bool missing_ = false;  // in the key being made
  bool has_order_ = true;
  struct Span {
    std::int64_t least = std::numeric_limits<std::int64_t>::max();
    std::int64_t most = std::numeric_limits<std::int64_t>::min();
  };
  std::array<Span, kSortLevels> spans_;  // of the integers of each level
  Bytes key_;
};

namespace {

constexpr std::size_t kWord = sizeof(std::uint64_t);
constexpr std::uint64_t kSignBit = std::uint64_t{1} << 63;
constexpr std::uint32_t kReadAhead = 8;  // records

std::uint64_t loadWord(const std::uint8_t* at) {
  return static_cast<std::uint64_t>(loadBe32(at)) << 32 | loadBe32(at + 4);
}

std::uint64_t orderedBits(double value) {
  value += 0.0;  // a negative zero equals the other one
  std::uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  return (bits & kSignBit) != 0 ? ~bits : bits | kSignBit;
}

}  // namespace

int SortKeys::compareRest(std::uint32_t a, std::uint32_t b) const {
  const std::uint64_t head = words_[a];
  const std::uint64_t count = std::min(head & ~kMissing, words_[b] & ~kMissing);
  for (std::uint64_t i = 1; i <= count; ++i) {
    const std::uint64_t left = words_[a + i];
    const std::uint64_t right = words_[b + i];
    if (left != right) return left < right ? -1 : 1;
  }
  return (head & kMissing) != 0 ? -1 : 0;
}

std::optional<SortKeys> SortKeys::make(const RecordStore& records,
                                       const std::vector<SortLevel>& levels) {
  for (const bool marks_missing : {false, true}) {
    SortKeys keys;
    SortKeyMaker maker(records, levels, marks_missing);
    if (!maker.run(keys)) continue;
    if (!maker.hasOrder()) break;
    return keys;
  }
  return std::nullopt;
}

bool SortKeyMaker::run(SortKeys& keys) {
  const std::uint32_t count = records_.count();
  keys.elements_.reserve(count);
  keys.words_ = {0, SortKeys::kMissing};  // the rests of keys of at most eight bytes
  for (std::uint32_t i = 0; i < count; ++i) {
    if (i + kReadAhead < count) __builtin_prefetch(records_[i + kReadAhead].bytes().data());
    putRecord(records_[i].bytes());
    if (missing_ && !marks_missing_) return false;
    keys.elements_.push_back(store(keys, i));
    keys.some_missing_ |= missing_;
  }
  for (const Span& span : spans_) {
    if (span.most > span.least &&
        span.most - span.least > std::numeric_limits<std::int32_t>::max()) {
      has_order_ = false;
    }
  }
  return true;
}

void SortKeyMaker::putRecord(ByteView record) {
  key_.clear();
  missing_ = false;
  const SortValues values = sortValues(record, levels_);
  for (std::size_t i = 0; i < levels_.size() && !missing_; ++i) {
    const SortOperand operand = levels_[i].operandOf(values[i]);
    missing_ = operand.missing;
    if (marks_missing_) key_.push_back(missing_ ? 0 : 1);
    if (!missing_) putLevel(i, operand);
  }
}

void SortKeyMaker::putLevel(std::size_t level, const SortOperand& operand) {
  const bool forward = levels_[level].forward();
  const std::uint8_t turned = forward ? 0 : 0xFF;
  switch (levels_[level].kind()) {
    case SortKind::kAlwaysEqual:
      return;
    case SortKind::kLink:
      key_.push_back((operand.empty_link ? 0 : 1) ^ turned);
      if (!operand.empty_link) putText(operand.text, turned);
      return;
    case SortKind::kText:
      putText(operand.text, turned);
      return;
    case SortKind::kInteger:
      noteInteger(level, operand.number);
      putNumber(static_cast<std::uint32_t>(operand.number) ^ 0x80000000u, 4, forward);
      return;
    case SortKind::kNumber:
      putNumber(static_cast<std::uint64_t>(operand.number) ^
                    (levels_[level].numberBytes() == kWord ? kSignBit : 0),
                levels_[level].numberBytes(), forward);
      return;
    case SortKind::kReal:
      putNumber(orderedBits(operand.real), kWord, forward);
      return;
  }
}

void SortKeyMaker::putText(std::string_view text, std::uint8_t turned) {
  const std::size_t begin = key_.size();
  key_.resize(begin + text.size() + 1);
  std::uint8_t* const into = key_.data() + begin;
  for (std::size_t i = 0; i < text.size(); ++i) {
    into[i] = static_cast<std::uint8_t>(lowerCase(text[i])) ^ turned;
  }
  into[text.size()] = turned;
}

void SortKeyMaker::putNumber(std::uint64_t number, std::size_t bytes, bool forward) {
  if (!forward) number = ~number;
  for (std::size_t i = bytes; i > 0; --i) {
    key_.push_back(static_cast<std::uint8_t>(number >> (i - 1) * 8));
  }
}

void SortKeyMaker::noteInteger(std::size_t level, std::int64_t value) {
  spans_[level].least = std::min(spans_[level].least, value);
  spans_[level].most = std::max(spans_[level].most, value);
}

SortElement SortKeyMaker::store(SortKeys& keys, std::uint32_t position) {
  key_.resize((std::max(key_.size(), kWord) + kWord - 1) / kWord * kWord);
  SortElement element;
  element.first = loadWord(key_.data());
  element.position = position;
  const std::size_t more = key_.size() / kWord - 1;
  if (more == 0) {
    element.rest = missing_ ? 1 : 0;
    return element;
  }
  element.rest = static_cast<std::uint32_t>(keys.words_.size());
  keys.words_.push_back(more | (missing_ ? SortKeys::kMissing : 0));
  for (std::size_t i = 1; i <= more; ++i) keys.words_.push_back(loadWord(&key_[i * kWord]));
  return element;
}

}  // namespace tabelion
