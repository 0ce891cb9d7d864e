// Whatever password a command is given, no enciphered record is lost.
#include <rapidcheck/gtest.h>

#include "cli/cli_run.h"
#include "support/enciphered_case.h"

namespace tabelion {
namespace {

constexpr int kWrongPasswordCode = 9;

class Commands : public CliRun {
 public:
  void TestBody() override {}
  using CliRun::files;
  using CliRun::run;
};

RC_GTEST_PROP(PasswordCommands, NoneOfThemLosesARecord, ()) {
  PhoneWorld world;
  const auto mode =
      *rc::gen::element(kEncryptWholeDatabase, kEncryptRecordsOnSave, kEncryptRecordsByHand);
  const EncipheredCase made = makeEncipheredCase(world, mode, *rc::gen::inRange<std::size_t>(1, 3));
  Commands commands;
  commands.files.put("/S.PDB", world.files.bytes(world.store(*made.database)));
  std::vector<std::string> all = made.wrong;
  all.insert(all.end(), made.passwords.begin(), made.passwords.end());
  std::vector<Bytes> expected;  // of the file
  for (std::size_t i = 0; i < made.clear.size(); ++i) {
    expected.emplace_back(made.record(i).begin(), made.record(i).end());
  }
  for (int steps = *rc::gen::inRange(1, 4); steps > 0; --steps) {
    commands.files.put("/password", *rc::gen::elementOf(all));
    const auto before = commands.files.bytes("/S.PDB");
    const std::size_t edited = *rc::gen::inRange<std::size_t>(0, expected.size());
    const bool decrypts = *rc::gen::inRange(0, 4) == 0;
    const int code = decrypts ? commands.run({"decrypt", "/S.PDB", "--password-file", "/password"})
                              : commands.run({"set", "/S.PDB", std::to_string(edited + 1),
                                              "Name=new", "--password-file", "/password"});
    if (code != 0) {
      RC_ASSERT(code == kWrongPasswordCode);
      RC_ASSERT(commands.files.bytes("/S.PDB") == before);
      continue;
    }
    world.files.put("/after.PDB", commands.files.bytes("/S.PDB"));
    const auto after = world.read("/after.PDB");
    for (std::size_t i = 0; i < expected.size(); ++i) {
      const ByteView now = after->records[static_cast<std::uint32_t>(i)].bytes();
      const std::string& own = made.passwords[made.password_of[i]];
      RC_ASSERT(secretsUnder(after->schema, now, own) ==
                secretsUnder(after->schema, made.record(i), own));
      if (i != edited && !decrypts) RC_ASSERT(std::ranges::equal(now, expected[i]));
      expected[i].assign(now.begin(), now.end());
    }
    if (decrypts) return;
  }
}

}  // namespace
}  // namespace tabelion
