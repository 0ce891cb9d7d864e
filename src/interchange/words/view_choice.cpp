#include "interchange/words/view_choice.h"

#include <fmt/format.h>

#include "interchange/words/field_choice.h"
#include "query/text_case.h"
#include "query/view.h"

namespace tabelion {

Result<int> viewNamed(Database& database, const TextEncoding& encoding, std::string_view name) {
  std::vector<std::string> names;
  for (const std::string& view : viewsMenu(database)) names.push_back(encoding.toUtf8(view));
  std::vector<int> similar;
  std::vector<std::string> similar_names;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (names[i] == name) return static_cast<int>(i);
    if (compareAnyCase(names[i], name) != 0) continue;
    similar.push_back(static_cast<int>(i));
    similar_names.push_back(names[i]);
  }
  if (similar.size() == 1) return similar.front();
  if (!similar.empty()) {
    return makeError(ErrorKind::kInvalid,
                     fmt::format("\"{}\" may be the view {}", name, alternatives(similar_names)));
  }
  std::string text = fmt::format("no view is called \"{}\"", name);
  if (const auto near = nearNames(name, names); !near.empty()) {
    text += "; there is " + alternatives(near);
  }
  return makeError(ErrorKind::kInvalid, text);
}

}  // namespace tabelion
