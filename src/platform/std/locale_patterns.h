// The system's date and time formats, told in the patterns of this program.
#pragma once

#include <string>

#include "platform/locale.h"

namespace tabelion {

// What a locale says, in the notation of the C library: strftime formats, texts in any encoding.
struct SystemFormats {
  std::string date;           // "%d.%m.%Y"
  std::string time;           // "%H:%M:%S", or "%r" for the next
  std::string time_12_hours;  // "%I:%M:%S %p"
  std::string morning;
  std::string afternoon;
  std::string decimal_point;
};

// The nearest patterns that read back as what was shown. A date is typed month first with "/",
// or day or year first with one of "/", "." and "-", and a typed year of two digits is taken for
// 1906 to 2005; so other separators become "/", month names become numbers, and years are shown in
// full. A time is typed with ":" or "."; its afternoon is known by "pm" or "PM", so other
// designators become AM and PM.
LocaleInfo patternsFrom(const SystemFormats& formats);

}  // namespace tabelion
