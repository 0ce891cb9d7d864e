#include "engine/check_records.h"

#include <algorithm>
#include <array>
#include <string_view>

#include <fmt/format.h>

#include "engine/extension_record.h"
#include "engine/field_record.h"
#include "engine/field_types.h"
#include "engine/packed_record.h"
#include "engine/schema_places.h"

namespace tabelion {
namespace {

constexpr std::string_view kStampMark = "pdblb";

bool hasNul(ByteView bytes) {
  return std::find(bytes.begin(), bytes.end(), std::uint8_t{0}) != bytes.end();
}

bool isPermutation(std::array<std::uint8_t, kFieldSlots> order) {
  std::sort(order.begin(), order.end());
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (order[i] != i) return false;
  }
  return true;
}

// Where the parts of the database record lie, by the names that they have.
class SchemaCheck {
 public:
  SchemaCheck(const DatabaseRecord& schema, std::size_t base, std::vector<Deviation>& found)
      : schema_(schema), base_(base), found_(found), parts_(databaseRecordParts()) {}

  void checkMarks() {
    if (areaText(schema_.marker) != "TblnB") report("marker", 0, "the marker is not \"TblnB\"");
    if (schema_.format_version != 3) {
      report("format version", 0,
             fmt::format("the format version is {}, not 3", schema_.format_version));
    }
    checkText("search text", schema_.search_text);
    checkText("edition", schema_.edition);
    checkText("category", schema_.category);
    checkText("author", schema_.author);
    checkText("access password", schema_.access_password);
    if (!isPermutation(schema_.display_order)) {
      report("display order", 0, "the display order does not name every field slot once");
    }
    if (schema_.encryption_mode > 3) {
      report("encryption mode", 0,
             fmt::format("encryption mode {} does not exist", schema_.encryption_mode));
    }
    checkSort(schema_.sort, "sort keys", 0, "the sort");
  }

  void checkCurrentRecord(int record_count) {
    const int index = schema_.current_record_index;
    if (index != 0 && (index < kSchemaRecords || index >= record_count)) {
      report("current record index", 0, fmt::format("the current record {} does not exist", index));
    }
  }

  void checkFields() {
    for (std::size_t slot = 0; slot < kFieldSlots; ++slot) {
      const FieldDefinition& field = schema_.fields[slot];
      const std::size_t offset = slot * kFieldDefinitionSize;
      if (field.type != FieldType::kUnused && !isValidType(field.type)) {
        report("field definitions", offset,
               fmt::format("field {} has type {}, which does not exist", slot, codeOf(field.type)));
      }
      if (!hasNul(field.name)) {
        report("field definitions", offset + 66,
               fmt::format("the name of field {} has no NUL", slot));
      }
    }
  }

  void checkViews() {
    if (schema_.view_count > kViewSlots) {
      report("number of views", 0,
             fmt::format("{} views; {} is the limit", schema_.view_count, kViewSlots));
    }
    const bool is_new = schema_.view_count == 0 && schema_.current_view == 0;
    if (!is_new && schema_.current_view != kNoView && schema_.current_view >= schema_.view_count) {
      report("current view", 0,
             fmt::format("the current view {} does not exist", schema_.current_view));
    }
    for (std::size_t slot = 0; slot < kViewSlots; ++slot) {
      const View& view = schema_.views[slot];
      const std::size_t offset = slot * kViewSize;
      if (!hasNul(view.name)) {
        report("views", offset, fmt::format("the name of view {} has no NUL", slot));
      }
      if (!hasNul(view.target)) {
        report("views", offset + 34, fmt::format("the target of view {} has no NUL", slot));
      }
      if (!isPermutation(view.field_order)) {
        report("views", offset + 66,
               fmt::format("the order of view {} does not name every field slot once", slot));
      }
      checkSort(view.sort, "views", offset + kViewSize - 6,
                fmt::format("the sort of view {}", slot));
    }
  }

 private:
  void report(std::string_view part, std::size_t offset, std::string text) {
    const auto found = std::find_if(parts_.begin(), parts_.end(),
                                    [&](const auto& candidate) { return candidate.name == part; });
    const std::size_t part_offset = found == parts_.end() ? 0 : found->offset;
    found_.push_back({base_ + part_offset + offset, std::move(text)});
  }

  void checkText(std::string_view part, ByteView area) {
    if (!hasNul(area)) report(part, 0, fmt::format("the {} has no NUL", part));
  }

  void checkSort(const std::array<SortKey, 3>& keys, std::string_view part, std::size_t offset,
                 std::string_view what) {
    for (std::size_t i = 0; i < keys.size(); ++i) {
      if (keys[i].field >= kFieldSlots && keys[i].field != kNoField) {
        report(part, offset + 2 * i, fmt::format("{} goes by field {}", what, keys[i].field));
      }
    }
  }

  const DatabaseRecord& schema_;
  std::size_t base_;
  std::vector<Deviation>& found_;
  std::vector<DatabaseRecordPart> parts_;
};

// The bytes of a value of this form that hold its text.
ByteView textPart(ValueForm form, ByteView value) {
  switch (form) {
    case ValueForm::kText:
    case ValueForm::kNote:
    case ValueForm::kNumberText:
    case ValueForm::kResult:
    case ValueForm::kLookup:
      return value;
    case ValueForm::kLink:
      return value.size() > kLinkHeadSize ? value.subspan(kLinkHeadSize) : ByteView();
    case ValueForm::kNone:
    case ValueForm::kInteger:
    case ValueForm::kKey:
    case ValueForm::kPopupKey:
    case ValueForm::kFlag:
    case ValueForm::kDays:
    case ValueForm::kClock:
    case ValueForm::kBlock:
      break;
  }
  return {};
}

// The only length that a value of this form has, when it has one; 0 for the others.
std::size_t fixedSize(const FieldTypeTraits& traits) {
  switch (traits.form) {
    case ValueForm::kInteger:
    case ValueForm::kKey:
    case ValueForm::kPopupKey:
    case ValueForm::kFlag:
    case ValueForm::kDays:
    case ValueForm::kClock:
      return traits.area;
    case ValueForm::kNone:
    case ValueForm::kText:
    case ValueForm::kNote:
    case ValueForm::kNumberText:
    case ValueForm::kResult:
    case ValueForm::kLink:
    case ValueForm::kLookup:
    case ValueForm::kBlock:
      break;
  }
  return 0;
}

void checkValue(const FieldDefinition& field, ByteView value, std::string_view where,
                std::size_t offset, std::vector<Deviation>& found) {
  const FieldTypeTraits& traits = traitsOf(field.type);
  const ByteView text = textPart(traits.form, value);
  if (!text.empty() && !hasNul(text)) {
    found.push_back({offset, fmt::format("{}: the text has no NUL", where)});
  }
  const std::size_t size = fixedSize(traits);
  if (size != 0 && !value.empty() && value.size() != size) {
    found.push_back(
        {offset, fmt::format("{}: the value has {} bytes, not {}", where, value.size(), size)});
  }
  const std::size_t most = fieldValueSize(field);
  if (size == 0 && most != 0 && value.size() > most) {
    found.push_back({offset, fmt::format("{}: the value has {} bytes; {} is the limit", where,
                                         value.size(), most)});
  }
}

}  // namespace

void checkSchema(const DatabaseRecord& schema, std::size_t base, int record_count,
                 std::vector<Deviation>& found) {
  SchemaCheck check(schema, base, found);
  check.checkMarks();
  check.checkCurrentRecord(record_count);
  check.checkFields();
  check.checkViews();
}

void checkFieldRecord(ByteView record, std::size_t slot, std::size_t base,
                      std::vector<Deviation>& found) {
  const auto report = [&](std::size_t offset, std::string_view what) {
    found.push_back({base + offset, fmt::format("field record {}: {}", slot, what)});
  };
  if (record.empty()) return report(0, "it is empty");
  if (record[0] != kSchemaRecordType)
    report(0, fmt::format("it begins with {}, not 22", record[0]));
  FieldRecord field;
  if (readFieldRecord(record, field) != kFieldRecordRead) {
    return report(0, "its counts and text offsets do not fit its bytes");
  }
  std::size_t text_offset =
      23 + 4 + kItemKeySize * field.items.size() + kRangeSize * field.ranges.size();
  for (std::size_t i = 0; i < field.items.size(); ++i) {
    const PopupItem& item = field.items[i];
    if (loadBe16(&item.key[kItemTextOffset]) != text_offset) {
      report(23 + 4 + kItemKeySize * i + kItemTextOffset,
             fmt::format("the text of item {} belongs at {}", i, text_offset));
    }
    if (!item.text.empty()) text_offset += item.text.size() + 1;
  }
  if (record.size() != text_offset + 4) {
    report(std::min(text_offset + 4, record.size()),
           fmt::format("it has {} bytes; its parts take {}", record.size(), text_offset + 4));
    return;
  }
  const ByteView closing = record.subspan(text_offset);
  if (std::any_of(closing.begin(), closing.end(), [](std::uint8_t byte) { return byte != 0; })) {
    report(text_offset, "its closing bytes are not zeros");
  }
}

void checkExtensionRecord(ByteView record, std::size_t base, std::vector<Deviation>& found) {
  const auto report = [&](std::size_t offset, std::string_view what) {
    found.push_back({base + offset, fmt::format("extension record: {}", what)});
  };
  if (record.empty() || record[0] != kSchemaRecordType)
    return report(0, "it does not begin with 22");
  ExtensionRecord extension;
  if (!readExtensionRecord(record, extension))
    return report(23, "its entries do not fit its bytes");
  const std::size_t closing = 25 + sizeof(ExtensionEntry) * extension.entries.size();
  if (extension.closing != ExtensionRecord().closing) {
    report(closing, "its closing bytes are not 0, 0, 1");
  }
  if (!extension.surplus.empty()) {
    report(closing + 3, fmt::format("{} bytes follow it", extension.surplus.size()));
  }
}

void checkDataRecord(const DatabaseRecord& schema, ByteView record, std::size_t position,
                     std::size_t base, std::vector<Deviation>& found) {
  const auto report = [&](std::size_t offset, std::string_view what) {
    found.push_back({base + offset, fmt::format("data record {}: {}", position, what)});
  };
  if (record.empty()) return report(0, "it is empty");
  if (prefixLength(record) > record.size()) return report(0, "it ends in its prefix");
  const auto stamp = recordStamp(record);
  // Zeros are room for a stamp in a database that stamps no records.
  if (stamp && *stamp != HeadBlock{} &&
      !std::equal(kStampMark.begin(), kStampMark.end(), stamp->begin())) {
    report(1, "its stamp does not begin with \"pdblb\"");
  }
  SlotWalker walker(record);
  for (std::size_t slot = 0; slot < kFieldSlots; ++slot) {
    const auto value = walker.next();
    if (!value) break;
    const FieldDefinition& field = schema.fields[slot];
    // An enciphered value has a form of its own.
    if (field.encrypt_flag != 0 && isRecordEncrypted(record)) continue;
    if (value->empty()) continue;
    checkValue(field, *value, fmt::format("data record {}, slot {}", position, slot),
               base + static_cast<std::size_t>(value->data() - record.data()), found);
  }
  const std::size_t end = std::min(walker.position(), record.size());
  if (record.size() - end < 2) return report(end, "it has no end marker");
  if (loadLe16(&record[end]) != kEndOfRecord) {
    return report(end, "the value at this place runs over the end of the record");
  }
  if (record.size() > end + 2) {
    report(end + 2, fmt::format("{} bytes follow its end marker", record.size() - end - 2));
  }
}

}  // namespace tabelion
