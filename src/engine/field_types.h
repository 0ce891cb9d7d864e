// The field type codes and what the engine knows of each.
#pragma once

#include <cstddef>
#include <string_view>

namespace tabelion {

inline constexpr int kFieldSlots = 100;    // field definitions per database
inline constexpr int kMaxRecords = 65000;  // data records per database
inline constexpr int kMaxItems = 60;       // pop-up items per field

// Stored codes, never renumber.
enum FieldType : int {
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

inline constexpr bool isValidType(int type) {
  return type >= kText && type <= kExternal;
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

// The type's name for people ("text", "check box", "linked field (relationship key)", …).
std::string_view fieldTypeName(int type);

}  // namespace tabelion
