#include "query/sort_level.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "engine/schema_places.h"
#include "query/field_text.h"
#include "query/number_text.h"
#include "query/text_case.h"
#include "query/time_text.h"

namespace tabelion {
namespace {

// By the kind of the result; kinds that there are not have no order.
SortKind kindOfResult(const FieldDefinition& field) {
  switch (resultMeaning(field)) {
    case ResultMeaning::kNumber:
      return SortKind::kReal;
    case ResultMeaning::kWholeNumber:
    case ResultMeaning::kDuration:
    case ResultMeaning::kDate:
      return SortKind::kNumber;
    case ResultMeaning::kUnknown:
      break;
  }
  return SortKind::kAlwaysEqual;
}

SortKind kindOf(const FieldDefinition& field) {
  switch (traitsOf(field.type).form) {
    case ValueForm::kText:
      return SortKind::kText;
    case ValueForm::kInteger:
    case ValueForm::kDays:
      return SortKind::kInteger;
    case ValueForm::kNumberText:
      return SortKind::kReal;
    case ValueForm::kPopupKey:
    case ValueForm::kFlag:
    case ValueForm::kClock:
      return SortKind::kNumber;
    case ValueForm::kLink:
      return SortKind::kLink;
    case ValueForm::kResult:
      return kindOfResult(field);
    case ValueForm::kNone:
    case ValueForm::kNote:
    case ValueForm::kKey:
    case ValueForm::kLookup:
    case ValueForm::kBlock:
      break;
  }
  return SortKind::kAlwaysEqual;
}

std::size_t numberBytesOf(FieldType type) {
  if (type == FieldType::kPopup || type == FieldType::kCheckBox) return 1;
  if (type == FieldType::kTime) return 3;
  return sizeof(std::int64_t);
}

template <class T>
int signOf(const T& a, const T& b) {
  return a < b ? -1 : b < a ? 1 : 0;
}

// Compat: the difference wraps, so that 2000000000 comes before -2000000000
// (Sort.IntegersFarApartOrderTheWrongWayRound).
int wrappingSign(std::int64_t a, std::int64_t b) {
  const auto difference =
      static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
  return signOf(difference, 0);
}

}  // namespace

SortLevel::SortLevel(const Database& database, int slot, bool forward,
                     const FormatSettings& formats)
    : slot_(slot), forward_(forward), decimal_comma_(formats.choices.decimal_comma) {
  const auto index = static_cast<std::size_t>(slot);
  type_ = database.schema.fields[index].type;
  kind_ = kindOf(database.schema.fields[index]);
  number_bytes_ = numberBytesOf(type_);
  if (type_ == FieldType::kPopup) rankItems(database.fields[index]);
}

void SortLevel::rankItems(const FieldRecord& items) {
  std::vector<std::string> texts = {"", lowerCaseText(kNoValueText)};
  for (const PopupItem& item : items.items) texts.push_back(lowerCaseText(item.text));
  std::vector<std::string> ordered = texts;  // whose bytes compare unsigned
  std::sort(ordered.begin(), ordered.end());
  const auto rank = [&](const std::string& text) {
    return std::lower_bound(ordered.begin(), ordered.end(), text) - ordered.begin();
  };
  rank_of_empty_ = rank(texts[0]);
  rank_of_unknown_ = rank(texts[1]);
  for (std::size_t i = 0; i < items.items.size(); ++i) {
    ranks_.push_back({wordsOf(items.items[i].key), rank(texts[i + 2])});
  }
}

// The first bytes, zeros where there are fewer, as an item is found by them.
SortLevel::KeyWords SortLevel::wordsOf(ByteView value) {
  KeyWords words{};
  if (value.size() >= kPopupKeySize) {
    std::memcpy(words.data(), value.data(), kPopupKeySize);
  } else {
    std::memcpy(words.data(), value.data(), value.size());
  }
  return words;
}

std::int64_t SortLevel::rankOf(ByteView value) const {
  if (value.empty()) return rank_of_empty_;
  const KeyWords key = wordsOf(value);
  for (const Rank& item : ranks_) {
    if (item.key[0] == key[0] && item.key[1] == key[1]) return item.rank;
  }
  return rank_of_unknown_;
}

SortOperand SortLevel::operandOf(const std::optional<ByteView>& value) const {
  SortOperand operand;
  if (!value) {
    operand.missing = true;
    return operand;
  }
  switch (kind_) {
    case SortKind::kAlwaysEqual:
      break;
    case SortKind::kText:
      operand.text = storedText(*value);
      break;
    case SortKind::kLink:
      operand.empty_link = value->size() <= kLinkHeadSize;
      operand.text = linkText(*value);
      break;
    case SortKind::kInteger:
      operand.number = static_cast<std::int32_t>(numberOfValue(*value));
      break;
    case SortKind::kReal:
      operand.real = numberOfText(storedText(*value), decimal_comma_);
      break;
    case SortKind::kNumber:
      if (type_ == FieldType::kPopup) {
        operand.number = rankOf(*value);
      } else if (type_ == FieldType::kCheckBox) {
        operand.number = value->empty() ? 0 : value->front();
      } else if (type_ == FieldType::kTime) {
        const TimeValue time = timeOfValue(*value);
        operand.number = time.second | time.minute << 8 | time.hour << 16;
      } else {
        operand.number = leadingInteger(storedText(*value));
      }
      break;
  }
  return operand;
}

int SortLevel::compare(const SortOperand& a, const SortOperand& b) const {
  // Compat: so two records without the field are each before the other
  // (Sort.ARecordWithoutTheFieldIsBeforeAnother).
  if (a.missing) return -1;
  if (b.missing) return 1;
  const SortOperand& left = forward_ ? a : b;
  const SortOperand& right = forward_ ? b : a;
  switch (kind_) {
    case SortKind::kLink:
      if (left.empty_link || right.empty_link) return signOf(right.empty_link, left.empty_link);
      return compareAnyCase(left.text, right.text);
    case SortKind::kText:
      return compareAnyCase(left.text, right.text);
    case SortKind::kInteger:
      return wrappingSign(left.number, right.number);
    case SortKind::kNumber:
      return signOf(left.number, right.number);
    case SortKind::kReal:
      return signOf(left.real, right.real);
    case SortKind::kAlwaysEqual:
      break;
  }
  return 0;
}

int SortLevel::compareWithStored(const SortOperand& a, const std::optional<ByteView>& b) const {
  if (kind_ != SortKind::kText || a.missing || !b) return compare(a, operandOf(b));
  const auto storedAt = [&](std::size_t i) {
    return i < b->size() ? static_cast<unsigned char>(lowerCase(static_cast<char>((*b)[i]))) : 0;
  };
  int difference = 0;
  std::size_t i = 0;
  for (; i < a.text.size() && difference == 0; ++i) {
    difference = static_cast<unsigned char>(lowerCase(a.text[i])) - storedAt(i);
  }
  if (difference == 0) difference = -storedAt(i);
  return signOf(forward_ ? difference : -difference, 0);
}

std::vector<SortLevel> sortLevels(const Database& database, const FormatSettings& formats) {
  std::vector<SortLevel> levels;
  for (const SortKey& key : database.schema.sort) {
    if (key.field >= kFieldSlots) break;
    levels.emplace_back(database, key.field, key.order == kSortForward, formats);
  }
  return levels;
}

}  // namespace tabelion
