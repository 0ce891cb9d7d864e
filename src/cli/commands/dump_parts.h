// The parts of a dump. Texts are UTF-8; bytes without a better form are hexadecimal digits.
#pragma once

#include <vector>

#include <nlohmann/json.hpp>

#include "engine/check.h"
#include "engine/database.h"
#include "interchange/output_buffer.h"
#include "interchange/table_rows.h"
#include "interchange/text_encoding.h"

namespace tabelion {

nlohmann::ordered_json dumpHeader(ByteView file, const FileHeader& header,
                                  const TextEncoding& encoding);
// An object whose last member, unless it has no name, is bytes of any length in the file: as digits
// in memory they would be many times the file's size.
struct DumpedRecord {
  nlohmann::ordered_json json;
  std::string_view bytes_name = {};
  ByteView bytes = {};
};
void putDumped(OutputBuffer& out, const DumpedRecord& record);

// Every item by its number, with its name where it has one.
DumpedRecord dumpDatabaseRecord(const FileEntry& entry, const TextEncoding& encoding);
// The field slots and views that are in use or differ from a new database's.
std::vector<nlohmann::ordered_json> dumpFields(const DatabaseRecord& schema,
                                               const TextEncoding& encoding);
std::vector<nlohmann::ordered_json> dumpViews(const DatabaseRecord& schema,
                                              const TextEncoding& encoding);
DumpedRecord dumpFieldRecord(const FileEntry& entry, int slot, const TextEncoding& encoding);
DumpedRecord dumpExtensionRecord(const FileEntry& entry);

// Data records: entry, prefix, stamp, and per slot nothing, or its bytes and its text.
class RecordDump {
 public:
  // `now` (local) tells which of the 32-year turns a stamp's time is meant in.
  RecordDump(const Database& database, const TextEncoding& encoding, const CalendarTime& now);
  void put(const FileEntry& entry, std::size_t position, OutputBuffer& out);

 private:
  void putSlots(ByteView record, OutputBuffer& out);

  const Database& database_;
  CalendarTime now_;
  TableRows rows_;
  std::vector<std::string> names_;         // per slot, as JSON
  std::vector<std::size_t> first_column_;  // per slot; columns().size() where it has none
};

}  // namespace tabelion
