#include "query/field_search.h"

#include <algorithm>

#include "engine/schema_places.h"
#include "query/date_text.h"
#include "query/number_text.h"
#include "query/text_case.h"

namespace tabelion {
namespace {

constexpr std::size_t kFoldedInLongTexts = 2000;
constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kNoDateFound = "No Date";

bool isWithout(std::string_view text, std::string_view letters) {
  return text.find_first_not_of(letters) != std::string_view::npos;
}

}  // namespace

bool SearchText::isIn(std::string_view value) const {
  return begins ? value.starts_with(text) : value.find(text) != std::string_view::npos;
}

bool SearchText::isInFolded(std::string_view value) const {
  if (case_sensitive) return isIn(value);
  return begins ? startsWithAnyCase(value, text) : containsAnyCase(value, text);
}

FieldSearch::FieldSearch(const Database& database, int slot, const SearchText& search,
                         const QuerySettings& settings)
    : database_(database),
      settings_(settings),
      search_(search),
      slot_(slot),
      kind_(kindOf(database.schema.fields[static_cast<std::size_t>(slot)])) {}

FieldSearch::Kind FieldSearch::kindOf(const FieldDefinition& field) {
  const FieldTypeTraits& traits = traitsOf(field.type);
  if (!traits.finds) return Kind::kNever;
  switch (traits.form) {
    case ValueForm::kText:
      return traits.finds_case_late ? Kind::kLongFolded : Kind::kFolded;
    case ValueForm::kNumberText:
      return Kind::kAsItStands;
    case ValueForm::kInteger:
      return search_.text.empty() || isWithout(search_.text, kDigits) ? Kind::kNever
                                                                      : Kind::kNumber;
    case ValueForm::kPopupKey:
      return preparePopup();
    case ValueForm::kFlag:
      return search_.text == "1" || search_.text == "0" ? Kind::kCheckBox : Kind::kNever;
    case ValueForm::kDays:
      return prepareDate(Kind::kDate);
    case ValueForm::kClock:
      return prepareTime(Kind::kTime);
    case ValueForm::kLink:
      return Kind::kLink;
    case ValueForm::kLookup:
      return settings_.lookup ? Kind::kLookup : Kind::kNever;
    case ValueForm::kResult:
      return kindOfResult(field);
    case ValueForm::kNone:
    case ValueForm::kNote:
    case ValueForm::kKey:
    case ValueForm::kBlock:
      break;
  }
  return Kind::kNever;
}

FieldSearch::Kind FieldSearch::kindOfResult(const FieldDefinition& field) {
  switch (resultMeaning(field)) {
    case ResultMeaning::kNumber:
    case ResultMeaning::kWholeNumber:
      return Kind::kResult;
    case ResultMeaning::kDuration:
      return prepareTime(Kind::kResultTime);
    case ResultMeaning::kDate:
      return prepareDate(Kind::kResultDate);
    case ResultMeaning::kUnknown:
      break;
  }
  return Kind::kNever;
}

FieldSearch::Kind FieldSearch::preparePopup() {
  without_value_ = search_.isInFolded(kNoValueText);
  bool in_any = without_value_;
  for (const PopupItem& item : database_.fields[static_cast<std::size_t>(slot_)].items) {
    in_item_.push_back(search_.isInFolded(item.text));
    in_any = in_any || in_item_.back();
  }
  return in_any ? Kind::kPopup : Kind::kNever;
}

// Whether a text of these letters and digits can have the searched one in it.
bool FieldSearch::isPossibleIn(std::string_view letters) const {
  return !isWithout(search_.text, std::string(kDigits).append(letters));
}

FieldSearch::Kind FieldSearch::prepareDate(Kind kind) {
  without_value_ = search_.isIn(kind == Kind::kResultDate ? kNoDateText : kNoDateFound);
  with_value_ = isPossibleIn(settings_.formats.show_date.separator);
  return without_value_ || with_value_ ? kind : Kind::kNever;
}

FieldSearch::Kind FieldSearch::prepareTime(Kind kind) {
  const TimePattern& pattern = settings_.formats.show_time;
  without_value_ = search_.isIn(kNoTimeText);
  with_value_ = isPossibleIn(pattern.separator + pattern.morning + pattern.afternoon);
  return without_value_ || with_value_ ? kind : Kind::kNever;
}

bool FieldSearch::matchesText(std::string_view text) const {
  if (text.empty()) return false;
  if (kind_ == Kind::kAsItStands) return search_.isIn(text);
  if (kind_ == Kind::kFolded || text.size() <= kFoldedInLongTexts || search_.case_sensitive) {
    return search_.isInFolded(text);
  }
  std::string folded = lowerCaseText(text.substr(0, kFoldedInLongTexts));
  return search_.isIn(folded.append(text.substr(kFoldedInLongTexts)));
}

bool FieldSearch::matchesItem(ByteView key) const {
  const FieldRecord& items = database_.fields[static_cast<std::size_t>(slot_)];
  const PopupItem* item = findItem(items, key);
  return item ? in_item_[static_cast<std::size_t>(item - items.items.data())] != 0 : without_value_;
}

bool FieldSearch::matchesDate(std::uint32_t days) const {
  if (days == 0) return without_value_;
  if (!with_value_) return false;
  std::string text;
  appendDate(text, days, settings_.formats.show_date);
  return search_.isIn(text);
}

bool FieldSearch::matchesTime(const TimeValue& time) const {
  if (time.isNone()) return without_value_;
  if (!with_value_) return false;
  std::string text;
  appendTime(text, time, settings_.formats.show_time);
  return search_.isIn(text);
}

bool FieldSearch::matches(ByteView record, ByteView value) const {
  switch (kind_) {
    case Kind::kNever:
      return false;
    case Kind::kFolded:
    case Kind::kLongFolded:
    case Kind::kAsItStands:
      return matchesText(storedText(value));
    case Kind::kLink:
      return value.size() > kLinkHeadSize && search_.isInFolded(linkText(value));
    case Kind::kLookup: {
      const TextOptions options{kNoBound, false, settings_.lookup};
      return search_.isIn(fieldText(database_, record, slot_, settings_.formats, options).text);
    }
    case Kind::kCheckBox:
      return search_.text == (value.empty() || value[0] == 0 ? "0" : "1") &&
             (value.empty() || value[0] <= 1);
    case Kind::kTime:
      return matchesTime(timeOfValue(value));
    default:
      return value.empty() ? search_.text.empty() : matchesShown(value);
  }
}

// Values whose text is made from them.
bool FieldSearch::matchesShown(ByteView value) const {
  switch (kind_) {
    case Kind::kPopup:
      return matchesItem(value);
    case Kind::kNumber: {
      std::string text;
      appendInteger(text, static_cast<std::int32_t>(numberOfValue(value)));
      return search_.isIn(text);
    }
    case Kind::kDate:
      return matchesDate(numberOfValue(value));
    case Kind::kResult:
      return search_.isIn(storedText(value));
    case Kind::kResultTime: {
      std::array<std::uint8_t, kTimeValueSize> bytes;
      storeLe32(bytes.data(), static_cast<std::uint32_t>(leadingInteger(storedText(value))));
      return matchesTime(timeOfValue(bytes));
    }
    case Kind::kResultDate:
      return matchesDate(static_cast<std::uint32_t>(leadingInteger(storedText(value))));
    default:
      return false;
  }
}

}  // namespace tabelion
