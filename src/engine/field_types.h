// The types of fields: their stored codes, and one row for each of what the program knows of it.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tabelion {

inline constexpr int kFieldSlots = 100;    // field definitions per database
inline constexpr int kMaxRecords = 65000;  // data records per database
inline constexpr int kMaxItems = 60;       // pop-up items per field

// Stored codes, never renumber. A file may hold a code that is none of these: it is kept as it
// stands, its row is that of an unknown type, and a switch over the type passes it by.
enum class FieldType : std::int32_t {
  kUnused = 0,
  kText = 1,
  kInteger = 2,
  kFloat = 3,
  kPopup = 4,
  kCheckBox = 5,
  kAutoNumber = 6,
  kNote = 7,
  kDate = 8,
  kTime = 9,
  kLinkedField = 10,  // relationship key: the records of another database that point here
  kLinkField = 11,    // names one record of another database
  kLongText = 12,
  kSeparator = 13,
  kTextVariant = 14,
  kCalculated = 15,
  kLookup = 16,
  kText254 = 17,
  kExternal = 18,
};
inline constexpr FieldType kLastFieldType = FieldType::kExternal;

// The code as a number, for files, tables and messages; FieldType{code} is the way back.
constexpr std::int32_t codeOf(FieldType type) {
  return static_cast<std::int32_t>(type);
}

constexpr bool isSlot(int slot) {
  return slot >= 0 && slot < kFieldSlots;
}

constexpr bool isValidType(FieldType type) {
  return type > FieldType::kUnused && type <= kLastFieldType;
}

// Sizes of value areas (unpacked) and of their parts, in bytes.
inline constexpr std::size_t kNumberTextSize = 17;  // types 3 and 15
inline constexpr std::size_t kPopupKeySize = 14;
inline constexpr std::size_t kNoteSize = 2001;
inline constexpr std::size_t kLinkHeadSize = 24;
inline constexpr std::size_t kLinkSize = 280;
inline constexpr std::size_t kLongTextSize = 2002;
inline constexpr std::size_t kText254Size = 254;

inline constexpr int kNoTimeHour = 255;  // in the third byte of a time value

// What the bytes of a stored value are. Numbers are little-endian, texts 8-bit.
enum class ValueForm {
  kNone,        // there are none
  kText,        // a text and its NUL
  kNote,        // as kText; no note begins with a NUL
  kNumberText,  // a number as decimal text
  kResult,      // as kNumberText, its meaning by the kind of the formula's result
  kInteger,     // 32 bits, signed
  kKey,         // 32 bits: the relationship key
  kPopupKey,    // the key of an item
  kFlag,        // one byte, 0 or 1
  kDays,        // 32 bits: days since 1904, 0 = no date
  kClock,       // second, minute, hour (255 = no time) and a byte that is kept
  kLink,        // a head whose first 32 bits are a record's key, then a text and its NUL
  kLookup,      // a reference; its text is found through another field
  kBlock,       // bytes of a plug-in
};

// What stands in front of the cipher text of a value.
enum class CipherForm {
  kAsIs,              // it is not enciphered
  kWhole,             // nothing: all bytes are
  kLengthOfOneByte,   // the length of the text, modulo 256
  kLengthOfTwoBytes,  // the length of the text, little-endian
  kLink,              // the link's head in clear, then as kLengthOfOneByte
  kNote,              // the first byte in clear
};

// Who gives a field its value.
enum class ValueSource { kPerson, kCounter, kFormula, kOtherDatabase, kNobody };

// The figures that a report has for a field.
enum class ReportKind { kNone, kWholeNumbers, kNumbers, kChecks, kDates, kTimes };

struct FieldTypeTraits {
  std::string_view name;  // for people
  ValueForm form = ValueForm::kNone;
  std::size_t area = 0;          // bytes of the unpacked value
  bool area_adds_width = false;  // ... and as many as the field is wide
  CipherForm cipher = CipherForm::kWhole;
  ValueSource source = ValueSource::kPerson;
  bool sorts = true;             // can be a level of the sort
  bool lists = true;             // can be a column of the list
  bool finds = true;             // can be searched for a text
  bool finds_case_late = false;  // ... and far behind its beginning the case counts
  ReportKind report = ReportKind::kNone;
};

// The row of a type as it is written down; the compiler names the type that has none.
constexpr FieldTypeTraits traitsRow(FieldType type) {
  switch (type) {
    case FieldType::kUnused:
      return {.name = "unused", .source = ValueSource::kNobody, .sorts = false, .finds = false};
    case FieldType::kText:
      return {.name = "text",
              .form = ValueForm::kText,
              .area = 1,
              .area_adds_width = true,
              .cipher = CipherForm::kLengthOfOneByte};
    case FieldType::kInteger:
      return {.name = "integer",
              .form = ValueForm::kInteger,
              .area = 4,
              .report = ReportKind::kWholeNumbers};
    case FieldType::kFloat:
      return {.name = "float",
              .form = ValueForm::kNumberText,
              .area = kNumberTextSize,
              .cipher = CipherForm::kLengthOfOneByte,
              .report = ReportKind::kNumbers};
    case FieldType::kPopup:
      return {.name = "pop-up", .form = ValueForm::kPopupKey, .area = kPopupKeySize};
    case FieldType::kCheckBox:
      return {
          .name = "check box", .form = ValueForm::kFlag, .area = 1, .report = ReportKind::kChecks};
    case FieldType::kAutoNumber:
      return {.name = "auto-number",
              .form = ValueForm::kInteger,
              .area = 4,
              .source = ValueSource::kCounter};
    case FieldType::kNote:
      return {.name = "note",
              .form = ValueForm::kNote,
              .area = kNoteSize,
              .cipher = CipherForm::kNote,
              .sorts = false,
              .lists = false,
              .finds = false};
    case FieldType::kDate:
      return {.name = "date", .form = ValueForm::kDays, .area = 4, .report = ReportKind::kDates};
    case FieldType::kTime:
      return {.name = "time", .form = ValueForm::kClock, .area = 4, .report = ReportKind::kTimes};
    case FieldType::kLinkedField:
      return {.name = "linked field",
              .form = ValueForm::kKey,
              .area = 4,
              .source = ValueSource::kCounter,
              .sorts = false,
              .lists = false,
              .finds = false};
    case FieldType::kLinkField:
      return {.name = "link field",
              .form = ValueForm::kLink,
              .area = kLinkSize,
              .cipher = CipherForm::kLink};
    case FieldType::kLongText:
      return {.name = "long text",
              .form = ValueForm::kText,
              .area = kLongTextSize,
              .cipher = CipherForm::kLengthOfTwoBytes,
              .finds_case_late = true};
    case FieldType::kSeparator:
      return {.name = "separator",
              .source = ValueSource::kNobody,
              .sorts = false,
              .lists = false,
              .finds = false};
    case FieldType::kTextVariant:
      return {.name = "text variant",
              .form = ValueForm::kText,
              .area = 1,
              .area_adds_width = true,
              .cipher = CipherForm::kLengthOfOneByte,
              .finds_case_late = true};
    case FieldType::kCalculated:
      return {.name = "calculated",
              .form = ValueForm::kResult,
              .area = kNumberTextSize,
              .cipher = CipherForm::kLengthOfOneByte,
              .source = ValueSource::kFormula};
    case FieldType::kLookup:
      return {.name = "lookup",
              .form = ValueForm::kLookup,
              .area = kText254Size,
              .cipher = CipherForm::kAsIs,
              .source = ValueSource::kOtherDatabase};
    case FieldType::kText254:
      return {.name = "text 254",
              .form = ValueForm::kText,
              .area = kText254Size,
              .cipher = CipherForm::kLengthOfOneByte};
    case FieldType::kExternal:
      return {.name = "external",
              .form = ValueForm::kBlock,
              .area = 0,
              .area_adds_width = true,
              .sorts = false,
              .lists = false,
              .finds = false};
  }
  return {.name = "unknown", .source = ValueSource::kNobody, .finds = false};
}

// All rows by code, behind them that of an unknown type.
inline constexpr auto kFieldTypeRows = [] {
  std::array<FieldTypeTraits, std::size_t{codeOf(kLastFieldType)} + 2> rows;
  for (std::size_t code = 0; code < rows.size(); ++code) {
    rows[code] = traitsRow(FieldType{static_cast<std::int32_t>(code)});
  }
  return rows;
}();

constexpr const FieldTypeTraits& traitsOf(FieldType type) {
  const auto code = static_cast<std::uint32_t>(codeOf(type));
  return kFieldTypeRows[std::min<std::size_t>(code, kFieldTypeRows.size() - 1)];
}

}  // namespace tabelion
