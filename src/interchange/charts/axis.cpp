#include "interchange/charts/axis.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "query/number_text.h"
#include "query/report_picture.h"

namespace tabelion {
namespace {

constexpr double kLeastNumber = 1e-3;  // that is written as it is
constexpr double kLargeNumber = 1e6;   // and from which on there is a unit
constexpr double kLongestNumber = 1e15;
constexpr int kMostDecimals = 3;  // of numbers that have a unit
constexpr int kMostDigits = 12;
constexpr double kNoRest = 1e-6;
constexpr double kMostTicks = 1e15;  // that can be counted one by one

// Of the larger one; the end of a range may lie beyond all numbers.
double sizeOf(double least, double most) {
  return std::min(std::max(std::fabs(least), std::fabs(most)), std::numeric_limits<double>::max());
}

int decimalsOf(double step) {
  for (int decimals = 0; decimals < kMostDigits; ++decimals) {
    const double scaled = step * std::pow(10, decimals);
    if (std::fabs(scaled - std::round(scaled)) <= kNoRest * scaled) return decimals;
  }
  return kMostDigits;
}

}  // namespace

Ticks ticksAround(double least, double most, int wanted, bool whole) {
  Ticks ticks;
  const double raw = (most / 2 - least / 2) / std::max(1, wanted - 1) * 2;
  if (raw > 0) ticks.step = roundStep(raw);
  if (whole) ticks.step = std::max(1.0, ticks.step);
  const double size = sizeOf(least, most);
  if (size / ticks.step > kMostTicks) ticks.step = roundStep(size / kMostTicks);
  ticks.first = static_cast<std::int64_t>(std::floor(least / ticks.step));
  ticks.last = static_cast<std::int64_t>(std::ceil(most / ticks.step));
  if (ticks.last == ticks.first) ++ticks.last;
  // Near the ends of what numbers can be, the outer tick would lie beyond them.
  if (!std::isfinite(ticks.least())) ++ticks.first;
  if (!std::isfinite(ticks.most())) --ticks.last;
  return ticks;
}

double partOf(double value, double least, double most) {
  const double part = (value / 2 - least / 2) / (most / 2 - least / 2);
  return std::isfinite(part) ? std::clamp(part, 0.0, 1.0) : 0;
}

std::string NumberScale::text(double value, double step) const {
  const double unit_size = std::pow(10, exponent);
  const double shown = value / unit_size;
  const int decimals = decimalsOf(step / unit_size);
  const bool is_zero = std::fabs(value) < step / 2;  // never "-0"
  return numberText(is_zero ? 0 : shown, decimals, decimal_comma);
}

std::string NumberScale::unit() const {
  switch (exponent) {
    case 0:
      return {};
    case 6:
      return ", in millions";
    case 9:
      return ", in billions";
    default:
      return fmt::format(", in 10^{}", exponent);
  }
}

NumberScale scaleFor(double least, double most, double step, bool decimal_comma) {
  NumberScale scale{.decimal_comma = decimal_comma};
  const double size = sizeOf(least, most);
  if (size == 0 || (size >= kLeastNumber && size < kLargeNumber)) return scale;
  scale.exponent = 3 * static_cast<int>(std::floor(std::log10(size) / 3));
  // Numbers that differ in their last digits alone are clearer whole.
  const bool is_fine = decimalsOf(step / std::pow(10, scale.exponent)) > kMostDecimals;
  if (is_fine && size >= kLargeNumber && size < kLongestNumber) scale.exponent = 0;
  return scale;
}

}  // namespace tabelion
