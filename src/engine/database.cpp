#include "engine/database.h"

#include <algorithm>
#include <cctype>

#include <fmt/format.h>

#include "engine/calendar.h"
#include "engine/packed_record.h"
#include "engine/record_io.h"

namespace tabelion {
namespace {

int runRefresh(Database& database, Engine& engine) {
  return engine.steps.refresh ? engine.steps.refresh(database) : 1;
}

bool readFieldRecords(Database& database, RecordIOFile& reader) {
  bool stopped = false;
  for (FieldRecord& field : database.fields) {
    std::uint8_t attributes = 0;
    UniqueId unique_id{};
    if (!reader.nextRecord(attributes, unique_id)) return false;
    const ByteView record = reader.record();
    const int result = stopped ? kFieldRecordNoData : readFieldRecord(record, field);
    if (result == kFieldRecordDamaged) return false;
    if (result == kFieldRecordNoData) {
      stopped = true;  // this field and those after it keep their defaults
      field.unread = {Bytes(record.begin(), record.end()), attributes, unique_id};
      continue;
    }
    field.attributes = attributes;
    field.unique_id = unique_id;
  }
  return true;
}

bool readDataRecords(Database& database, RecordIOFile& reader, FileImage image, Engine& engine) {
  const int count = database.header.record_count - kSchemaRecords;
  if (count < 0 || count > kMaxRecords) return false;
  database.records.adopt(std::move(image), static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    std::uint8_t attributes = 0;
    UniqueId unique_id{};
    if (!reader.nextRecord(attributes, unique_id)) {
      engine.message(fmt::format("ERROR:Reading Record: {}", i));
      return false;
    }
    Record record = Record::borrowed(reader.record());
    record.attributes = attributes;
    record.unique_id = unique_id;
    database.records.addBorrowed(std::move(record));
  }
  return true;
}

// Everything behind the header, from the record list on.
bool readRecords(Database& database, RecordIOFile& reader, const FileImage& image, Engine& engine) {
  if (database.header.record_count < kSchemaRecords) return false;
  if (!reader.nextRecord(database.schema_attributes, database.schema_unique_id) ||
      !readDatabaseRecord(reader.record(), database.schema) ||
      !readFieldRecords(database, reader)) {
    return false;
  }
  if (!reader.nextRecord(database.extension.attributes, database.extension.unique_id) ||
      !readExtensionRecord(reader.record(), database.extension) ||
      !readDataRecords(database, reader, image, engine)) {
    return false;
  }
  const auto last = reader.record();
  const ByteView file = image.span();
  const ByteView rest =
      file.subspan(static_cast<std::size_t>(last.data() + last.size() - file.data()));
  database.surplus.assign(rest.begin(), rest.end());
  if (database.row_header) setRowHeader(database, true);
  return true;
}

void runPostLoadStep(Database& database, Engine& engine) {
  const int index = database.schema.current_record_index;
  if (index < kSchemaRecords || index >= database.header.record_count) {
    database.schema.current_record_index = 0;
    // Without somebody who sorts, the order stays stale and has to be called so.
    if (database.schema.sort_pending && engine.steps.sort_and_rebuild) {
      engine.steps.sort_and_rebuild(database);
      database.schema.sort_pending = 0;
    }
  } else {
    const auto current = static_cast<std::uint32_t>(index - kSchemaRecords);
    database.records[current].is_current = true;
    if (engine.steps.restore_current_record) {
      engine.steps.restore_current_record(database, current);
    }
  }
  database.needs_refresh = true;
  runRefresh(database, engine);
}

// Database record 0, field records 1 to 100, data records from 101: the extension record is not
// entered, so a data record's number here is its record-list index less one.
void rebuildUniqueIds(Database& database) {
  UIDMap& map = database.unique_ids;
  map.clear();
  map.reserve(1 + kFieldSlots + database.records.count());
  std::uint32_t index = 0;
  map.add(database.schema_unique_id, index++);
  for (const FieldRecord& field : database.fields) map.add(field.unique_id, index++);
  for (const Record& record : database.records) map.add(record.unique_id, index++);
}

bool hasContent(const FieldRecord& field) {
  return !field.items.empty() || !field.ranges.empty();
}

// What was not read is written back as it was, until one of those fields has items: then all have
// to be readable again.
void settleUnread(std::array<FieldRecord, kFieldSlots>& fields) {
  const bool must_be_read = std::any_of(fields.begin(), fields.end(), [](const FieldRecord& field) {
    return field.unread && hasContent(field);
  });
  if (!must_be_read) return;
  for (FieldRecord& field : fields) {
    FieldRecord read;
    if (field.unread &&
        (hasContent(field) || readFieldRecord(field.unread->bytes, read) != kFieldRecordRead)) {
      field.unread.reset();
    }
  }
}

// Why the file cannot be laid out. Data records are within their limit by the store.
std::string layoutFault(const Database& database) {
  for (std::size_t slot = 0; slot < database.fields.size(); ++slot) {
    const std::size_t length = fieldRecordLength(database.fields[slot]);
    if (length <= kMaxRecordSize) continue;
    return fmt::format("the list of the field \"{}\" takes {} bytes; {} is the limit",
                       fieldName(database.schema.fields[slot]), length, kMaxRecordSize);
  }
  return "it would be larger than 4 GiB, which is the most that a database can have";
}

// Gives every record its place in the file; the end of the last one.
std::uint64_t assignOffsets(Database& database) {
  std::uint64_t offset = database.header.info_offset + kInfoBlockSize;
  const auto place = [&offset](std::uint32_t& at, std::size_t length) {
    at = static_cast<std::uint32_t>(offset);
    offset += length;
  };
  place(database.schema_offset, kDatabaseRecordSize + database.schema.surplus.size());
  for (FieldRecord& field : database.fields) place(field.offset, fieldRecordLength(field));
  place(database.extension.offset, extensionRecordLength(database.extension));
  for (Record& record : database.records.records()) place(record.offset, record.length());
  return offset;
}

}  // namespace

int initDatabase(Database& database, Engine& engine) {
  freeRecords(database);
  database.record_index.clear();
  for (FieldRecord& field : database.fields) field = FieldRecord{};
  database.extension = ExtensionRecord{};
  database.surplus.clear();
  database.selected.reset();
  database.unique_ids.clear();
  initSchema(database.schema);
  database.schema_attributes = 0;
  database.schema_unique_id = {};
  initHeader("", database.header);
  database.row_header = false;
  const int result = runRefresh(database, engine);
  database.dirty = false;
  database.needs_refresh = false;
  return result;
}

int openDatabase(Database& database, Engine& engine) {
  closeDatabase(database);
  clearDirty(database);
  auto image = engine.files.read(database.path);
  if (!image.ok()) {
    engine.message(fmt::format("ERROR: Cannot Open File: {} for reading", database.path));
    return 0;
  }
  database.header = parseHeader(image->span());
  if (database.header.creator != kCreator) {
    engine.message("ERROR: Reading header!\nMake sure you are converting a Tabelion data file!\n");
    return 0;
  }
  engine.last_probed_header = database.header;

  RecordIOFile reader;
  if (!reader.openForRead(*image, database.header.record_count, kHeaderSize)) {
    engine.message("Could not initialize file");
    return 0;
  }
  if (!readRecords(database, reader, *image, engine)) {
    engine.message("Could not read file");
    return 0;
  }
  runPostLoadStep(database, engine);
  rebuildUniqueIds(database);
  return 1;
}

bool layOutDatabase(Database& database, FileLayout& layout) {
  settleUnread(database.fields);
  const std::uint32_t count = database.records.count();
  FileHeader& header = database.header;
  header.info_offset = kRecordListEntrySize * (count + 112);
  header.record_count = static_cast<std::uint16_t>(count + kSchemaRecords);
  if (assignOffsets(database) + database.surplus.size() > 0xFFFFFFFFu) return false;
  if (database.dirty) database.schema_attributes |= kAttributeDirty;

  layout.head.clear();
  layout.head.reserve(database.extension.offset + extensionRecordLength(database.extension));
  ByteWriter writer(layout.head);
  writeHeader(header, writer);
  writeRecordListEntry(database.schema_offset, database.schema_attributes,
                       database.schema_unique_id, writer);
  for (const FieldRecord& field : database.fields) {
    if (field.unread) {
      writeRecordListEntry(field.offset, field.unread->attributes, field.unread->unique_id, writer);
    } else {
      writeRecordListEntry(field.offset, field.attributes, field.unique_id, writer);
    }
  }
  writeRecordListEntry(database.extension.offset, database.extension.attributes,
                       database.extension.unique_id, writer);
  for (const Record& record : database.records) {
    writeRecordListEntry(record.offset, record.attributes, record.unique_id, writer);
  }
  writer.putZeros(kGapSize + kInfoBlockSize);

  RecordIOFile records;
  records.attachForWrite(layout.head);
  writeDatabaseRecord(database.schema, records);
  if (!records.endRecord(database.schema_attributes, database.schema_unique_id)) return false;
  for (const FieldRecord& field : database.fields) {
    writeFieldRecord(field, records);
    if (!records.endRecord(field.attributes, field.unique_id)) return false;
  }
  writeExtensionRecord(database.extension, records);
  if (!records.endRecord(database.extension.attributes, database.extension.unique_id)) return false;

  layout.pieces.clear();
  layout.pieces.reserve(count + 2);
  layout.pieces.push_back(layout.head);
  for (const Record& record : database.records) layout.pieces.push_back(record.bytes());
  layout.pieces.push_back(database.surplus);
  return true;
}

Status trySaveDatabase(Database& database, Engine& engine) {
  database.header.modification_date = secondsSince1904(engine.clock.utc());
  FileLayout layout;
  if (!layOutDatabase(database, layout)) {
    return makeError(ErrorKind::kRefused,
                     fmt::format("Could not write {}: {}", database.path, layoutFault(database)));
  }
  const Status written = engine.files.replace(database.path, layout.pieces);
  if (!written.ok() && written.error().kind == ErrorKind::kRefused) return written;
  clearDirty(database);
  if (!written.ok() && written.error().kind == ErrorKind::kWarning) {
    engine.message(written.error().text);
    return Done{};
  }
  return written;
}

int saveDatabase(Database& database, Engine& engine) {
  return trySaveDatabase(database, engine).ok() ? 1 : 0;
}

void nameCurrentRecord(Database& database) {
  const RecordStore& records = database.records;
  const auto current = std::find_if(records.begin(), records.end(),
                                    [](const Record& record) { return record.is_current; });
  const auto position = static_cast<std::uint16_t>(current - records.begin());
  database.schema.current_record_index =
      current == records.end() ? 0 : static_cast<std::uint16_t>(position + kSchemaRecords);
}

void freeRecords(Database& database) {
  database.records.clear();
  database.record_index.clear();
}

void freeFieldItems(Database& database, int slot) {
  database.fields[static_cast<std::size_t>(slot)].items.clear();
}

void closeDatabase(Database& database) {
  freeRecords(database);
  for (FieldRecord& field : database.fields) field = FieldRecord{};
  database.surplus.clear();
}

int fileExists(Files& files, const std::string& path) {
  return files.readStart(path, 1).ok() ? 1 : 0;
}

std::uint32_t appendRecord(Database& database, Engine& engine, ByteView bytes, bool stamp,
                           const UniqueId& unique_id) {
  if (database.records.isFull()) return kNoPosition;
  Bytes packed(bytes.begin(), bytes.end());
  if (stamp) {
    UnpackedRecord record = unpackRecord(bytes);
    std::uint32_t next_number = database.schema.next_auto_number;
    std::bitset<kFieldSlots> numbered;
    for (std::size_t slot = 0; slot < kFieldSlots; ++slot) {
      if (traitsOf(database.schema.fields[slot].type).source != ValueSource::kCounter) continue;
      record.slots[slot].emplace(4);
      storeLe32(record.slots[slot]->data(), next_number++);
      numbered.set(slot);
    }
    if (database.schema.stamping_option) {
      const HeadBlock block =
          makeStamp(engine.clock.local(), database.schema.next_serial, engine.random);
      record.prefix.assign(1, kStampedPrefix);
      record.prefix.insert(record.prefix.end(), block.begin(), block.end());
    }
    if (!packRecord(record, packed)) return kNoPosition;
    if (database.schema.stamping_option) ++database.schema.next_serial;
    database.schema.next_auto_number = next_number;
    database.selected |= numbered;
  }
  const std::uint32_t position =
      database.records.insert(database.records.count(), packed, unique_id);
  if (position != kNoPosition) setDirty(database);
  return position;
}

void touchStamp(Bytes& record, const CalendarTime& local) {
  if (recordStamp(record)) storeLe24(&record[1 + 14], stampMinutes(local));
}

std::string databaseCodePage(const DatabaseRecord& schema) {
  std::string mark = areaText(schema.code_page);
  const bool readable = std::all_of(mark.begin(), mark.end(), [](unsigned char c) {
    return c < 0x80 && (std::isalnum(c) || c == '-' || c == '_');
  });
  return readable ? mark : std::string();
}

}  // namespace tabelion
