#include "query/field_value.h"

#include <gtest/gtest.h>

#include "query/field_text.h"
#include "query_fixtures.h"

namespace tabelion {
namespace {

std::string reason(const Result<Bytes>& result) {
  return result.ok() ? "accepted" : result.error().text;
}

struct Form : OneField {
  FormatSettings settings = chosen(0);
  explicit Form(int type, Bytes value = {}) : OneField(type, std::move(value)) {}

  Result<Bytes> typed(std::string_view text, InputCare care = InputCare::kPerson) {
    return valueOfText(field(), items(), text, settings, *unpacked.slots[0], care);
  }
  std::string shown() { return editText(database, record, 0, settings).text; }
};

}  // namespace

TEST(FieldValue, ReadsEveryTypeBack) {
  EXPECT_EQ(*Form(kText).typed("abc"), bytesOf(std::string_view("abc\0", 4)));
  EXPECT_EQ(*Form(kText).typed(""), Bytes{});
  EXPECT_EQ(*Form(kNote).typed(""), Bytes{0});
  EXPECT_EQ(*Form(kInteger).typed(" -2 "), (Bytes{0xFE, 0xFF, 0xFF, 0xFF}));
  EXPECT_EQ(*Form(kLinkedField).typed("4294967295"), Bytes(4, 0xFF));
  EXPECT_EQ(*Form(kFloat).typed("3.50"), bytesOf(std::string_view("3.50\0", 5)));
  EXPECT_EQ(*Form(kCheckBox).typed("Yes"), Bytes{1});
  EXPECT_EQ(*Form(kDate).typed("3/1/1904"), (Bytes{60, 0, 0, 0}));
  EXPECT_EQ(*Form(kDate).typed(""), Bytes(4, 0));
  EXPECT_EQ(*Form(kTime).typed("1:05:09PM"), (Bytes{9, 5, 13, 0}));
  EXPECT_EQ(*Form(kTime).typed(""), (Bytes{0, 0, 255, 0}));
  Form comma(kFloat);
  comma.settings = chosen(0, 0, true);
  EXPECT_EQ(*comma.typed("3,50"), bytesOf(std::string_view("3.50\0", 5)));
  Form duration(kCalculated);
  duration.field().area_f[kResultKindOffset] = 2;
  EXPECT_EQ(*duration.typed("-100:01:01"), bytesOf(std::string_view("-360061\0", 8)));
}

TEST(FieldValue, RefusesWhatDoesNotFit) {
  Form text(kText);
  text.field().width = 3;
  EXPECT_EQ(reason(text.typed("abcd")), "is longer than 3 bytes");
  EXPECT_EQ(reason(text.typed(std::string_view("a\0b", 3))), "contains a zero byte");
  EXPECT_TRUE(Form(kNote).typed(std::string(2000, 'n')).ok());
  EXPECT_FALSE(Form(kNote).typed(std::string(2001, 'n')).ok());
  EXPECT_FALSE(Form(kText254).typed(std::string(254, 'n')).ok());
  EXPECT_FALSE(Form(kLinkField).typed(std::string(256, 'n')).ok());
  for (const char* number : {"12a", "1.5", "--1", "+-1", "2147483648", "99999999999999999999"}) {
    EXPECT_FALSE(Form(kInteger).typed(number).ok()) << number;
  }
  EXPECT_FALSE(Form(kLinkedField).typed("-1").ok());
  for (const char* number : {"abc", ".", "1.2.3", "1,5", "inf", "12345678901234567", "1 2"}) {
    EXPECT_FALSE(Form(kFloat).typed(number).ok()) << number;
  }
  EXPECT_EQ(reason(Form(kTime).typed("13:75PM")), "is not a time");
  EXPECT_EQ(reason(Form(kDate).typed("1/1/1850")), "is not a date from 1904 to 9999");
  EXPECT_FALSE(Form(kCheckBox).typed("2").ok());
  for (const int type : {kUnused, kSeparator, kLookup, kExternal}) {
    EXPECT_FALSE(Form(type).typed("x").ok()) << type;
  }
  // A person sees what became of a date; a file's is taken as it stands or not at all.
  EXPECT_TRUE(Form(kDate).typed("0/40/2010").ok());
  EXPECT_EQ(reason(Form(kDate).typed("0/40/2010", InputCare::kFile)),
            "is not a date from 1904 to 9999");
  EXPECT_TRUE(Form(kTime).typed("x").ok());
  EXPECT_EQ(reason(Form(kTime).typed("x", InputCare::kFile)), "is not a time");
}

TEST(FieldValue, PopupsTakeTheFirstItemOfTheText) {
  Form form(kPopup);
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
  const std::pair<int, Bytes> values[] = {{kTime, {9, 5, 13, 77}},
                                          {kTime, {1, 2, 255, 3}},
                                          {kDate, {60, 0, 0, 0, 5}},
                                          {kDate, {255, 255, 255, 255}},
                                          {kInteger, {7}},
                                          {kCheckBox, {8}},
                                          {kPopup, unknown_key},
                                          {kLinkField, link},
                                          {kText, bytesOf(std::string(60, 'w'))},
                                          {kFloat, bytesOf("n/a")},
                                          {kNote, Bytes(2001, 0)},
                                          {kCalculated, bytesOf("1")},
                                          {kLinkedField, {1, 2, 3, 4}}};
  for (const auto& [type, value] : values) {
    Form form(type, value);
    const auto back = form.typed(form.shown());
    ASSERT_TRUE(back.ok()) << type << ": " << back.error().text;
    EXPECT_EQ(*back, value) << type;
  }
}

TEST(FieldValue, AChangedTimeOrLinkKeepsWhatTheTextDoesNotSay) {
  Form time(kTime, {9, 5, 13, 77});
  EXPECT_EQ(*time.typed("1:05PM"), (Bytes{9, 5, 13, 77}));
  EXPECT_EQ(*time.typed("1:06PM"), (Bytes{0, 6, 13, 77}));
  EXPECT_EQ(*time.typed("1:05:10PM"), (Bytes{10, 5, 13, 77}));
  Form link(kLinkField, Bytes(24, 5));
  const Bytes renamed = *link.typed("Bo");
  EXPECT_EQ(linkKey(renamed), 0x05050505u);
  EXPECT_EQ(renamed[23], 5);
  EXPECT_EQ(linkText(renamed), "Bo");
  const Bytes moved = linkValue(6, "Cy", renamed);
  EXPECT_EQ(linkKey(moved), 6u);
  EXPECT_EQ(moved[23], 5);
}

}  // namespace tabelion
