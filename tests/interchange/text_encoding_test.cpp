#include "interchange/text_encoding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <set>

#include "interchange/input_text.h"

namespace tabelion {
namespace {

TextEncoding page(std::string_view name) {
  auto encoding = TextEncoding::open(name);
  EXPECT_TRUE(encoding.ok()) << name;
  return encoding ? *encoding : TextEncoding::utf8();
}

std::string everyByte() {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  return bytes;
}

std::string describe(const TextEncoding& encoding, const Encoded& encoded) {
  return encoded.fault ? std::to_string(encoded.fault->position) + ": " +
                             describeFault(*encoded.fault, encoding)
                       : "encoded";
}

void expectRoundTrip(const TextEncoding& encoding, const std::string& bytes) {
  const std::string text = encoding.toUtf8(bytes);
  ASSERT_EQ(encoding.fromUtf8(text).bytes, bytes) << encoding.name();
  ASSERT_TRUE(TextEncoding::utf8().fromUtf8(text).ok()) << "the text is not UTF-8";
  ASSERT_EQ(encoding.fromUtf16(encoding.toUtf16(bytes)).bytes, bytes) << encoding.name();
}

}  // namespace

TEST(TextEncoding, OpensPagesByTheirManyNames) {
  EXPECT_EQ(page("1252").name(), "CP1252");
  EXPECT_EQ(page("cp1252").name(), "CP1252");
  EXPECT_EQ(page("windows-1251").name(), "CP1251");
  EXPECT_EQ(page("iso-8859-15").name(), "ISO-8859-15");
  for (const char* name : {"UTF-8", "utf8", "65001", "cp65001"}) {
    EXPECT_TRUE(page(name).isUtf8()) << name;
    EXPECT_EQ(page(name).name(), "UTF-8");
  }
  for (const char* refused : {"", "NO-SUCH-PAGE", "99999", "CP1252//TRANSLIT", "a b", "UTF-16",
                              "UTF-7", "IBM037", "ISO-2022-JP", "CP"}) {
    const auto encoding = TextEncoding::open(refused);
    ASSERT_FALSE(encoding.ok()) << refused;
    EXPECT_GT(encoding.error().text.size(), 20u);
  }
}

TEST(TextEncoding, EveryByteComesBackFromASingleBytePage) {
  for (const char* name :
       {"1252", "1250", "1251", "1253", "1254", "1255", "1256", "1257", "1258", "437", "850", "866",
        "874", "ISO-8859-1", "ISO-8859-15", "KOI8-R", "MACINTOSH", "TIS-620", "US-ASCII"}) {
    const TextEncoding encoding = page(name);
    expectRoundTrip(encoding, everyByte());
    const std::u16string text = encoding.toUtf16(everyByte());
    EXPECT_EQ(std::set<char16_t>(text.begin(), text.end()).size(), 256u) << name;
  }
  EXPECT_EQ(page("1252").toUtf16("\x80\x81\xE9"), u"\u20AC\u0081\u00E9");
  EXPECT_EQ(page("1253").toUtf16("\xFF\xE1"), u"\uF7FF\u03B1");  // not the letter U+00FF
  EXPECT_EQ(page("1251").toUtf8("\xC6uk"), "\xD0\x96uk");
}

TEST(TextEncoding, BytesThatAreNotUtf8ComeBack) {
  const TextEncoding utf8 = TextEncoding::utf8();
  EXPECT_EQ(utf8.toUtf16("a\xC3\xA9\xF0\x9F\x8D\xB0"), u"a\u00E9\U0001F370");
  EXPECT_EQ(utf8.toUtf16("\xC3(\x80"), u"\uF7C3(\uF780");
  EXPECT_EQ(utf8.toUtf16("\xC0\xAF"), u"\uF7C0\uF7AF");            // overlong
  EXPECT_EQ(utf8.toUtf16("\xE0\x9F\xBF"), u"\uF7E0\uF79F\uF7BF");  // overlong
  EXPECT_EQ(utf8.toUtf16("\xED\xA0\x80"), u"\uF7ED\uF7A0\uF780");  // surrogate
  EXPECT_EQ(utf8.toUtf16("\xF4\x90\x80\x80").size(), 4u);          // past the last
  EXPECT_EQ(utf8.toUtf16("\xEF\x9E\x80"), u"\uF7EF\uF79E\uF780");  // what stands for a byte
  EXPECT_EQ(utf8.toUtf8("\xEF\x9D\xBF"), "\xEF\x9D\xBF");          // its neighbour does not
  const char* given = std::getenv("TEXT_ENCODING_SEED");
  const unsigned seed = given ? static_cast<unsigned>(std::atol(given)) : std::random_device{}();
  SCOPED_TRACE("TEXT_ENCODING_SEED=" + std::to_string(seed));
  std::mt19937 random(seed);
  const TextEncoding pages[] = {utf8, page("932"), page("GB18030"), page("BIG5-HKSCS")};
  // Bytes that begin, continue and break sequences, more often than chance would have them.
  const std::string_view likely =
      "a\x80\xBF\xC2\xC3\xE0\xE2\x82\xAC\xED\xEF\x9E\x9F\xF0\xF4\x81\x30";
  for (int round = 0; round < 20000; ++round) {
    std::string bytes;
    for (std::size_t length = random() % 12; length > 0; --length) {
      bytes += random() % 3 ? likely[random() % likely.size()] : static_cast<char>(random());
    }
    expectRoundTrip(utf8, bytes);
    if (round % 20 == 0) {
      for (const TextEncoding& encoding : pages) expectRoundTrip(encoding, bytes);
    }
    if (HasFatalFailure()) return;
  }
}

TEST(TextEncoding, LackingCharactersAreNamedAndNeverReplaced) {
  const TextEncoding western = page("1252");
  EXPECT_EQ(describe(western, western.fromUtf8("caf\xC3\xA9 \xD0\x96uk")),
            "6: \"\xD0\x96\" (U+0416) is not in CP1252");
  EXPECT_EQ(western.fromUtf8("caf\xC3\xA9 \xD0\x96uk").bytes, "caf\xE9 ");
  EXPECT_EQ(describe(western, western.fromUtf16(u"x\U0001F370")),
            "1: \"\xF0\x9F\x8D\xB0\" (U+1F370) is not in CP1252");
  EXPECT_EQ(describe(western, western.fromUtf8("ab\xE9z")), "2: byte 0xE9 is not UTF-8");
  EXPECT_EQ(describe(western, western.fromUtf16(std::u16string(u"a\xD83Cz"))),
            "1: unit 0xD83C is not UTF-16");
  EXPECT_FALSE(TextEncoding::utf8().fromUtf16(std::u16string(1, u'\xDC00')).ok());
  // Look-alikes that a lenient conversion would fold together.
  for (const char32_t c : {0x2212, 0x0100, 0xFF21, 0x2010, 0x00AD + 0x2000, 0x0301}) {
    EXPECT_FALSE(western.canEncode(c)) << static_cast<int>(c);
  }
  // A page can encode exactly what its bytes decode to.
  for (const char* name : {"1252", "1251", "1258", "437"}) {
    const TextEncoding encoding = page(name);
    int count = 0;
    for (char32_t c = 0; c < 0x10000; ++c) count += encoding.canEncode(c) ? 1 : 0;
    EXPECT_EQ(count, 256) << name;
  }
  EXPECT_TRUE(page("932").canEncode(0x65E5));
  EXPECT_FALSE(page("932").canEncode(0x0E01));
}

TEST(TextEncoding, CutsBetweenCharacters) {
  EXPECT_EQ(TextEncoding::utf8().cut("a\xE2\x82\xAC", 3), "a");
  EXPECT_EQ(TextEncoding::utf8().cut("a\xE2\x82\xAC", 4), "a\xE2\x82\xAC");
  EXPECT_EQ(TextEncoding::utf8().cut("\x80\x80\x80\x80\x80", 4).size(), 4u);
  EXPECT_EQ(page("1252").cut("\xE9\xE9\xE9", 2), "\xE9\xE9");
  EXPECT_EQ(page("932").cut("a\x93\xFA\x96\x7B", 4), "a\x93\xFA");
  EXPECT_EQ(page("932").cut("a\x93\xFA\x96\x7B", 5), "a\x93\xFA\x96\x7B");
}

TEST(TextEncoding, ADatabasesMarkWins) {
  Database database;
  initSchema(database.schema);
  const auto mark = [&](std::string_view text) {
    database.schema.code_page.fill(0);
    std::copy(text.begin(), text.end(), database.schema.code_page.begin());
  };
  EXPECT_EQ(databaseEncoding(database, "").name(), "CP1252");
  EXPECT_EQ(databaseEncoding(database, "1250").name(), "CP1250");
  EXPECT_EQ(databaseEncoding(database, "nonsense").name(), "CP1252");
  mark("UTF-8");
  EXPECT_TRUE(databaseEncoding(database, "1250").isUtf8());
  mark("NOSUCH");
  EXPECT_EQ(databaseEncoding(database, "1250").name(), "CP1250");
}

// How the text of a file is taken: `encoding|text`, with "?" where it was found out to be no UTF-8.
std::string readAs(std::string_view bytes, std::string_view name = {},
                   std::string_view fallback = "1252") {
  const ByteView view(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  const auto input = InputText::read(view, name, *TextEncoding::open(fallback));
  if (!input.ok()) return input.error().text;
  return input->encoding() + (input->isGuess() ? "?|" : "|") + std::string(input->text());
}

TEST(InputText, IsFoundOutOrTakenAtItsWord) {
  using namespace std::literals;
  EXPECT_EQ(readAs("\xEF\xBB\xBFZoë"), "UTF-8|Zoë");
  EXPECT_EQ(readAs("a\xEB"), "CP1252?|aë");
  EXPECT_EQ(readAs("a\xEB", "", "1251"), "CP1251?|aл");
  EXPECT_EQ(readAs("a\xEB", "", "UTF-8"), "CP1252?|aë") << "what it is not, it cannot be read as";
  EXPECT_EQ(readAs("a\nb\xEB", "UTF-8"), "line 2: byte 0xEB is not UTF-8");
  EXPECT_EQ(readAs("Zoë", "1252"), "CP1252|ZoÃ«");
  EXPECT_EQ(readAs("\xFF\xFE"
                   "a\0\xEB\0\x3D\xD8\x00\xDE"sv),
            "UTF-16LE?|aë😀");
  EXPECT_EQ(readAs("\xFE\xFF\0a"sv, "utf-16"), "UTF-16BE|a");
  EXPECT_EQ(readAs("a\0\n\0\x3D\xD8"sv, "UTF-16LE"), "line 2: is not UTF-16");
  EXPECT_EQ(readAs("a\0b"sv, "UTF-16LE"), "line 1: is not UTF-16");
  EXPECT_NE(readAs("a", "klingon").find("klingon"), std::string::npos);
}

}  // namespace tabelion
