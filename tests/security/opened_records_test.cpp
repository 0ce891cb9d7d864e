// What happens to enciphered records between being opened and being written, whatever was typed.
#include "security/opened_records.h"

#include <algorithm>

#include "engine/database_fixture.h"
#include "engine/stored_value.h"
#include "security/database_encryption.h"

namespace tabelion {
namespace {

// A name in clear, then a text and a date that are enciphered.
class OpenedRecordsTest : public DatabaseFixture {
 protected:
  OpenedRecordsTest() {
    addField(0, FieldType::kText, "Name");
    addField(1, FieldType::kText, "Secret");
    addField(2, FieldType::kDate, "Met");
    for (const std::size_t slot : {1, 2}) database.schema.fields[slot].encrypt_flag = 1;
    database.schema.encryption_mode = kEncryptWholeDatabase;
  }

  void add(const std::string& name, const std::string& password) {
    addInClear(name, "the secret of " + name);
    const auto position = database.records.count() - 1;
    Bytes record;
    ASSERT_TRUE(EncryptRecordFields(
        database.schema, bytes(position), Key(password), [] { return HeadBlock{}; }, record));
    ASSERT_TRUE(database.records.replace(position, record));
    in_file.push_back(record);
  }
  void addInClear(const std::string& name, const std::string& secret) {
    UnpackedRecord record = newRecord(database.schema);
    record.slots[0] = textBytes(name);
    record.slots[1] = textBytes(secret);
    record.slots[2] = Bytes{0x10, 0x90, 0, 0};
    Bytes packed;
    ASSERT_TRUE(packRecord(record, packed));
    ASSERT_NE(appendRecord(database, engine, packed, true), kNoPosition);
  }
  void rename(std::uint32_t position, const std::string& name) {
    UnpackedRecord record = unpackRecord(bytes(position));
    record.slots[0] = textBytes(name);
    Bytes packed;
    ASSERT_TRUE(packRecord(record, packed));
    ASSERT_TRUE(database.records.replace(position, packed));
  }

  static Bytes textBytes(const std::string& text) {
    Bytes bytes(text.begin(), text.end());
    bytes.push_back(0);
    return bytes;
  }
  struct Key : ExpandedKey {
    explicit Key(const std::string& password) { MakeKey(password, *this); }
  };
  ByteView bytes(std::uint32_t position) const { return database.records[position].bytes(); }
  bool isAsInFile(std::uint32_t position) const {
    return std::ranges::equal(bytes(position), in_file[position]);
  }
  // The secret as it stands, or as this password opens it; "-" where that does not open it.
  std::string secret(std::uint32_t position, const std::string& password = {}) const {
    Bytes record(bytes(position).begin(), bytes(position).end());
    if (isRecordEncrypted(record)) {
      Bytes clear;
      if (DecryptRecord(database.schema, record, Key(password), clear) != kRecordDecrypted) {
        return "-";
      }
      record = clear;
    }
    return std::string(storedText(*slotValue(record, 1)));
  }
  // One that is not this record's and passes its check all the same.
  std::string wrongPasswordFor(std::uint32_t position) const {
    for (int i = 0;; ++i) {
      const std::string password = "wrong" + std::to_string(i);
      if (secret(position, password) != "-") return password;
    }
  }
  PasswordAttempt open(const std::string& password, bool forced = false) {
    return opened.open(database, Password(password), forced);
  }

  OpenedRecords opened;
  std::vector<Bytes> in_file;  // the records, enciphered
};

TEST_F(OpenedRecordsTest, TheRightPasswordTakesBackWhatAWrongOneOpened) {
  for (int i = 0; i < 20; ++i) add("N" + std::to_string(i), "right");
  const std::string wrong = wrongPasswordFor(7);
  const PasswordAttempt first = open(wrong);
  EXPECT_GE(first.opened, 1u);
  EXPECT_FALSE(first.isComplete());
  EXPECT_NE(secret(7), "the secret of N7") << "noise, so far";
  EXPECT_TRUE(open("right").isComplete());
  for (std::uint32_t i = 0; i < 20; ++i) {
    EXPECT_EQ(secret(i), "the secret of N" + std::to_string(i));
  }
  ASSERT_NE(opened.onlyPassword(), nullptr);
  EXPECT_EQ(opened.onlyPassword()->text(), "right");

  Sealing sealing = opened.sealWith(database, engine, Password("right"));
  EXPECT_FALSE(sealing.changed);
  for (std::uint32_t i = 0; i < 20; ++i) EXPECT_TRUE(isAsInFile(i)) << i;
  unseal(database, sealing);
  EXPECT_EQ(secret(7), "the secret of N7");
}

TEST_F(OpenedRecordsTest, EachRecordKeepsThePasswordThatOpenedIt) {
  for (int i = 0; i < 12; ++i) add("N" + std::to_string(i), i < 8 ? "one" : "two");
  EXPECT_EQ(open("one").closed, 4u);
  EXPECT_TRUE(open("two").isComplete());
  EXPECT_EQ(opened.onlyPassword(), nullptr);
  EXPECT_EQ(opened.mainPassword()->text(), "one");
  EXPECT_EQ(opened.passwordFor(bytes(9))->text(), "two");

  rename(3, "changed");
  rename(9, "changed");
  rename(10, "changed");
  rename(10, "N10");  // and back
  addInClear("new", "a new one");
  database.records.move(11, 0);
  Sealing sealing = opened.sealAsOpened(database, engine);
  EXPECT_TRUE(sealing.changed);
  database.records.move(0, 11);
  EXPECT_EQ(secret(3, "one"), "the secret of N3");
  EXPECT_EQ(secret(9, "two"), "the secret of N9");
  EXPECT_EQ(secret(12, "one"), "a new one") << "what most of them have";
  for (std::uint32_t i = 0; i < 12; ++i) EXPECT_EQ(isAsInFile(i), i != 3 && i != 9) << i;
}

TEST_F(OpenedRecordsTest, NoiseIsShownOnlyToWhoTypesItsPasswordTwice) {
  add("Only", "right");
  const std::string wrong = wrongPasswordFor(0);
  EXPECT_TRUE(open(wrong).doubtful);
  opened.closeUncertain(database, OpenedRecords::Before::kLooking);
  EXPECT_TRUE(isAsInFile(0)) << "nobody said that it is right";

  EXPECT_TRUE(open(wrong).isComplete()) << "typed again";
  opened.closeUncertain(database, OpenedRecords::Before::kLooking);
  EXPECT_FALSE(isRecordEncrypted(bytes(0)));
  Sealing sealing = opened.sealWith(database, engine, Password("another"));
  EXPECT_EQ(sealing.kept, 1u);
  EXPECT_TRUE(isAsInFile(0)) << "noise is not enciphered anew";
  unseal(database, sealing);

  rename(0, "changed");
  opened.closeUncertain(database, OpenedRecords::Before::kWritingInClear);
  EXPECT_EQ(secret(0, "right"), "the secret of Only") << "the secret was not touched";
  EXPECT_EQ(storedText(*slotValue(bytes(0), 0)), "changed");
}

TEST_F(OpenedRecordsTest, AnotherPasswordOnPurposeGoesToAllThatAreCertain) {
  for (int i = 0; i < 6; ++i) add("N" + std::to_string(i), "old");
  ASSERT_TRUE(open("old").isComplete());
  EXPECT_FALSE(opened.openedAll(Password("new")));
  Sealing sealing = opened.sealWith(database, engine, Password("new"));
  EXPECT_EQ(sealing.kept, 0u);
  EXPECT_TRUE(sealing.changed);
  for (std::uint32_t i = 0; i < 6; ++i) {
    EXPECT_EQ(secret(i, "new"), "the secret of N" + std::to_string(i));
  }
}

TEST_F(OpenedRecordsTest, EitherAllRecordsAreEncipheredOrNone) {
  for (int i = 0; i < 5; ++i) add("N" + std::to_string(i), "abc");
  ASSERT_TRUE(open("abc").isComplete());
  UnpackedRecord record = unpackRecord(bytes(3));
  record.slots[1] = Bytes{'x'};
  record.slots[2].reset();
  Bytes packed;
  ASSERT_TRUE(packRecord(record, packed));
  packed.resize(kMaxRecordSize, 9);  // not even a length more
  ASSERT_TRUE(database.records.replace(3, packed));
  for (const bool on_purpose : {true, false}) {
    const Sealing sealing = on_purpose ? opened.sealWith(database, engine, Password("new"))
                                       : opened.sealAsOpened(database, engine);
    EXPECT_EQ(sealing.too_long, 3u);
    EXPECT_FALSE(sealing.changed);
    for (std::uint32_t i = 0; i < 5; ++i) EXPECT_FALSE(isRecordEncrypted(bytes(i))) << i;
  }
}

TEST_F(OpenedRecordsTest, RecordsWithOneStampAreToldApartByTheirBytes) {
  for (const char* name : {"A", "B", "C", "D"}) add(name, "abc");
  for (std::uint32_t i = 1; i < 3; ++i) {  // copies, as other programs make them
    Bytes twin = in_file[i];
    std::copy_n(in_file[0].begin() + 1, kStampIdentitySize, twin.begin() + 1);
    ASSERT_TRUE(database.records.replace(i, twin));
    in_file[i] = twin;
  }
  ASSERT_TRUE(open("abc").isComplete());
  database.records.move(0, 2);
  Sealing sealing = opened.sealAsOpened(database, engine);
  EXPECT_FALSE(sealing.changed);
  database.records.move(2, 0);
  for (std::uint32_t i = 0; i < 4; ++i) EXPECT_TRUE(isAsInFile(i)) << i;
}

TEST_F(OpenedRecordsTest, ByHandOnlyAForcedRunOpensAndItsMarkGoesWithTheSealing) {
  database.schema.encryption_mode = kEncryptRecordsByHand;
  for (int i = 0; i < 5; ++i) add("N" + std::to_string(i), "abc");
  EXPECT_EQ(open("abc").opened, 0u);
  EXPECT_EQ(open("abc", true).opened, 5u);
  EXPECT_TRUE(bytes(0)[1 + kStampFlagOffset] & kClearByDatabase);
  Sealing sealing = opened.sealAsOpened(database, engine);
  EXPECT_FALSE(sealing.changed);
  for (std::uint32_t i = 0; i < 5; ++i) EXPECT_TRUE(isAsInFile(i)) << i;
}

TEST_F(OpenedRecordsTest, PasswordsOfOneKeyAreOne) {
  for (int i = 0; i < 5; ++i) add("N" + std::to_string(i), "abc");
  ASSERT_TRUE(open("abc").isComplete());
  EXPECT_TRUE(opened.openedAll(Password("abc abc")));
  EXPECT_FALSE(opened.openedAll(Password("abd")));
  opened.forget();
  EXPECT_TRUE(opened.isEmpty());
  EXPECT_EQ(opened.mainPassword(), nullptr);
}

TEST_F(OpenedRecordsTest, ARecordOpenedAloneIsDoubtedBelievedAndSealedAsItWas) {
  database.schema.encryption_mode = kEncryptRecordsOnSave;
  add("Alone", "right");
  const std::string wrong = wrongPasswordFor(0);
  Bytes record = in_file[0];
  EXPECT_EQ(opened.openOne(database, record, Password("neither")), kWrongPassword);
  EXPECT_EQ(opened.openOne(database, record, Password(wrong)), kDoubtfulPassword);
  EXPECT_EQ(record, in_file[0]);
  ASSERT_EQ(opened.openOne(database, record, Password(wrong), OpenedRecords::Trust::kBelieves),
            kRecordDecrypted);
  const StampSource no_stamp = [] { return HeadBlock{}; };
  Bytes sealed;
  ASSERT_TRUE(opened.sealOne(database, record, Password(wrong), no_stamp, sealed));
  EXPECT_EQ(sealed, in_file[0]);

  record = in_file[0];
  ASSERT_EQ(opened.openOne(database, record, Password("right")), kRecordDecrypted);
  EXPECT_EQ(opened.passwordFor(record)->text(), "right") << "the one that was opened last";
  UnpackedRecord changed = unpackRecord(record);
  changed.slots[1] = textBytes("another secret");
  ASSERT_TRUE(packRecord(changed, record));
  ASSERT_TRUE(opened.sealOne(database, record, Password("right"), no_stamp, sealed));
  ASSERT_TRUE(database.records.replace(0, sealed));
  EXPECT_EQ(secret(0, "right"), "another secret");
  EXPECT_TRUE(std::ranges::equal(*slotValue(sealed, 2), *slotValue(in_file[0], 2)));

  record.assign({0, 0xFF, 0xFF});
  EXPECT_EQ(opened.openOne(database, record, Password("right")), kHeaderUnreadable);
}

}  // namespace
}  // namespace tabelion
