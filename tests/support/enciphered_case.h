// Databases with enciphered records for property tests, and passwords that are wrong and all the
// same pass the check of one of their records. RC_PARAMS="max_success=100000" runs more cases.
#pragma once

#include <rapidcheck.h>

#include <string>
#include <vector>

#include "security/database_encryption.h"
#include "support/phone_world.h"

namespace tabelion {

struct EncipheredCase {
  // Slot 0 is a name in clear, the others are flagged.
  std::unique_ptr<Database> database;
  std::vector<std::string> passwords;  // of the records, at least one
  std::vector<std::string> wrong;      // pass for the right one on some record
  std::vector<std::size_t> password_of;
  std::vector<Bytes> clear;  // the records as they were before they were enciphered

  ByteView record(std::size_t i) const {
    return database->records[static_cast<std::uint32_t>(i)].bytes();
  }
};

// The record's flagged values under a password; empty when it is a wrong one.
inline std::vector<Bytes> secretsUnder(const DatabaseRecord& schema, ByteView record,
                                       const std::string& password) {
  ExpandedKey key;
  MakeKey(password, key);
  Bytes clear;
  std::vector<Bytes> secrets;
  if (isRecordEncrypted(record)) {
    if (DecryptRecord(schema, record, key, clear) != kRecordDecrypted) return secrets;
  } else {
    clear.assign(record.begin(), record.end());
  }
  for (int slot = 1; slot < kFieldSlots; ++slot) {
    if (schema.fields[static_cast<std::size_t>(slot)].encrypt_flag == 0) continue;
    const auto value = slotValue(clear, slot);
    secrets.push_back(value ? Bytes(value->begin(), value->end()) : Bytes());
  }
  return secrets;
}

inline bool passesCheck(const EncipheredCase& made, ByteView record, const std::string& password) {
  return !secretsUnder(made.database->schema, record, password).empty();
}

inline EncipheredCase makeEncipheredCase(PhoneWorld& world, EncryptionMode mode,
                                         std::size_t most_passwords) {
  using namespace rc;
  EncipheredCase made;
  const auto word = [](int least, int most) {
    const auto letter = gen::elementOf(std::string("abcdefghijklmnopqrstuvwxyz 0123456789"));
    std::string text =
        *gen::container<std::string>(static_cast<std::size_t>(*gen::inRange(least, most)), letter);
    return text;
  };
  // What they hold can be told from noise: a text of a few letters, dates.
  std::vector<TestField> fields = {
      {"Name"}, {"Secret"}, {"Born", FieldType::kDate}, {"Met", FieldType::kDate}};
  for (const FieldType type : *gen::container<std::vector<FieldType>>(gen::element(
           FieldType::kText, FieldType::kLongText, FieldType::kFloat, FieldType::kInteger,
           FieldType::kTime, FieldType::kNote, FieldType::kCheckBox))) {
    if (fields.size() < 7) fields.push_back({"More", type});
  }
  TestRows rows;
  const auto date = [] {
    return "20" + std::to_string(*gen::inRange(10, 30)) + "-0" +
           std::to_string(*gen::inRange(1, 9)) + "-1" + std::to_string(*gen::inRange(0, 9));
  };
  const int count = *gen::inRange(1, 7);
  for (int i = 0; i < count; ++i) {
    std::vector<std::string> row = {word(0, 9), "x" + word(6, 16), date(), date()};
    for (std::size_t field = row.size(); field < fields.size(); ++field) {
      switch (fields[field].type) {
        case FieldType::kFloat:
          row.push_back(std::to_string(*gen::inRange(0, 99)) + ".5");
          break;
        case FieldType::kInteger:
          row.push_back(std::to_string(*gen::inRange(-900, 900)));
          break;
        case FieldType::kTime:
        case FieldType::kCheckBox:
          row.push_back("");
          break;
        default:
          row.push_back(word(0, 12));
      }
    }
    rows.push_back(std::move(row));
  }
  made.database = world.make("Safe", fields, rows);
  DatabaseRecord& schema = made.database->schema;
  schema.encryption_mode = mode;
  for (std::size_t i = 1; i < fields.size(); ++i) schema.fields[i].encrypt_flag = 1;

  for (std::size_t i = 0; i < most_passwords; ++i) made.passwords.push_back("p" + word(1, 8));
  for (std::uint32_t i = 0; i < made.database->records.count(); ++i) {
    const ByteView record = made.database->records[i].bytes();
    made.clear.emplace_back(record.begin(), record.end());
    made.password_of.push_back(*gen::inRange<std::size_t>(0, most_passwords));
    ExpandedKey key;
    MakeKey(made.passwords[made.password_of.back()], key);
    Bytes enciphered;
    RC_ASSERT(EncryptRecordFields(
        schema, made.clear.back(), key, [] { return HeadBlock{}; }, enciphered));
    RC_ASSERT(made.database->records.replace(i, enciphered));
  }
  if (*gen::inRange(0, 4) > 0) {
    SetPasswordCheck(schema, made.passwords[made.password_of.back()], [] { return 77u; });
  }
  // One of about 256 passes.
  const int wrong = *gen::inRange(0, 3);
  const std::string start = word(1, 5);
  for (int i = 0; i < 600 && static_cast<int>(made.wrong.size()) < wrong; ++i) {
    const std::string password = start + std::to_string(i);
    const std::size_t record = made.wrong.size() % made.clear.size();
    if (passesCheck(made, made.record(record), password)) made.wrong.push_back(password);
  }
  return made;
}

}  // namespace tabelion
