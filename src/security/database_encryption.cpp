#include "security/database_encryption.h"

#include <algorithm>

namespace tabelion {
namespace {

// Calls `work` with the position of every record whose flagged fields are in clear. `reach` says
// how many bytes of a record are worth fetching ahead.
template <typename Work>
void forRecordsInClear(const Database& database, const std::size_t& reach, const Work& work) {
  const RecordStore& records = database.records;
  for (std::uint32_t i = 0; i < records.count(); ++i) {
    records.fetchAhead(i, reach);
    if (!isRecordEncrypted(records[i].bytes())) work(i);
  }
}

// The most bytes by which a record can grow.
std::size_t mostGrowth(const DatabaseRecord& schema) {
  std::size_t growth = sizeof(HeadBlock);
  for (const FieldDefinition& field : schema.fields) {
    if (field.encrypt_flag != 0) growth += field.type == FieldType::kNote ? kNoteSize : 2;
  }
  return growth;
}

bool fitsEnciphered(const Database& database, ByteView record, const ExpandedKey& key) {
  Bytes enciphered;
  return EncryptRecordFields(
      database.schema, record, key, [] { return HeadBlock{}; }, enciphered);
}

}  // namespace

void SetPasswordCheck(DatabaseRecord& schema, std::string_view password,
                      const RandomSource& random) {
  for (std::uint8_t& byte : schema.password_check) byte = static_cast<std::uint8_t>(random());
  ExpandedKey key;
  MakeKey(password, key);
  schema.password_check_sum = EncipherBuffer(schema.password_check, key);
  schema.password_check_present = 1;
}

bool PasswordMatchesCheck(const DatabaseRecord& schema, std::string_view password) {
  if (schema.password_check_present == 0) return true;
  ExpandedKey key;
  MakeKey(password, key);
  auto check = schema.password_check;
  return DecipherBuffer(check, key) == schema.password_check_sum;
}

void markDeciphered(DatabaseRecord& schema) {
  schema.password_check_present = 0;
  schema.head[kStampFlagOffset] &= static_cast<std::uint8_t>(~kDatabaseEncrypted);
}

EncryptSummary encryptRecords(Database& database, Engine& engine, const ExpandedKey& key) {
  EncryptSummary summary;
  const std::size_t growth = mostGrowth(database.schema);
  for (std::uint32_t i = 0; i < database.records.count(); ++i) {
    const ByteView record = database.records[i].bytes();
    if (record.size() + growth > kMaxRecordSize && !isRecordEncrypted(record) &&
        !fitsEnciphered(database, record, key)) {
      summary.too_long = i;
      return summary;
    }
  }
  const FlaggedFields flagged(database.schema);
  RecordFront enciphered;
  const StampSource stamp = [&] { return newStamp(database, engine); };
  forRecordsInClear(database, enciphered.old_size, [&](std::uint32_t position) {
    const ByteView record = database.records[position].bytes();
    // Both fit, as was seen above.
    (void)encryptRecordFront(flagged, record, key, stamp, enciphered);
    (void)database.records.replaceFront(position, enciphered.old_size, enciphered.bytes);
    ++summary.enciphered;
  });
  if (database.schema.encryption_mode == kEncryptWholeDatabase) {
    database.schema.head[kStampFlagOffset] |= kDatabaseEncrypted;
  }
  setDirty(database);
  return summary;
}

std::vector<OverlongRecordValue> overlongValues(const Database& database) {
  std::vector<OverlongRecordValue> found;
  forRecordsInClear(database, kMaxRecordSize, [&](std::uint32_t position) {
    for (const OverlongValue& value :
         overlongValues(database.schema, database.records[position].bytes())) {
      found.push_back({position, value});
    }
  });
  return found;
}

HeadBlock newStamp(Database& database, Engine& engine) {
  return makeStamp(engine.clock.local(), database.schema.next_serial++, engine.random);
}

}  // namespace tabelion
