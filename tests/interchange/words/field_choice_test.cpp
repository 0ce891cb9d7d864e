#include "interchange/words/field_choice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/schema_places.h"

namespace tabelion {
namespace {

using ::testing::ElementsAre;

class FieldChoice : public ::testing::Test {
 protected:
  FieldChoice() {
    initSchema(database.schema);
    addField(0, "Name");
    addField(1, "name");
    addField(3, "Betrag, netto");
    addField(4,
             "G\xF6\xDF"
             "e");
    addField(7, "Same");
    addField(8, "Same");
  }
  void addField(int slot, std::string_view name) {
    FieldDefinition& field = database.schema.fields[static_cast<std::size_t>(slot)];
    field.type = FieldType::kText;
    setFieldName(field, name);
  }
  int slot(std::string_view name) {
    const auto chosen = chooseField(database, encoding, name);
    error = chosen.ok() ? "" : chosen.error().text;
    return chosen.ok() ? *chosen : -1;
  }

  Database database;
  TextEncoding encoding = *TextEncoding::open("1252");
  std::string error;
};

TEST_F(FieldChoice, NamesAreTakenExactlyElseInAnyCaseElseRefusedWithNearOnes) {
  EXPECT_EQ(slot("name"), 1);
  EXPECT_EQ(slot("Göße"), 4);
  EXPECT_EQ(slot("gößE"), 4);
  EXPECT_EQ(slot("NAME"), -1);
  EXPECT_EQ(error, "\"NAME\" may be the field \"Name\" or \"name\"");
  EXPECT_EQ(slot("Nmae"), -1);
  EXPECT_EQ(error, "no field is called \"Nmae\"; there is \"Name\" or \"name\"") << "swapped";
  EXPECT_EQ(slot("same"), -1);
  EXPECT_EQ(error, "\"same\" may be the field \"Same #7\" or \"Same #8\"");
  EXPECT_EQ(slot("same #8"), 8);
  EXPECT_EQ(slot("netto"), -1);
  EXPECT_EQ(error, "no field is called \"netto\"; there is \"Betrag, netto\"");
  EXPECT_EQ(slot("Nmae"), -1);
  EXPECT_EQ(slot("Field 6"), -1) << "an unused slot is no field";
}

TEST_F(FieldChoice, ListsAreSplitAtCommasThatAreNotInAName) {
  EXPECT_THAT(*chooseFields(database, encoding, "Betrag, netto"), ElementsAre(3));
  EXPECT_THAT(*chooseFields(database, encoding, "Göße, name"), ElementsAre(4, 1));
  EXPECT_FALSE(chooseFields(database, encoding, "name,").ok());
}

TEST_F(FieldChoice, ListsHaveTheFieldsThatCanBeUsed) {
  const auto change = [&](std::size_t at, FieldType type) {
    database.schema.fields[at].type = type;
  };
  change(1, FieldType::kNote);
  change(3, FieldType::kFloat);
  change(4, FieldType::kLookup);
  change(7, FieldType::kSeparator);
  database.schema.fields[8].encrypt_flag = 1;
  EXPECT_THAT(fieldsFor(database, FieldUse::kAnything), ElementsAre(0, 1, 3, 4, 7, 8));
  EXPECT_THAT(fieldsFor(database, FieldUse::kFilter), ElementsAre(0, 3, 8));
  EXPECT_THAT(fieldsFor(database, FieldUse::kSort), ElementsAre(0, 3, 4));
  EXPECT_THAT(fieldsFor(database, FieldUse::kReport), ElementsAre(3));
  EXPECT_THAT(fieldsFor(database, FieldUse::kFind), ElementsAre(0, 3, 4, 8));
  EXPECT_EQ(fieldLabel(database, encoding, 8), "Same #8");
}

}  // namespace
}  // namespace tabelion
