#include "query/number_text.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <cstdio>

namespace tabelion {

TEST(NumberText, WritesFixedDecimalsWithoutBlanks) {
  EXPECT_EQ(numberText(3.5, 2, false), "3.50");
  EXPECT_EQ(numberText(3.5, 2, true), "3,50");
  EXPECT_EQ(numberText(-0.125, 2, false), "-0.12");  // half to even of the exact value
  EXPECT_EQ(numberText(2.675, 2, false), "2.67");    // below the half in binary
  EXPECT_EQ(numberText(7, 0, false), "7");
  EXPECT_EQ(numberText(123456789012345.0, 1, false), "123456789012345.0");
  EXPECT_EQ(numberText(1e300, 255, false).size(), 301u + 1 + 255);
  EXPECT_EQ(numberText(0.5, -1, false), "0.500000");
  EXPECT_EQ(numberText(-0.0001, 2, false), "-0.00");
  EXPECT_EQ(numberText(999999999999.9951, 2, false), "1000000000000.00");
}

RC_GTEST_PROP(NumberText, IsRoundedAsPrintfRounds, ()) {
  // Near ends of decimals, where rounding is a close thing, and of every size.
  const auto digits = *rc::gen::arbitrary<std::int64_t>();
  const int shift = *rc::gen::inRange(-3, 19);
  const int steps = *rc::gen::inRange(-2, 3);
  double value = static_cast<double>(digits) / std::pow(10, shift);
  for (int i = 0; i < std::abs(steps); ++i) value = std::nextafter(value, steps < 0 ? -1e30 : 1e30);
  for (int decimals = 0; decimals <= 5; ++decimals) {
    char printed[400];
    std::snprintf(printed, sizeof printed, "%.*f", decimals, value);
    RC_ASSERT(numberText(value, decimals, false) == printed);
  }
}

TEST(NumberText, ReadsTheLeadingNumber) {
  EXPECT_EQ(numberOfText(" 12.5 kg", false), 12.5);
  EXPECT_EQ(numberOfText("+.5e1x", false), 5);
  EXPECT_EQ(numberOfText("3,50", true), 3.5);
  EXPECT_EQ(numberOfText("3.50", true), 3.5);
  EXPECT_EQ(numberOfText("3,50", false), 3);
  for (const char* none : {"", "-", ".", "+-3", "abc", "infinity", "nan", "1e-999"}) {
    EXPECT_EQ(numberOfText(none, false), 0) << none;
  }
  EXPECT_EQ(numberOfText("-1e999", false), -HUGE_VAL);
  EXPECT_EQ(numberOfText(std::string(400, '9'), false), HUGE_VAL);
  EXPECT_EQ(numberOfText("0." + std::string(400, '0') + "1", false), 0);
  // Short ones are read by another way than long ones, to the same double.
  EXPECT_EQ(numberOfText("0.1", false), 0.1);
  EXPECT_EQ(numberOfText("99999.000000001x", false), 99999.000000001);
  EXPECT_EQ(numberOfText("123456789012345.6", false), 123456789012345.6);
  EXPECT_EQ(numberOfText("0000000000000000.5", false), 0.5);
  EXPECT_EQ(numberOfText("7.e1", false), 70);
  EXPECT_EQ(numberOfText("1.2.3", false), 1.2);
  EXPECT_EQ(leadingInteger("\t-42nd"), -42);
  EXPECT_EQ(leadingInteger("+-7"), 0);
  EXPECT_EQ(leadingInteger("99999999999999999999"), INT64_MAX);
}

}  // namespace tabelion
