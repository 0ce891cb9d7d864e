// set, add and delete.

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "cli/commands/field_assignment.h"
#include "cli_run.h"
#include "engine/schema_places.h"

namespace tabelion {
namespace {

using nlohmann::json;
using ::testing::EndsWith;
using ::testing::HasSubstr;

// A description of fields of most types, sorted by the first.
constexpr const char* kDescription = R"({"code_page": "UTF-8", "fields": [
    {"name": "Ort", "type": "text", "width": 8}, {"name": "Cost", "type": "float"},
    {"name": "Paid", "type": "check box"}, {"name": "Day", "type": "date", "default": "today"},
    {"name": "At", "type": "time"}, {"name": "Kind", "type": "pop-up", "items": ["A", "B"]},
    {"name": "No", "type": "auto-number"}, {"name": "x=y", "type": "integer"},
    {"name": "Who", "type": "link field"}, {"name": "Note", "type": "note"},
    {"name": "Twice", "type": "calculated", "formula": {"tokens": [{"class": 5, "value": 2},
      {"class": 5, "value": 2}, {"class": 1, "value": 2}]}}],
    "sort": [{"field": "Ort"}] SECURITY })";

class RecordCommands : public CliRun {
 protected:
  RecordCommands() { make(""); }
  // With "security" members in the description.
  void make(const std::string& security) {
    std::string description = kDescription;
    const std::string mark = "SECURITY";
    description.replace(description.find(mark), mark.size(),
                        security.empty() ? "" : ", \"security\": {" + security + "}");
    files.put("/description.json", description);
    files.put("/data.csv", std::string("Ort,Cost,Day\nBonn,3,2001-02-03\nGent,4.5,2001-02-03\n"));
    ASSERT_EQ(run({"create", "/T.PDB", "--force", "--schema", "/description.json", "--data",
                   "/data.csv"}),
              0)
        << err.text;
  }
  json records() {
    EXPECT_EQ(run({"export", "/T.PDB", "--format", "json"}), 0) << err.text;
    return json::parse(out.text);
  }
};

}  // namespace

TEST_F(RecordCommands, RecordsAreStoredAsTheWindowStoresThem) {
  ASSERT_EQ(run({"add", "/T.PDB", "ort=Aachen", "Cost=7.25", "paid=yes", "At=17:05", "Kind=B",
                 "x=y=-3", "Who=Änne", "Who.key=12", "Note=a\nb=c"}),
            0)
      << err.text;
  EXPECT_EQ(out.text, "1\n") << "its place in the order";
  json added = records()[0];
  EXPECT_EQ(added["Cost"], 7.25);
  EXPECT_EQ(added["Paid"], true);
  EXPECT_EQ(added["At"], "17:05:00");
  EXPECT_EQ(added["Kind"], "B");
  EXPECT_EQ(added["No"], 3);
  EXPECT_EQ(added["x=y"], -3);
  EXPECT_EQ(added["Who"], "Änne");
  EXPECT_EQ(added["Who.key"], 12);
  EXPECT_EQ(added["Note"], "a\nb=c");
  EXPECT_EQ(added["Day"], "2024-02-29") << "the default";
  EXPECT_EQ(added["Twice"], 14.5) << "worked out";
  EXPECT_EQ(run({"dump", "/T.PDB"}), 0);
  EXPECT_EQ(json::parse(out.text)["records"][0]["stamp"]["serial"], 3);

  ASSERT_EQ(run({"set", "/T.PDB", "1", "Ort=Zürich", "Who=", "Who.key=4", "Kind=", "--json"}), 0)
      << err.text;
  EXPECT_EQ(json::parse(out.text)["schema_version"], 2);
  EXPECT_EQ(json::parse(out.text)["record"], 3);
  const json changed = records()[2];
  added["Ort"] = "Zürich";
  added["Who.key"] = 4;
  EXPECT_TRUE(changed["Kind"].is_null());
  EXPECT_EQ(changed["Note"], added["Note"]) << "what is not named stays";
  EXPECT_EQ(changed["Twice"], added["Twice"]);
  EXPECT_EQ(run({"check", "/T.PDB"}), 0) << out.text;

  const std::size_t size = files.bytes("/T.PDB").size();
  ASSERT_EQ(run({"add", "/T.PDB"}), 0) << err.text;
  EXPECT_GT(files.bytes("/T.PDB").size(), size + kNoteSize) << "an empty note is as long as any";
}

TEST_F(RecordCommands, RefusedValuesChangeNothing) {
  const auto before = files.bytes("/T.PDB");
  for (const auto& [assignment, reason] :
       {std::pair{"Ort=Antwerpen", "record 1: Ort: \"Antwerpen\" is longer than 8 bytes"},
        {"Day=2001-02-30", "Day: \"2001-02-30\" is not a date"},
        {"At=25:00", "At: \"25:00\" is not a time"},
        {"Kind=C", "Kind: \"C\" is not an item of the list"},
        {"Cost=much", "Cost: \"much\" is not a number"},
        {"Who.key=x", "Who.key: \"x\" is not the number of a record"},
        {"Ort.key=1", "no field is called \"Ort.key\""},
        {"No=5", "No: gets its number from the database"},
        {"Twice=1", "Twice: gets its value from a formula"},
        {"Ort", "\"Ort\" is not Field=VALUE"},
        {"Ord=a=b", "no field is called \"Ord\"; there is \"Ort\""}}) {
    EXPECT_EQ(run({"set", "/T.PDB", "1", "Paid=1", assignment}), 7) << assignment;
    EXPECT_THAT(err.text, HasSubstr(reason));
  }
  EXPECT_EQ(run({"add", "/T.PDB", "Ort=a", "ORT=b"}), 7);
  EXPECT_THAT(err.text, EndsWith("ORT: is given more than once\n"));
  for (const char* number : {"0", "3", "1x", "99999999999"}) {
    EXPECT_EQ(run({"set", "/T.PDB", number, "Paid=1"}), 7) << number;
  }
  EXPECT_EQ(run({"set", "/T.PDB", "1"}), 2);
  EXPECT_EQ(files.bytes("/T.PDB"), before);
}

TEST_F(RecordCommands, EncipheredValuesAreLeftAlone) {
  Database database;
  initSchema(database.schema);
  for (std::size_t slot : {0, 1}) database.schema.fields[slot].type = FieldType::kText;
  setFieldName(database.schema.fields[0], "Open");
  setFieldName(database.schema.fields[1], "Secret");
  database.schema.fields[1].encrypt_flag = 1;
  UnpackedRecord record = newRecord(database.schema);
  record.prefix[1 + kStampFlagOffset] = kRecordEncrypted;
  EXPECT_TRUE(assignFields(database, TextEncoding::utf8(), {"Open=a"}, record).ok());
  const Status refused = assignFields(database, TextEncoding::utf8(), {"Secret=a"}, record);
  ASSERT_FALSE(refused.ok());
  EXPECT_EQ(refused.error().text, "Secret: is enciphered in this record");
}

// A file whose order is stale, or that has a current record.
TEST_F(RecordCommands, EveryCommandOpensInOrderAndFollowsTheCurrentRecord) {
  const auto change = [this](auto what) {
    Engine engine{.files = files, .clock = clock, .random = [] { return 4u; }};
    Database database;
    database.path = "/T.PDB";
    ASSERT_EQ(openDatabase(database, engine), 1);
    what(database);
    ASSERT_EQ(saveDatabase(database, engine), 1);
  };
  const auto makeStale = [&](std::uint16_t current) {
    make("");
    change([&](Database& database) {
      database.records.move(0, 1);
      database.schema.sort_pending = 1;
      database.schema.current_record_index = current;
    });
  };
  const auto state = [this](const std::string& path) {
    std::string text;
    Engine engine{.files = files, .clock = clock, .random = [] { return 4u; }};
    Database database;
    database.path = path;
    EXPECT_EQ(openDatabase(database, engine), 1);
    for (const Record& record : database.records) {
      text += static_cast<char>(slotValue(record.bytes(), 0)->front());
    }
    return text + " pending " + std::to_string(database.schema.sort_pending) + " current " +
           std::to_string(database.schema.current_record_index);
  };
  for (const std::uint16_t current : {0, 102}) {  // none, Gent
    const std::string then = current == 0 ? "0" : "103";
    makeStale(current);
    EXPECT_EQ(run({"list", "/T.PDB", "--csv"}), 0);
    EXPECT_LT(out.text.find("Bonn"), out.text.find("Gent"));
    EXPECT_EQ(state("/T.PDB"), "GB pending 1 current " + std::to_string(current));
    EXPECT_EQ(run({"rewrite", "/T.PDB", "/R.PDB"}), 0);
    EXPECT_EQ(state("/R.PDB"), "BG pending 0 current " + then);
    EXPECT_EQ(run({"recalc", "/T.PDB"}), 0);
    EXPECT_EQ(state("/T.PDB"), "BG pending 0 current " + then);
    makeStale(current);
    EXPECT_EQ(run({"add", "/T.PDB", "Ort=Celle"}), 0);
    EXPECT_EQ(out.text, "2\n");
    EXPECT_EQ(state("/T.PDB"), "BCG pending 0 current " + (current == 0 ? then : "104"));
  }
  // From here on Gent is the current record.
  EXPECT_EQ(run({"set", "/T.PDB", "3", "Ort=Aachen"}), 0);
  EXPECT_EQ(state("/T.PDB"), "ABC pending 0 current 102");
  files.put("/more.csv", std::string("Ort\nAalen\nZug\n"));
  EXPECT_EQ(run({"import", "/T.PDB", "/more.csv"}), 0);
  EXPECT_EQ(state("/T.PDB"), "AABCZ pending 0 current 102");
  EXPECT_EQ(run({"sort", "/T.PDB", "--by", "Ort:desc"}), 0);
  EXPECT_EQ(state("/T.PDB"), "ZCBAA pending 0 current 106");
  EXPECT_EQ(run({"delete", "/T.PDB", "1", "4", "--yes"}), 0);
  EXPECT_EQ(state("/T.PDB"), "CBA pending 0 current 104");
  EXPECT_EQ(run({"delete", "/T.PDB", "3", "--yes"}), 0);
  EXPECT_EQ(state("/T.PDB"), "CB pending 0 current 0");
}

TEST_F(RecordCommands, AccessRightsHold) {
  make(R"("add": "refused", "change": "restricted", "delete": "refused")");
  const auto before = files.bytes("/T.PDB");
  EXPECT_EQ(run({"add", "/T.PDB", "Ort=a"}), 7);
  EXPECT_THAT(err.text, HasSubstr("/T.PDB: its access rights do not allow adding records"));
  EXPECT_EQ(run({"set", "/T.PDB", "1", "Ort=a"}), 7);
  EXPECT_EQ(run({"delete", "/T.PDB", "1", "--yes"}), 7);
  EXPECT_EQ(files.bytes("/T.PDB"), before);
  make(R"("add": "restricted", "change": "password", "delete": "password")");
  EXPECT_EQ(run({"add", "/T.PDB", "Ort=a"}), 0);
  EXPECT_EQ(run({"set", "/T.PDB", "1", "Ort=a"}), 0);
}

TEST_F(RecordCommands, DeletingAsksFirst) {
  const auto before = files.bytes("/T.PDB");
  EXPECT_EQ(run({"delete", "/T.PDB", "1"}), 7);
  EXPECT_THAT(err.text, HasSubstr("1 record would be deleted; --yes does it"));
  std::string asked;
  bool answer = false;
  confirm = [&](std::string_view question) {
    asked = question;
    return answer;
  };
  EXPECT_EQ(run({"delete", "/T.PDB", "1", "2", "1"}), 7);
  EXPECT_EQ(asked,
            "2 records of /T.PDB: Records deletion is an irreversible operation, still continue?");
  for (const std::vector<std::string>& rest :
       {std::vector<std::string>{"3", "--yes"}, {"--filtered", "--yes"}, {"--outside", "--yes"}}) {
    std::vector<std::string> arguments = {"delete", "/T.PDB"};
    arguments.insert(arguments.end(), rest.begin(), rest.end());
    EXPECT_EQ(run(arguments), 7) << rest[0];
  }
  EXPECT_EQ(run({"delete", "/T.PDB", "1", "--outside"}), 2);
  EXPECT_EQ(run({"delete", "/T.PDB"}), 2);
  EXPECT_EQ(files.bytes("/T.PDB"), before);
  answer = true;
  EXPECT_EQ(run({"delete", "/T.PDB", "1"}), 0);
  EXPECT_EQ(err.text, "tabelion-cli: /T.PDB: 1 record deleted\n");
  EXPECT_EQ(records().size(), 1u);
  EXPECT_EQ(records()[0]["Ort"], "Gent");
}

TEST_F(RecordCommands, DeletingInsideOrOutsideTheFilter) {
  const std::string fields = R"({"fields": [{"name": "Paid", "type": "check box"}],
      "filters": [{"enabled": true, "field": "Paid", "number1": 1}]})";
  createFrom("/F.PDB", fields, "Paid\n1\n0\n0\n");
  EXPECT_EQ(run({"delete", "/F.PDB", "--filtered", "--yes"}), 0) << err.text;
  EXPECT_EQ(exported("/F.PDB"), "Paid\n0\n0\n");
  EXPECT_EQ(run({"delete", "/F.PDB", "--filtered", "--yes"}), 0);
  EXPECT_THAT(err.text, EndsWith("0 records deleted\n"));
  EXPECT_EQ(run({"delete", "/F.PDB", "--outside", "--yes"}), 0) << err.text;
  EXPECT_EQ(exported("/F.PDB"), "Paid\n");
}

}  // namespace tabelion
