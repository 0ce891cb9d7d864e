#include "query/report_picture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numeric>

#include "query/query_fixtures.h"

namespace tabelion {
namespace {

using ::testing::ElementsAre;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kLargest = std::numeric_limits<double>::max();

std::uint64_t counted(const Histogram& histogram) {
  return std::accumulate(histogram.counts.begin(), histogram.counts.end(), std::uint64_t{0});
}

TEST(ReportPicture, RangesAreRoundAndHoldTheirLowerBounds) {
  const Histogram tenths = histogramOf(std::vector<double>{0.1, 0.2, 0.3, 0.3, 0.5}, false);
  EXPECT_DOUBLE_EQ(tenths.first, 0.1);
  EXPECT_DOUBLE_EQ(tenths.width, 0.1);
  EXPECT_THAT(tenths.counts, ElementsAre(1, 1, 2, 0, 1));
  const Histogram dice = histogramOf(std::vector<double>{2, 6, 3, 2}, true);
  EXPECT_TRUE(dice.centered);
  EXPECT_DOUBLE_EQ(dice.first, 1.5);
  EXPECT_THAT(dice.counts, ElementsAre(2, 1, 0, 0, 1));
  const Histogram signs = histogramOf(std::vector<double>{-25, -1, 0, 1, 49}, true);
  EXPECT_DOUBLE_EQ(signs.first, -40);
  EXPECT_DOUBLE_EQ(signs.width, 20);
  EXPECT_THAT(signs.counts, ElementsAre(1, 1, 2, 0, 1));
}

// Whatever the values are, none is lost and the ranges are few.
TEST(ReportPicture, HistogramsOfExtremes) {
  const std::vector<double> sets[] = {
      {0},
      {7, 7, 7},
      {-1e300},
      {-kLargest, 0, kLargest},
      {std::numeric_limits<double>::denorm_min(), 0},
      {1e15, 1e15 + 1},
      {1, 1 + 1e-15},
      {kInfinity, -kInfinity, std::nan(""), 3},
      {0, 1e9},
      {-2147483648.0, 2147483647.0},
  };
  for (const auto& values : sets) {
    for (const bool whole : {false, true}) {
      const Histogram histogram = histogramOf(values, whole);
      EXPECT_EQ(counted(histogram) + histogram.boundless, values.size()) << values[0];
      EXPECT_GE(histogram.counts.size(), 2u) << values[0];
      EXPECT_LE(histogram.counts.size(), 32u) << values[0];
      EXPECT_TRUE(std::isfinite(histogram.first) && histogram.width > 0) << values[0];
    }
  }
  EXPECT_TRUE(histogramOf({}, false).counts.empty());
  EXPECT_EQ(histogramOf(std::vector<double>{kInfinity}, false).boundless, 1u);
}

TEST(ReportPicture, TotalsKeepTheirExtremesAndEndWhereNumbersDo) {
  const RunningTotals few = runningTotalsOf(std::vector<double>{5, -8, 4});
  ASSERT_EQ(few.stretches.size(), 3u);
  EXPECT_EQ(few.stretches[1].last, -3);
  EXPECT_EQ(few.recordsAt(1, 3), 2u);
  std::vector<double> many(65000, 0);
  many[30000] = 100;  // there and back within one stretch
  many[30001] = -100;
  many[64999] = 7;
  const RunningTotals totals = runningTotalsOf(many);
  ASSERT_EQ(totals.stretches.size(), kMostTotals);
  double most = 0;
  for (const TotalsStretch& stretch : totals.stretches) most = std::max(most, stretch.most);
  EXPECT_EQ(most, 100);
  EXPECT_EQ(totals.stretches.back().last, 7);
  const RunningTotals broken = runningTotalsOf(std::vector<double>{1, kLargest, kLargest, 1});
  EXPECT_EQ(broken.stretches.size(), 2u);
  EXPECT_EQ(broken.planned, 4u);
}

class PictureOf : public ::testing::Test {
 protected:
  void fill(FieldType type, const std::vector<Bytes>& values) {
    database.records.clear();
    initSchema(database.schema);
    field().type = type;
    for (const Bytes& value : values) add(value);
  }
  void add(const Bytes& value, bool is_enciphered = false) {
    UnpackedRecord record;
    record.prefix.assign(23, 0);
    record.prefix[0] = kStampedPrefix;
    if (is_enciphered) record.prefix[1 + kStampFlagOffset] = kRecordEncrypted;
    record.slots[0] = value;
    Bytes packed;
    ASSERT_TRUE(packRecord(record, packed));
    database.records.insert(database.records.count(), packed, {});
  }
  FieldDefinition& field() { return database.schema.fields[0]; }
  PicturedReport run() {
    QuerySettings settings;
    settings.formats = chosen(0);
    return picturedReport(database, 0, settings);
  }

  Database database;
};

TEST_F(PictureOf, DatesAndTimesCountWhatIsThere) {
  fill(FieldType::kDate, {number(45000), number(0), number(44000), number(45000), {}});
  ReportPicture picture = run().picture;
  ASSERT_EQ(picture.days.size(), 2u);
  EXPECT_EQ(picture.days[0].day, 44000u);
  EXPECT_EQ(picture.days[1].count, 2u);
  EXPECT_EQ(picture.without, 2u);
  fill(FieldType::kDate, {number(2900000), number(1), number(2900000)});  // sorted, not counted off
  picture = run().picture;
  ASSERT_EQ(picture.days.size(), 2u);
  EXPECT_EQ(picture.days[1].count, 2u);
  fill(FieldType::kTime, {{59, 59, 23, 0}, {0, 0, 0, 0}, {0, 0, 255, 0}, {30, 59, 23, 0}});
  picture = run().picture;
  EXPECT_EQ(picture.hours[23], 2u);
  EXPECT_EQ(picture.hours[0], 1u);
  EXPECT_EQ(picture.without, 1u);
}

TEST_F(PictureOf, NumbersAndChecksAreThoseOfTheReport) {
  fill(FieldType::kInteger, {number(3), number(-5), {}});
  PicturedReport report = run();
  EXPECT_EQ(report.figures.whole.sum, -2);
  EXPECT_EQ(counted(report.picture.histogram), 3u);
  EXPECT_EQ(report.picture.totals.stretches.back().last, -2);
  database.schema.filters[0].enabled = 1;
  database.schema.filters[0].number1 = 0;
  database.schema.filters[0].number2 = 9;
  EXPECT_EQ(run().picture.records, 2u);
  fill(FieldType::kCheckBox, {{1}, {0}, {1}});
  report = run();
  EXPECT_EQ(report.picture.items.at(0).count, 2u);
  EXPECT_EQ(report.picture.items.at(1).count, 1u);
  fill(FieldType::kText, {bytesOf("x")});
  EXPECT_EQ(run().picture.kind, PictureKind::kNone);
}

TEST_F(PictureOf, ItemsAreCountedByTheirKeys) {
  const auto key = [](std::uint8_t first) {
    Bytes bytes(kPopupKeySize);
    bytes[0] = first;
    return bytes;
  };
  fill(FieldType::kPopup, {key(1), key(2), key(2), key(9), {}, key(2), key(1)});
  for (const auto& [first, text] : {std::pair{2, "Ash"}, {1, "Oak"}, {3, "Elm"}}) {
    PopupItem item;
    item.key[0] = static_cast<std::uint8_t>(first);
    item.text = text;
    database.fields[0].items.push_back(item);
  }
  field().encrypt_flag = 1;
  add(key(3), true);
  const PicturedReport report = run();
  EXPECT_EQ(report.figures.type, FieldType::kUnused) << "there is no report";
  const ReportPicture& picture = report.picture;
  ASSERT_EQ(picture.items.size(), 4u);
  EXPECT_EQ(picture.items[0].text, "Ash");
  EXPECT_EQ(picture.items[0].count, 3u);
  EXPECT_EQ(picture.items[1].text, "Oak");
  EXPECT_EQ(picture.items[2].text, "No Value");
  EXPECT_EQ(picture.items[2].count, 2u);
  EXPECT_EQ(picture.items[3].text, "Enciphered");
  EXPECT_EQ(picture.items[3].count, 1u);
  EXPECT_EQ(picture.records, 8u);
}

}  // namespace
}  // namespace tabelion
