// What the system's language settings say about dates, times and text.
#pragma once

#include <string>

namespace tabelion {

// 8-bit texts, cut to the lengths that the value texts use. The defaults serve a system that has
// no such settings.
struct LocaleInfo {
  std::string date_separator = "/";             // at most 2 characters
  std::string short_date_pattern = "M/d/yyyy";  // tokens m, mm, mmm, d, dd, yy, yyyy; at most 19
  std::string time_separator = ":";             // at most 2 characters
  std::string time_pattern = "h:mm:ss tt";      // tokens h, hh, H, HH, mm, ss, tt; at most 19
  std::string morning = "AM";                   // at most 9 characters
  std::string afternoon = "PM";                 // at most 19 characters
  bool decimal_comma = false;
  bool is_system_locale = false;  // false when these are only the defaults above
};

class Locale {
 public:
  virtual ~Locale() = default;
  // As the system says it now.
  virtual LocaleInfo info() = 0;
};

}  // namespace tabelion
