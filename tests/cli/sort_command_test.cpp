#include <gmock/gmock.h>

#include "cli_run.h"

namespace tabelion {
namespace {

using ::testing::HasSubstr;

class SortCommand : public CliRun {
 protected:
  SortCommand() {
    createFrom("/T.PDB", R"({"fields": [{"name": "Ort", "type": "text"},
                             {"name": "Cost, net", "type": "float"},
                             {"name": "a:desc", "type": "check box"},
                             {"name": "Bild", "type": "note"},
                             {"name": "Geheim", "type": "text", "encrypt": true}]})",
               "Ort,\"Cost, net\",a:desc\nBonn,3,1\nbonn,20,0\nAachen,10,0\n");
  }
};

TEST_F(SortCommand, FieldsAreNamedWithDirectionsWhateverIsInTheirNames) {
  EXPECT_EQ(run({"sort", "/T.PDB", "--by", "ort, Cost, net:desc"}), 0) << err.text;
  EXPECT_THAT(exported("/T.PDB"), HasSubstr("\nAachen,10,0,,\nbonn,20,0,,\nBonn,3,1,,\n"));
  EXPECT_EQ(run({"sort", "/T.PDB", "--by", "a:desc:desc,Cost, net:asc"}), 0) << err.text;
  EXPECT_THAT(exported("/T.PDB"), HasSubstr("\nBonn,3,1,,\nAachen,10,0,,\nbonn,20,0,,\n"));
  EXPECT_EQ(run({"schema", "/T.PDB"}), 0);
  EXPECT_THAT(out.text, HasSubstr("\"order\": \"reverse\""));
  EXPECT_EQ(run({"check", "/T.PDB"}), 0) << out.text;

  // By the levels that there are; then there are none.
  ASSERT_EQ(run({"import", "/T.PDB", "/data.csv"}), 0);
  EXPECT_EQ(run({"sort", "/T.PDB"}), 0) << err.text;
  EXPECT_THAT(exported("/T.PDB"), HasSubstr("\nBonn,3,1,,\nBonn,3,1,,\nAachen,10,0,,\n"));
  const std::string sorted = exported("/T.PDB");
  EXPECT_EQ(run({"sort", "/T.PDB", "--none"}), 0) << err.text;
  EXPECT_EQ(exported("/T.PDB"), sorted);
  EXPECT_EQ(run({"sort", "/T.PDB"}), 7);
  EXPECT_THAT(err.text, HasSubstr("is not sorted by any field; --by names some"));
}

TEST_F(SortCommand, RefusalsChangeNothing) {
  const auto before = files.bytes("/T.PDB");
  for (const auto& [by, reason] :
       {std::pair{"Ort,Bild", "This type of field (Bild) cannot currently be sorted!"},
        {"Geheim", "This field (Geheim) is flagged for encrypted, and therefore cannot be sorted!"},
        {"Ort,Brot:desc", "no field is called \"Brot\""},
        {"Ort,Ort,Ort,Ort", "a sort has at most 3 levels"},
        {",", "no field is called \"\""}}) {
    EXPECT_EQ(run({"sort", "/T.PDB", "--by", by}), 7) << by;
    EXPECT_THAT(err.text, HasSubstr(reason)) << by;
  }
  EXPECT_EQ(run({"sort", "/T.PDB", "--by", "Ort", "--none"}), 2);
  EXPECT_EQ(files.bytes("/T.PDB"), before);
}

}  // namespace
}  // namespace tabelion
