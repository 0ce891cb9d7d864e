#include "engine/database_record.h"

#include <string>

#include <fmt/format.h>

#include "engine/database_record_order.h"

namespace tabelion {
namespace {

class ReadCodec {
 public:
  explicit ReadCodec(ByteView bytes) : reader_(bytes) {}
  void item(int, std::string_view) {}
  static bool wantsInside(std::size_t) { return true; }
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
  static bool wantsInside(std::size_t) { return true; }
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
  static bool wantsInside(std::size_t) { return true; }
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
