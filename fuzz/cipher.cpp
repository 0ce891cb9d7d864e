// Records of any bytes, enciphered and deciphered: what was enciphered comes back with the same
// password, and what is no enciphered record is refused or comes out as something that does.
//
//   1 byte length of the password, the password, 16 bytes: type (low 5 bits) and flag (bit 7) of
//   fields; what is behind is a record
#include "security/record_encryption.h"

#include "engine/packed_record.h"
#include "engine/record_stamp.h"
#include "require.h"
#include "security/cipher.h"

namespace tabelion {
namespace {

constexpr int kFieldTypes = codeOf(kLastFieldType) + 1;

constexpr std::size_t kFields = 16;

void tryRecord(ByteView input) {
  if (input.empty()) return;
  const std::size_t password_size = std::min<std::size_t>(input[0] % 25, input.size() - 1);
  const std::string password(input.begin() + 1, input.begin() + 1 + password_size);
  input = input.subspan(1 + password_size);
  if (input.size() < kFields) return;
  DatabaseRecord schema;
  initSchema(schema);
  for (std::size_t slot = 0; slot < kFields; ++slot) {
    FieldDefinition& field = schema.fields[slot];
    field.type = FieldType((input[slot] & 31) % kFieldTypes);
    field.encrypt_flag = input[slot] >> 7;
  }
  const ByteView record = input.subspan(kFields);
  if (record.size() > 60000) return;
  ExpandedKey key;
  MakeKey(password, key);
  const StampSource stamp = [] {
    HeadBlock block{};
    std::copy_n("pdblb", 5, block.begin());
    return block;
  };
  Bytes clear;
  (void)DecryptRecord(schema, record, key, clear);
  (void)overlongValues(schema, record);

  // Twice, since the clear form that comes back may say more than the one that was given; from then
  // on it stays.
  Bytes enciphered;
  if (!EncryptRecordFields(schema, record, key, stamp, enciphered)) return;
  if (DecryptRecord(schema, enciphered, key, clear) != kRecordDecrypted) {
    return require(clear.empty());  // a text that its length byte says too little of
  }
  Bytes again;
  if (!EncryptRecordFields(schema, clear, key, stamp, again)) return;
  Bytes clear_again;
  require(DecryptRecord(schema, again, key, clear_again) == kRecordDecrypted);
  require(clear_again == clear);
}

}  // namespace
}  // namespace tabelion

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tabelion::tryRecord({data, size});
  return 0;
}
