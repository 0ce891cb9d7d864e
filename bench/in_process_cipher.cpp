// Enciphering and deciphering two text fields of every record, beside the block operation of
// another implementation of the cipher over as many bytes.
#include <tomcrypt.h>

#include <cstdint>
#include <memory>
#include <string>

#include "engine/packed_record.h"
#include "in_process.h"
#include "platform/std/std_clock.h"
#include "platform/std/std_files.h"
#include "query/field_text.h"
#include "security/database_encryption.h"
#include "security/opened_records.h"

namespace tabelion {
namespace {

constexpr int kSlots[] = {0, 1};  // of the flagged texts
constexpr std::string_view kPassword = "sesame";

// A database of its own: it ends with other bytes than it began with.
struct Safe {
  explicit Safe(const std::string& path) {
    database.path = path;
    opened = openDatabase(database, engine) == 1;
    for (const int slot : kSlots) database.schema.fields[std::size_t(slot)].encrypt_flag = 1;
    MakeKey(kPassword, key);
  }
  void encipher() { encryptRecords(database, engine, key); }
  // As a session opens them, which keeps what they were.
  bool decipher() {
    passwords.forget();
    return passwords.open(database, password).isComplete();
  }
  StdFiles files;
  StdClock clock;
  Engine engine{.files = files, .clock = clock, .random = [] { return 1u; }};
  Database database;
  ExpandedKey key;
  Password password{kPassword};
  OpenedRecords passwords;
  bool opened = false;
};

void encipher(benchmark::State& state, const std::string& path) {
  const auto safe = std::make_unique<Safe>(path);
  if (!safe->opened) return state.SkipWithError("cannot be opened");
  for (auto _ : state) {
    benchmark::DoNotOptimize(encryptRecords(safe->database, safe->engine, safe->key).enciphered);
    state.PauseTiming();
    safe->decipher();
    state.ResumeTiming();
  }
}

void decipher(benchmark::State& state, const std::string& path) {
  const auto safe = std::make_unique<Safe>(path);
  if (!safe->opened) return state.SkipWithError("cannot be opened");
  for (auto _ : state) {
    state.PauseTiming();
    safe->encipher();
    safe->passwords.forget();
    state.ResumeTiming();
    if (!safe->decipher()) return state.SkipWithError("cannot be deciphered");
  }
}

std::size_t flaggedBytes(const Database& database) {
  std::size_t bytes = 0;
  for (const Record& record : database.records) {
    for (const int slot : kSlots) {
      const auto value = slotValue(record.bytes(), slot);
      if (value) bytes += storedText(*value).size();
    }
  }
  return bytes;
}

void blocks(benchmark::State& state, const std::string& path) {
  const auto safe = std::make_unique<Safe>(path);
  const std::size_t count = flaggedBytes(safe->database) / kCipherBlockSize;
  symmetric_key key;
  const unsigned char text[kKeyStringSize] = {'s', 'e', 's', 'a', 'm', 'e'};
  if (safer_sk128_setup(text, kKeyStringSize, kCipherRounds, &key) != CRYPT_OK) {
    return state.SkipWithError("no key");
  }
  for (auto _ : state) {
    unsigned char block[kCipherBlockSize] = {};
    for (std::size_t i = 0; i < count; ++i) safer_ecb_encrypt(block, block, &key);
    benchmark::DoNotOptimize(block);
  }
}

}  // namespace

void registerCipher(const std::string& path) {
  const auto ms = benchmark::kMillisecond;
  benchmark::RegisterBenchmark("encipher two fields", encipher, path)->Unit(ms);
  benchmark::RegisterBenchmark("decipher two fields", decipher, path)->Unit(ms);
  benchmark::RegisterBenchmark("block operations of another library", blocks, path)->Unit(ms);
}

}  // namespace tabelion
