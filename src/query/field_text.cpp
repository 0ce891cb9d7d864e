#include "query/field_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "engine/packed_record.h"
#include "query/date_text.h"
#include "query/number_text.h"
#include "query/text_cut.h"
#include "query/time_text.h"

namespace tabelion {
namespace {

constexpr std::size_t kHasValueCapacity = 129;  // 128 characters decide
constexpr double kLargestCount = 9e15;          // whole numbers that a double holds exactly

// How the dates and times of one text are written.
struct Patterns {
  const DatePattern& date;
  const TimePattern& time;
};

void appendPopup(std::string& into, const FieldRecord& items, ByteView value) {
  const PopupItem* item = findItem(items, value);
  into += item ? std::string_view(item->text) : kNoValueText;
}

// A result is stored as number text; times and dates among them are shown as such.
void appendResult(std::string& into, const FieldDefinition& field, ByteView value,
                  const FormatSettings& settings, const Patterns& patterns) {
  const std::string_view stored = storedText(value);
  switch (resultMeaning(field)) {
    case ResultMeaning::kNumber:
    case ResultMeaning::kWholeNumber:
      into += stored;
      return;
    case ResultMeaning::kDuration: {
      const double seconds = numberOfText(stored, settings.choices.decimal_comma);
      if (!(std::fabs(seconds) <= kLargestCount)) break;
      appendDuration(into, static_cast<std::int64_t>(seconds));
      return;
    }
    case ResultMeaning::kDate: {
      const double days = numberOfText(stored, settings.choices.decimal_comma);
      if (!(days > -1.0 && days <= static_cast<double>(UINT32_MAX))) break;
      appendDate(into, static_cast<std::uint32_t>(days), patterns.date);
      return;
    }
    case ResultMeaning::kUnknown:
      break;
  }
  into += kResultErrorText;
}

// False for types without a text form.
bool appendTyped(std::string& into, const FieldDefinition& field, const FieldRecord& items,
                 ByteView value, const FormatSettings& settings, const Patterns& patterns,
                 bool raw) {
  const ValueForm form = traitsOf(field.type).form;
  if (value.empty()) return form != ValueForm::kNone && form != ValueForm::kNote;
  switch (form) {
    case ValueForm::kText:
      into += storedText(value);
      return true;
    case ValueForm::kNumberText: {
      const std::size_t begin = into.size();
      into += storedText(value);
      // Stored with a point, shown as results are.
      if (!raw && settings.choices.decimal_comma) {
        std::replace(into.begin() + static_cast<std::ptrdiff_t>(begin), into.end(), '.', ',');
      }
      return true;
    }
    case ValueForm::kBlock:
    case ValueForm::kLookup:
      return true;
    case ValueForm::kNone:
    case ValueForm::kNote:
      return false;
    case ValueForm::kInteger:
      appendInteger(into, static_cast<std::int32_t>(numberOfValue(value)));
      return true;
    case ValueForm::kPopupKey:
      appendPopup(into, items, value);
      return true;
    case ValueForm::kFlag:
      into += value[0] != 0 ? '1' : '0';
      return true;
    case ValueForm::kDays:
      appendDate(into, numberOfValue(value), patterns.date);
      return true;
    case ValueForm::kClock:
      appendTime(into, timeOfValue(value), patterns.time);
      return true;
    case ValueForm::kKey:
      if (raw) appendInteger(into, numberOfValue(value));
      return raw;
    case ValueForm::kLink:
      if (raw)
        appendInteger(into, linkKey(value));
      else
        into += linkText(value);
      return true;
    case ValueForm::kResult:
      appendResult(into, field, value, settings, patterns);
      return true;
  }
  return false;
}

std::size_t bound(const TextOptions& options) {
  if (options.capacity == kNoBound) return kNoBound;
  return options.capacity == 0 ? 0 : options.capacity - 1;
}

void cutFrom(std::string& text, std::size_t begin, std::size_t most, bool utf8) {
  if (text.size() - begin <= most) return;
  text.resize(begin + cutLength(std::string_view(text).substr(begin), most, utf8));
}

void appendLookup(std::string& into, ByteView record, int slot, const FormatSettings& settings,
                  const TextOptions& options) {
  if (!options.lookup || !*options.lookup) return;
  const std::size_t begin = into.size();
  into += (*options.lookup)(slot, record);
  cutFrom(into, begin, std::min(kMaxLookupText, bound(options)), settings.utf8);
}

}  // namespace

bool isMasked(const FieldDefinition& field, ByteView record) {
  return field.encrypt_flag != 0 && isRecordEncrypted(record);
}

bool appendValueText(std::string& into, const FieldDefinition& field, const FieldRecord& items,
                     ByteView value, const FormatSettings& settings, const TextOptions& options) {
  const std::size_t begin = into.size();
  const bool has_value = appendTyped(into, field, items, value, settings,
                                     {settings.show_date, settings.show_time}, options.raw);
  cutFrom(into, begin, bound(options), settings.utf8);
  return has_value;
}

bool appendFieldText(std::string& into, const Database& database, ByteView record, int slot,
                     const FormatSettings& settings, const TextOptions& options) {
  if (!isSlot(slot)) return false;
  const auto value = slotValue(record, slot);
  if (!value) return false;
  const auto index = static_cast<std::size_t>(slot);
  const FieldDefinition& field = database.schema.fields[index];
  if (isMasked(field, record)) {
    // Compat: shown, and yet no value (FieldText.EncryptedValuesAreRunsOfX).
    if (!options.raw) into.append(std::min(value->size(), bound(options)), 'X');
    return false;
  }
  if (field.type == FieldType::kLookup) {
    appendLookup(into, record, slot, settings, options);
    return true;
  }
  return appendValueText(into, field, database.fields[index], *value, settings, options);
}

FieldText fieldText(const Database& database, ByteView record, int slot,
                    const FormatSettings& settings, const TextOptions& options) {
  FieldText result;
  result.has_value = appendFieldText(result.text, database, record, slot, settings, options);
  return result;
}

FieldText editText(const Database& database, ByteView record, int slot,
                   const FormatSettings& settings, const LookupText* lookup) {
  const TextOptions options{.lookup = lookup};
  const auto value = isSlot(slot) ? slotValue(record, slot) : std::nullopt;
  if (!value) return {};
  const auto index = static_cast<std::size_t>(slot);
  const FieldDefinition& field = database.schema.fields[index];
  if (isMasked(field, record) || field.type == FieldType::kLookup) {
    return fieldText(database, record, slot, settings, options);
  }
  if (field.type == FieldType::kNote) return {std::string(storedText(*value)), true};
  FieldText result;
  result.has_value = appendTyped(result.text, field, database.fields[index], *value, settings,
                                 {settings.edit_date, settings.edit_time}, false);
  return result;
}

bool hasValue(const Database& database, ByteView record, int slot, const FormatSettings& settings) {
  const auto value = isSlot(slot) ? slotValue(record, slot) : std::nullopt;
  if (!value) return false;
  const FieldDefinition& field = database.schema.fields[static_cast<std::size_t>(slot)];
  if (isMasked(field, record)) return false;
  const FieldType type = effectiveType(field);
  const auto text = [&] {
    return fieldText(database, record, slot, settings, {.capacity = kHasValueCapacity, .raw = true})
        .text;
  };
  switch (type) {
    case FieldType::kNote:
      return !value->empty() && value->front() != 0;
    case FieldType::kLinkedField:
      return numberOfValue(*value) != 0;
    case FieldType::kLinkField:
      return value->size() > kLinkHeadSize;
    case FieldType::kText:
    case FieldType::kLongText:
    case FieldType::kTextVariant:
    case FieldType::kLookup:
      return !text().empty();
    case FieldType::kInteger:
    case FieldType::kText254:
      return leadingInteger(text()) != 0;
    case FieldType::kFloat:
      return numberOfText(text(), settings.choices.decimal_comma) != 0;
    case FieldType::kPopup:
      return !value->empty() && text() != kNoValueText;
    case FieldType::kCheckBox:
      return leadingInteger(text()) == 1;
    case FieldType::kDate:
      return !value->empty() && text() != kNoDateText;
    case FieldType::kTime:
      return !value->empty() && text() != kNoTimeText;
    case FieldType::kUnused:
    case FieldType::kAutoNumber:
    case FieldType::kSeparator:
    case FieldType::kCalculated:
    case FieldType::kExternal:
      break;
  }
  return true;
}

}  // namespace tabelion
