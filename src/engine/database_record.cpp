#include "engine/database_record.h"

#include <string>

#include <fmt/format.h>

namespace tabelion {
namespace {

// The file order of the record is written once, in `codeDatabaseRecord` and what it calls, and
// walked by three codecs: one that reads, one that writes, one that names the parts.

class ReadCodec {
 public:
  explicit ReadCodec(ByteView bytes) : reader_(bytes) {}
  void item(int, std::string_view) {}
  void byte(std::uint8_t& value) { value = reader_.readByte(); }
  void be16(std::uint16_t& value) { value = reader_.readBe16(); }
  void be32(std::uint32_t& value) { value = reader_.readBe32(); }
  void unsigned16(std::int32_t& value) { value = reader_.readBe16(); }
  void type(FieldType& value) { value = FieldType{reader_.readBe16()}; }
  void signed16(std::int32_t& value) { value = static_cast<std::int16_t>(reader_.readBe16()); }
  void low16(std::uint32_t& value) { value = reader_.readBe16(); }
  template <std::size_t N>
  void bytes(std::array<std::uint8_t, N>& value) {
    reader_.readBytes(value);
  }
  bool ok() const { return reader_.ok(); }
  ByteView rest() const { return reader_.rest(); }

 private:
  ByteReader reader_;
};

class WriteCodec {
 public:
  explicit WriteCodec(RecordIO& to) : writer_(to) {}
  void item(int, std::string_view) {}
  void byte(std::uint8_t value) { writer_.putByte(value); }
  void be16(std::uint16_t value) { writer_.putBe16(value); }
  void be32(std::uint32_t value) { writer_.putBe32(value); }
  void unsigned16(std::int32_t value) { writer_.putBe16(static_cast<std::uint32_t>(value)); }
  void type(FieldType value) { unsigned16(codeOf(value)); }
  void signed16(std::int32_t value) { writer_.putBe16(static_cast<std::uint32_t>(value)); }
  void low16(std::uint32_t value) { writer_.putBe16(value); }
  template <std::size_t N>
  void bytes(const std::array<std::uint8_t, N>& value) {
    writer_.putBytes(value);
  }

 private:
  RecordIO& writer_;
};

// A part ends where the next one is named.
class PartCodec {
 public:
  void item(int number, std::string_view name) {
    closePart();
    parts_.push_back({number, name, offset_, 0});
  }
  void byte(std::uint8_t) { offset_ += 1; }
  void be16(std::uint16_t) { offset_ += 2; }
  void be32(std::uint32_t) { offset_ += 4; }
  void unsigned16(std::int32_t) { offset_ += 2; }
  void type(FieldType) { offset_ += 2; }
  void signed16(std::int32_t) { offset_ += 2; }
  void low16(std::uint32_t) { offset_ += 2; }
  template <std::size_t N>
  void bytes(const std::array<std::uint8_t, N>&) {
    offset_ += N;
  }
  std::vector<DatabaseRecordPart> finish() {
    closePart();
    return std::move(parts_);
  }

 private:
  void closePart() {
    if (!parts_.empty()) parts_.back().size = offset_ - parts_.back().offset;
  }

  std::vector<DatabaseRecordPart> parts_;
  std::size_t offset_ = 0;
};

template <class Codec, class Filters>
void codeFilters(Codec& codec, Filters& filters) {
  for (auto& filter : filters) {
    codec.be16(filter.enabled);
    codec.be16(filter.field);
    codec.bytes(filter.value1);
    codec.bytes(filter.value2);
    codec.be32(filter.number1);
    codec.be32(filter.number2);
    codec.byte(filter.mode);
    codec.byte(filter.grouping);
  }
}

template <class Codec, class Keys>
void codeSortKeys(Codec& codec, Keys& keys) {
  for (auto& key : keys) {
    codec.byte(key.field);
    codec.byte(key.order);
  }
}

template <class Codec, class Field>
void codeField(Codec& codec, Field& field) {
  codec.type(field.type);
  codec.unsigned16(field.width);
  codec.byte(field.option_a);
  codec.byte(field.option_b);
  codec.signed16(field.column_width);
  codec.byte(field.export_flag);
  codec.byte(field.record_view_flag);
  codec.byte(field.option_c3);
  codec.byte(field.encrypt_flag);
  codec.bytes(field.area_d);
  codec.bytes(field.area_e);
  codec.bytes(field.area_f);
  codec.byte(field.byte_g);
  codec.byte(field.byte_h);
  codec.bytes(field.name);
  codec.bytes(field.area_i);
}

template <class Codec, class ViewType>
void codeView(Codec& codec, ViewType& view) {
  codec.bytes(view.name);
  codec.byte(view.live_update);
  codec.byte(view.action);
  codec.bytes(view.target);
  codec.bytes(view.field_order);
  codec.be32(view.item6);
  for (auto& entry : view.entries) {
    codec.signed16(entry.column_width);
    codec.byte(entry.export_flag);
    codec.byte(entry.record_view_flag);
  }
  codeFilters(codec, view.filters);
  codec.be16(view.item9);
  codeSortKeys(codec, view.sort);
}

template <class Codec, class Schema>
void codeSearchSettings(Codec& codec, Schema& schema) {
  codec.item(12, "search field");
  codec.byte(schema.search_field);
  codec.item(12, "search case");
  codec.byte(schema.search_case);
  codec.item(13, "search text");
  codec.bytes(schema.search_text);
  codec.item(14, "search match");
  codec.byte(schema.search_match);
}

// Items 15 to 28: options, orders, texts and numbers between the fields and the views.
template <class Codec, class Schema>
void codeOptions(Codec& codec, Schema& schema) {
  codec.item(15, "stamping option");
  codec.be16(schema.stamping_option);
  codec.item(15, "modification stamp option");
  codec.be16(schema.modification_stamp_option);
  codec.item(15, "");
  codec.be16(schema.item15_third);
  codec.item(16, "sort pending");
  codec.byte(schema.sort_pending);
  codec.item(17, "display order");
  codec.bytes(schema.display_order);
  codec.item(18, "");
  codec.bytes(schema.item18);
  codec.item(19, "");
  codec.bytes(schema.item19);
  codec.item(20, "");
  codec.byte(schema.item20);
  codec.item(21, "security word");
  codec.low16(schema.security_word);
  codec.item(22, "edition");
  codec.bytes(schema.edition);
  codec.item(23, "category");
  codec.bytes(schema.category);
  codec.item(23, "author");
  codec.bytes(schema.author);
  codec.item(23, "access password");
  codec.bytes(schema.access_password);
  codec.item(23, "");
  codec.bytes(schema.item23_rest);
  codec.item(24, "current record index");
  codec.be16(schema.current_record_index);
  codec.item(25, "");
  codec.bytes(schema.item25);
  codec.item(26, "next record serial");
  codec.be16(schema.next_serial);
  codec.item(27, "");
  codec.be32(schema.item27);
  codec.item(28, "label width adjustment");
  codec.signed16(schema.label_width_adjustment);
}

// Items 34 to 41, behind the views.
template <class Codec, class Schema>
void codeTail(Codec& codec, Schema& schema) {
  codec.item(34, "number of views");
  codec.be16(schema.view_count);
  codec.item(35, "current view");
  codec.byte(schema.current_view);
  codec.item(35, "");
  codec.bytes(schema.item35_rest);
  codec.item(35, "encryption mode");
  codec.byte(schema.encryption_mode);
  codec.item(36, "password check block");
  codec.bytes(schema.password_check);
  codec.item(36, "");
  codec.byte(schema.item36_last);
  codec.item(37, "password check sum");
  codec.byte(schema.password_check_sum);
  codec.item(37, "password check present");
  codec.byte(schema.password_check_present);
  codec.item(38, "code page");
  codec.bytes(schema.code_page);
  codec.item(39, "");
  codec.be32(schema.item39);
  codec.item(40, "alarm fields");
  codec.bytes(schema.alarm_fields);
  codec.item(40, "");
  codec.bytes(schema.item40_rest);
  codec.item(41, "");
  codec.bytes(schema.item41);
}

template <class Codec, class Schema>
void codeDatabaseRecord(Codec& codec, Schema& schema) {
  codec.item(1, "head block");
  codec.bytes(schema.head);
  codec.item(2, "marker");
  codec.bytes(schema.marker);
  codec.item(3, "format version");
  codec.byte(schema.format_version);
  codec.item(4, "auto-number counter");
  codec.be32(schema.next_auto_number);
  codec.item(5, "filters");
  codeFilters(codec, schema.filters);
  codec.item(6, "sort keys");
  codeSortKeys(codec, schema.sort);
  codec.item(7, "");
  codec.bytes(schema.item7);
  codec.item(8, "");
  codec.be16(schema.item8[0]);
  codec.be16(schema.item8[1]);
  codec.item(9, "");
  codec.bytes(schema.item9);
  codec.item(10, "");
  codec.bytes(schema.item10);
  codec.item(11, "field definitions");
  for (auto& field : schema.fields) codeField(codec, field);
  codeSearchSettings(codec, schema);
  codeOptions(codec, schema);
  codec.item(29, "");
  codec.bytes(schema.item29);
  codec.item(30, "snooze minutes");
  codec.be16(schema.snooze_minutes);
  codec.item(31, "");
  codec.bytes(schema.item31);
  codec.item(32, "alarm switches");
  codec.bytes(schema.alarm_switches);
  codec.item(33, "views");
  for (auto& view : schema.views) codeView(codec, view);
  codeTail(codec, schema);
}

}  // namespace

void initSchema(DatabaseRecord& schema) {
  schema = DatabaseRecord{};
  setAreaText(schema.edition, "Pocket PC Tabelion");
  for (std::size_t slot = 0; slot < kFieldSlots; ++slot) {
    schema.display_order[slot] = static_cast<std::uint8_t>(slot);
    setAreaText(schema.fields[slot].name, fmt::format("Field {}", slot + 1));
  }
  for (View& view : schema.views) {
    for (std::size_t slot = 0; slot < kFieldSlots; ++slot) {
      const FieldDefinition& field = schema.fields[slot];
      view.field_order[slot] = static_cast<std::uint8_t>(slot);
      view.entries[slot] = {field.column_width, field.export_flag, field.record_view_flag};
    }
  }
}

void writeDatabaseRecord(const DatabaseRecord& schema, RecordIO& to) {
  WriteCodec codec(to);
  codeDatabaseRecord(codec, schema);
  to.putBytes(schema.surplus);
}

bool readDatabaseRecord(ByteView record, DatabaseRecord& schema) {
  ReadCodec codec(record);
  codeDatabaseRecord(codec, schema);
  schema.surplus.assign(codec.rest().begin(), codec.rest().end());
  return codec.ok();
}

std::vector<DatabaseRecordPart> databaseRecordParts() {
  DatabaseRecord schema;
  PartCodec codec;
  codeDatabaseRecord(codec, schema);
  return codec.finish();
}

}  // namespace tabelion
