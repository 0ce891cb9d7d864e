// The commands over whole files, and what all commands share.

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "cli/command.h"
#include "cli_run.h"
#include "engine/check.h"

namespace tabelion {
namespace {

using nlohmann::json;
using ::testing::EndsWith;
using ::testing::HasSubstr;

class Cli : public CliRun {
 protected:
  Cli() {
    files.put("/in/contacts.json", std::string(R"({"name": "Contacts", "category": "Privé",
      "fields": [{"name": "Name", "type": "text"}, {"name": "Born", "type": "date"},
      {"name": "Group", "type": "pop-up", "items": ["Family", "Friends"]}]})"));
    files.put("/in/contacts.csv", std::string("Name,Born,Group\nZoë,1970-05-17,Family\nBob,,\n"));
  }

  void create(const std::string& path = "/C.PDB") {
    ASSERT_EQ(run({"create", path, "--schema", "/in/contacts.json", "--data", "/in/contacts.csv"}),
              0)
        << err.text;
    EXPECT_EQ(out.text, "") << "data only";
  }
  std::string exported(const std::string& path = "/C.PDB") { return CliRun::exported(path); }
  void change(const std::string& path, std::size_t offset, std::uint8_t byte) {
    auto bytes = files.bytes(path);
    bytes.at(offset) = byte;
    files.put(path, bytes);
  }
};

TEST_F(Cli, DatabaseIsMadeShownExportedAndMadeAgain) {
  create();
  EXPECT_EQ(run({"info", "/C.PDB"}), 0);
  EXPECT_THAT(out.text, HasSubstr("category:              Privé\n"));
  EXPECT_THAT(out.text, HasSubstr("modified:              2024-02-29 12:00:00\n"));
  EXPECT_EQ(run({"info", "/C.PDB", "--json"}), 0);
  const json info = json::parse(out.text);
  EXPECT_EQ(info["records"], 2);
  EXPECT_EQ(info["code_page"], "the user's");
  EXPECT_TRUE(info["created"].is_null()) << "the placeholder of every new database";
  EXPECT_EQ(info["size"], files.bytes("/C.PDB").size());
  EXPECT_EQ(run({"check", "/C.PDB"}), 0) << out.text;

  EXPECT_EQ(run({"schema", "/C.PDB"}), 0);
  const std::string described = out.text;
  const std::string csv = exported();
  EXPECT_EQ(csv, "Name,Born,Group\nZoë,1970-05-17,Family\nBob,,\n");
  files.put("/again.json", described);
  files.put("/again.csv", csv);
  ASSERT_EQ(run({"create", "/A.PDB", "--schema", "/again.json", "--data", "/again.csv"}), 0);
  EXPECT_EQ(exported("/A.PDB"), csv);
  ASSERT_EQ(run({"rewrite", "/C.PDB", "/R.PDB"}), 0);
  EXPECT_EQ(files.bytes("/R.PDB"), files.bytes("/C.PDB"));
}

TEST_F(Cli, DumpHasEveryByteThatMatters) {
  create();
  ASSERT_EQ(run({"dump", "/C.PDB"}), 0);
  const json dump = json::parse(out.text);
  EXPECT_EQ(dump["header"]["name"], "Contacts");
  EXPECT_EQ(dump["header"]["record_count"], 104);
  std::string items;
  for (const json& item : dump["database_record"]["items"]) {
    items += item["item"].dump() + ":" + item["size"].dump() + " ";
  }
  EXPECT_THAT(items, HasSubstr("1:22 2:5 3:1 4:4 5:564 6:6 7:2 8:4 9:2 10:20 11:11600 12:1 12:1 "));
  EXPECT_THAT(items, EndsWith("41:2 "));
  EXPECT_EQ(dump["fields"].size(), 3u);
  EXPECT_EQ(dump["field_records"][2]["items"][1]["text"], "Friends");
  const json& record = dump["records"][0];
  EXPECT_EQ(
      record["entry"]["offset"].get<std::size_t>() + record["entry"]["length"].get<std::size_t>(),
      dump["records"][1]["entry"]["offset"].get<std::size_t>());
  EXPECT_EQ(record["stamp"]["created"], "2024-02-29 13:00");
  EXPECT_EQ(record["stamp"]["serial"], 1);
  EXPECT_EQ(record["slots"][0]["hex"], "5a6feb00");
  EXPECT_EQ(record["slots"][0]["text"], "Zoë");
  EXPECT_EQ(record["slots"][2]["text"], "Family");
  EXPECT_EQ(record["end_marker"], true);
}

TEST_F(Cli, DamagedFileIsDumpedAndCheckedAsFarAsItGoes) {
  create();
  const auto whole = files.bytes("/C.PDB");
  const FileHeader header = parseHeader(whole);
  const std::size_t last_record = fileEntries(whole, header).back().offset;
  change("/C.PDB", last_record + 23, 0x70);  // the length of its first value
  EXPECT_EQ(run({"check", "/C.PDB"}), 5);
  EXPECT_EQ(out.text, std::to_string(last_record + 23) +
                          ": data record 1: the value at this place runs over the end of the "
                          "record\n");
  EXPECT_EQ(err.text, "tabelion-cli: /C.PDB: 1 deviation\n");
  ASSERT_EQ(run({"dump", "/C.PDB"}), 0);
  EXPECT_EQ(json::parse(out.text)["records"][1]["slots"][0]["absent"], true);

  // Cut anywhere, a file still gives a dump that is JSON, and is never called sound.
  for (std::size_t size = whole.size() - 1; size >= kHeaderSize; size -= size > 2000 ? 977 : 61) {
    files.put("/cut.PDB", Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
    ASSERT_EQ(run({"dump", "/cut.PDB"}), 0) << size;
    ASSERT_TRUE(json::accept(out.text)) << size;
    ASSERT_EQ(run({"check", "/cut.PDB"}), 5) << size;
  }
  EXPECT_EQ(run({"info", "/cut.PDB"}), 5);
  EXPECT_THAT(err.text, HasSubstr("/cut.PDB: Could not"));
}

TEST_F(Cli, ImportKeepsAllOrNothingUnlessAsked) {
  create();
  const auto before = files.bytes("/C.PDB");
  files.put("/more.csv", std::string("Group,Name\nFriends,Ada\nEnemies,Eve\n,Ж\n"));
  EXPECT_EQ(run({"import", "/C.PDB", "/more.csv"}), 7);
  EXPECT_EQ(err.text,
            "tabelion-cli: /more.csv: line 3: Group: \"Enemies\" is not an item of the list\n"
            "tabelion-cli: /more.csv: line 4: Name: \"Ж\" (U+0416) is not in CP1252\n"
            "tabelion-cli: /more.csv: 2 rows of 3 refused; nothing was imported\n");
  EXPECT_EQ(files.bytes("/C.PDB"), before);
  EXPECT_EQ(run({"import", "/C.PDB", "/more.csv", "--skip-bad"}), 0);
  EXPECT_THAT(err.text, EndsWith("/more.csv: 2 rows left out, 1 record imported\n"));
  EXPECT_THAT(exported(), EndsWith("Bob,,\nAda,,Friends\n"));
}

TEST_F(Cli, RowsThatDoNotFitAreToldByFaultAndSetAside) {
  create();
  std::string csv = "Name;Born\nOtto;1.2.2003\n";
  for (int i = 0; i < 1000; ++i) csv += "Zo\xEB;31.12.19" + std::to_string(i % 90 + 10) + "x\n";
  files.put("/more.csv", csv + "Rest\n");
  const std::vector<std::string> import = {
      "import", "/C.PDB", "/more.csv", "--rejects", "/rejects.csv", "--date-format", "d.m.y"};
  EXPECT_EQ(run(import), 0);
  EXPECT_EQ(err.text,
            "tabelion-cli: /more.csv: is not UTF-8; read as CP1252 (--encoding names another)\n"
            "tabelion-cli: /more.csv: lines 3, 4, 5 and 997 more: Born: \"31.12.1910x\" is not a "
            "date like 31.3.2024; likewise \"31.12.1911x\", \"31.12.1912x\", \"31.12.1913x\" and "
            "others\n"
            "tabelion-cli: /more.csv: line 1003: the row has 1 cell where the header has 2\n"
            "tabelion-cli: /more.csv: 1001 rows left out, 1 record imported\n");
  EXPECT_THAT(exported(), EndsWith("Bob,,\nOtto,2003-02-01,\n"));
  const auto rejects = files.bytes("/rejects.csv");
  const std::string text(rejects.begin(), rejects.end());
  EXPECT_THAT(text, ::testing::StartsWith("Name;Born;(reason)\nZoë;31.12.1910x;\"Born: \"\"31."));

  // What was set aside comes in when it has been put right; when none of it fits, nothing is done.
  const auto before = files.bytes("/C.PDB");
  EXPECT_EQ(run({"import", "/C.PDB", "/rejects.csv", "--skip-bad"}), 7);
  EXPECT_THAT(err.text, EndsWith("1001 rows of 1001 refused; nothing was imported\n"));
  EXPECT_EQ(run({"import", "/C.PDB", "/more.csv", "--rejects", "/C.PDB"}), 7);
  EXPECT_THAT(err.text,
              EndsWith("/C.PDB: is a file of this import; --rejects needs another one\n"));
  EXPECT_EQ(run({"import", "/C.PDB", "/more.csv", "--delimiter", "::"}), 7);
  EXPECT_EQ(files.bytes("/C.PDB"), before);
  files.put("/rejects.csv", std::string("Name;Born;(reason)\nZoë;31.12.1910;was wrong\n"));
  EXPECT_EQ(run({"import", "/C.PDB", "/rejects.csv", "--date-format", "d.m.y"}), 0) << err.text;
  EXPECT_THAT(exported(), EndsWith("Otto,2003-02-01,\nZoë,1910-12-31,\n"));
}

TEST_F(Cli, CodePageIsTheDatabasesElseTheOneAskedForElseTheUsers) {
  files.put("/in/contacts.csv", std::string("Name\nЖ\n"));
  files.put("/in/contacts.json", std::string(R"({"fields": [{"name": "Name", "type": "text"}]})"));
  settings.user[{"Software\\Tabelion3", "CodePage"}] = "1251";
  create();
  EXPECT_EQ(exported(), "Name\nЖ\n");
  EXPECT_EQ(run({"export", "/C.PDB", "--format", "csv", "--code-page", "1252"}), 0);
  EXPECT_THAT(out.text, HasSubstr("Æ")) << "the same byte in another page";
  files.put("/in/contacts.json", std::string(R"({"code_page": "UTF-8", "fields":
    [{"name": "Name", "type": "text"}]})"));
  create("/U.PDB");
  EXPECT_EQ(run({"--code-page", "1252", "export", "/U.PDB", "--format", "csv"}), 0);
  EXPECT_EQ(out.text, "Name\nЖ\n");
  EXPECT_EQ(run({"info", "/C.PDB", "--code-page", "nonsense"}), 7);
}

TEST_F(Cli, DatabaseWithoutANameIsCalledAfterItsFile) {
  files.put("/in/contacts.json", std::string(R"({"fields": [{"name": "Name", "type": "text"}]})"));
  files.put("/in/contacts.csv", std::string("Name\n"));
  create("/Über alles, was länger ist als ein Name.PDB");
  EXPECT_EQ(run({"info", "/Über alles, was länger ist als ein Name.PDB", "--json"}), 0);
  EXPECT_EQ(json::parse(out.text)["name"], "Über alles, was länger ist als ");
  EXPECT_EQ(run({"create", "/Ж.PDB", "--schema", "/in/contacts.json"}), 7);
  EXPECT_THAT(err.text, HasSubstr("\"Ж\" (U+0416) is not in CP1252"));
}

TEST_F(Cli, RefusalsHaveTheirOwnExitCodes) {
  create();
  EXPECT_EQ(run({"info", "/none.PDB"}), 3);
  const auto bytes = files.bytes("/C.PDB");
  input.assign(bytes.begin(), bytes.end());
  EXPECT_EQ(run({"import", "-", "-"}), 3);
  EXPECT_THAT(err.text, HasSubstr("can stand for one file only"));
  files.put("/note.txt", std::string(200, 'x'));
  EXPECT_EQ(run({"info", "/note.txt"}), 4);
  EXPECT_EQ(err.text, "tabelion-cli: /note.txt: not a Tabelion database\n");
  EXPECT_EQ(run({"dump", "/in/contacts.csv"}), 4);
  auto legacy = files.bytes("/C.PDB");
  std::copy_n("PmDB", 4, legacy.begin() + 64);
  files.put("/old.PDB", legacy);
  EXPECT_EQ(run({"schema", "/old.PDB"}), 4);
  EXPECT_THAT(err.text, HasSubstr("earlier format"));

  EXPECT_EQ(run({"create", "/C.PDB", "--schema", "/in/contacts.json"}), 7);
  EXPECT_THAT(err.text, HasSubstr("--force"));
  EXPECT_EQ(run({"create", "/D.PDB", "--schema", "/note.txt"}), 7);
  EXPECT_THAT(err.text, HasSubstr("/note.txt: parse error at line 1, column 1"));
  files.locked_by["/C.PDB"] = "tabelion, process 7 on desk";
  EXPECT_EQ(run({"import", "/C.PDB", "/in/contacts.csv"}), 6);
  EXPECT_THAT(err.text, HasSubstr("tabelion, process 7 on desk"));
  // A while later it is free.
  std::chrono::milliseconds slept{};
  sleep = [&](std::chrono::milliseconds time) {
    slept += time;
    if (slept.count() > 1500) files.locked_by.clear();
  };
  EXPECT_EQ(run({"rights", "/C.PDB", "add=granted", "--wait", "1"}), 6);
  EXPECT_EQ(slept.count(), 1000);
  EXPECT_EQ(run({"rights", "/C.PDB", "add=granted", "--wait", "1"}), 0) << err.text;
  files.fail_replace_at = 100;
  EXPECT_EQ(run({"import", "/C.PDB", "/in/contacts.csv"}), 8);
  EXPECT_NE(err.text, "");
  files.fail_replace_at.reset();
  EXPECT_EQ(exported(), "Name,Born,Group\nZoë,1970-05-17,Family\nBob,,\n");
}

TEST_F(Cli, HelpAndVersionAreData) {
  EXPECT_EQ(run({"--version"}), 0);
  EXPECT_EQ(out.text, std::string("tabelion-cli ") + TABELION_VERSION + "\n");
  EXPECT_EQ(run({"--help"}), 0);
  for (const Command& command : commands()) {
    EXPECT_THAT(out.text, HasSubstr(command.summary));
  }
  EXPECT_EQ(run({"import", "--help"}), 0);
  EXPECT_THAT(out.text, HasSubstr("--skip-bad"));
  const std::string said = out.text;
  EXPECT_EQ(run({"help", "import"}), 0);
  EXPECT_EQ(out.text, said);
  EXPECT_EQ(run({"help", "view", "use"}), 0);
  EXPECT_THAT(out.text, HasSubstr("tabelion-cli view FILE use "));
  EXPECT_EQ(err.text, "");
}

TEST_F(Cli, UsageErrorsNameTheWordAndWhatIsMeant) {
  const std::pair<std::vector<std::string>, const char*> wrong[] = {
      {{}, "a command is missing; \"tabelion-cli help\" tells more"},
      {{"inof", "/C.PDB"}, "there is no command \"inof\"; there is \"info\""},
      {{"help", "lsit"}, "help: there is no command \"lsit\"; there is \"list\""},
      {{"/C.PDB"},
       "\"/C.PDB\" is no command; one stands in front of the file, as in "
       "\"tabelion-cli list /C.PDB\""},
      {{"info"}, "info: FILE is missing; \"tabelion-cli help info\" tells more"},
      {{"info", "/a", "/b"},
       "info: \"/b\" is one word too many; \"tabelion-cli help info\" tells more"},
      {{"list", "/a", "--jsno"}, "list: there is no option \"--jsno\"; there is \"--json\""},
      {{"find", "/a", "-5", "-x"},
       "find: there is no option \"-x\"; put \"--\" in front of a \"-x\" that is none"},
      {{"list", "/a", "--limit"}, "list: --limit needs N behind it"},
      {{"--code-page", "1252", "export", "/a", "--format=xml"},
       "export: --format takes \"csv\", \"json\" or \"sql\", not \"xml\""},
      {{"list", "/a", "--csv", "--json"}, "--csv does not go with --json"},
      {{"view", "/a", "ues", "b"}, "view: there is no command \"ues\"; there is \"use\""},
      {{"view", "/a", "use"},
       "view use: VIEW is missing; \"tabelion-cli help view use\" tells more"},
  };
  for (const auto& [arguments, message] : wrong) {
    EXPECT_EQ(run(arguments), 2);
    EXPECT_EQ(out.text, "");
    EXPECT_EQ(err.text, std::string("tabelion-cli: ") + message + "\n");
  }
}

}  // namespace
}  // namespace tabelion
