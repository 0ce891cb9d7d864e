// Round ticks of an axis, and how its numbers are written.
#pragma once

#include <cstdint>
#include <string>

namespace tabelion {

// Multiples of a round step, from `first` to `last` times the step.
struct Ticks {
  double step = 1;
  std::int64_t first = 0;
  std::int64_t last = 1;

  double at(std::int64_t tick) const { return static_cast<double>(tick) * step; }
  double least() const { return at(first); }
  double most() const { return at(last); }
};
// About `wanted` (2 or more) that enclose both numbers; of whole numbers, whole.
Ticks ticksAround(double least, double most, int wanted, bool whole);

// Where a number lies between two others: 0 at `least`, 1 at `most`.
double partOf(double value, double least, double most);

// The numbers of one axis are written alike: large and tiny ones in a unit that the axis names.
struct NumberScale {
  int exponent = 0;  // of ten: the unit
  bool decimal_comma = false;

  // With as many decimals as multiples of the step need.
  std::string text(double value, double step) const;
  // ", in millions"; empty for a unit of 1.
  std::string unit() const;
};
NumberScale scaleFor(double least, double most, double step, bool decimal_comma);

}  // namespace tabelion
