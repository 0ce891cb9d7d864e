// Settings and small databases for the tests of this folder.
#pragma once

#include <array>
#include <string>

#include "engine/database.h"
#include "engine/packed_record.h"
#include "query/format_settings.h"

namespace tabelion {

inline LocaleInfo localeOf(std::string date_pattern, std::string date_separator,
                           std::string time_pattern = "h:mm:ss tt",
                           std::string time_separator = ":") {
  LocaleInfo locale;
  locale.short_date_pattern = std::move(date_pattern);
  locale.date_separator = std::move(date_separator);
  locale.time_pattern = std::move(time_pattern);
  locale.time_separator = std::move(time_separator);
  return locale;
}

inline FormatSettings chosen(int date_format, int time_format = 0, bool decimal_comma = false) {
  return makeFormatSettings({date_format, time_format, decimal_comma}, LocaleInfo{});
}

inline Bytes bytesOf(std::string_view text) {
  return Bytes(text.begin(), text.end());
}

// Four bytes, as integers and dates are stored.
inline Bytes number(std::int64_t value) {
  Bytes bytes(4);
  storeLe32(bytes.data(), static_cast<std::uint32_t>(value));
  return bytes;
}

// A database of one field in slot 0 and one record that holds its value.
struct OneField {
  Database database;
  UnpackedRecord unpacked;
  Bytes record;

  OneField(FieldType type, Bytes value) {
    initSchema(database.schema);
    field().type = type;
    unpacked.prefix.assign(23, 0);
    unpacked.prefix[0] = kStampedPrefix;
    set(std::move(value));
  }
  FieldDefinition& field() { return database.schema.fields[0]; }
  FieldRecord& items() { return database.fields[0]; }
  void set(Bytes value) {
    unpacked.slots[0] = std::move(value);
    pack();
  }
  void encrypt() {
    field().encrypt_flag = 1;
    unpacked.prefix[1 + kStampFlagOffset] = kRecordEncrypted;
    pack();
  }
  void addItem(std::uint8_t key, std::string text) {
    PopupItem item;
    item.key[0] = key;
    item.text = std::move(text);
    items().items.push_back(item);
  }

 private:
  void pack() {
    record.clear();
    (void)packRecord(unpacked, record);
  }
};

}  // namespace tabelion
