#include "security/database_encryption.h"

#include <algorithm>

namespace tabelion {
namespace {

std::uint8_t sumOf(ByteView bytes) {
  std::uint8_t sum = 0;
  for (const std::uint8_t byte : bytes) sum = static_cast<std::uint8_t>(sum + byte);
  return sum;
}

std::vector<std::uint32_t> recordsWhere(const Database& database, bool enciphered,
                                        const RecordTest& wanted = {}) {
  std::vector<std::uint32_t> positions;
  for (std::uint32_t i = 0; i < database.records.count(); ++i) {
    const ByteView record = database.records[i].bytes();
    if (isRecordEncrypted(record) == enciphered && (!wanted || wanted(record))) {
      positions.push_back(i);
    }
  }
  return positions;
}

Bytes copyOf(ByteView bytes) {
  return Bytes(bytes.begin(), bytes.end());
}

}  // namespace

void SetPasswordCheck(DatabaseRecord& schema, std::string_view password,
                      const RandomSource& random) {
  for (std::uint8_t& byte : schema.password_check) byte = static_cast<std::uint8_t>(random());
  schema.password_check_sum = sumOf(schema.password_check);
  ExpandedKey key;
  MakeKey(password, key);
  EncipherBuffer(schema.password_check, key);
  schema.password_check_present = 1;
}

bool PasswordMatchesCheck(const DatabaseRecord& schema, std::string_view password) {
  if (schema.password_check_present == 0) return true;
  ExpandedKey key;
  MakeKey(password, key);
  auto check = schema.password_check;
  DecipherBuffer(check, key);
  return sumOf(check) == schema.password_check_sum;
}

DecryptSummary DecryptRecords(Database& database, const ExpandedKey& key, bool forced,
                              const RecordsVisited& visited) {
  DecryptSummary summary;
  const bool by_hand = database.schema.encryption_mode == kEncryptRecordsByHand;
  if (by_hand && !forced) return summary;
  const auto positions = recordsWhere(database, true);
  const auto all = static_cast<std::uint32_t>(positions.size());
  for (const std::uint32_t position : positions) {
    Bytes record = copyOf(database.records[position].bytes());
    if (DecryptRecord(database.schema, record, key) == kRecordDecrypted) {
      if (by_hand) record[1 + kStampFlagOffset] |= kClearByDatabase;
      // Never too long: DecryptRecord gives nothing that a record cannot hold.
      (void)database.records.replace(position, record);
      ++summary.deciphered;
    } else {
      ++summary.failed;
    }
    if (visited) visited(summary.deciphered + summary.failed, all);
  }
  return summary;
}

EncryptSummary EncryptRecords(Database& database, Engine& engine, const ExpandedKey& key,
                              const RecordTest& wanted, const RecordsVisited& visited) {
  EncryptSummary summary;
  const auto positions = recordsWhere(database, false, wanted);
  const auto all = static_cast<std::uint32_t>(positions.size());
  const std::uint16_t serial_before = database.schema.next_serial;
  std::vector<Bytes> enciphered;
  enciphered.reserve(positions.size());
  for (const std::uint32_t position : positions) {
    enciphered.push_back(copyOf(database.records[position].bytes()));
    if (!EncryptRecordFields(database.schema, enciphered.back(), key,
                             [&] { return newStamp(database, engine); })) {
      database.schema.next_serial = serial_before;
      summary.too_long = position;
      return summary;
    }
    if (visited) visited(static_cast<std::uint32_t>(enciphered.size()), all);
  }
  for (std::size_t i = 0; i < positions.size(); ++i) {
    (void)database.records.replace(positions[i], enciphered[i]);  // their lengths were checked
  }
  if (database.schema.encryption_mode == kEncryptWholeDatabase) {
    database.schema.head[kStampFlagOffset] |= kDatabaseEncrypted;
  }
  setDirty(database);
  summary.enciphered = all;
  return summary;
}

std::vector<OverlongRecordValue> overlongValues(const Database& database) {
  std::vector<OverlongRecordValue> found;
  for (const std::uint32_t position : recordsWhere(database, false)) {
    for (const OverlongValue& value :
         overlongValues(database.schema, database.records[position].bytes())) {
      found.push_back({position, value});
    }
  }
  return found;
}

HeadBlock newStamp(Database& database, Engine& engine) {
  return makeStamp(engine.clock.local(), database.schema.next_serial++, engine.random);
}

}  // namespace tabelion
