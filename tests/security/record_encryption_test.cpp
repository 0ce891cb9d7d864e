#include "security/record_encryption.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <string>

#include "engine/record_store.h"
#include "engine/schema_places.h"

namespace tabelion {
namespace {

HeadBlock testStamp() {
  HeadBlock stamp{};
  std::memcpy(stamp.data(), "pdblb", 5);
  stamp[12] = 7;
  return stamp;
}

Bytes bytesOf(std::string_view text, std::size_t zeros = 1) {
  Bytes bytes(text.begin(), text.end());
  bytes.resize(bytes.size() + zeros);
  return bytes;
}

bool isText(FieldType type) {
  return type == FieldType::kText || type == FieldType::kLongText ||
         type == FieldType::kTextVariant || type == FieldType::kText254;
}

// A value in the form in which records store it.
rc::Gen<Bytes> storedValue(FieldType type) {
  const auto text =
      rc::gen::nonEmpty(rc::gen::container<std::string>(rc::gen::inRange('\x01', '\x7f')));
  if (isText(type)) {
    return rc::gen::oneOf(rc::gen::just(Bytes{0}),
                          rc::gen::map(text, [](const std::string& t) { return bytesOf(t); }));
  }
  switch (type) {
    case FieldType::kFloat:
    case FieldType::kCalculated:
      return rc::gen::map(text, [](std::string t) {
        t.resize(std::min<std::size_t>(t.size(), kNumberTextSize - 1));
        return bytesOf(t, kNumberTextSize - t.size());
      });
    case FieldType::kNote:
      return rc::gen::map(text, [](const std::string& t) {
        Bytes note = bytesOf(t, kNoteSize - t.size());
        note.back() = 9;  // takes no part, and stays
        return note;
      });
    case FieldType::kLinkField:
      return rc::gen::map(
          text, [](const std::string& t) { return bytesOf(std::string(kLinkHeadSize, 'k') + t); });
    default:
      return rc::gen::container<Bytes>(rc::gen::arbitrary<std::uint8_t>());
  }
}

struct Case {
  DatabaseRecord schema;
  Bytes record;
};

Case makeCase(bool canonical) {
  Case made;
  UnpackedRecord record;
  record.prefix.assign(1, kStampedPrefix);
  const HeadBlock stamp = testStamp();
  record.prefix.insert(record.prefix.end(), stamp.begin(), stamp.end());
  const int slots = *rc::gen::inRange(0, 12);
  for (int i = 0; i < slots; ++i) {
    FieldDefinition& field = made.schema.fields[static_cast<std::size_t>(i)];
    field.type = FieldType{*rc::gen::inRange(0, 20)};
    field.encrypt_flag = *rc::gen::arbitrary<bool>() ? 1 : 0;
    record.slots[static_cast<std::size_t>(i)] =
        canonical ? *storedValue(field.type)
                  : *rc::gen::container<Bytes>(rc::gen::arbitrary<std::uint8_t>());
  }
  record.tail = *rc::gen::container<Bytes>(rc::gen::arbitrary<std::uint8_t>());
  EXPECT_TRUE(packRecord(record, made.record));
  return made;
}

Bytes enciphered(const Case& made, const std::string& password) {
  ExpandedKey key;
  MakeKey(password, key);
  Bytes record;
  EXPECT_TRUE(EncryptRecordFields(made.schema, made.record, key, testStamp, record));
  EXPECT_TRUE(isRecordEncrypted(record));
  return record;
}

int decipher(const DatabaseRecord& schema, Bytes& record, const std::string& password) {
  ExpandedKey key;
  MakeKey(password, key);
  Bytes clear;
  const int result = DecryptRecord(schema, record, key, clear);
  if (result == kRecordDecrypted) record = clear;
  return result;
}

RC_GTEST_PROP(RecordEncryption, StoredRecordsComeBackByteForByte, (const std::string& password)) {
  const Case made = makeCase(true);
  Bytes record = enciphered(made, password);
  // Stored by its front, with the rest where it was.
  RecordStore store;
  store.insert(0, made.record, {});
  ExpandedKey key;
  MakeKey(password, key);
  RecordFront front;
  RC_ASSERT(encryptRecordFront(FlaggedFields(made.schema), made.record, key, testStamp, front));
  RC_ASSERT(store.replaceFront(0, front.old_size, front.bytes));
  RC_ASSERT(std::ranges::equal(store[0].bytes(), record));

  RC_ASSERT(decipher(made.schema, record, password) == kRecordDecrypted);
  // The checksum of the last enciphering stays where it was.
  record[1 + kStampChecksumOffset] = made.record[1 + kStampChecksumOffset];
  RC_ASSERT(record == made.record);
}

RC_GTEST_PROP(RecordEncryption, TheRightPasswordAlwaysOpens, (const std::string& password)) {
  const Case made = makeCase(false);
  Bytes once = enciphered(made, password);
  RC_ASSERT(decipher(made.schema, once, password) == kRecordDecrypted);
  Bytes twice = enciphered({made.schema, once}, password);
  RC_ASSERT(decipher(made.schema, twice, password) == kRecordDecrypted);
  RC_ASSERT(twice == once);
}

Case oneField(FieldType type, Bytes value) {
  Case made;
  made.schema.fields[0].type = type;
  made.schema.fields[0].encrypt_flag = 1;
  UnpackedRecord record;
  record.slots[0] = std::move(value);
  EXPECT_TRUE(packRecord(record, made.record));
  return made;
}

// The stored form of a value, enciphered and deciphered again with a password of its own.
std::pair<Bytes, Bytes> forms(FieldType type, Bytes value) {
  const Case made = oneField(type, std::move(value));
  Bytes record = enciphered(made, "abc");
  const ByteView hidden = *slotValue(record, 0);
  Bytes stored(hidden.begin(), hidden.end());
  EXPECT_EQ(decipher(made.schema, record, "abc"), kRecordDecrypted);
  const ByteView clear = *slotValue(record, 0);
  return {stored, Bytes(clear.begin(), clear.end())};
}

TEST(RecordEncryption, FormsByType) {
  const Bytes tab = {'T', 'a', 'b', 0};
  const auto [text, text_clear] = forms(FieldType::kText, tab);
  EXPECT_EQ(text.size(), 4u);
  EXPECT_EQ(text[0], 3) << "one byte of length, no NUL";
  const auto [long_text, long_clear] = forms(FieldType::kLongText, tab);
  EXPECT_EQ(long_text.size(), 5u);
  EXPECT_EQ(loadLe16(long_text.data()), 3) << "two bytes of length";
  EXPECT_TRUE(std::equal(text.begin() + 1, text.end(), long_text.begin() + 2))
      << "every value starts from the key";
  EXPECT_EQ(long_clear, tab);

  EXPECT_EQ(forms(FieldType::kText, {}).first, Bytes{0});
  EXPECT_EQ(forms(FieldType::kText, {}).second, Bytes{0});
  EXPECT_EQ(forms(FieldType::kText, {'a', 'b'}).second, (Bytes{'a', 'b', 0}))
      << "a text gets its NUL";
  EXPECT_EQ(forms(FieldType::kText, {0}).second, Bytes{0}) << "an empty one too";
  EXPECT_EQ(forms(FieldType::kFloat, {}).second, Bytes(17, 0));
  EXPECT_EQ(forms(FieldType::kFloat, {'1', 0}).second, bytesOf("1", 16)) << "numbers have 17 bytes";

  const Bytes link = bytesOf(std::string(24, 'k') + "Zoe");
  const auto [hidden_link, clear_link] = forms(FieldType::kLinkField, link);
  EXPECT_EQ(hidden_link.size(), 24u + 1 + 3);
  EXPECT_EQ(hidden_link[24], 3);
  EXPECT_TRUE(std::equal(link.begin(), link.begin() + 24, hidden_link.begin()));
  EXPECT_EQ(clear_link, link);

  const Bytes note = bytesOf("note", kNoteSize - 4);
  const auto [hidden_note, clear_note] = forms(FieldType::kNote, note);
  EXPECT_EQ(hidden_note.size(), kNoteSize);
  EXPECT_EQ(hidden_note[0], 'n');
  EXPECT_EQ(hidden_note[2000], 0) << "the last byte takes no part";
  EXPECT_EQ(clear_note, note);
  EXPECT_EQ(forms(FieldType::kNote, bytesOf("note")).second, note)
      << "a note has 2001 bytes from then on";
  EXPECT_EQ(forms(FieldType::kNote, {0, 'x'}).first, (Bytes{0, 'x'}));

  EXPECT_EQ(forms(FieldType::kInteger, {1, 2, 3, 4}).first.size(), 4u);
  EXPECT_EQ(forms(FieldType::kLookup, {1, 2}).first, (Bytes{1, 2}));
}

TEST(RecordEncryption, TextsLongerThanTheirLengthByteAreNamedAndComeBackWhole) {
  const Bytes text = bytesOf(std::string(300, 'x'));
  const auto [hidden, clear] = forms(FieldType::kText, text);
  EXPECT_EQ(hidden[0], 300 - 256);
  EXPECT_EQ(clear, text);
  const Case made = oneField(FieldType::kText, text);
  const auto named = overlongValues(made.schema, made.record);
  ASSERT_EQ(named.size(), 1u);
  EXPECT_EQ(named[0].length, 300u);
  EXPECT_TRUE(
      overlongValues(made.schema, oneField(FieldType::kText, bytesOf("short")).record).empty());
  EXPECT_TRUE(overlongValues(oneField(FieldType::kLongText, {}).schema, made.record).empty());
}

TEST(RecordEncryption, WrongPasswordsAndRecordsWithoutStampAreLeftAlone) {
  const Case made = oneField(FieldType::kText, bytesOf("secret"));
  Bytes record = enciphered(made, "abc");
  EXPECT_EQ(record[0], kStampedPrefix) << "it got a stamp";
  EXPECT_EQ(record[1 + kStampChecksumOffset], 's' + 'e' + 'c' + 'r' + 'e' + 't' - 512);
  const Bytes before = record;
  EXPECT_EQ(decipher(made.schema, record, "abd"), kWrongPassword);
  EXPECT_EQ(record, before);
  Bytes stampless = made.record;
  EXPECT_EQ(decipher(made.schema, stampless, "abc"), kHeaderUnreadable);
  EXPECT_EQ(stampless, made.record);

  Case nothing_flagged = made;
  nothing_flagged.schema.fields[0].encrypt_flag = 0;
  record = enciphered(nothing_flagged, "abc");
  EXPECT_EQ(record[1 + kStampChecksumOffset], 0);
  EXPECT_EQ(decipher(nothing_flagged.schema, record, "any"), kRecordDecrypted);

  Case full = oneField(FieldType::kLongText, Bytes(kMaxRecordSize - 10, 'x'));
  ExpandedKey key;
  MakeKey("abc", key);
  EXPECT_FALSE(EncryptRecordFields(full.schema, full.record, key, testStamp, record))
      << "no room for a stamp";
}

}  // namespace
}  // namespace tabelion
