#include <algorithm>

#include "cli/cli_run.h"
#include "security/database_encryption.h"

namespace tabelion {
namespace {

constexpr int kRefusedCode = 7;
constexpr int kPasswordCode = 9;

class EncryptionCommand : public CliRun {
 protected:
  EncryptionCommand() {
    files.put("/sesame", std::string("sesame\n"));
    files.put("/other", std::string("other"));
    createFrom("/S.PDB", R"({"name": "Safe", "fields": [{"name": "Name", "type": "text"},
      {"name": "Pin", "type": "text", "width": 400}]})",
               "Name,Pin\nAnna,1111\nBert,2222\n");
  }
  int encrypt(const std::string& password = "/sesame") {
    return run({"encrypt", "/S.PDB", "--field", "pin", "--password-file", password});
  }
  std::string shown(const std::vector<std::string>& options = {"--password-file", "/sesame"}) {
    std::vector<std::string> arguments = {"export", "/S.PDB", "--format", "csv"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    EXPECT_EQ(run(arguments), 0) << err.text;
    return out.text;
  }
  bool fileHolds(const std::string& text) {
    const auto bytes = files.bytes("/S.PDB");
    return std::search(bytes.begin(), bytes.end(), text.begin(), text.end()) != bytes.end();
  }
};

TEST_F(EncryptionCommand, EncipheredFieldsNeedTheirPassword) {
  EXPECT_EQ(run({"encrypt", "/S.PDB", "--password-file", "/sesame"}), kRefusedCode);
  EXPECT_NE(err.text.find("--field"), std::string::npos);
  ASSERT_EQ(encrypt(), 0) << err.text;
  EXPECT_FALSE(fileHolds("1111"));
  EXPECT_EQ(shown({}), "Name,Pin\nAnna,\nBert,\n");
  EXPECT_EQ(shown(), "Name,Pin\nAnna,1111\nBert,2222\n");

  const auto before = files.bytes("/S.PDB");
  for (const char* command : {"decrypt", "encrypt"}) {
    EXPECT_EQ(run({command, "/S.PDB", "--password-file", "/other"}), kPasswordCode);
    EXPECT_EQ(run({command, "/S.PDB"}), kPasswordCode) << "there is no terminal to ask on";
  }
  EXPECT_EQ(run({"export", "/S.PDB", "--format", "csv", "--password-file", "/other"}),
            kPasswordCode);
  EXPECT_EQ(out.text, "");
  EXPECT_EQ(files.bytes("/S.PDB"), before);

  EXPECT_EQ(run({"decrypt", "/S.PDB", "--password-file", "/sesame"}), 0) << err.text;
  EXPECT_EQ(shown({}), "Name,Pin\nAnna,1111\nBert,2222\n");
}

TEST_F(EncryptionCommand, ANewPasswordIsTypedTwiceOnTheTerminal) {
  std::vector<std::string> typed;
  ask_secret = [&](const std::string&) -> std::optional<std::string> {
    if (typed.empty()) return std::nullopt;
    const std::string next = typed.front();
    typed.erase(typed.begin());
    return next;
  };
  const auto before = files.bytes("/S.PDB");
  for (const bool access : {false, true}) {
    const std::vector<std::string> command =
        access ? std::vector<std::string>{"passwd", "/S.PDB"}
               : std::vector<std::string>{"encrypt", "/S.PDB", "--field", "Pin"};
    typed = {"sesame", "seasme"};
    EXPECT_EQ(run(command), kPasswordCode);
    EXPECT_NE(err.text.find("differ"), std::string::npos) << err.text;
    typed = {"sesame"};
    EXPECT_EQ(run(command), kPasswordCode);
  }
  EXPECT_EQ(files.bytes("/S.PDB"), before);
  typed = {"sesame", "sesame"};
  EXPECT_EQ(run({"encrypt", "/S.PDB", "--field", "Pin"}), 0) << err.text;
  typed = {"sesame"};  // known from then on
  EXPECT_EQ(run({"encrypt", "/S.PDB"}), 0) << err.text;
  EXPECT_EQ(shown(), "Name,Pin\nAnna,1111\nBert,2222\n");
}

// What was enciphered without the field could not be opened any more.
TEST_F(EncryptionCommand, AFieldIsAddedToWhatIsEncipheredAlready) {
  ASSERT_EQ(encrypt(), 0);
  const auto before = files.bytes("/S.PDB");
  EXPECT_EQ(run({"encrypt", "/S.PDB", "--field", "Name", "--password-file", "/other"}),
            kPasswordCode);
  EXPECT_EQ(files.bytes("/S.PDB"), before);
  ASSERT_EQ(run({"encrypt", "/S.PDB", "--field", "Name", "--password-file", "/sesame"}), 0)
      << err.text;
  EXPECT_FALSE(fileHolds("Anna") || fileHolds("1111"));
  EXPECT_EQ(shown(), "Name,Pin\nAnna,1111\nBert,2222\n");
}

TEST_F(EncryptionCommand, WhatIsChangedIsEncipheredAgain) {
  ASSERT_EQ(encrypt(), 0);
  files.put("/more.csv", std::string("Name,Pin\nCleo,3333\n"));
  ASSERT_EQ(run({"import", "/S.PDB", "/more.csv", "--password-file", "/sesame"}), 0) << err.text;
  EXPECT_FALSE(fileHolds("3333") || fileHolds("1111"));
  EXPECT_EQ(shown(), "Name,Pin\nAnna,1111\nBert,2222\nCleo,3333\n");
  EXPECT_EQ(run({"sort", "/S.PDB", "--by", "Pin"}), kRefusedCode);
  ASSERT_EQ(run({"sort", "/S.PDB", "--by", "Name:desc", "--password-file", "/sesame"}), 0);
  EXPECT_EQ(shown(), "Name,Pin\nCleo,3333\nBert,2222\nAnna,1111\n");
}

TEST_F(EncryptionCommand, LongTextsAreNamedBeforeTheyAreEnciphered) {
  files.put("/long.csv", "Name,Pin\nDora," + std::string(300, 'x') + "\n");
  ASSERT_EQ(run({"import", "/S.PDB", "/long.csv"}), 0);
  const auto before = files.bytes("/S.PDB");
  EXPECT_EQ(encrypt(), kRefusedCode);
  EXPECT_NE(err.text.find("record 3: the text of \"Pin\" has 300 bytes"), std::string::npos)
      << err.text;
  EXPECT_EQ(files.bytes("/S.PDB"), before);
  ASSERT_EQ(
      run({"encrypt", "/S.PDB", "--field", "Pin", "--overlong", "--password-file", "/sesame"}), 0);
  EXPECT_NE(shown().find(std::string(300, 'x')), std::string::npos);
}

TEST_F(EncryptionCommand, RightsAndTheAccessPasswordDecideWhoOpens) {
  EXPECT_EQ(run({"rights", "/S.PDB"}), 0);
  EXPECT_NE(out.text.find("open     granted\n"), std::string::npos);
  EXPECT_EQ(run({"rights", "/S.PDB", "open=never"}), kRefusedCode);
  ASSERT_EQ(run({"rights", "/S.PDB", "open=refused,delete=refused"}), 0);
  EXPECT_EQ(run({"export", "/S.PDB", "--format", "csv"}), kRefusedCode);
  ASSERT_EQ(run({"rights", "/S.PDB", "open=granted"}), 0);

  ASSERT_EQ(run({"passwd", "/S.PDB", "--new-password-file", "/sesame"}), 0) << err.text;
  EXPECT_EQ(run({"export", "/S.PDB", "--format", "csv"}), kPasswordCode);
  EXPECT_EQ(run({"export", "/S.PDB", "--format", "csv", "--access-password-file", "/other"}),
            kPasswordCode);
  EXPECT_EQ(shown({"--access-password-file", "/sesame"}), "Name,Pin\nAnna,1111\nBert,2222\n");
  EXPECT_EQ(run({"passwd", "/S.PDB", "--new-password-file", "/other"}), kPasswordCode)
      << "not without the present one";
  ASSERT_EQ(run({"passwd", "/S.PDB", "--clear", "--access-password-file", "/sesame"}), 0);
  EXPECT_EQ(shown({}), "Name,Pin\nAnna,1111\nBert,2222\n");
}

}  // namespace
}  // namespace tabelion
