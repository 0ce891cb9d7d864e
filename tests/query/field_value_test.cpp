#include "query/field_value.h"

#include <gtest/gtest.h>

#include "query/field_text.h"
#include "query_fixtures.h"

namespace tabelion {
namespace {

std::string reason(const Result<Bytes>& result) {
  return result.ok() ? "accepted" : result.error().text;
}

// A number's text in its area.
Bytes numberArea(std::string_view text) {
  Bytes area = bytesOf(text);
  area.resize(kNumberTextSize);
  return area;
}

struct Form : OneField {
  FormatSettings settings = chosen(0);
  explicit Form(FieldType type, Bytes value = {}) : OneField(type, std::move(value)) {}

  Result<Bytes> typed(std::string_view text, InputCare care = InputCare::kPerson) {
    return valueOfText(field(), items(), text, settings, *unpacked.slots[0], care);
  }
  std::string shown() { return editText(database, record, 0, settings).text; }
};

}  // namespace

TEST(FieldValue, ReadsEveryTypeBack) {
  EXPECT_EQ(*Form(FieldType::kText).typed("abc"), bytesOf(std::string_view("abc\0", 4)));
  EXPECT_EQ(*Form(FieldType::kText).typed(""), Bytes{});
  EXPECT_EQ(*Form(FieldType::kNote).typed(""), Bytes(2001, 0));
  EXPECT_EQ(Form(FieldType::kNote).typed("memo")->size(), 2001u);
  EXPECT_EQ(*Form(FieldType::kInteger).typed(" -2 "), (Bytes{0xFE, 0xFF, 0xFF, 0xFF}));
  EXPECT_EQ(*Form(FieldType::kInteger).typed(""), Bytes(4, 0));
  EXPECT_EQ(*Form(FieldType::kLinkedField).typed("4294967295"), Bytes(4, 0xFF));
  EXPECT_EQ(*Form(FieldType::kFloat).typed("3.50"), numberArea("3.50"));
  EXPECT_EQ(*Form(FieldType::kFloat).typed(""), numberArea(""));
  EXPECT_EQ(*Form(FieldType::kLinkField).typed(""), Bytes(24, 0));
  EXPECT_EQ(*Form(FieldType::kCheckBox).typed("Yes"), Bytes{1});
  EXPECT_EQ(*Form(FieldType::kDate).typed("3/1/1904"), (Bytes{60, 0, 0, 0}));
  EXPECT_EQ(*Form(FieldType::kDate).typed(""), Bytes(4, 0));
  EXPECT_EQ(*Form(FieldType::kTime).typed("1:05:09PM"), (Bytes{9, 5, 13, 0}));
  EXPECT_EQ(*Form(FieldType::kTime).typed(""), (Bytes{0, 0, 255, 0}));
  Form comma(FieldType::kFloat);
  comma.settings = chosen(0, 0, true);
  EXPECT_EQ(*comma.typed("3,50"), numberArea("3.50"));
  for (const char* stored : {"3.25", "3,25"}) {  // shown as results are, and kept as it stands
    comma.set(bytesOf(stored));
    EXPECT_EQ(comma.shown(), "3,25");
    EXPECT_EQ(*comma.typed("3,25"), bytesOf(stored));
  }
  Form duration(FieldType::kCalculated);
  duration.field().area_f[kResultKindOffset] = 2;
  EXPECT_EQ(*duration.typed("-100:01:01"), numberArea("-360061"));
}

TEST(FieldValue, RefusesWhatDoesNotFit) {
  Form text(FieldType::kText);
  text.field().width = 3;
  EXPECT_EQ(reason(text.typed("abcd")), "is longer than 3 bytes");
  EXPECT_EQ(reason(text.typed(std::string_view("a\0b", 3))), "contains a zero byte");
  EXPECT_TRUE(Form(FieldType::kNote).typed(std::string(2000, 'n')).ok());
  EXPECT_FALSE(Form(FieldType::kNote).typed(std::string(2001, 'n')).ok());
  EXPECT_FALSE(Form(FieldType::kText254).typed(std::string(254, 'n')).ok());
  EXPECT_FALSE(Form(FieldType::kLinkField).typed(std::string(256, 'n')).ok());
  for (const char* number : {"12a", "1.5", "--1", "+-1", "2147483648", "99999999999999999999"}) {
    EXPECT_FALSE(Form(FieldType::kInteger).typed(number).ok()) << number;
  }
  EXPECT_FALSE(Form(FieldType::kLinkedField).typed("-1").ok());
  for (const char* number : {"abc", ".", "1.2.3", "1,5", "inf", "12345678901234567", "1 2"}) {
    EXPECT_FALSE(Form(FieldType::kFloat).typed(number).ok()) << number;
  }
  EXPECT_EQ(reason(Form(FieldType::kTime).typed("13:75PM")), "is not a time like 5:05:00PM");
  EXPECT_EQ(reason(Form(FieldType::kDate).typed("1/1/1850")),
            "is not a date from 1904 to 9999 like 12/31/2025");
  EXPECT_FALSE(Form(FieldType::kCheckBox).typed("2").ok());
  for (const FieldType type :
       {FieldType::kUnused, FieldType::kSeparator, FieldType::kLookup, FieldType::kExternal}) {
    EXPECT_FALSE(Form(type).typed("x").ok()) << codeOf(type);
  }
  // A person sees what is understood; a file's date is taken as it stands or not at all.
  EXPECT_TRUE(Form(FieldType::kDate).typed("1/2/05").ok());
  EXPECT_TRUE(Form(FieldType::kTime).typed("17:05").ok());
  for (const char* text : {"1/2/05", "0/40/2010", "2005-01-02", "x"}) {
    EXPECT_FALSE(Form(FieldType::kDate).typed(text, InputCare::kFile).ok()) << text;
  }
  EXPECT_FALSE(Form(FieldType::kTime).typed("17:05", InputCare::kFile).ok());
}

TEST(FieldValue, PopupsTakeTheFirstItemOfTheText) {
  Form form(FieldType::kPopup);
  form.addItem(0, "Oslo");
  form.addItem(2, "Rom");
  form.addItem(3, "Rom");
  EXPECT_EQ(form.typed("Rom")->front(), 2);
  EXPECT_EQ(reason(form.typed("rom")), "is not in the field's list");
  const Bytes none = *form.typed("No Value");  // not the key of zeros, which is Oslo's
  form.set(none);
  EXPECT_EQ(form.shown(), "No Value");
  Bytes second(14, 0);
  second[0] = 3;
  form.set(second);
  EXPECT_EQ(*form.typed("Rom"), second);  // unchanged, though another item has the text
}

TEST(FieldValue, AnUnchangedTextKeepsEveryByte) {
  Bytes link = bytesOf("....a head with 24 bytes");
  link.insert(link.end(), {'A', 'n', 'n', 'a', 0, 'x'});
  Bytes unknown_key(14, 9);
  const std::pair<FieldType, Bytes> values[] = {{FieldType::kTime, {9, 5, 13, 77}},
                                                {FieldType::kTime, {1, 2, 255, 3}},
                                                {FieldType::kDate, {60, 0, 0, 0, 5}},
                                                {FieldType::kDate, {255, 255, 255, 255}},
                                                {FieldType::kInteger, {7}},
                                                {FieldType::kCheckBox, {8}},
                                                {FieldType::kPopup, unknown_key},
                                                {FieldType::kLinkField, link},
                                                {FieldType::kText, bytesOf(std::string(60, 'w'))},
                                                {FieldType::kFloat, bytesOf("n/a")},
                                                {FieldType::kNote, Bytes(2001, 0)},
                                                {FieldType::kCalculated, bytesOf("1")},
                                                {FieldType::kLinkedField, {1, 2, 3, 4}}};
  for (const auto& [type, value] : values) {
    Form form(type, value);
    const auto back = form.typed(form.shown());
    ASSERT_TRUE(back.ok()) << codeOf(type) << ": " << back.error().text;
    EXPECT_EQ(*back, value) << codeOf(type);
  }
}

TEST(FieldValue, AChangedTimeOrLinkKeepsWhatTheTextDoesNotSay) {
  Form time(FieldType::kTime, {9, 5, 13, 77});
  EXPECT_EQ(*time.typed("1:05PM"), (Bytes{9, 5, 13, 77}));
  EXPECT_EQ(*time.typed("1:06PM"), (Bytes{0, 6, 13, 77}));
  EXPECT_EQ(*time.typed("1:05:10PM"), (Bytes{10, 5, 13, 77}));
  Form link(FieldType::kLinkField, Bytes(24, 5));
  const Bytes renamed = *link.typed("Bo");
  EXPECT_EQ(linkKey(renamed), 0x05050505u);
  EXPECT_EQ(renamed[23], 5);
  EXPECT_EQ(linkText(renamed), "Bo");
  const Bytes moved = linkValue(6, "Cy", renamed);
  EXPECT_EQ(linkKey(moved), 6u);
  EXPECT_EQ(moved[23], 5);
}

}  // namespace tabelion
