// Language settings that a test chooses.
#pragma once

#include "platform/locale.h"

namespace tabelion {

class FixedLocale : public Locale {
 public:
  LocaleInfo info() override { return value; }
  LocaleInfo value;
};

}  // namespace tabelion
