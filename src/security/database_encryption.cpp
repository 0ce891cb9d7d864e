#include "security/database_encryption.h"

#include <algorithm>

namespace tabelion {
namespace {

// Calls `work` with the position of every record whose flagged fields are enciphered, or in clear.
template <typename Work>
void forRecordsThatAre(bool enciphered, const Database& database, const Work& work) {
  const RecordStore& records = database.records;
  for (std::uint32_t i = 0; i < records.count(); ++i) {
    records.fetchAhead(i, kMaxRecordSize);
    if (isRecordEncrypted(records[i].bytes()) == enciphered) work(i);
  }
}

// The most bytes by which a record can grow.
std::size_t mostGrowth(const DatabaseRecord& schema) {
  std::size_t growth = sizeof(HeadBlock);
  for (const FieldDefinition& field : schema.fields) {
    if (field.encrypt_flag != 0) growth += field.type == kNote ? kNoteSize : 2;
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
  schema.password_check_sum = ByteSum(schema.password_check);
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
  return ByteSum(check) == schema.password_check_sum;
}

void MarkDeciphered(DatabaseRecord& schema) {
  schema.password_check_present = 0;
  schema.head[kStampFlagOffset] &= static_cast<std::uint8_t>(~kDatabaseEncrypted);
}

DecryptSummary DecryptRecords(Database& database, const ExpandedKey& key, bool forced) {
  DecryptSummary summary;
  const bool by_hand = database.schema.encryption_mode == kEncryptRecordsByHand;
  if (by_hand && !forced) return summary;
  Bytes clear;
  forRecordsThatAre(true, database, [&](std::uint32_t position) {
    const ByteView record = database.records[position].bytes();
    if (DecryptRecord(database.schema, record, key, clear) == kRecordDecrypted) {
      if (by_hand) clear[1 + kStampFlagOffset] |= kClearByDatabase;
      // Never too long: DecryptRecord gives nothing that a record cannot hold.
      (void)database.records.replace(position, clear);
      ++summary.deciphered;
    } else {
      ++summary.failed;
    }
  });
  WipeBytes(clear);
  return summary;
}

EncryptSummary EncryptRecords(Database& database, Engine& engine, const ExpandedKey& key,
                              const RecordTest& wanted) {
  EncryptSummary summary;
  const std::size_t growth = mostGrowth(database.schema);
  const auto isWanted = [&](ByteView record) {
    return !isRecordEncrypted(record) && (!wanted || wanted(record));
  };
  for (std::uint32_t i = 0; i < database.records.count(); ++i) {
    const ByteView record = database.records[i].bytes();
    if (record.size() + growth > kMaxRecordSize && isWanted(record) &&
        !fitsEnciphered(database, record, key)) {
      summary.too_long = i;
      return summary;
    }
  }
  Bytes enciphered;
  const StampSource stamp = [&] { return NewStamp(database, engine); };
  forRecordsThatAre(false, database, [&](std::uint32_t position) {
    const ByteView record = database.records[position].bytes();
    if (wanted && !wanted(record)) return;
    (void)EncryptRecordFields(database.schema, record, key, stamp, enciphered);
    (void)database.records.replace(position, enciphered);  // both fit, as was seen above
    ++summary.enciphered;
  });
  if (database.schema.encryption_mode == kEncryptWholeDatabase) {
    database.schema.head[kStampFlagOffset] |= kDatabaseEncrypted;
  }
  setDirty(database);
  return summary;
}

std::vector<OverlongRecordValue> OverlongValues(const Database& database) {
  std::vector<OverlongRecordValue> found;
  forRecordsThatAre(false, database, [&](std::uint32_t position) {
    for (const OverlongValue& value :
         OverlongValues(database.schema, database.records[position].bytes())) {
      found.push_back({position, value});
    }
  });
  return found;
}

HeadBlock NewStamp(Database& database, Engine& engine) {
  return makeStamp(engine.clock.local(), database.schema.next_serial++, engine.random);
}

}  // namespace tabelion
