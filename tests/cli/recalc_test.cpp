// Calculated fields from the command line: recalc, and what create, import and check do with them.

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "cli/cli_run.h"
#include "services/setting_table.h"

namespace tabelion {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;

constexpr char kShop[] = R"("fields": [
  {"name": "Total", "type": "calculated", "formula": "Price * Pieces", "result": "2 decimals"},
  {"name": "Pieces", "type": "integer"},
  {"name": "Price", "type": "float"},
  {"name": "So far", "type": "calculated", "formula": "previous([So far]) + Total",
   "result": "2 decimals"}])";

class Recalc : public CliRun {
 protected:
  // The shop's settings are further members of its description.
  void createShop(const std::string& settings, const std::string& csv) {
    createFrom("/S.PDB", "{" + settings + kShop + "}", csv);
  }
};

TEST_F(Recalc, CreateAndImportWorkOutWhatTheyTakeIn) {
  createShop(R"("sort": [{"field": "Pieces"}],)", "Pieces,Price,Total\n9,2.5,77\n1,3,\n");
  EXPECT_EQ(exported("/S.PDB"), "Total,Pieces,Price,So far\n3.00,1,3,3.00\n22.50,9,2.5,25.50\n");
  files.put("/more.csv", std::string("Pieces,Price\n5,1\n"));
  ASSERT_EQ(run({"import", "/S.PDB", "/more.csv"}), 0) << err.text;
  EXPECT_EQ(exported("/S.PDB"),
            "Total,Pieces,Price,So far\n3.00,1,3,3.00\n5.00,5,1,8.00\n22.50,9,2.5,30.50\n");
}

TEST_F(Recalc, NewRecordsHaveValuesAlsoOutsideTheFilter) {
  const std::string filter =
      R"("filters": [{"enabled": true, "field": "Pieces", "number1": 0, "number2": 3}],)";
  createShop(filter, "Pieces,Price\n1,3\n9,2.5\n2,1\n");
  EXPECT_EQ(exported("/S.PDB"),
            "Total,Pieces,Price,So far\n3.00,1,3,3.00\n22.50,9,2.5,25.50\n2.00,2,1,5.00\n");
  EXPECT_EQ(run({"recalc", "/S.PDB"}), 0);
  EXPECT_EQ(out.text,
            "0 values changed in 0 records; 1 record outside the filter left as they are\n");
}

TEST_F(Recalc, SavesOnlyWhatChanged) {
  createShop("", "Pieces,Price\n1,3\n9,2.5\n");
  const int replaced = files.replaces;
  EXPECT_EQ(run({"recalc", "/S.PDB"}), 0) << err.text;
  EXPECT_EQ(files.replaces, replaced);
  // Results are stored with the user's decimal sign.
  WriteNumberSetting(settings, Setting::kDecimalComma, 1);
  EXPECT_EQ(run({"recalc", "/S.PDB", "--json"}), 0) << err.text;
  EXPECT_EQ(json::parse(out.text), json::parse(R"({"schema_version": 2, "records_changed": 2,
    "values_changed": 4, "records_outside_filter": 0, "corrupt_formulas": []})"));
  EXPECT_EQ(files.replaces, replaced + 1);
  EXPECT_EQ(run({"recalc", "/S.PDB"}), 0) << err.text;
  EXPECT_EQ(files.replaces, replaced + 1);
  const auto& bytes = files.bytes("/S.PDB");
  EXPECT_NE(std::string(bytes.begin(), bytes.end()).find("25,50"), std::string::npos);

  input = std::string(bytes.begin(), bytes.end());
  EXPECT_EQ(run({"recalc", "-"}), 0);
  EXPECT_EQ(err.text, "tabelion-cli: 0 values changed in 0 records\n");
  EXPECT_EQ(out.text.size(), bytes.size()) << "the database itself";
  EXPECT_EQ(run({"recalc", "-", "--json"}), 7);
}

TEST_F(Recalc, CorruptFormulasAndCirclesAreNamed) {
  const std::string tokens = R"({"name": "Größe", "type": "calculated", "formula": {"tokens":)";
  files.put("/bad.json", "{\"fields\": [" + tokens + R"( [{"class": 1, "value": 2}]}},)" + tokens +
                             R"( [{"class": 5, "value": 3}]}},)" + tokens +
                             R"( [{"class": 5, "value": 2}]}}, {"name": "A", "type": "text"}]})");
  files.put("/bad.csv", std::string("A\nx\ny\n"));
  ASSERT_EQ(run({"create", "/B.PDB", "--schema", "/bad.json", "--data", "/bad.csv"}), 0);
  EXPECT_EQ(err.text,
            "tabelion-cli: /B.PDB: the formula of \"Größe\" is invalid or corrupt; its value is "
            "-1 in 2 records, the first is record 1\n");
  EXPECT_THAT(exported("/B.PDB"), HasSubstr("-1.0000,0.0000,0.0000,x\n"));
  EXPECT_EQ(run({"recalc", "/B.PDB", "--json"}), 5);
  EXPECT_EQ(json::parse(out.text)["corrupt_formulas"],
            json::parse(R"([{"field": "Größe", "first_record": 1, "records": 2}])"));
  EXPECT_EQ(run({"check", "/B.PDB"}), 5);
  EXPECT_THAT(out.text, HasSubstr(": the formula of \"Größe\" is corrupt\n"));
  EXPECT_THAT(out.text,
              HasSubstr(": formulas run in a circle: \"Größe\" uses \"Größe\" uses \"Größe\"\n"));
  EXPECT_EQ(std::count(out.text.begin(), out.text.end(), '\n'), 2) << "a circle is named once";
}

}  // namespace
}  // namespace tabelion
