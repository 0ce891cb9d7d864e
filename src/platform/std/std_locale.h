// The locale that the environment asks for.
#pragma once

#include "platform/locale.h"

namespace tabelion {

// Reads the environment's locale without making it the process's: numbers elsewhere in the program
// are printed and read in the plain form of C.
class StdLocale : public Locale {
 public:
  LocaleInfo info() override;
};

}  // namespace tabelion
