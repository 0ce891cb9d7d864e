#include "screens/arrange/filter_draft.h"

#include <charconv>

#include <fmt/format.h>

#include "engine/schema_places.h"
#include "query/date_range.h"
#include "query/filter.h"

namespace tabelion {
namespace {

bool isNamedRange(CriterionKind kind, std::uint32_t code) {
  return kind == CriterionKind::kDate && code != kCustomDateRange && code < kDateRangeNames.size();
}

std::optional<std::int32_t> wholeNumber(const std::string& text) {
  std::int32_t number = 0;
  const char* end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, number);
  if (read.ec != std::errc{} || read.ptr != end) return std::nullopt;
  return number;
}

void setBit(std::uint8_t& bits, std::uint8_t bit, bool on) {
  bits = static_cast<std::uint8_t>(on ? bits | bit : bits & ~bit);
}

// What the criterion compares with, without how it is joined to the others.
bool sameValues(const CriterionDraft& a, const CriterionDraft& b) {
  return a.slot == b.slot && a.texts == b.texts && a.item == b.item && a.check == b.check &&
         a.range == b.range && a.count == b.count;
}

std::optional<DraftFault> storeRange(const CriterionDraft& draft, FilterBlock& criterion) {
  if (dateRangeHasX(draft.range)) {
    const auto count = wholeNumber(draft.count);
    if (!count) {
      return DraftFault{DraftFault::Box::kCount,
                        fmt::format("\"{}\" is not a whole number", draft.count)};
    }
    criterion.number2 = static_cast<std::uint32_t>(*count);
  }
  criterion.number1 = static_cast<std::uint32_t>(draft.range);
  return std::nullopt;
}

std::optional<DraftFault> storeValues(const CriterionContext& context, const CriterionDraft& draft,
                                      FilterBlock& criterion) {
  const CriterionKind kind = kindOfSlot(context.database, draft.slot);
  if (criterion.field != draft.slot) {  // the values were another field's
    const FilterBlock fresh;
    criterion.value1 = fresh.value1;
    criterion.value2 = fresh.value2;
    criterion.number1 = fresh.number1;
    criterion.number2 = fresh.number2;
    criterion.field = static_cast<std::uint16_t>(draft.slot);
  }
  switch (kind) {
    case CriterionKind::kNothing:
      return std::nullopt;
    case CriterionKind::kItem:
      criterion.value1 = {};
      std::copy(draft.item.begin(), draft.item.end(), criterion.value1.begin());
      return std::nullopt;
    case CriterionKind::kCheckBox:
      criterion.number1 = draft.check;
      return std::nullopt;
    default:
      break;
  }
  if (isNamedRange(kind, static_cast<std::uint32_t>(draft.range))) {
    return storeRange(draft, criterion);
  }
  const auto fault =
      storeCriterionTexts(kind, context.encoding, draft.texts, context.settings.formats, criterion);
  if (!fault) return std::nullopt;
  return DraftFault{fault->in_second ? DraftFault::Box::kSecond : DraftFault::Box::kFirst,
                    fault->sentence};
}

}  // namespace

CriterionKind kindOfSlot(const Database& database, int slot) {
  if (!isSlot(slot)) return CriterionKind::kNothing;
  return criterionKind(database.schema.fields[static_cast<std::size_t>(slot)]);
}

CriterionDraft draftOf(const CriterionContext& context, const FilterBlock& criterion) {
  CriterionDraft draft;
  draft.enabled = criterion.enabled != 0;
  draft.is_or = (criterion.mode & kFilterOr) != 0;
  draft.negated = (criterion.mode & kFilterNot) != 0;
  draft.opens = (criterion.grouping & kFilterOpens) != 0;
  draft.closes = (criterion.grouping & kFilterCloses) != 0;
  draft.slot = criterion.field;
  const CriterionKind kind = kindOfSlot(context.database, draft.slot);
  if (kind == CriterionKind::kItem) draft.item = popupKey(criterion.value1);
  if (kind == CriterionKind::kCheckBox) draft.check = criterion.number1;
  if (isNamedRange(kind, criterion.number1)) {
    draft.range = static_cast<int>(criterion.number1);
    if (dateRangeHasX(draft.range)) {
      draft.count = std::to_string(static_cast<std::int32_t>(criterion.number2));
    }
  } else {
    draft.texts = criterionTexts(kind, context.encoding, criterion, context.settings.formats);
  }
  return draft;
}

CriterionDraft withField(const Database& database, CriterionDraft draft, int slot) {
  const CriterionKind kind = kindOfSlot(database, slot);
  const bool keeps = kind == kindOfSlot(database, draft.slot) && kind != CriterionKind::kItem;
  draft.slot = slot;
  if (keeps) return draft;
  const CriterionDraft fresh;
  draft.texts = fresh.texts;
  draft.item = fresh.item;
  draft.check = fresh.check;
  draft.range = fresh.range;
  draft.count = fresh.count;
  return draft;
}

std::optional<DraftFault> storeDraft(const CriterionContext& context, const CriterionDraft& draft,
                                     FilterBlock& criterion) {
  const CriterionDraft stored = draftOf(context, criterion);
  FilterBlock result = criterion;
  if (!sameValues(draft, stored)) {
    if (auto fault = storeValues(context, draft, result)) return fault;
  }
  if (draft.enabled != stored.enabled) result.enabled = draft.enabled ? 1 : 0;
  setBit(result.mode, kFilterOr, draft.is_or);
  setBit(result.mode, kFilterNot, draft.negated);
  setBit(result.grouping, kFilterOpens, draft.opens);
  setBit(result.grouping, kFilterCloses, draft.closes);
  criterion = result;
  return std::nullopt;
}

std::string explanationOf(const CriterionContext& context, const CriterionDraft& draft) {
  const CriterionKind kind = kindOfSlot(context.database, draft.slot);
  if (kind == CriterionKind::kNothing) return "Records cannot be filtered by this field.";
  if (kind == CriterionKind::kText && draft.texts.first.empty()) {
    return "Empty: the records without a text there.";
  }
  if (!isNamedRange(kind, static_cast<std::uint32_t>(draft.range)) || draft.range == kNoDateRange) {
    return {};
  }
  DateRange days;
  const std::int32_t count = wholeNumber(draft.count).value_or(0);
  if (dateRangeHasX(draft.range) && !wholeNumber(draft.count)) return {};
  computeDateRange(draft.range, count, context.settings.now, context.settings.week_starts_monday,
                   days);
  if (days.from > days.to) return "Today that is no day at all.";
  const FormatSettings& formats = context.settings.formats;
  const std::string from = wholeText(CriterionKind::kDays, days.from, formats);
  const std::string to = wholeText(CriterionKind::kDays, days.to, formats);
  return from == to ? from : fmt::format("{} to {}", from, to);
}

}  // namespace tabelion
