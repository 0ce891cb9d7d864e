// Enciphering the records of a whole database, and the block by which it knows the password that
// was used last. Deciphering is OpenedRecords::open.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "engine/database.h"
#include "security/cipher.h"
#include "security/record_encryption.h"

namespace tabelion {

// DatabaseRecord::encryption_mode. Others count as kEncryptNever.
enum EncryptionMode : std::uint8_t {
  kEncryptWholeDatabase = 0,  // enciphered in the file, in clear while it is open
  kEncryptRecordsOnSave = 1,  // the form enciphers every record that it saves
  kEncryptRecordsByHand = 2,  // the form's menu enciphers and deciphers one record
  kEncryptNever = 3,          // nothing happens by itself
};

inline constexpr const char* kEncryptionModeNames[] = {"whole database", "automatic", "by record",
                                                       "none"};

// Nine random bytes, enciphered with the password, and their sum in clear.
void SetPasswordCheck(DatabaseRecord& schema, std::string_view password,
                      const RandomSource& random);
// Yes where no password is recorded yet. The sum is one byte, so one wrong password in 256 passes.
bool PasswordMatchesCheck(const DatabaseRecord& schema, std::string_view password);

// Takes back what says that the database is enciphered: its mark and the password check.
void markDeciphered(DatabaseRecord& schema);

// Enciphers every record that is in clear, and marks the database dirty, and as enciphered where it
// is kept so as a whole. Either all of them or none: the number of a record (from 0) that would
// become too long to be stored is kept in `too_long`, and nothing has changed then.
struct EncryptSummary {
  std::uint32_t enciphered = 0;
  std::uint32_t too_long = kNoPosition;
};
EncryptSummary encryptRecords(Database& database, Engine& engine, const ExpandedKey& key);

// The records in clear that hold an overlong value, in record order.
struct OverlongRecordValue {
  std::uint32_t position = 0;
  OverlongValue value;
};
std::vector<OverlongRecordValue> overlongValues(const Database& database);

// A stamp for a record of this database; takes the next serial number.
HeadBlock newStamp(Database& database, Engine& engine);

}  // namespace tabelion
