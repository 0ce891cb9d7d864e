#include "interchange/words/filter_words.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/schema_places.h"
#include "interchange/words/criterion_words.h"

namespace tabelion {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;

class FilterWords : public ::testing::Test {
 protected:
  FilterWords() {
    initSchema(database.schema);
    addField("Title", FieldType::kText);
    addField("Year", FieldType::kInteger);
    addField("Price", FieldType::kFloat);
    addField("Kind", FieldType::kPopup);
    addField("Read", FieldType::kCheckBox);
    addField("Bought", FieldType::kDate);
    addField("At", FieldType::kTime);
    addField("Note", FieldType::kNote);
    addField("Lent for", FieldType::kCalculated, 2);
    addField("Due", FieldType::kCalculated, 3);
    addField("Or so", FieldType::kText);
    addField("Number", FieldType::kAutoNumber);
    for (const char* text : {"Sea", "Salt and pepper", "Empty"}) {
      PopupItem item;
      item.key[0] = static_cast<std::uint8_t>(1 + database.fields[3].items.size());
      item.text = text;
      database.fields[3].items.push_back(item);
    }
  }
  void addField(std::string_view name, FieldType type, int kind = 0) {
    FieldDefinition& field = database.schema.fields[fields_++];
    field.type = type;
    field.area_f[kResultKindOffset] = static_cast<std::uint8_t>(kind);
    setFieldName(field, name);
  }

  // The words in which the filter of these reads.
  std::vector<std::string> readAll(const std::vector<std::string>& conditions) {
    const auto criteria = filterOfWords(database, encoding, conditions);
    if (!criteria.ok()) return {criteria.error().text};
    return wordsOfFilter(database, encoding, *criteria);
  }
  std::string read(const std::string& condition) {
    const auto words = readAll({condition});
    return words.empty() ? "" : words.front();
  }

  Database database;
  TextEncoding encoding = *TextEncoding::open("1252");
  std::size_t fields_ = 0;
};

TEST_F(FilterWords, EveryCriterionCanBeSaidAndReadsBackTheSame) {
  const struct {
    std::string words;
    std::string plain;  // the form in which it is shown; empty: just so
  } cases[] = {
      {"title CONTAINS Käse", "Title contains \"Käse\""},
      {"Title contains \"say \"\"hm\"\"\"", ""},
      {"Title is empty", ""},
      {"Title is not empty", "not Title is empty"},
      {"not Title is not empty", "Title is empty"},
      {"Year between -5 and 7", ""},
      {"Year=1999", "Year = 1999"},
      {"Year != 1999", "not Year = 1999"},
      {"Year < 5", "Year <= 4"},
      {"Year > 5", "Year >= 6"},
      {"Year <= 2147483647", ""},
      {"Number between 7 and 4294967294", ""},
      {"Price between 1.50 and 2e3", ""},
      {"Price <= 12.5", ""},
      {"Price >= -3", ""},
      {"Price is 4", "Price = 4"},
      {"Price > 5", ""},
      {"Price<0", "Price < 0"},
      {"Price < 1e300", "Price < 1e+300"},
      {"Kind is salt AND pepper", "Kind is \"Salt and pepper\""},
      {"Kind is empty", "Kind is \"Empty\""},
      {"Kind is ?0900000000000000000000000000", ""},
      {"Read is checked", ""},
      {"Read is not checked", "not Read is checked"},
      {"Read is unchecked", ""},
      {"Read is 2", ""},
      {"Bought is this year to date", "Bought is This Year to Date"},
      {"Bought in LAST MONTH", "Bought is Last Month"},
      {"Bought is last 30 days", "Bought is Last 30 days"},
      {"Bought is next 1 month", "Bought is Next 1 months"},
      {"Bought is in Last -3 years", "Bought is Last -3 years"},
      {"Bought is empty", "Bought is No Date"},
      {"Bought between 2024-02-29 and 2024-03-31", ""},
      {"Bought = 2024-05-17", ""},
      {"Bought < 2024-05-17", "Bought <= 2024-05-16"},
      {"Bought >= 2024-05-17", ""},
      {"Bought between no date and 2024-05-17", "Bought between NO DATE and 2024-05-17"},
      {"At between 08:00 and 17:30:59", "At between 08:00:00 and 17:30:59"},
      {"At >= 8:15", "At >= 08:15:00"},
      {"At < 12:00", "At <= 11:59:59"},
      {"At is no time", "At is empty"},
      {"At between 08:00 and No Time", "At between 08:00:00 and No Time"},
      {"Lent for between 1:00:00 and 100:30:05", "\"Lent for\" between 1:00:00 and 100:30:05"},
      {"Due <= 2030-01-01", ""},
      {"Due is empty", ""},
      {"\"Or so\" contains x", "\"Or so\" contains \"x\""},
      {"or so contains x", "\"Or so\" contains \"x\""},
  };
  for (const auto& [words, plain] : cases) {
    const std::string shown = read(words);
    EXPECT_EQ(shown, plain.empty() ? words : plain);
    EXPECT_EQ(read(shown), shown);
  }
}

TEST_F(FilterWords, ConditionsAreJoinedAndGrouped) {
  EXPECT_THAT(readAll({"Year >= 5", "Read is checked", "or not Title is empty"}),
              ElementsAre("Year >= 5", "and Read is checked", "or not Title is empty"));
  // One text with several; a text goes on to the next condition, not to any "and".
  const std::vector<std::string> shown =
      readAll({"(Title contains salt and pepper or Kind is Sea) AND (not Or so contains a or b and "
               "(Year between 1 and 2 or Read is checked))"});
  EXPECT_THAT(shown, ElementsAre("(Title contains \"salt and pepper\"", "or Kind is \"Sea\")",
                                 "and (not \"Or so\" contains \"a or b\"",
                                 "and (Year between 1 and 2", "or Read is checked))"));
  EXPECT_EQ(readAll(shown), shown);
  EXPECT_THAT(readAll({"(Title contains \"(x)\" and Year = 2 )"}),
              ElementsAre("(Title contains \"(x)\"", "and Year = 2)"));
  EXPECT_THAT(readAll({"Title contains f(x)"}), ElementsAre("Title contains \"f(x)\""));

  // Made elsewhere: a bracket that closes nothing, a group without an end, a field of no use.
  FilterCriteria criteria;
  for (std::size_t i = 1; i < 4; ++i) criteria[i].enabled = 1;
  criteria[1].grouping = kFilterCloses;
  criteria[2].grouping = kFilterOpens;
  criteria[3].field = 7;
  EXPECT_THAT(wordsOfFilter(database, encoding, criteria),
              ElementsAre("Title is empty", "and (Title is empty", "and Note is anything)"));
}

TEST_F(FilterWords, RefusalsNameThePlaceAndWhatIsExpected) {
  const struct {
    std::string words;
    std::string error;  // its end
  } cases[] = {
      {"", "character 1: a condition is expected"},
      {"Titel contains x", "character 1: no field is called \"Titel\"; there is \"Title\"…"},
      {"Title containz x",
       "character 7: \"contains\", \"is\", \"between\", \"=\", \"<=\" or "
       "\">=\" is expected, not \"containz x\""},
      {"Title contains", "character 15: a text is expected; \"is empty\" asks for none"},
      {"Title contains Нина", "character 16: \"Н\" (U+041D) is not in CP1252"},
      {"Title contains " + std::string(40, 'x'), "character 16: the text is longer than 39 bytes"},
      {"Title contains \"x", "character 16: the text in quotes has no end"},
      {"Title >= x", "character 7: this field takes \"contains\" or \"is empty\""},
      {"Title = x",
       "character 7: a filter asks what a text contains, not what all of it is: use \"contains\" "
       "or "
       "\"is empty\""},
      {"Year between 1 or 2", "character 16: \"and\" is expected, not \"or 2\""},
      {"Year = 2147483648",
       "character 8: a whole number from -2147483648 to 2147483647 is "
       "expected, not \"2147483648\""},
      {"Year < -2147483648", "character 8: no value is beyond this one"},
      {"Price contains 5",
       "character 7: this field takes \"between\", \"=\", \"<=\", \">=\", \"<\" or \">\""},
      {"Price > 1.7976931348623157e308", "character 9: no value is beyond this one"},
      {"Price >= 1,5", "character 10: a number such as 12.50 is expected, not \"1,5\""},
      {"Kind is See", "character 9: \"See\" is not an item of the list; there is \"Sea\""},
      {"Bought is last X days",
       "character 11: a date such as 2024-05-17, or a range such as "
       "\"last 30 days\" is expected, not \"last X days\""},
      {"Bought = 2023-02-29", "not \"2023-02-29\""},
      {"At = 24:00", "character 6: a time such as 17:05:00 is expected, not \"24:00\""},
      {"Lent for <= 1:00:00", "character 10: this field takes \"between\" or \"=\""},
      {"Note contains x", "character 1: records cannot be filtered by a field of type note"},
      {"and Year = 1", "character 1: there is no condition before this one"},
      {"Käse is 1", "character 1: no field is called \"Käse\"…"},
      {"Year = 1 Read is checked",
       "character 10: the end of the condition is expected, not "
       "\"Read is checked\""},
      {"not (Year = 1)", "character 5: \"not\" turns one condition round, not a group"},
      {"((Year = 1)", "character 2: one group at most starts at a condition"},
      {"(Year = 1", "character 10: \")\" is expected: a group has no end"},
      {"Year = 1)",
       "character 8: a whole number from -2147483648 to 2147483647 is expected, not "
       "\"1)\""},
  };
  for (const auto& [words, error] : cases) {
    const std::string expected = error.substr(0, error.find("…"));
    EXPECT_THAT(read(words), expected == error ? ::testing::Matcher<std::string>(EndsWith(error))
                                               : HasSubstr(expected))
        << words;
  }
  const std::vector<std::string> seven(7, "Year = 1");
  EXPECT_THAT(readAll(seven).front(), EndsWith("character 1: a filter has at most 6 conditions"));
}

// How a dialog has a criterion: words and boxes in the user's own formats.
TEST_F(FilterWords, BoxesHoldWhatWasTypedInTheUsersFormats) {
  FormatChoices choices{1, 0, true};  // day/month/year, 12 hours, decimal comma
  const FormatSettings formats = makeFormatSettings(choices, LocaleInfo{});
  const struct {
    std::uint16_t slot;
    CriterionTexts typed;
    std::string words;  // or the fault, with the box in which it is
    CriterionTexts shown = {};
  } cases[] = {
      {0, {"Käse", ""}, "contains \"Käse\"", {"Käse", ""}},
      {0, {"", ""}, "is empty"},
      {0, {"Нина", ""}, "1: \"Н\" (U+041D) is not in CP1252"},
      {1, {"-5", ""}, ">= -5", {"-5", ""}},
      {1, {"7", "5"}, "2: nothing lies between 7 and 5"},
      {1, {"", "5x"}, "2: \"5x\" is not a whole number from -2147483648 to 2147483647"},
      {2, {"1,5", "2.25"}, "between 1,5 and 2,25", {"1,5", "2,25"}},
      {2, {"zwei", ""}, "1: \"zwei\" is not a number such as 12,50"},
      {5, {"31/12/1999", "1/2/05"}, "between 31/12/1999 and 1/2/2005", {"31/12/1999", "1/2/2005"}},
      {5, {"", "12/31/1999"}, "2: \"12/31/1999\" is not a date such as 17/5/2024"},
      {6, {"8:15AM", "5:05:09pm"}, "between 8:15:00AM and 5:05:09PM", {"8:15:00AM", "5:05:09PM"}},
      {6, {"17:05", ""}, ">= 5:05:00PM", {"5:05:00PM", ""}},
      {6, {"25:00", ""}, "1: \"25:00\" is not a time such as 5:05:00PM"},
      {8, {"1:30:00", ""}, "between 1:30:00 and 254:59:59", {"1:30:00", ""}},
  };
  for (const auto& [slot, typed, words, shown] : cases) {
    const CriterionKind kind = criterionKind(database.schema.fields[slot]);
    FilterBlock criterion;
    criterion.field = slot;
    const FilterBlock before = criterion;
    if (const auto fault = storeCriterionTexts(kind, encoding, typed, formats, criterion)) {
      EXPECT_EQ((fault->in_second ? "2: " : "1: ") + fault->sentence, words);
      EXPECT_EQ(criterion, before) << words;
      continue;
    }
    EXPECT_EQ(criterionWords(database, encoding, criterion, formats), words);
    EXPECT_EQ(criterionTexts(kind, encoding, criterion, formats), shown);
  }
  FilterBlock range;
  range.field = 5;
  range.number1 = 16;
  range.number2 = 30;
  EXPECT_EQ(criterionWords(database, encoding, range, formats), "is Last 30 days");
  EXPECT_EQ(criterionTexts(CriterionKind::kDate, encoding, range, formats), CriterionTexts{});
}

}  // namespace
}  // namespace tabelion
