#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "cli_run.h"

namespace tabelion {
namespace {

using nlohmann::json;
using ::testing::EndsWith;
using ::testing::HasSubstr;

class ViewCommandTest : public CliRun {
 protected:
  ViewCommandTest() {
    createFrom("/T.PDB", R"({"fields": [{"name": "Ort", "type": "text"},
                             {"name": "Cost", "type": "float", "decimals": 2},
                             {"name": "Paid", "type": "check box"}],
                             "sort": [{"field": "Ort"}]})",
               "Ort,Cost,Paid\nGent,3,1\nBonn,20,0\nAntwerpen,10,1\n");
  }
  json views() {
    EXPECT_EQ(run({"view", "/T.PDB", "list", "--json"}), 0) << err.text;
    return json::parse(out.text)["views"];
  }
};

TEST_F(ViewCommandTest, ListingMakesNoChange) {
  const auto before = files.bytes("/T.PDB");
  EXPECT_EQ(run({"view", "/T.PDB", "list"}), 0);
  EXPECT_EQ(out.text, "  Default View  Ort, Cost, Paid; sorted by Ort\n");
  EXPECT_EQ(files.bytes("/T.PDB"), before);
}

TEST_F(ViewCommandTest, ChosenViewSortsTheFileAndSaysItsColumns) {
  files.put("/sorted.json", std::string(R"({"fields": [{"name": "Ort", "type": "text"},
      {"name": "Cost", "type": "float"}], "views": [{"name": "Teuer", "sort": [{"field": "Cost",
      "order": "reverse"}], "order": ["Cost"]}, {"name": "Away", "action": "switch database",
      "target": "Reisen"}]})"));
  files.put("/sorted.csv", std::string("Ort,Cost\nA,3\nB,20\nC,10\n"));
  ASSERT_EQ(run({"create", "/S.PDB", "--schema", "/sorted.json", "--data", "/sorted.csv"}), 0);
  EXPECT_EQ(run({"view", "/S.PDB", "use", "TEUER"}), 0) << err.text;
  EXPECT_EQ(exported("/S.PDB"), "Ort,Cost\nB,20\nC,10\nA,3\n");
  EXPECT_EQ(run({"check", "/S.PDB"}), 0) << out.text;
  const auto chosen = files.bytes("/S.PDB");
  EXPECT_EQ(run({"view", "/S.PDB", "use", "Away"}), 0);
  EXPECT_THAT(err.text, HasSubstr("shows the database \"Reisen\"; nothing was changed"));
  EXPECT_EQ(files.bytes("/S.PDB"), chosen);
}

TEST_F(ViewCommandTest, SetChangesEverythingThatAViewHolds) {
  ASSERT_EQ(run({"view", "/T.PDB", "add", "Büro"}), 0) << err.text;
  ASSERT_EQ(run({"view", "/T.PDB", "set", "Büro", "--name", "Reisen", "--order", "Paid,Cost",
                 "--hide", "Ort", "--width", "Cost=90", "--no-form", "Paid,Ort", "--no-export",
                 "Paid", "--live-update", "on"}),
            0)
      << err.text;
  ASSERT_EQ(run({"view", "/T.PDB", "set", "reisen", "--switch-to", "Ämter"}), 0) << err.text;
  const json view = views()[1];
  EXPECT_EQ(view["name"], "Reisen");
  EXPECT_EQ(view["target"], "Ämter");
  EXPECT_EQ(view["live_update"], true);
  EXPECT_EQ(view["fields"][0], json::parse(R"({"field": "Paid", "in_list": true,
      "column_width": 58, "in_form": false, "exported": false})"));
  EXPECT_EQ(view["fields"][1]["column_width"], 90);
  EXPECT_EQ(view["fields"][2], json::parse(R"({"field": "Ort", "in_list": false,
      "column_width": 58, "in_form": false, "exported": true})"));
  EXPECT_EQ(run({"check", "/T.PDB"}), 0) << out.text;
}

TEST_F(ViewCommandTest, RefusalsNameWhatTheyMeanAndChangeNothing) {
  ASSERT_EQ(run({"view", "/T.PDB", "add", "One"}), 0);
  const auto before = files.bytes("/T.PDB");
  const std::pair<std::vector<std::string>, const char*> refused[] = {
      {{"add", "One"}, "\"One\": The view with the same name already exists in the list"},
      {{"add", ""}, "cannot be empty"},
      {{"add", "Ж"}, "is not in CP1252"},
      {{"copy", "One", std::string(32, 'x')}, "is longer than 31 bytes"},
      {{"delete", "Default View"}, "\"Default View\" stays"},
      {{"delete", "Onne"}, "no view is called \"Onne\"; there is \"One\""},
      {{"set", "One", "--hide", "Ort,Cots"}, "no field is called \"Cots\""},
      {{"set", "One", "--name", "Two", "--width", "Ort=0"}, "\"Ort=0\" is not a field and its"},
  };
  for (const auto& [arguments, message] : refused) {
    std::vector<std::string> line{"view", "/T.PDB"};
    line.insert(line.end(), arguments.begin(), arguments.end());
    EXPECT_EQ(run(line), 7);
    EXPECT_THAT(err.text, HasSubstr(message));
    EXPECT_EQ(files.bytes("/T.PDB"), before);
  }
  EXPECT_EQ(run({"view", "/T.PDB", "set", "One", "--adjust", "--switch-to", "X"}), 2);
  EXPECT_EQ(run({"view", "/T.PDB"}), 2);
  for (int i = 3; i <= 20; ++i) {
    ASSERT_EQ(run({"view", "/T.PDB", "copy", "One", "V" + std::to_string(i)}), 0);
  }
  EXPECT_EQ(run({"view", "/T.PDB", "add", "Last"}), 7);
  EXPECT_THAT(err.text, HasSubstr("Sorry, you have reached the maximum number of Views"));
  ASSERT_EQ(run({"view", "/T.PDB", "delete", "one"}), 0);
  EXPECT_EQ(views().size(), 19u);
}

TEST_F(ViewCommandTest, ReportsAreInTheUsersFormatsAndJsonIsNot) {
  settings.user[{"Software\\Tabelion3", "DecimalComma"}] = "1";
  EXPECT_EQ(run({"report", "/T.PDB", "cost"}), 0) << err.text;
  EXPECT_THAT(out.text, EndsWith("Average:\n\t11,00\n"));
  EXPECT_EQ(run({"report", "/T.PDB", "cost", "--json"}), 0);
  EXPECT_EQ(out.text.substr(0, 24), "{\n  \"schema_version\": 2,");
  const json figures = json::parse(out.text);
  EXPECT_EQ(figures["sum"], 33);
  EXPECT_EQ(figures["reported_as"], "float");
  createFrom("/R.PDB", R"({"fields": [{"name": "F", "type": "float", "decimals": 2}]})",
             "F\n0.1\n0.2\n0.2\n");
  ASSERT_EQ(run({"report", "/R.PDB", "F", "--json"}), 0);
  EXPECT_THAT(out.text, HasSubstr("\"sum\": 0.5,"));
  EXPECT_THAT(out.text, HasSubstr("\"average\": 0.17\n"));
  EXPECT_EQ(run({"report", "/T.PDB", "Paid", "--json"}), 0);
  EXPECT_EQ(json::parse(out.text)["not_checked"], 1);
  EXPECT_EQ(run({"report", "/T.PDB", "Ort"}), 7);
  EXPECT_THAT(err.text, HasSubstr("there are of \"Cost\" or \"Paid\""));
}

TEST_F(ViewCommandTest, ReportsHavePicturesAsFilesAndAsBars) {
  EXPECT_EQ(run({"report", "/T.PDB", "Paid", "--chart", "-"}), 0) << err.text;
  EXPECT_THAT(out.text, HasSubstr("33.33\n\nRecords\n"));
  EXPECT_THAT(out.text, EndsWith("█ 1 (33%)\n"));
  terminal = {40, false};
  EXPECT_EQ(run({"report", "/T.PDB", "Paid", "--chart", "-"}), 0);
  EXPECT_THAT(out.text, EndsWith("\n      Checked ################## 2 (67%)\n"
                                 "  Not Checked ######### 1 (33%)\n"));
  EXPECT_EQ(run({"report", "/T.PDB", "Cost", "--chart", "/c.svg"}), 0) << err.text;
  EXPECT_THAT(out.text, EndsWith("Average:\n\t11.00\n"));
  const auto picture = files.bytes("/c.svg");
  EXPECT_NE(picture, files.bytes("/T.PDB"));
  EXPECT_EQ(run({"report", "/T.PDB", "Paid", "--chart", "/c.svg"}), 7);
  EXPECT_THAT(err.text, HasSubstr("/c.svg: is already there; --force replaces it"));
  EXPECT_EQ(files.bytes("/c.svg"), picture);
  EXPECT_EQ(run({"report", "/T.PDB", "Paid", "--json", "--chart", "/c.svg", "--force"}), 0);
  EXPECT_TRUE(json::parse(out.text).contains("checked"));
  EXPECT_NE(files.bytes("/c.svg"), picture);
  const auto database = files.bytes("/T.PDB");
  EXPECT_EQ(run({"report", "/T.PDB", "Paid", "--chart", "/T.PDB", "--force"}), 2);
  EXPECT_THAT(err.text, HasSubstr("give a name that ends in .svg"));
  EXPECT_EQ(files.bytes("/T.PDB"), database);
  EXPECT_EQ(run({"report", "/T.PDB", "Paid", "--json", "--chart", "-"}), 2);
  EXPECT_EQ(run({"report", "/T.PDB", "Paid", "--chart", ""}), 2);
  files.fail_replace_at = 10;
  EXPECT_EQ(run({"report", "/T.PDB", "Paid", "--chart", "/d.svg"}), 8) << err.text;
}

TEST_F(ViewCommandTest, BarsOfNegativeTotalsHoursAndItems) {
  createFrom("/B.PDB", R"({"fields": [{"name": "Sum", "type": "integer"},
      {"name": "At", "type": "time"}, {"name": "On", "type": "date"},
      {"name": "Kind", "type": "pop-up", "items": ["Ash", "Oak"]}]})",
             "Sum,At,On,Kind\n-30,09:10,2031-01-30,Oak\n50,,2031-03-02,Oak\n20,09:59,,Ash\n");
  terminal = {50, true};
  EXPECT_EQ(run({"report", "/B.PDB", "Sum", "--chart", "-"}), 0) << err.text;
  EXPECT_THAT(out.text, EndsWith("Running total\n"
                                 "  after 1 ███████████████ -30\n"
                                 "  after 2                ██████████▊ 20\n"
                                 "  after 3                █████████████████████ 40\n"));
  createFrom("/C.PDB", R"({"fields": [{"name": "Sum", "type": "integer"}]})", "Sum\n-1\n90001\n");
  EXPECT_EQ(run({"report", "/C.PDB", "Sum", "--chart", "-"}), 0);
  EXPECT_THAT(out.text, HasSubstr("  after 1 █ -1\n")) << "something is seen of it";
  EXPECT_EQ(run({"report", "/B.PDB", "On", "--chart", "-"}), 0);
  EXPECT_THAT(out.text, HasSubstr("  Feb 2031 0\n  Mar 2031 █"));
  EXPECT_THAT(out.text, EndsWith("Without a date: 1\n"));
  EXPECT_EQ(run({"report", "/B.PDB", "At", "--chart", "-"}), 0);
  EXPECT_THAT(out.text, EndsWith("Without a time: 1\n"));
  EXPECT_EQ(run({"report", "/B.PDB", "Kind", "--chart", "-"}), 0);
  EXPECT_THAT(out.text, ::testing::StartsWith("Records\n  Oak █"));
  EXPECT_EQ(run({"report", "/B.PDB", "Kind"}), 7);
  EXPECT_THAT(err.text, HasSubstr("no reports, only pictures (--chart)"));
}

}  // namespace
}  // namespace tabelion
