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
  void putByte(std::uint8_t byte) { *room(1) = byte; }
  void putText(std::string_view text, bool forward);
  void putNumber(std::uint64_t number, std::size_t bytes, bool forward);
  std::uint8_t* room(std::size_t bytes);
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
  // The key being made, and behind it room for what is written eight bytes at a time.
  Bytes key_;
  std::size_t length_ = 0;
};

namespace {

constexpr std::size_t kWord = sizeof(std::uint64_t);
constexpr std::uint64_t kSignBit = std::uint64_t{1} << 63;
constexpr std::size_t kWordsInElement = 2;
constexpr std::size_t kLikelyWords = 8;  // of a key

std::uint64_t loadBe64(const std::uint8_t* at) {
  return static_cast<std::uint64_t>(loadBe32(at)) << 32 | loadBe32(at + 4);
}
std::uint64_t loadLe64(const std::uint8_t* at) {
  return static_cast<std::uint64_t>(loadLe32(at + 4)) << 32 | loadLe32(at);
}
void storeLe64(std::uint8_t* at, std::uint64_t value) {
  storeLe32(at, static_cast<std::uint32_t>(value));
  storeLe32(at + 4, static_cast<std::uint32_t>(value >> 32));
}

// Eight characters, fewer and zeros where the text ends. Put together in a register: bytes that are
// stored one by one and loaded as a word cost more than all the rest of a key.
std::uint64_t wordOfText(std::string_view text, std::size_t at) {
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
  const std::size_t left = text.size() - at;
  if (left >= kWord) return loadLe64(bytes + at);
  if (left == 0) return 0;
  if (text.size() >= kWord) return loadLe64(bytes + text.size() - kWord) >> 8 * (kWord - left);
  std::uint64_t word = 0;
  for (std::size_t i = text.size(); i > 0; --i) word = word << 8 | bytes[i - 1];
  return word;
}

// Eight characters with their capital letters made small, all at once: in a byte below 128 the
// sums reach its top bit from 'A' and from behind 'Z' on.
std::uint64_t lowerCaseWord(std::uint64_t word) {
  constexpr std::uint64_t kEach = 0x0101010101010101u;
  constexpr std::uint64_t kTopBits = 0x80 * kEach;
  const std::uint64_t low = word & ~kTopBits;
  const std::uint64_t from_a = low + (0x80 - 'A') * kEach;
  const std::uint64_t behind_z = low + (0x7F - 'Z') * kEach;
  const std::uint64_t capitals = (from_a ^ behind_z) & ~word & kTopBits;
  return word | capitals >> 2;
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
  keys.words_.reserve(count * kLikelyWords);
  keys.words_ = {0, SortKeys::kMissing};  // the rests of keys that an element holds whole
  std::size_t reach = 0;
  for (const SortLevel& level : levels_) {
    if (count > 0) reach = std::max(reach, slotEnd(records_[0].bytes(), level.slot()));
  }
  for (std::uint32_t i = 0; i < count; ++i) {
    records_.fetchAhead(i, reach);
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
  length_ = 0;
  missing_ = false;
  const SortValues values = sortValues(record, levels_);
  for (std::size_t i = 0; i < levels_.size() && !missing_; ++i) {
    const SortOperand operand = levels_[i].operandOf(values[i]);
    missing_ = operand.missing;
    if (marks_missing_) putByte(missing_ ? 0 : 1);
    if (!missing_) putLevel(i, operand);
  }
}

void SortKeyMaker::putLevel(std::size_t level, const SortOperand& operand) {
  const bool forward = levels_[level].forward();
  switch (levels_[level].kind()) {
    case SortKind::kAlwaysEqual:
      return;
    case SortKind::kLink:
      putNumber(operand.empty_link ? 0 : 1, 1, forward);
      if (!operand.empty_link) putText(operand.text, forward);
      return;
    case SortKind::kText:
      putText(operand.text, forward);
      return;
    case SortKind::kInteger:
      noteInteger(level, operand.number);
      putNumber(static_cast<std::uint32_t>(operand.number) ^ 0x80000000u, 4, forward);
      return;
    case SortKind::kNumber: {
      const std::size_t bytes = levels_[level].numberBytes();
      putNumber(static_cast<std::uint64_t>(operand.number) ^ (bytes == kWord ? kSignBit : 0), bytes,
                forward);
      return;
    }
    case SortKind::kReal:
      putNumber(orderedBits(operand.real), kWord, forward);
      return;
  }
}

std::uint8_t* SortKeyMaker::room(std::size_t bytes) {
  if (key_.size() < length_ + bytes + kWord) key_.resize(2 * (length_ + bytes + kWord));
  std::uint8_t* const at = key_.data() + length_;
  length_ += bytes;
  return at;
}

void SortKeyMaker::putText(std::string_view text, bool forward) {
  const std::uint64_t turned = forward ? 0 : ~std::uint64_t{0};
  std::uint8_t* into = room(text.size() + 1);
  for (std::size_t at = 0;; at += kWord, into += kWord) {
    storeLe64(into, lowerCaseWord(wordOfText(text, at)) ^ turned);
    if (text.size() - at < kWord) return;  // that one had the closing 0 in it
  }
}

void SortKeyMaker::putNumber(std::uint64_t number, std::size_t bytes, bool forward) {
  if (!forward) number = ~number;
  number <<= 8 * (kWord - bytes);
  std::uint8_t* const into = room(bytes);
  for (std::size_t i = 0; i < kWord; ++i) {
    into[i] = static_cast<std::uint8_t>(number >> 8 * (kWord - 1 - i));
  }
}

void SortKeyMaker::noteInteger(std::size_t level, std::int64_t value) {
  spans_[level].least = std::min(spans_[level].least, value);
  spans_[level].most = std::max(spans_[level].most, value);
}

SortElement SortKeyMaker::store(SortKeys& keys, std::uint32_t position) {
  const std::size_t words = std::max((length_ + kWord - 1) / kWord, kWordsInElement);
  const std::size_t end = length_;
  std::fill_n(room(words * kWord - end), words * kWord - end, std::uint8_t{0});
  SortElement element;
  element.first = loadBe64(key_.data());
  element.second = loadBe64(key_.data() + kWord);
  element.position = position;
  if (words == kWordsInElement) {
    element.rest = missing_ ? 1 : 0;
    return element;
  }
  element.rest = static_cast<std::uint32_t>(keys.words_.size());
  keys.words_.push_back((words - kWordsInElement) | (missing_ ? SortKeys::kMissing : 0));
  for (std::size_t i = kWordsInElement; i < words; ++i) {
    keys.words_.push_back(loadBe64(&key_[i * kWord]));
  }
  return element;
}

}  // namespace tabelion
