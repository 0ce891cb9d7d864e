#include "interchange/charts/report_chart.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "engine/calendar.h"
#include "interchange/charts/axis.h"
#include "interchange/svg_picture.h"

namespace tabelion {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr int kCharacter = 7;
constexpr int kLine = 15;

// Fails the test when something is painted outside, or a text over another.
class CheckedPainter : public CanvasPainter {
 public:
  explicit CheckedPainter(Size size) : size_(size) {}

  void fill(const Rect& area, Color) override {
    ++fills;
    inside(area);
  }
  void line(Point from, Point to, Color, int) override {
    inside({std::min(from.x, to.x), std::min(from.y, to.y), std::abs(from.x - to.x) + 1,
            std::abs(from.y - to.y) + 1});
  }
  void text(const Rect& area, const std::u16string& text, Color, TextWeight,
            TextSide side) override {
    const int width = static_cast<int>(text.size()) * kCharacter;
    EXPECT_LE(width, area.width);
    const int left = side == TextSide::kLeft    ? area.x
                     : side == TextSide::kRight ? area.x + area.width - width
                                                : area.x + (area.width - width) / 2;
    const Rect ink{left, area.y + area.height / 2 - 5, width, 10};
    inside(ink);
    for (const Rect& other : texts_) {
      EXPECT_FALSE(ink.x < other.x + other.width && other.x < ink.x + ink.width &&
                   ink.y < other.y + other.height && other.y < ink.y + ink.height)
          << TextEncoding::utf8().fromUtf16(text).bytes;
    }
    texts_.push_back(ink);
    words += TextEncoding::utf8().fromUtf16(text).bytes + "|";
  }
  Scheme scheme() const override { return Scheme::kDark; }

  int fills = 0;
  std::string words;

 private:
  void inside(const Rect& area) {
    EXPECT_GE(area.x, 0);
    EXPECT_GE(area.y, 0);
    EXPECT_LE(area.x + area.width, size_.width);
    EXPECT_LE(area.y + area.height, size_.height);
  }
  Size size_;
  std::vector<Rect> texts_;
};

class Charts : public ::testing::Test {
 protected:
  // What is written and how much is filled, at this size.
  CheckedPainter paint(const ReportPicture& picture, Size size) {
    CheckedPainter painter(size);
    paintReportPicture(
        painter, size, picture, texts,
        {[](const std::u16string& text) { return static_cast<int>(text.size()) * kCharacter; },
         kLine});
    return painter;
  }
  static ReportPicture numbers(const std::vector<double>& values, bool whole = false) {
    ReportPicture picture;
    picture.kind = PictureKind::kNumbers;
    picture.records = static_cast<std::uint32_t>(values.size());
    picture.decimals = 2;
    picture.histogram = histogramOf(values, whole);
    picture.totals = runningTotalsOf(values);
    return picture;
  }
  static ReportPicture dates(std::uint32_t first, std::uint32_t last) {
    ReportPicture picture;
    picture.kind = PictureKind::kDates;
    picture.days = {{first, 1}};
    if (last > first) picture.days.push_back({last, 9});
    picture.records = picture.without = 20;
    for (const DayCount& day : picture.days) picture.without -= day.count;
    return picture;
  }
  static ReportPicture items(std::size_t count) {
    ReportPicture picture;
    picture.kind = PictureKind::kItems;
    for (std::size_t i = 0; i < count; ++i) {
      const auto records = static_cast<std::uint32_t>(count - i);
      picture.items.push_back({"Item of a rather long name " + std::to_string(i), records});
      picture.records += records;
    }
    return picture;
  }
  std::string words(const ReportPicture& picture) { return reportPictureInWords(picture, texts); }

  FormatSettings formats = makeFormatSettings({0, 0, true}, LocaleInfo{});
  TextEncoding encoding = TextEncoding::utf8();
  ChartTexts texts{formats, encoding, true};
};

TEST_F(Charts, NothingOverlapsOrLeavesTheCanvas) {
  ReportPicture hours;
  hours.kind = PictureKind::kTimes;
  hours.records = 3;
  hours.hours[0] = 1;
  hours.hours[23] = 2;
  const double largest = std::numeric_limits<double>::max();
  ReportPicture many = items(1);
  many.items[0].count = many.records = 65000;
  const ReportPicture pictures[] = {
      many,
      {},
      numbers({}),
      numbers({std::numeric_limits<double>::infinity()}),
      numbers({-3.25}),
      numbers({0.0001, 0.0002, 0.00031}),
      numbers({-largest, largest, largest}),
      numbers({1234567890, 1234567891, 1234567893}, true),
      numbers({-120, 45.5, 3, 80, 1e6, 12}),
      dates(40000, 40000),
      dates(40000, 40200),
      dates(40000, 40900),
      dates(40000, 48000),
      dates(40000, 54500),
      dates(1, 2957003),
      hours,
      items(0),
      items(2),
      items(60),
  };
  for (const Size size : {Size{0, 0},
                          {40, 30},
                          {104, 76},
                          {110, 80},
                          {232, 150},
                          {312, 145},
                          {228, 226},
                          {300, 90},
                          {472, 300},
                          {560, 500}}) {
    for (const ReportPicture& picture : pictures) {
      SCOPED_TRACE(testing::Message()
                   << size.width << "x" << size.height << ": " << words(picture));
      paint(picture, size);
    }
  }
}

TEST_F(Charts, ShowWhatTheySay) {
  const CheckedPainter totals = paint(numbers({2.5, -4, 9}), {300, 300});
  EXPECT_THAT(totals.words, HasSubstr("Records by value|"));
  EXPECT_THAT(totals.words, HasSubstr("Running total|"));
  EXPECT_EQ(totals.fills, 3);
  EXPECT_EQ(words(numbers({2.5, -4, 9, 9})),
            "4 records by value; most often 5 to 10: 2. The running total lies between -1,50 and "
            "16,50 and ends at 16,50.");
  EXPECT_THAT(paint(numbers({3e6, 9e6}, true), {300, 300}).words,
              HasSubstr("Records by value, in millions|"));

  const ReportPicture days = dates(daysSince1904(2, 28, 2023), daysSince1904(3, 6, 2023));
  const CheckedPainter week = paint(days, {300, 300});
  EXPECT_THAT(week.words, HasSubstr("Mo|Tu|We|Th|Fr|Sa|Su|Feb 2023|"));
  EXPECT_EQ(week.fills, 7 + 4) << "a cell for each day, and the legend";
  EXPECT_EQ(words(days),
            "10 records from 2/28/2023 to 3/6/2023; most on 3/6/2023: 9. 10 records without a "
            "date.");
  EXPECT_THAT(paint(dates(40000, 48000), {300, 300}).words, StartsWith("Records by month|"));
  EXPECT_THAT(paint(dates(40000, 90000), {300, 300}).words, StartsWith("Records by year|"));
  // The same months as days where they have room.
  EXPECT_THAT(paint(dates(40000, 40900), {200, 200}).words, StartsWith("Records by month|"));
  EXPECT_THAT(paint(dates(40000, 40900), {760, 500}).words, StartsWith("Records by day|"));

  EXPECT_THAT(paint(items(60), {300, 200}).words, HasSubstr(" more with "));
  EXPECT_THAT(words(items(2)), StartsWith("3 records. Item of a rather long name 0: 2, 67%."));
  EXPECT_EQ(words({}), "No picture.");
  EXPECT_EQ(words(numbers({})), "No records.");
}

TEST_F(Charts, AxesAreRound) {
  const Ticks ticks = ticksAround(-3, 17, 5, true);
  EXPECT_EQ(ticks.step, 5);
  EXPECT_EQ(ticks.least(), -5);
  EXPECT_EQ(ticks.most(), 20);
  const Ticks far = ticksAround(1e300, 1e300, 5, false);  // more steps of 1 than can be counted
  EXPECT_LE(far.least(), 1e300);
  EXPECT_GT(far.most(), 1e300);
  EXPECT_EQ(scaleFor(0, std::numeric_limits<double>::infinity(), 1e307, false).exponent, 306);
  const std::tuple<double, double, const char*, const char*> numbers[] = {
      {1500000, 500000, "1,5", ", in millions"},
      {-2e9, 1e9, "-2", ", in billions"},
      {0.0002, 0.0001, "200", ", in 10^-6"},
      {1000003, 1, "1000003", ""},
      {0.25, 0.05, "0,25", ""},
      {3e300, 1e300, "3", ", in 10^300"},
  };
  for (const auto& [value, step, text, unit] : numbers) {
    const NumberScale scale = scaleFor(0, value, step, true);
    EXPECT_EQ(scale.text(value, step), text);
    EXPECT_EQ(scale.unit(), unit);
  }
}

TEST_F(Charts, SvgIsAWholePictureWithItsWords) {
  const std::string svg = reportPictureAsSvg(items(3), texts, "Trees & <Shrubs>");
  EXPECT_THAT(svg, StartsWith("<svg xmlns="));
  EXPECT_THAT(svg, HasSubstr("<title>Trees &amp; &lt;Shrubs&gt;. 6 records. Item of a"));
  EXPECT_TRUE(svg.ends_with("</svg>\n"));
}

TEST(SvgPicture, HasEveryMarkWhereItIsPainted) {
  SvgPicture picture({140, 20}, u"One\n");
  picture.fill({20, 0, 20, 19}, {64, 188, 255});
  picture.line({0, 19}, {139, 19}, {0, 0, 0}, 1);
  picture.text({0, 0, 20, 20}, u"<&>", {0, 0, 0}, TextWeight::kNormal, TextSide::kMiddle);
  const std::string svg = picture.file();
  EXPECT_THAT(svg, HasSubstr(R"(width="140" height="20" viewBox)"));
  EXPECT_THAT(svg, HasSubstr("<title>One </title>"));
  EXPECT_THAT(svg, HasSubstr(R"(<rect x="20" y="0" width="20" height="19" fill="#40bcff"/>)"));
  EXPECT_THAT(svg, HasSubstr(R"(<line x1="0.5" y1="19.5" x2="139.5" y2="19.5")"));
  EXPECT_THAT(
      svg,
      HasSubstr(R"(y="50%" dy="0.35em" text-anchor="middle" fill="#000000">&lt;&amp;&gt;</text>)"));
}

}  // namespace
}  // namespace tabelion
