#include "engine/field_types.h"

#include <array>

namespace tabelion {

std::string_view fieldTypeName(int type) {
  static constexpr std::array<std::string_view, kExternal + 1> kNames = {
      "unused",       "text",        "integer",   "float",     "pop-up",
      "check box",    "auto-number", "note",      "date",      "time",
      "linked field", "link field",  "long text", "separator", "text variant",
      "calculated",   "lookup",      "text 254",  "external"};
  return type >= 0 && type <= kExternal ? kNames[static_cast<std::size_t>(type)] : "unknown";
}

}  // namespace tabelion
