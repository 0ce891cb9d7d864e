#include "query/report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/schema_places.h"
#include "query/date_text.h"
#include "query/query_fixtures.h"
#include "query/time_text.h"

namespace tabelion {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;

Bytes timeBytes(int hour, int minute, int second = 0) {
  return {static_cast<std::uint8_t>(second), static_cast<std::uint8_t>(minute),
          static_cast<std::uint8_t>(hour), 0};
}

// One field "F" in slot 1, behind a text; a record for each value.
class Report : public ::testing::Test {
 protected:
  Report() { settings.formats = chosen(0); }

  void fill(FieldType type, const std::vector<Bytes>& values, int result_kind = 0) {
    database.records.clear();
    initSchema(database.schema);
    database.schema.fields[0].type = FieldType::kText;
    FieldDefinition& field = database.schema.fields[1];
    field.type = type;
    setFieldName(field, "F");
    if (type == FieldType::kCalculated) {
      StoredFormula formula;
      formula.result_kind = static_cast<std::uint8_t>(result_kind);
      ASSERT_TRUE(setStoredFormula(field, formula));
    }
    for (const Bytes& value : values) {
      UnpackedRecord record;
      record.slots[0] = bytesOf("x");
      record.slots[1] = value;
      add(record);
    }
  }
  void add(const UnpackedRecord& record) {
    Bytes packed;
    ASSERT_TRUE(packRecord(record, packed));
    database.records.insert(database.records.count(), packed, {});
  }
  std::string report() const { return runReport(database, 1, settings); }

  Database database;
  QuerySettings settings;
};

TEST_F(Report, ListsTheFieldsThatCanBeReported) {
  initSchema(database.schema);
  for (int code = 1; code <= codeOf(kLastFieldType); ++code) {
    database.schema.fields[static_cast<std::size_t>(code)].type = FieldType{code};
  }
  EXPECT_THAT(reportFields(database.schema),
              ElementsAre(codeOf(FieldType::kInteger), codeOf(FieldType::kFloat),
                          codeOf(FieldType::kCheckBox), codeOf(FieldType::kDate),
                          codeOf(FieldType::kTime), codeOf(FieldType::kCalculated)));
  EXPECT_EQ(runReport(database, codeOf(FieldType::kText), settings), "");
  EXPECT_EQ(runReport(database, -1, settings), "");
}

TEST_F(Report, IntegersAndTheirTotals) {
  fill(FieldType::kInteger, {number(1), number(2), number(2)});
  EXPECT_EQ(report(),
            "Report for F\r\n"
            "Number of Entries:\r\n\t3\r\nMinimum Value:\r\n\t1\r\nMaximum Value:\r\n\t2\r\n"
            "Sum:\r\n\t\t5\r\nMinimum Total:\r\n\t1\r\nMaximum Total:\r\n\t5\r\n"
            "Average:\r\n\t\t2");
  fill(FieldType::kInteger, {number(-5), number(10), {}});
  EXPECT_THAT(report(), HasSubstr("Number of Entries:\r\n\t3\r\n")) << "no value counts as 0";
  EXPECT_THAT(report(), HasSubstr("Minimum Total:\r\n\t-5\r\nMaximum Total:\r\n\t5\r\n"));
  fill(FieldType::kInteger, {number(-1), number(-2), number(-2)});
  EXPECT_THAT(report(), EndsWith("Average:\r\n\t\t-1")) << "towards zero";
  fill(FieldType::kInteger, std::vector<Bytes>(3, number(INT32_MAX)));
  EXPECT_THAT(report(), HasSubstr("Sum:\r\n\t\t6442450941\r\n")) << "64 bits";
  fill(FieldType::kCalculated, {bytesOf("12"), bytesOf("-4"), bytesOf("Error!")}, 1);
  EXPECT_THAT(report(), HasSubstr("Minimum Value:\r\n\t-4\r\nMaximum Value:\r\n\t12\r\n"));
}

TEST_F(Report, ExtremesStartWhereTheyAlwaysDid) {
  fill(FieldType::kInteger, {number(3000000)});
  EXPECT_THAT(report(),
              HasSubstr("Minimum Value:\r\n\t2000000\r\nMaximum Value:\r\n\t3000000\r\n"));
  EXPECT_THAT(report(), HasSubstr("Minimum Total:\r\n\t2000000\r\n"));
  fill(FieldType::kFloat, {bytesOf("-3e6")});
  EXPECT_THAT(report(), HasSubstr("Maximum Value:\r\n\t-2000000\r\n"));
  fill(FieldType::kDate, {{0, 0, 0, 0}});
  EXPECT_THAT(report(), EndsWith("Minimum Value:\r\n\t11/22/2040\r\nMaximum Value:\r\n\tNO DATE\r\n"
                                 "Days Spanned:\r\n\t-50000"));
  fill(FieldType::kDate, {number(51000)});
  EXPECT_THAT(report(), HasSubstr("Minimum Value:\r\n\t11/22/2040\r\n")) << "later dates";
  EXPECT_THAT(report(), EndsWith("Days Spanned:\r\n\t1000"));
}

TEST_F(Report, NoRecords) {
  fill(FieldType::kInteger, {});
  EXPECT_EQ(report(),
            "Report for F\r\n"
            "Number of Entries:\r\n\t0\r\nMinimum Value:\r\n\t0\r\nMaximum Value:\r\n\t0\r\n"
            "Sum:\r\n\t\t0\r\nMinimum Total:\r\n\t2000000\r\nMaximum Total:\r\n\t-2000000\r\n"
            "Average:\r\n\t\t0");
  fill(FieldType::kFloat, {});
  EXPECT_THAT(report(), HasSubstr("Minimum Value:\r\n\t0\r\nMaximum Value:\r\n\t0\r\n"));
  EXPECT_THAT(report(), EndsWith("Average:\r\n\t0"));
  fill(FieldType::kCheckBox, {});
  EXPECT_THAT(report(), EndsWith("Percentage Checked:\r\n\t 0.00\r\n"
                                 "Percentage Not-Checked:\r\n\t100.00\r\n"));
  fill(FieldType::kDate, {});
  EXPECT_THAT(report(), EndsWith("Days Spanned:\r\n\t0"));
  fill(FieldType::kTime, {});
  EXPECT_THAT(report(), EndsWith("Minimum Value:\r\n\t12:00:00AM\r\nMaximum Value:\r\n\t12:00:00AM"
                                 "\r\nAverage Time:\r\n\t12:00:00AM\r\nTotal Time:\t12:00:00AM"));
}

TEST_F(Report, FloatsHaveTheFieldsDecimalsAndTheUsersComma) {
  fill(FieldType::kFloat, {bytesOf("1.5"), bytesOf("-2"), bytesOf("abc")});
  setFieldDecimals(database.schema.fields[1], 2);
  settings.formats = chosen(0, 0, true);
  EXPECT_EQ(report(),
            "Report for F\r\n"
            "Number of Entries:\r\n\t3\r\nMinimum Value:\r\n\t-2,00\r\nMaximum Value:\r\n\t1,50\r\n"
            "Sum:\r\n\t-0,50\r\nMinimum Total:\r\n\t-0,50\r\nMaximum Total:\r\n\t1,50\r\n"
            "Average:\r\n\t-0,17");
  const std::pair<int, const char*> kinds[] = {
      {0, "2,5000"}, {4, "2,500"}, {5, "2,50"}, {6, "2,5"}};
  for (const auto& [kind, text] : kinds) {
    fill(FieldType::kCalculated, {bytesOf("2,5")}, kind);
    EXPECT_THAT(report(), EndsWith(std::string("\t") + text)) << kind;
  }
  fill(FieldType::kCalculated, {bytesOf("2.5")}, 9);
  EXPECT_EQ(report(), "") << "a result of no kind";
}

TEST_F(Report, ChecksAndTheirPercentages) {
  fill(FieldType::kCheckBox, {{1}, {0}, {}});
  EXPECT_THAT(report(), EndsWith("Items Checked:\r\n\t1\r\nItems Not-Checked:\r\n\t2\r\n"
                                 "Percentage Checked:\r\n\t33.33\r\n"
                                 "Percentage Not-Checked:\r\n\t66.67\r\n"));
  settings.formats = chosen(0, 0, true);
  EXPECT_THAT(report(), EndsWith("\t33,33\r\nPercentage Not-Checked:\r\n\t66,67\r\n"));
}

TEST_F(Report, TimesAndTheirTotal) {
  fill(FieldType::kTime, {timeBytes(13, 0, 59), timeBytes(12, 0)});
  EXPECT_EQ(report(),
            "Report for F\r\nNumber of Entries:\r\n\t2\r\nMinimum Value:\r\n\t12:00:00PM\r\n"
            "Maximum Value:\r\n\t1:00:00PM\r\nAverage Time:\r\n\t12:30:00PM\r\n"
            "Total Time:\r\n\t1 Day(s), 1:00:00AM")
      << "seconds are not read";
  fill(FieldType::kTime, {timeBytes(255, 0)});
  EXPECT_EQ(reportFigures(database, 1, settings).whole.sum, 918000);
  EXPECT_THAT(report(), HasSubstr("Maximum Value:\r\n\tNo Time\r\n"));
  fill(FieldType::kCalculated, {bytesOf("5400"), bytesOf("600")}, 2);
  EXPECT_THAT(report(), EndsWith("Total Time:\t1:40:00AM")) << "durations read as times";
}

TEST_F(Report, EncipheredAndFilteredRecordsAndAbsentFields) {
  fill(FieldType::kInteger, {number(7), number(9)});
  database.schema.fields[1].encrypt_flag = 1;
  UnpackedRecord enciphered;
  enciphered.prefix.assign(23, 0);
  enciphered.prefix[0] = kStampedPrefix;
  enciphered.prefix[1 + kStampFlagOffset] = kRecordEncrypted;
  enciphered.slots[1] = number(1000);
  add(enciphered);
  add(UnpackedRecord{});
  ReportFigures figures = reportFigures(database, 1, settings);
  EXPECT_EQ(figures.count, 4);
  EXPECT_EQ(figures.whole.sum, 16);
  database.schema.filters[0].enabled = 1;
  database.schema.filters[0].field = 1;
  database.schema.filters[0].number1 = 8;
  database.schema.filters[0].number2 = 100;
  figures = reportFigures(database, 1, settings);
  EXPECT_EQ(figures.whole.minimum, 9);
}

// Dates and times count as what their shown text reads as, whichever way that was found out.
TEST_F(Report, DatesAndTimesAreReadAsTheyAreShown) {
  const LocaleInfo locales[] = {
      LocaleInfo{},
      localeOf("dd.MM.yy", ".", "HH:mm:ss"),
      localeOf("yyyy-MM-dd", "-", "h:mm:ss"),
      localeOf("d/M/yyyy", "/", "hh.mm.ss tt", "."),
      localeOf("ddd, M/d", "/", "ss:mm:HH"),
      localeOf("dd. MM. yyyy", ". ", "H1mm1ss", "1"),
  };
  const std::uint32_t days[] = {1,     58,    59,    366,     730,     36584,      36585,
                                45000, 65535, 70000, 2957003, 2957004, 4000000000u};
  for (const LocaleInfo& locale : locales) {
    for (int choice = 0; choice < 7; ++choice) {
      settings.formats = makeFormatSettings({choice, choice, false}, locale);
      for (const std::uint32_t day : days) {
        fill(FieldType::kDate, {number(day), number(day)});
        const CalendarDate read = dateOfText(dateText(day, settings.formats), settings.formats);
        const std::uint32_t expected = daysSince1904(read.month, read.day, read.year);
        EXPECT_EQ(reportFigures(database, 1, settings).whole.sum, std::int64_t{expected} * 2)
            << day << " as " << dateText(day, settings.formats) << " by " << choice;
      }
      std::int64_t seconds = 0;
      std::vector<Bytes> values;
      for (const TimeValue& time :
           {TimeValue{0, 0, 0}, TimeValue{9, 5, 0}, TimeValue{7, 5, 0}, TimeValue{0, 0, 12},
            TimeValue{59, 59, 23}, TimeValue{1, 61, 13}, TimeValue{0, 0, 255}}) {
        values.push_back(timeBytes(time.hour, time.minute, time.second));
        const TypedTime read = timeOfText(timeText(time, settings.formats), settings.formats);
        seconds += (read.hour * 60 + read.minute) * 60;
      }
      fill(FieldType::kTime, values);
      EXPECT_EQ(reportFigures(database, 1, settings).whole.sum, seconds)
          << locale.time_pattern << " by " << choice;
    }
  }
}

}  // namespace
}  // namespace tabelion
