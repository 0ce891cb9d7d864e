#include "interchange/words/sort_choice.h"

#include <fmt/format.h>

#include "interchange/words/field_choice.h"
#include "query/typed_tokens.h"

namespace tabelion {
namespace {

struct Level {
  int slot = 0;
  bool forward = true;
};

// A field may have ":desc" at the end of its own name.
Result<Level> chooseLevel(const Database& database, const TextEncoding& encoding,
                          std::string_view text) {
  if (const auto slot = chooseField(database, encoding, text); slot.ok()) return Level{*slot};
  bool forward = true;
  for (const std::string_view direction : {":asc", ":desc"}) {
    if (!text.ends_with(direction)) continue;
    forward = direction == ":asc";
    text = withoutBlanks(text.substr(0, text.size() - direction.size()));
    break;
  }
  const auto slot = chooseField(database, encoding, text);
  if (!slot.ok()) return slot.error();
  return Level{*slot, forward};
}

}  // namespace

Result<SortSelection> chooseSort(const Database& database, const TextEncoding& encoding,
                                 std::string_view levels) {
  SortSelection selection;
  selection.forward.fill(true);
  // A field may have a comma in its name too: a level takes as many of the pieces as it needs.
  std::size_t level = 0;
  std::size_t end = levels.find(',');
  for (;; end = levels.find(',', end + 1)) {
    const auto chosen = chooseLevel(database, encoding, withoutBlanks(levels.substr(0, end)));
    const bool is_last = end == std::string_view::npos;
    if (!chosen.ok()) {
      if (!is_last) continue;
      return chooseLevel(database, encoding, withoutBlanks(levels.substr(0, levels.find(','))))
          .error();
    }
    if (level == kSortLevels) {
      return makeError(ErrorKind::kInvalid,
                       fmt::format("a sort has at most {} levels", kSortLevels));
    }
    if (const std::string refusal = sortRefusal(database, chosen->slot); !refusal.empty()) {
      return makeError(ErrorKind::kRefused, encoding.toUtf8(refusal));
    }
    selection.field[level] = chosen->slot + 1;
    selection.forward[level++] = chosen->forward;
    if (is_last) return selection;
    levels.remove_prefix(end + 1);
    end = static_cast<std::size_t>(-1);
  }
}

}  // namespace tabelion
