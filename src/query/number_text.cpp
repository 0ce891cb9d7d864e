#include "query/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "engine/ascii.h"

namespace tabelion {
namespace {

constexpr int kDefaultDecimals = 6;
constexpr int kMaxDecimals = 255;
// The digits of the largest double, its sign, point and decimals.
constexpr std::size_t kLongestNumber = 320 + kMaxDecimals;

std::string_view withoutLeadingBlanks(std::string_view text) {
  const auto begin = std::find_if_not(text.begin(), text.end(), isBlank<char>);
  text.remove_prefix(static_cast<std::size_t>(begin - text.begin()));
  return text;
}

// Of a number that no double holds: whether it is too large rather than too small.
bool isTooLarge(std::string_view number) {
  const std::size_t exponent = number.find_first_of("eE");
  if (exponent != std::string_view::npos) return number.substr(exponent + 1, 1) != "-";
  const std::size_t first = number.find_first_of("123456789");
  return first < number.find('.');
}

// Digits with at most one point, few enough that the quotient of two exact numbers is the nearest
// double; most numbers are such, and several times faster to read so. False for any other.
bool readShortNumber(std::string_view text, double& value) {
  constexpr double kPowersOfTen[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                     1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
  constexpr std::size_t kMostDigits = std::size(kPowersOfTen) - 1;
  const char* at = text.data();
  const char* const end = at + text.size();
  std::uint64_t digits = 0;
  const auto readDigits = [&] {
    const char* const begin = at;
    for (; at != end && isDigit(*at); ++at) digits = digits * 10 + static_cast<unsigned>(*at - '0');
    return static_cast<std::size_t>(at - begin);
  };
  std::size_t count = readDigits();
  std::size_t decimals = 0;
  if (at != end && *at == '.') {
    ++at;
    decimals = readDigits();
    count += decimals;
  }
  if (count > kMostDigits || (at != end && (*at == 'e' || *at == 'E'))) return false;
  value = static_cast<double>(digits) / kPowersOfTen[decimals];
  return true;
}

double leadingNumber(std::string_view text) {
  text = withoutLeadingBlanks(text);
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  // Words such as "inf" are no numbers here, nor is a second sign.
  const bool point = text.starts_with('.');
  if (text.size() <= (point ? 1 : 0) || !isDigit(text[point ? 1 : 0])) return 0;
  double value = 0;
  if (readShortNumber(text, value)) return negative ? -value : value;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
  if (read.ec == std::errc::result_out_of_range) {
    const auto length = static_cast<std::size_t>(read.ptr - text.data());
    value = isTooLarge(text.substr(0, length)) ? std::numeric_limits<double>::infinity() : 0;
  }
  return negative ? -value : value;
}

// A number of few digits with few decimals, several times faster than the general way and rounded
// like it: to the nearest count of its last decimal. Null for any other number, and for one that
// lies about half way between two counts.
char* putShortNumber(char* at, double value, int decimals) {
  constexpr std::uint32_t kUnits[] = {1, 10, 100, 1000, 10000};
  // Below this a product of doubles is off by less than 0.00012.
  constexpr double kLargestCount = 1e12;
  if (decimals >= static_cast<int>(std::size(kUnits))) return nullptr;
  const std::uint32_t unit = kUnits[decimals];
  const double scaled = std::fabs(value) * unit;
  if (!(scaled < kLargestCount)) return nullptr;
  auto count = static_cast<std::uint64_t>(scaled);
  const double rest = scaled - static_cast<double>(count);
  if (rest > 0.499 && rest < 0.501) return nullptr;
  if (rest > 0.5) ++count;
  if (std::signbit(value)) *at++ = '-';
  at = std::to_chars(at, at + 16, count / unit).ptr;
  if (decimals == 0) return at;
  *at = '.';
  auto fraction = static_cast<std::uint32_t>(count % unit);
  for (int i = decimals; i > 0; --i) {
    at[i] = static_cast<char>('0' + fraction % 10);
    fraction /= 10;
  }
  return at + decimals + 1;
}

}  // namespace

void appendNumber(std::string& into, double value, int decimals, bool decimal_comma) {
  if (decimals < 0) decimals = kDefaultDecimals;
  char digits[kLongestNumber];
  char* end = putShortNumber(digits, value, decimals);
  if (!end) {
    end = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed,
                        std::min(decimals, kMaxDecimals))
              .ptr;
  }
  if (decimal_comma) std::replace(digits, end, '.', ',');
  into.append(digits, end);
}

std::string numberText(double value, int decimals, bool decimal_comma) {
  std::string text;
  appendNumber(text, value, decimals, decimal_comma);
  return text;
}

double numberOfText(std::string_view text, bool decimal_comma) {
  if (!decimal_comma || text.find(',') == std::string_view::npos) return leadingNumber(text);
  std::string pointed(text);
  std::replace(pointed.begin(), pointed.end(), ',', '.');
  return leadingNumber(pointed);
}

std::int64_t leadingInteger(std::string_view text) {
  text = withoutLeadingBlanks(text);
  const bool negative = text.starts_with('-');
  if (text.starts_with('+')) text.remove_prefix(1);
  if (!negative && !text.empty() && !isDigit(text.front())) return 0;
  std::int64_t value = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
  if (read.ec == std::errc::result_out_of_range) {
    return negative ? std::numeric_limits<std::int64_t>::min()
                    : std::numeric_limits<std::int64_t>::max();
  }
  return value;
}

void appendInteger(std::string& into, std::int64_t value) {
  char digits[24];
  into.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

void appendPadded(std::string& into, int value, int digits) {
  if (digits == 2 && value >= 0 && value <= 99) {
    into += static_cast<char>('0' + value / 10);
    into += static_cast<char>('0' + value % 10);
    return;
  }
  char text[16];
  char* const end = std::to_chars(text, text + sizeof text, value).ptr;
  const auto length = static_cast<int>(end - text);
  if (length < digits) into.append(static_cast<std::size_t>(digits - length), '0');
  into.append(text, end);
}

}  // namespace tabelion
