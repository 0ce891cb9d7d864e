#include "query/filter_criterion.h"

#include <algorithm>
#include <cstring>

#include "query/date_range.h"
#include "query/number_text.h"
#include "query/text_case.h"
#include "query/time_text.h"

namespace tabelion {
namespace {

DateRange dateBounds(const FilterBlock& criterion, const QuerySettings& settings) {
  DateRange range{loadLe32(criterion.value1.data()), loadLe32(criterion.value2.data())};
  computeDateRange(static_cast<std::int32_t>(criterion.number1),
                   static_cast<std::int32_t>(criterion.number2), settings.now,
                   settings.week_starts_monday, range);
  return range;
}

// Hour, minute and second as one number that grows with the time of day; no time is behind all.
std::int64_t timeNumber(ByteView value) {
  const TimeValue time = timeOfValue(value);
  return time.second | time.minute << 8 | time.hour << 16;
}

bool textPasses(std::string_view text, std::string_view word) {
  return word.empty() ? text.empty() : containsAnyCase(text, word);
}

}  // namespace

CriterionTest::CriterionTest(const Database& database, const FilterBlock& criterion,
                             const QuerySettings& settings)
    : decimal_comma_(settings.formats.choices.decimal_comma), slot_(criterion.field) {
  if (slot_ >= kFieldSlots) return;
  const FieldDefinition& field = database.schema.fields[criterion.field];
  const FieldTypeTraits& traits = traitsOf(field.type);
  switch (traits.form) {
    case ValueForm::kText:
    case ValueForm::kLink:
      kind_ = traits.form == ValueForm::kLink ? Kind::kLink : Kind::kText;
      word_ = lowerCaseText(areaText(criterion.value1));
      break;
    case ValueForm::kInteger:
      if (traits.source == ValueSource::kCounter) {
        setRange(Kind::kUnsigned, criterion.number1, criterion.number2);
      } else {
        setSigned(criterion, Kind::kSigned);
      }
      break;
    case ValueForm::kNumberText:
      setNumbers(criterion);
      break;
    case ValueForm::kPopupKey:
      kind_ = Kind::kPopup;
      std::copy_n(criterion.value1.begin(), key_.size(), key_.begin());
      break;
    case ValueForm::kFlag:
      kind_ = Kind::kCheckBox;
      low_ = criterion.number1;
      break;
    case ValueForm::kDays: {
      const DateRange range = dateBounds(criterion, settings);
      setRange(Kind::kUnsigned, range.from, range.to);
      break;
    }
    case ValueForm::kClock:
      setRange(Kind::kTime, timeNumber(criterion.value1), timeNumber(criterion.value2));
      break;
    case ValueForm::kResult:
      prepareCalculated(field, criterion);
      break;
    case ValueForm::kNone:
      if (field.type == FieldType::kUnused || isValidType(field.type)) kind_ = Kind::kAlways;
      break;
    case ValueForm::kNote:
    case ValueForm::kKey:
    case ValueForm::kLookup:
    case ValueForm::kBlock:
      kind_ = Kind::kAlways;
      break;
  }
}

void CriterionTest::prepareCalculated(const FieldDefinition& field, const FilterBlock& criterion) {
  switch (resultMeaning(field)) {
    case ResultMeaning::kWholeNumber:
      return setSigned(criterion, Kind::kResult);
    case ResultMeaning::kDuration:
      return setRange(Kind::kResult, secondsOfTime(timeOfValue(criterion.value1)),
                      secondsOfTime(timeOfValue(criterion.value2)));
    case ResultMeaning::kDate:
      // Days alone: the named ranges belong to date fields.
      return setRange(Kind::kResult, loadLe32(criterion.value1.data()),
                      loadLe32(criterion.value2.data()));
    case ResultMeaning::kNumber:
      return setNumbers(criterion);
    case ResultMeaning::kUnknown:
      break;
  }
}

void CriterionTest::setNumbers(const FilterBlock& criterion) {
  kind_ = Kind::kNumber;
  from_ = numberOfText(areaText(criterion.value1), decimal_comma_);
  to_ = numberOfText(areaText(criterion.value2), decimal_comma_);
}

void CriterionTest::setSigned(const FilterBlock& criterion, Kind kind) {
  setRange(kind, static_cast<std::int32_t>(criterion.number1),
           static_cast<std::int32_t>(criterion.number2));
}

void CriterionTest::setRange(Kind kind, std::int64_t low, std::int64_t high) {
  kind_ = kind;
  low_ = low;
  high_ = high;
}

int CriterionTest::cost() const {
  return static_cast<int>(kind_);
}

bool CriterionTest::passes(ByteView value) const {
  switch (kind_) {
    case Kind::kNever:
      return false;
    case Kind::kAlways:
      return true;
    case Kind::kCheckBox:
      return (value.empty() ? 0 : value[0]) == low_;
    case Kind::kSigned:
      return isWithin(static_cast<std::int32_t>(numberOfValue(value)));
    case Kind::kUnsigned:
      return isWithin(numberOfValue(value));
    case Kind::kTime:
      return isWithin(timeNumber(value));
    case Kind::kPopup:
      return popupKey(value) == key_;
    case Kind::kResult:
      return isWithin(leadingInteger(storedText(value)));
    case Kind::kNumber: {
      const double number = numberOfText(storedText(value), decimal_comma_);
      return from_ <= number && number <= to_;
    }
    case Kind::kLink:
      return value.size() > kLinkHeadSize && textPasses(linkText(value), word_);
    case Kind::kText:
      return textPasses(storedText(value), word_);
  }
  return false;
}

}  // namespace tabelion
