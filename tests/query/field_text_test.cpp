#include "query/field_text.h"

#include <gtest/gtest.h>

#include "query_fixtures.h"

namespace tabelion {
namespace {

FieldText textOf(FieldType type, Bytes value, const TextOptions& options = {}) {
  const OneField one(type, std::move(value));
  return fieldText(one.database, one.record, 0, chosen(0), options);
}

std::string rawOf(FieldType type, Bytes value) {
  return textOf(type, std::move(value), {.raw = true}).text;
}

std::string resultText(int kind, const char* stored) {
  OneField one(FieldType::kCalculated, bytesOf(stored));
  one.field().area_f[kResultKindOffset] = static_cast<std::uint8_t>(kind);
  return fieldText(one.database, one.record, 0, chosen(0)).text;
}

bool filled(FieldType type, Bytes value) {
  const OneField one(type, std::move(value));
  return hasValue(one.database, one.record, 0, chosen(0));
}

}  // namespace

TEST(FieldText, ShowsEveryTypeOfValue) {
  using namespace std::string_literals;
  for (const FieldType type : {FieldType::kText, FieldType::kFloat, FieldType::kLongText,
                               FieldType::kTextVariant, FieldType::kText254}) {
    EXPECT_EQ(textOf(type, bytesOf("a b\0rest"s)).text, "a b") << codeOf(type);
    EXPECT_EQ(textOf(type, bytesOf("no end")).text, "no end") << codeOf(type);
  }
  EXPECT_EQ(textOf(FieldType::kInteger, {0xFE, 0xFF, 0xFF, 0xFF}).text, "-2");
  EXPECT_EQ(textOf(FieldType::kInteger, {7}).text, "7");  // short values are padded
  EXPECT_EQ(textOf(FieldType::kAutoNumber, {0, 0, 0, 0x80}).text, "-2147483648");
  EXPECT_EQ(textOf(FieldType::kCheckBox, {2}).text, "1");
  EXPECT_EQ(textOf(FieldType::kCheckBox, {0}).text, "0");
  EXPECT_EQ(textOf(FieldType::kDate, {60, 0, 0, 0}).text, "3/1/1904");
  EXPECT_EQ(textOf(FieldType::kTime, {9, 5, 13, 77}).text, "1:05:09PM");
  EXPECT_EQ(textOf(FieldType::kTime, {0, 0, 255, 0}).text, "No Time");
  EXPECT_EQ(textOf(FieldType::kLinkedField, {0xFF, 0xFF, 0xFF, 0xFF}).text, "");
  EXPECT_EQ(rawOf(FieldType::kLinkedField, {0xFF, 0xFF, 0xFF, 0xFF}), "4294967295");
  Bytes link(24, 0);
  link[1] = 1;
  EXPECT_EQ(textOf(FieldType::kLinkField, link).text, "");
  for (const char c : "Anna\0x"s) link.push_back(static_cast<std::uint8_t>(c));
  EXPECT_EQ(textOf(FieldType::kLinkField, link).text, "Anna");
  EXPECT_EQ(rawOf(FieldType::kLinkField, link), "256");
}

TEST(FieldText, TellsTextFromNoText) {
  const OneField one(FieldType::kText, bytesOf("x"));
  EXPECT_TRUE(fieldText(one.database, one.record, 0, chosen(0)).has_value);
  for (const int slot : {-1, 1, 99, 100}) {
    EXPECT_FALSE(fieldText(one.database, one.record, slot, chosen(0)).has_value) << slot;
  }
  EXPECT_FALSE(fieldText(one.database, {}, 0, chosen(0)).has_value);
  for (int code = -1; code <= 19; ++code) {
    const FieldType type{code};
    const bool formless = code <= 0 || code == 7 || code == 13 || code > 18;
    for (const std::size_t size : {0u, 20u}) {
      const FieldText text = textOf(type, Bytes(size, formless ? 'x' : 0));
      const bool textless = formless || (type == FieldType::kLinkedField && size > 0);  // but raw
      EXPECT_EQ(text.has_value, !textless) << codeOf(type);
      if (formless || size == 0 || type == FieldType::kExternal) {
        EXPECT_EQ(text.text, "") << codeOf(type);
      }
    }
  }
}

TEST(FieldText, PopupsShowTheItemOfTheirKey) {
  OneField one(FieldType::kPopup, Bytes(14, 0));
  one.addItem(1, "Oslo");
  one.addItem(2, "Rom");
  const auto text = [&] { return fieldText(one.database, one.record, 0, chosen(0)).text; };
  EXPECT_EQ(text(), "No Value");
  one.set({2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
  EXPECT_EQ(text(), "Rom");
  one.set({1});
  EXPECT_EQ(text(), "Oslo");
  one.set({2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 9});
  EXPECT_EQ(text(), "No Value");
}

TEST(FieldText, ResultsShowByTheirKind) {
  EXPECT_EQ(resultText(0, "0.3333"), "0.3333");
  EXPECT_EQ(resultText(1, "5"), "5");
  EXPECT_EQ(resultText(2, "360061"), "100:01:01");
  EXPECT_EQ(resultText(3, "59"), "2/29/1904");
  EXPECT_EQ(resultText(6, "1.5"), "1.5");
  EXPECT_EQ(resultText(7, "1"), "Error!");
  EXPECT_EQ(resultText(2, "1e300"), "Error!");
  EXPECT_EQ(resultText(3, "-5"), "Error!");
  EXPECT_EQ(resultText(3, ""), "");
}

TEST(FieldText, EncryptedValuesAreRunsOfX) {
  OneField one(FieldType::kText, bytesOf("abcde"));
  one.encrypt();
  const auto text = [&](TextOptions options) {
    return fieldText(one.database, one.record, 0, chosen(0), options);
  };
  EXPECT_EQ(text({}).text, "XXXXX");
  EXPECT_FALSE(text({}).has_value);
  EXPECT_EQ(text({.capacity = 4}).text, "XXX");
  EXPECT_EQ(text({.raw = true}).text, "");
  EXPECT_FALSE(hasValue(one.database, one.record, 0, chosen(0)));
  one.field().type = FieldType::kNote;  // types without text are masked too
  EXPECT_EQ(text({}).text, "XXXXX");
  EXPECT_EQ(editText(one.database, one.record, 0, chosen(0)).text, "XXXXX");
  one.field().encrypt_flag = 0;
  one.field().type = FieldType::kText;
  EXPECT_EQ(text({}).text, "abcde");
}

TEST(FieldText, CutsKeepCharactersWhole) {
  const Bytes value = bytesOf("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8D\xB0z");  // 1, 2, 3, 4, 1 bytes
  const OneField one(FieldType::kText, value);
  FormatSettings settings = chosen(0);
  for (std::size_t capacity = 0; capacity < 14; ++capacity) {
    const TextOptions options{.capacity = capacity};
    const std::size_t most = capacity == 0 ? 0 : capacity - 1;
    settings.utf8 = false;
    EXPECT_EQ(fieldText(one.database, one.record, 0, settings, options).text.size(),
              std::min<std::size_t>(most, 11));
    settings.utf8 = true;
    const std::size_t whole = most >= 11   ? 11
                              : most >= 10 ? 10
                              : most >= 6  ? 6
                              : most >= 3  ? 3
                              : most >= 1  ? 1
                                           : 0;
    EXPECT_EQ(fieldText(one.database, one.record, 0, settings, options).text.size(), whole);
  }
  std::string into = "before ";
  appendFieldText(into, one.database, one.record, 0, settings, {.capacity = 3});
  EXPECT_EQ(into, "before a");
}

TEST(FieldText, LookupsComeFromTheirResolver) {
  const OneField one(FieldType::kLookup, {});
  const LookupText lookup = [](int slot, ByteView) {
    return std::string(300, slot == 0 ? 'a' : 'b');
  };
  EXPECT_EQ(fieldText(one.database, one.record, 0, chosen(0)).text, "");
  EXPECT_EQ(fieldText(one.database, one.record, 0, chosen(0), {.lookup = &lookup}).text,
            std::string(254, 'a'));
}

TEST(FieldText, HasAValueByType) {
  EXPECT_FALSE(filled(FieldType::kText, bytesOf("")));
  EXPECT_TRUE(filled(FieldType::kText, bytesOf("0")));
  EXPECT_FALSE(filled(FieldType::kInteger, {0, 0, 0, 0}));
  EXPECT_TRUE(filled(FieldType::kInteger, {1, 0, 0, 0}));
  EXPECT_FALSE(filled(FieldType::kText254, bytesOf("word")));
  EXPECT_TRUE(filled(FieldType::kText254, bytesOf("2 words")));
  EXPECT_FALSE(filled(FieldType::kFloat, bytesOf("0.00")));
  EXPECT_TRUE(filled(FieldType::kFloat, bytesOf("0.01")));
  EXPECT_FALSE(filled(FieldType::kPopup, Bytes(14, 0)));
  EXPECT_FALSE(filled(FieldType::kCheckBox, {0}));
  EXPECT_TRUE(filled(FieldType::kCheckBox, {1}));
  EXPECT_FALSE(filled(FieldType::kNote, Bytes(2001, 0)));
  EXPECT_TRUE(filled(FieldType::kNote, bytesOf("n")));
  EXPECT_FALSE(filled(FieldType::kDate, {0, 0, 0, 0}));
  EXPECT_TRUE(filled(FieldType::kDate, {1, 0, 0, 0}));
  EXPECT_FALSE(filled(FieldType::kTime, {0, 0, 255, 0}));
  EXPECT_TRUE(filled(FieldType::kTime, {0, 0, 0, 0}));
  EXPECT_FALSE(filled(FieldType::kTime, {}));
  EXPECT_FALSE(filled(FieldType::kLinkedField, {0, 0, 0, 0}));
  EXPECT_FALSE(filled(FieldType::kLinkField, Bytes(24, 1)));
  EXPECT_TRUE(filled(FieldType::kLinkField, Bytes(25, 1)));
  EXPECT_TRUE(filled(FieldType::kAutoNumber, {0, 0, 0, 0}));
  EXPECT_TRUE(filled(FieldType::kSeparator, {}));
  OneField result(FieldType::kCalculated, bytesOf("0.0000"));
  EXPECT_FALSE(hasValue(result.database, result.record, 0, chosen(0)));
}

}  // namespace tabelion
