#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "query/format_settings.h"

namespace tabelion {
namespace {

constexpr std::size_t kMaxSeparator = 2;
constexpr std::size_t kMaxMorning = 9;
constexpr std::size_t kMaxAfternoon = 19;

struct LetterRun {
  char letter;
  std::size_t length;
  std::size_t begin;
};

// The runs of equal ASCII letters outside quotes.
std::vector<LetterRun> letterRuns(std::string_view pattern) {
  std::vector<LetterRun> runs;
  bool quoted = false;
  for (std::size_t i = 0; i < pattern.size();) {
    const char c = pattern[i];
    std::size_t end = i + 1;
    if (c == '\'') {
      quoted = !quoted;
    } else if (!quoted && ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'))) {
      end = std::min(pattern.find_first_not_of(c, i), pattern.size());
      runs.push_back({c, end - i, i});
    }
    i = end;
  }
  return runs;
}

// What separates: the system's own word if the pattern has it, else the first mark after `from`.
std::string separatorIn(std::string_view pattern, std::size_t from, std::string_view own,
                        std::string_view otherwise) {
  if (!own.empty() && own.size() <= kMaxSeparator && own.front() != ' ' &&
      pattern.find(own.front()) != std::string_view::npos) {
    return std::string(own);
  }
  const std::size_t mark = pattern.find_first_of("/.-:,", from);
  return std::string(mark == std::string_view::npos ? otherwise : pattern.substr(mark, 1));
}

void tidyDate(LocaleInfo& locale) {
  const LocaleInfo defaults;
  std::vector<std::string> parts;
  std::string kinds;
  std::size_t first_end = 0;
  for (const LetterRun& run : letterRuns(locale.short_date_pattern)) {
    std::string part;
    if (run.letter == 'y' || run.letter == 'Y' || run.letter == 'u') {
      part = run.length == 2 ? "yy" : "yyyy";
    } else if (run.letter == 'M' || run.letter == 'm' || run.letter == 'L') {
      part = run.length == 1 ? "M" : "MM";
    } else if (run.letter == 'd' && run.length <= 2) {
      part = std::string(run.length, 'd');
    } else {
      continue;  // the day's name, the era
    }
    if (kinds.find(part.front()) != std::string::npos) continue;
    if (parts.empty()) first_end = run.begin + run.length;
    kinds += part.front();
    parts.push_back(part);
  }
  if (parts.size() != 3) {
    locale.short_date_pattern = defaults.short_date_pattern;
    locale.date_separator = defaults.date_separator;
    return;
  }
  locale.date_separator =
      separatorIn(locale.short_date_pattern, first_end, locale.date_separator, "/");
  const std::string mark(1, locale.date_separator.front());
  locale.short_date_pattern = parts[0] + mark + parts[1] + mark + parts[2];
}

void tidyTime(LocaleInfo& locale) {
  const LocaleInfo defaults;
  std::string hour;
  std::size_t hour_end = 0;
  bool designator = false;
  for (const LetterRun& run : letterRuns(locale.time_pattern)) {
    if (hour.empty() && (run.letter == 'h' || run.letter == 'H')) {
      hour = std::string(std::min<std::size_t>(run.length, 2), run.letter);
      hour_end = run.begin + run.length;
    }
    designator = designator || run.letter == 't';
  }
  if (hour.empty()) {
    locale.time_pattern = defaults.time_pattern;
    locale.time_separator = defaults.time_separator;
  } else {
    locale.time_separator = separatorIn(locale.time_pattern, hour_end, locale.time_separator, ":");
    const std::string mark(1, locale.time_separator.front());
    locale.time_pattern = hour + mark + "mm" + mark + "ss" + (designator ? " tt" : "");
  }
  if (locale.morning.empty() && locale.afternoon.empty()) {
    locale.morning = defaults.morning;
    locale.afternoon = defaults.afternoon;
  }
  if (locale.morning.size() > kMaxMorning) locale.morning = defaults.morning;
  if (locale.afternoon.size() > kMaxAfternoon) locale.afternoon = defaults.afternoon;
}

}  // namespace

LocaleInfo tidyLocale(LocaleInfo locale) {
  tidyDate(locale);
  tidyTime(locale);
  return locale;
}

}  // namespace tabelion
