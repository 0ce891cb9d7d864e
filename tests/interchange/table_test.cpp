// Records through CSV, JSON and SQL.

#include <gtest/gtest.h>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "engine/packed_record.h"
#include "interchange/csv_reader.h"
#include "interchange/schema_json.h"
#include "interchange/table_import.h"
#include "support/fake_clock.h"
#include "support/memory_files.h"

namespace tabelion {
namespace {

class StringSink : public TextSink {
 public:
  bool write(std::string_view bytes) override {
    if (fails) return false;
    text += bytes;
    return true;
  }
  std::string text;
  bool fails = false;
};

class Table : public ::testing::Test {
 protected:
  void describe(const std::string& fields, const std::string& more = "") {
    EXPECT_EQ(initDatabase(database, engine), 1);
    const auto json = nlohmann::ordered_json::parse("{\"fields\": [" + fields + "]" + more + "}");
    const Status status = schemaFromJson(json, encoding, database);
    ASSERT_TRUE(status.ok()) << status.error().text;
  }
  // "LINE: reason" of each row refused, or of the whole text, one a line.
  std::string import(std::string_view csv) {
    const auto summary = importCsv(csv, form, encoding, engine, database, {});
    if (!summary.ok()) return summary.error().text;
    std::string refused;
    for (const RefusedRow& row : summary->refused) {
      refused += std::to_string(row.line) + ": ";
      for (const CellFault& fault : row.faults) {
        if (&fault != row.faults.data()) refused += "; ";
        refused += (fault.column.empty() ? "" : fault.column + ": ") + fault.reason;
      }
      refused += "\n";
    }
    return refused;
  }
  std::string exported(TableFormat format = TableFormat::kCsv) {
    StringSink sink;
    OutputBuffer out(sink);
    EXPECT_TRUE(exportTable(database, encoding, format, "T", choice, out, {}).is_written);
    return sink.text;
  }
  ImportForm form;
  ExportChoice choice;
  Bytes stored(std::uint32_t record, int slot) {
    const auto value = slotValue(database.records[record].bytes(), slot);
    return value ? Bytes(value->begin(), value->end()) : Bytes{0xEE};
  }

  MemoryFiles files;
  FakeClock clock;
  Engine engine{.files = files, .clock = clock, .random = [] { return 5u; }};
  Database database;
  TextEncoding encoding = TextEncoding::open("CP1252").value();
};

TEST_F(Table, EveryTypeGoesInAndComesOutAgain) {
  describe(R"({"name": "Text", "type": "text"}, {"name": "Int", "type": "integer"},
              {"name": "Float", "type": "float"}, {"name": "Kind", "type": "pop-up",
              "items": ["A", {"text": "Same", "level": 1}, "B", {"text": "Same", "level": 1}]},
              {"name": "Ok", "type": "check box"}, {"name": "No", "type": "auto-number"},
              {"name": "Note", "type": "note"}, {"name": "Day", "type": "date"},
              {"name": "At", "type": "time"}, {"name": "Key", "type": "linked field"},
              {"name": "To", "type": "link field"}, {"name": "Gap", "type": "separator"},
              {"name": "Sum", "type": "calculated"}, {"name": "Block", "type": "external",
              "width": 4})");
  const std::string csv =
      "Text,Int,Float,Kind,Ok,No,Note,Day,At,Key,To,To.key,Sum,Block\n"
      "\"a \"\"b\"\", c\",-2147483648,3.50,A,1,7,\"two\nlines\",2000-02-29,23:59:58,4294967295,"
      "Émile,77,-0.5,00ff\n"
      "€,,,B > Same,0,8,,9999-12-31,00:00:00,9,,5,Error!,\n"
      "2,2147483647,1e5,,,9,,1904-01-02,,10,x,0,,\n";
  ASSERT_EQ(import(csv), "");
  // No number and no tick are 0, a block is filled up; all else comes out as it went in.
  std::string back = csv;
  back.replace(back.find("€,,"), std::strlen("€,,"), "€,0,");
  back.replace(back.find("1e5,,,"), std::strlen("1e5,,,"), "1e5,,0,");
  back.insert(back.find("00ff") + 4, "0000");  // a block of four bytes
  EXPECT_EQ(exported(), back);
  EXPECT_EQ(stored(0, 0), (Bytes{'a', ' ', '"', 'b', '"', ',', ' ', 'c', 0}));
  EXPECT_EQ(stored(0, 1), (Bytes{0, 0, 0, 0x80}));
  EXPECT_EQ(stored(0, 8), (Bytes{58, 59, 23, 0}));
  EXPECT_EQ(stored(0, 10).size(), 24u + 6);
  EXPECT_EQ(stored(1, 0), (Bytes{0x80, 0}));
  EXPECT_EQ(stored(1, 3), Bytes(database.fields[3].items[3].key.begin(),
                                database.fields[3].items[3].key.begin() + 14));
  EXPECT_EQ(stored(2, 3), Bytes(14, 0));
  EXPECT_EQ(stored(2, 8), (Bytes{0, 0, 255, 0}));
  // Every value has the bytes of its type, whatever was given, for readers that take those.
  for (const std::uint32_t row : {0u, 1u, 2u}) {
    for (const auto& [slot, size] : {std::pair{1, 4},
                                     {2, 17},
                                     {3, 14},
                                     {4, 1},
                                     {6, 2001},
                                     {7, 4},
                                     {8, 4},
                                     {12, 17},
                                     {13, 4}}) {
      EXPECT_EQ(stored(row, slot).size(), std::size_t(size)) << row << ", " << slot;
    }
    EXPECT_GE(stored(row, 10).size(), 24u);
  }
  EXPECT_EQ(stored(1, 6), Bytes(2001, 0));
  EXPECT_TRUE(recordStamp(database.records[0].bytes()).has_value());
  EXPECT_EQ(database.schema.next_auto_number, 11u);
}

TEST_F(Table, RowThatDoesNotFitSaysLineFieldAndReason) {
  describe(R"({"name": "Name", "type": "text", "width": 5}, {"name": "Day", "type": "date"},
              {"name": "At", "type": "time"}, {"name": "N", "type": "integer"},
              {"name": "F", "type": "float"}, {"name": "K", "type": "pop-up", "items": ["a"]},
              {"name": "B", "type": "check box"}, {"name": "L", "type": "link field"})");
  EXPECT_EQ(import("Name,Day,At,N,F,K,B,L.key\n"
                   "abcde,2001-02-28,12:00,1,1,a,1,1\n"
                   "abcdef,,,,,,,\n"
                   "\"Ж\n\",,,,,,,\n"
                   ",2001-02-29,,,,,,\n"
                   ",01/02/2003,,,,,,\n"
                   ",1903-12-31,,,,,,\n"
                   ",1904-01-01,,,,,,\n"
                   ",,24:00,,,,,\n"
                   ",,,2147483648,,,,\n"
                   ",,,,1 2,,,\n"
                   ",,,,12345678901234567,,,\n"
                   ",,,,,b,,\n"
                   ",,,,,,maybe,\n"
                   ",,,,,,,-1\n"
                   ",,\n"
                   "\xE9,,,,x,,,\n"),
            "3: Name: the text takes 6 bytes; the field holds 5\n"
            "4: Name: \"Ж\" (U+0416) is not in CP1252\n"
            "6: Day: \"2001-02-29\" is not a day of the calendar\n"
            "7: Day: \"01/02/2003\" is not a date like 2024-03-31\n"
            "8: Day: \"1903-12-31\" lies before 1904\n"
            "9: Day: \"1904-01-01\" is what a date without a value is kept as\n"
            "10: At: \"24:00\" is not a time like 17:05 or 17:05:09\n"
            "11: N: \"2147483648\" is not a whole number of 32 bits\n"
            "12: F: \"1 2\" is not a number\n"
            "13: F: \"12345678901234567\" is longer than the 16 characters of a number\n"
            "14: K: \"b\" is not an item of the list\n"
            "15: B: \"maybe\" is not 0 or 1, yes or no\n"
            "16: L: \"-1\" is not the number of a record\n"
            "17: the row has 3 cells where the header has 8\n"
            "18: Name: byte 0xE9 is not UTF-8; F: \"x\" is not a number\n");
  EXPECT_EQ(database.records.count(), 1u) << "the row that fits";
}

TEST_F(Table, TextThatIsNoTableIsRefusedWhole) {
  describe(R"({"name": "Name", "type": "text"})");
  EXPECT_EQ(import(""), "there is no header row that names the fields");
  EXPECT_EQ(import("Name,Nmae\n"), "line 1: the database has no field \"Nmae\"; there is \"Name\"");
  EXPECT_EQ(import("Name,Name\n"), "line 1: the column \"Name\" stands there more than once");
  EXPECT_EQ(import("Name\na\n\"b\n"), "line 3: a quote is opened and never closed");
  EXPECT_EQ(import("Name\n\"b\"c\n"), "line 2: text follows a closing quote");
  EXPECT_EQ(database.records.count(), 0u) << "nor do the rows before the fault stay";
}

TEST_F(Table, TextsOfOtherProgramsAreUnderstood) {
  describe(R"({"name": "Name", "type": "text"}, {"name": "Day", "type": "date"},
              {"name": "Ok", "type": "check box"}, {"name": "N", "type": "integer"},
              {"name": "K", "type": "pop-up", "items": ["a", " b"]})");
  form.dates = makeFormatSettings({2, 0, false}, LocaleInfo{});  // day.month.year
  // Semicolons, header names in other case, blanks around what is no text.
  EXPECT_EQ(import("NAME; day ;ok;n;k\n"
                   " x; 5.9.2024 ;Yes; 7 ; a \n"
                   "y;2024-05-09;off;; b\n"
                   "z;5.9.24;;;\n"
                   "z;1/2/2024;;;\n"),
            "4: Day: \"5.9.24\" is not a date like 31.3.2024\n"
            "5: Day: \"1/2/2024\" is not a date like 31.3.2024\n");
  EXPECT_EQ(exported(), "Name,Day,Ok,N,K\n x,2024-09-05,1,7,a\ny,2024-05-09,0,0, b\n");
  EXPECT_EQ(import("Name,(reason)\nagain,was wrong\n"), "");
  EXPECT_EQ(import("(reason),Name\n"),
            "line 1: the database has no field \"(reason)\"; there is "
            "\"Name\", \"Day\", \"Ok\", \"N\" or \"K\"");
  form.delimiter = ',';
  EXPECT_NE(import("Name;Day\n").find("no field \"Name;Day\""), std::string::npos);
}

TEST_F(Table, NumbersAreCountedOnAndGivenOnesKept) {
  describe(R"({"name": "No", "type": "auto-number"}, {"name": "A", "type": "text"})",
           R"(, "sort": [{"field": "A"}], "stamping": false)");
  ASSERT_EQ(import("A,No\nx,\ny,50\nz,\n"), "");
  EXPECT_EQ(exported(), "No,A\n1,x\n50,y\n51,z\n");
  EXPECT_EQ(database.schema.sort_pending, 1) << "the new records are not in order yet";
  EXPECT_FALSE(recordStamp(database.records[0].bytes()).has_value());
}

TEST_F(Table, RecordBeyondTheLimitIsRefused) {
  describe(R"({"name": "A", "type": "text"})");
  std::string csv = "A\n";
  for (int i = 0; i < kMaxRecords + 1; ++i) csv += "x\n";
  EXPECT_EQ(import(csv), "65002: the database is full: it holds 65000 records, the most it can\n");
}

TEST_F(Table, UnknownAndEncipheredValuesAreNotMadeUp) {
  describe(R"({"name": "K", "type": "pop-up", "items": ["a"]}, {"name": "A", "type": "text",
              "encrypt": true}, {"name": "F", "type": "float"})");
  ASSERT_EQ(import("K,A,F\na,secret,1\n"), "");
  UnpackedRecord record = unpackRecord(database.records[0].bytes());
  record.slots[0] = Bytes{1, 2, 3};
  record.slots[2] = Bytes{'3', ',', '5', 0};  // as written where the decimal comma is set
  record.prefix[1 + kStampFlagOffset] |= kRecordEncrypted;
  Bytes packed;
  ASSERT_TRUE(packRecord(record, packed));
  ASSERT_TRUE(database.records.replace(0, packed));
  EXPECT_EQ(exported(), "K,A,F\n?0102030000000000000000000000,,3.5\n");
  ASSERT_EQ(import("K\n?010203\n"), "");
  EXPECT_EQ(stored(1, 0), (Bytes{1, 2, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(Table, ValuesShorterThanTheirTypeReadAsPadded) {
  describe(R"({"name": "At", "type": "time"}, {"name": "To", "type": "link field"},
              {"name": "K", "type": "pop-up", "items": ["a"]}, {"name": "D", "type": "date"})");
  database.fields[2].items[0].key = {7, 8};
  UnpackedRecord record = newRecord(database.schema);
  record.slots[0] = Bytes{0, 30};
  record.slots[1] = Bytes{2, 1};
  record.slots[2] = Bytes{7, 8};
  record.slots[3] = Bytes{1};
  Bytes packed;
  ASSERT_TRUE(packRecord(record, packed));
  ASSERT_NE(appendRecord(database, engine, packed, false), kNoPosition);
  EXPECT_EQ(exported(), "At,To,To.key,K,D\n00:30:00,,258,a,1904-01-02\n");
}

TEST_F(Table, NotesTakeNoMoreRoomThanThereIs) {
  std::string fields;
  std::string csv;
  for (int i = 0; i < 40; ++i) {
    fields += (i > 0 ? ", " : "") + fmt::format(R"({{"name": "N{}", "type": "note"}})", i);
    csv += (i > 0 ? "," : "") + fmt::format("N{}", i);
  }
  describe(fields);
  csv += "\nshort" + std::string(39, ',') + "\n";
  EXPECT_EQ(import(csv), "");
  EXPECT_EQ(exported(), csv);
}

TEST_F(Table, JsonHasNumbersTruthsAndNulls) {
  describe(R"({"name": "A \"q\"", "type": "text"}, {"name": "F", "type": "float"},
              {"name": "B", "type": "check box"}, {"name": "N", "type": "integer"})");
  ASSERT_EQ(import("\"A \"\"q\"\"\",F,B,N\nÄ,007,1,-5\n,2.50,0,\n,.5,,\n"), "");
  EXPECT_EQ(nlohmann::json::parse(exported(TableFormat::kJson)),
            nlohmann::json::parse(R"([{"A \"q\"": "Ä", "F": "007", "B": true, "N": -5},
              {"A \"q\"": null, "F": 2.50, "B": false, "N": 0},
              {"A \"q\"": null, "F": ".5", "B": false, "N": 0}])"));
}

TEST_F(Table, SqlGivesUpATypeThatAValueDoesNotHave) {
  describe(R"({"name": "It's", "type": "text"}, {"name": "F", "type": "float"},
              {"name": "G", "type": "calculated"}, {"name": "D", "type": "date"},
              {"name": "E", "type": "date"})");
  ASSERT_EQ(import("It's,F,G,D,E\nO'Neal,1,Error!,2100-02-28,2100-02-29\n,,,,\n"), "");
  EXPECT_EQ(exported(TableFormat::kSql),
            "BEGIN;\nCREATE TABLE \"T\" (\n  \"It's\" text,\n  \"F\" numeric,\n  \"G\" text,\n"
            "  \"D\" date,\n  \"E\" text\n);\nINSERT INTO \"T\" VALUES\n"
            "('O''Neal',1,'Error!','2100-02-28','2100-02-29'),\n(NULL,NULL,NULL,NULL,NULL);\n"
            "COMMIT;\n");
}

TEST_F(Table, NamesThatOnlyDifferInCaseGetTheirSlot) {
  describe(R"({"name": "name", "type": "text"}, {"name": "NAME", "type": "text"})");
  ASSERT_EQ(import("NAME #1,name #0\nb,a\n"), "");
  EXPECT_EQ(exported(), "name #0,NAME #1\na,b\n");
}

TEST_F(Table, FailedOutputIsToldAndEndsTheWork) {
  describe(R"({"name": "A", "type": "text"})");
  ASSERT_EQ(import("A\nx\n"), "");
  StringSink sink;
  sink.fails = true;
  OutputBuffer out(sink);
  EXPECT_FALSE(exportTable(database, encoding, TableFormat::kCsv, "T", choice, out, {}).is_written);
}

std::string cellsOf(CsvReader& reader) {
  std::string text = std::to_string(reader.line());
  for (const std::string_view cell : reader.cells()) text += "|" + std::string(cell);
  return text;
}

TEST(Csv, RowsCellsAndLinesAreTakenApart) {
  CsvReader reader(
      "\xEF\xBB\xBF"
      "a,,\"b,\"\"c\"\"\"\r\n\r\n\n\"x\ny\",z\"q,\rw\n,\nlast,\"\"");
  std::string rows;
  while (reader.next() == CsvReader::Row::kRead) rows += cellsOf(reader) + "\n";
  EXPECT_EQ(rows, "1|a||b,\"c\"\n4|x\ny|z\"q|\rw\n6||\n7|last|\n");
  EXPECT_EQ(reader.problem(), "");
}

TEST(Csv, CellsWithQuotesStayValidTogether) {
  std::string row;
  for (int i = 0; i < 300; ++i) row += "\"\"\"" + std::to_string(i) + "\"\"\",";
  CsvReader reader(row);
  ASSERT_EQ(reader.next(), CsvReader::Row::kRead);
  EXPECT_EQ(reader.cells()[0], "\"0\"");
  EXPECT_EQ(reader.cells()[299], "\"299\"");
}

}  // namespace
}  // namespace tabelion
