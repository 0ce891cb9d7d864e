#include "platform/std/std_locale.h"

#include <langinfo.h>
#include <locale.h>

#include <string_view>

#include "platform/std/locale_patterns.h"

namespace tabelion {
namespace {

class LocaleHandle {
 public:
  LocaleHandle() : handle_(::newlocale(LC_ALL_MASK, "", nullptr)) {}
  ~LocaleHandle() {
    if (handle_) ::freelocale(handle_);
  }
  LocaleHandle(const LocaleHandle&) = delete;
  LocaleHandle& operator=(const LocaleHandle&) = delete;

  explicit operator bool() const { return handle_ != nullptr; }
  std::string item(nl_item item) const { return ::nl_langinfo_l(item, handle_); }

 private:
  locale_t handle_;
};

bool isPlain(std::string_view locale_name) {
  return locale_name == "C" || locale_name == "POSIX" || locale_name.starts_with("C.");
}

}  // namespace

LocaleInfo StdLocale::info() {
  const LocaleHandle locale;
  if (!locale) return {};  // the environment names one that is not installed
  LocaleInfo info;
  if (!isPlain(locale.item(NL_LOCALE_NAME(LC_TIME)))) {
    info = patternsFrom({locale.item(D_FMT),
                         locale.item(T_FMT),
                         locale.item(T_FMT_AMPM),
                         locale.item(AM_STR),
                         locale.item(PM_STR),
                         {}});
  }
  if (!isPlain(locale.item(NL_LOCALE_NAME(LC_NUMERIC)))) {
    info.decimal_comma = locale.item(RADIXCHAR) == ",";
    info.is_system_locale = true;
  }
  return info;
}

}  // namespace tabelion
