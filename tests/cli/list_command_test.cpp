#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "cli/kit/text_table.h"
#include "cli_run.h"

namespace tabelion {
namespace {

using ::testing::HasSubstr;

class ListCommand : public CliRun {
 protected:
  ListCommand() {
    createFrom("/T.PDB", R"({"fields": [
        {"name": "Name", "type": "text"},
        {"name": "Memo", "type": "note"},
        {"name": "Hidden", "type": "text", "column_width": 0},
        {"name": "Sum", "type": "float"},
        {"name": "Day", "type": "date"},
        {"name": "Kind", "type": "pop-up", "items": ["Sea", "Land"]},
        {"name": "Done", "type": "check box"},
        {"name": "Secret", "type": "text", "encrypt": true, "column_width": 0}],
      "display_order": ["Kind", "Name"],
      "views": [{"name": "Default View"},
                {"name": "Land alone", "order": ["Name"], "sort": [{"field": "Sum"}],
                 "filters": [{"enabled": true, "field": "Name", "value1": "a"}]},
                {"name": "Away", "action": "switch database", "target": "Other"}]})",
               "Name,Memo,Hidden,Sum,Day,Kind,Done\n"
               "Zoë,m,h,12.5,2024-05-17,Sea,1\n"
               "Anna,m,river,-3,,Land,0\n"
               "\"Boa, the\",m,h,100,2024-02-29,Land,1\n");
  }
  std::string listed(std::vector<std::string> options) {
    options.insert(options.begin(), {"list", "/T.PDB"});
    EXPECT_EQ(run(options), 0) << err.text;
    return out.text;
  }
};

TEST_F(ListCommand, ShowsTheColumnsAndRecordsThatTheWindowWould) {
  EXPECT_EQ(listed({}),
            "#  Kind  Name       Sum  Day        Done\n"
            "1  Sea   Zoë       12.5  5/17/2024  [x]\n"
            "2  Land  Anna        -3  NO DATE    [ ]\n"
            "3  Land  Boa, the   100  2/29/2024  [x]\n");
  // Records keep the numbers that they have in the file.
  EXPECT_EQ(listed({"--sort", "Sum:desc", "--csv", "--limit", "2"}),
            "record,Kind,Name,Sum,Day,Done\n"
            "3,Land,\"Boa, the\",100,2024-02-29,1\n"
            "1,Sea,Zoë,12.5,2024-05-17,1\n");
  EXPECT_EQ(listed({"--filter", "Day >= 2024-03-01", "--filter", "or Sum = -3", "--sort", "Name",
                    "--json"}),
            "{\"schema_version\": 2,\n\"records\": [\n"
            "{\"record\":2,\"values\":{\"Kind\":\"Land\",\"Name\":\"Anna\",\"Sum\":-3,\"Day\":null,"
            "\"Done\":false}},\n"
            "{\"record\":1,\"values\":{\"Kind\":\"Sea\",\"Name\":\"Zoë\",\"Sum\":12.5,\"Day\":"
            "\"2024-05-17\",\"Done\":true}}\n]}\n");
  EXPECT_EQ(listed({"--view", "land alone", "--csv"}).substr(0, 30),
            "record,Name,Sum,Day,Kind,Done\n");
  EXPECT_THAT(out.text, HasSubstr("\n2,Anna,-3,"));
  EXPECT_THAT(out.text, HasSubstr("\n3,\"Boa, the\",100,"));
}

TEST_F(ListCommand, TheFilterOfTheDatabaseIsSetShownAndCleared) {
  const auto before = files.bytes("/T.PDB");
  listed({"--filter", "Kind is Sea", "--sort", "Name"});
  EXPECT_EQ(files.bytes("/T.PDB"), before) << "listing changes nothing";

  ASSERT_EQ(run({"filter", "/T.PDB", "kind is land", "not Done is checked"}), 0) << err.text;
  ASSERT_EQ(run({"filter", "/T.PDB"}), 0);
  EXPECT_EQ(out.text, "Kind is \"Land\"\nand not Done is checked\n");
  EXPECT_EQ(listed({"--csv"}), "record,Kind,Name,Sum,Day,Done\n2,Land,Anna,-3,,0\n");
  EXPECT_EQ(run({"find", "/T.PDB", "Boa"}), 1) << "hidden by the filter";

  const auto filtered = files.bytes("/T.PDB");
  EXPECT_EQ(run({"filter", "/T.PDB", "Kind is Air"}), 7);
  EXPECT_THAT(err.text, HasSubstr("/T.PDB: \"Kind is Air\", character 9: \"Air\" is not an item"));
  EXPECT_EQ(files.bytes("/T.PDB"), filtered);
  EXPECT_EQ(run({"list", "/T.PDB", "--filter", "Memo contains x"}), 7);
  EXPECT_EQ(run({"list", "/T.PDB", "--view", "Away"}), 7);
  EXPECT_THAT(err.text, HasSubstr("the view \"Away\" shows another database, Other"));

  ASSERT_EQ(run({"filter", "/T.PDB", "--clear"}), 0);
  ASSERT_EQ(run({"filter", "/T.PDB", "--json"}), 0);
  EXPECT_EQ(out.text, "{\n  \"schema_version\": 2,\n  \"conditions\": []\n}\n");
  EXPECT_EQ(run({"check", "/T.PDB"}), 0) << out.text;
}

TEST_F(ListCommand, FindsTheFirstRecordOrAll) {
  EXPECT_EQ(run({"find", "/T.PDB", "AN"}), 0);
  EXPECT_EQ(out.text,
            "#  Found in  Kind  Name  Sum  Day      Done\n"
            "2  Name      Land  Anna   -3  NO DATE  [ ]\n");
  EXPECT_EQ(run({"find", "/T.PDB", "an", "--all", "--csv"}), 0);
  EXPECT_THAT(out.text, HasSubstr("\n2,Name,Land,Anna,"));
  EXPECT_THAT(out.text, HasSubstr("\n3,Kind,Land,\"Boa, the\","));
  EXPECT_EQ(run({"find", "/T.PDB", "B", "--field", "name", "--begins", "--case", "--json"}), 0);
  EXPECT_THAT(out.text, HasSubstr("{\"record\":3,\"values\":{\"Kind\":"));
  EXPECT_THAT(out.text, HasSubstr("},\"found_in\":\"Name\"}"));
  EXPECT_EQ(run({"find", "/T.PDB", "b", "--case"}), 1);
  EXPECT_EQ(out.text, "");
  EXPECT_EQ(err.text, "tabelion-cli: /T.PDB: Not Found in Database!\n");
  EXPECT_EQ(run({"find", "/T.PDB", "river"}), 0) << "a hidden column too";
  EXPECT_EQ(run({"find", "/T.PDB", "река"}), 7);
}

TEST(TextTable, AlignsByTheRoomThatCharactersTake) {
  StringSink sink;
  OutputBuffer out(sink);
  TextTable table(3);
  table.alignRight(1);
  const std::string wide(20, 'x');
  for (const std::string& cell :
       {std::string("Name"), std::string("N"), std::string("End"),         // titles
        std::string("e\u0301te\u0301"), std::string("12"), std::string(),  // combining accents
        std::string("日本"), std::string("5"), std::string("a\nb"),        // two columns each
        wide + wide, std::string(), wide + wide + "y",                     // as wide as can be
        wide + wide + "é", std::string("3"), std::string(39, '.') + "日本"}) {
    table.add(cell);
  }
  table.print(out);
  out.flush();
  const std::string pad(36, ' ');
  EXPECT_EQ(sink.text, "Name" + pad + "   N  End\n" + "e\u0301te\u0301 " + pad + "  12\n" + "日本" +
                           pad + "   5  a b\n" + wide + wide + "      " + wide +
                           std::string(19, 'x') + "…\n" + wide + std::string(19, 'x') + "…   3  " +
                           std::string(39, '.') + "…\n");
}

TEST_F(ListCommand, RecordsHaveIdsThatNeverChange) {
  listed({"--id", "--json"});
  const auto anna = nlohmann::json::parse(out.text)["records"][1];
  const std::string id = anna["id"];
  EXPECT_EQ(id.size(), 28u);
  files.put("/sesame", std::string("sesame"));
  // Enciphered, changed and sorted, it is the same record.
  ASSERT_EQ(run({"encrypt", "/T.PDB", "--keep", "by-record", "--password-file", "/sesame"}), 0)
      << err.text;
  ASSERT_EQ(run({"set", "/T.PDB", id, "Sum=7", "--json"}), 0) << err.text;
  EXPECT_EQ(nlohmann::json::parse(out.text)["id"], id);
  ASSERT_EQ(run({"sort", "/T.PDB", "--by", "Name"}), 0);
  EXPECT_THAT(listed({"--id", "--csv", "--fields", "sum,Memo"}),
              ::testing::StartsWith("record,id,Sum,Memo\n1," + id + ",7,m\n"));
  EXPECT_THAT(listed({"--id", "--limit", "1"}), HasSubstr("1  " + id + "  Land"));
  ASSERT_EQ(run({"export", "/T.PDB", "--format", "json", "--id", "--fields", "Name"}), 0);
  EXPECT_THAT(out.text, HasSubstr("{\"(id)\":\"" + id + "\",\"Name\":\"Anna\"}"));
  ASSERT_EQ(run({"export", "/T.PDB", "--format", "csv", "--id", "--fields", "Name", "--filter",
                 "Name contains nn"}),
            0);
  EXPECT_EQ(out.text, "(id),Name\n" + id + ",Anna\n");
  files.put("/again.csv", out.text);
  EXPECT_EQ(run({"import", "/T.PDB", "/again.csv"}), 0) << "passes the ids over: " << err.text;
  EXPECT_EQ(run({"delete", "/T.PDB", id, "--yes"}), 0) << err.text;
  EXPECT_EQ(run({"delete", "/T.PDB", id, "--yes"}), 7);
  EXPECT_THAT(err.text, HasSubstr("no record has the id " + id));
  EXPECT_EQ(run({"list", "/T.PDB", "--fields", "Name,name"}), 7);
  EXPECT_THAT(err.text, HasSubstr("\"Name\" is given more than once"));
}

TEST_F(ListCommand, TextsThatLookLikeFormulasAreMadeHarmlessWhenAsked) {
  createFrom("/F.PDB", R"({"fields": [{"name": "=Name", "type": "text"},
                           {"name": "N", "type": "float"}]})",
             "=Name,N\n\"=HYPERLINK(\"\"x\"\",1)\",-5\n@a,1\nb=c,-1\n");
  EXPECT_EQ(run({"export", "/F.PDB", "--format", "csv", "--safe-csv"}), 0);
  EXPECT_EQ(out.text, "'=Name,N\n\"'=HYPERLINK(\"\"x\"\",1)\",-5\n'@a,1\nb=c,-1\n");
  EXPECT_EQ(run({"list", "/F.PDB", "--csv", "--safe-csv", "--limit", "1", "--fields", "=Name"}), 0);
  EXPECT_EQ(out.text, "record,'=Name\n1,\"'=HYPERLINK(\"\"x\"\",1)\"\n");
}

}  // namespace
}  // namespace tabelion
