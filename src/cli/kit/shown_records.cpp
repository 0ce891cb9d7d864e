#include "cli/kit/shown_records.h"

#include <algorithm>

#include <fmt/format.h>

#include "interchange/words/field_choice.h"
#include "interchange/words/filter_words.h"
#include "interchange/words/sort_choice.h"
#include "interchange/words/view_choice.h"
#include "query/recompute.h"
#include "query/record_index.h"
#include "query/view.h"

namespace tabelion {
namespace {

// What the records have to go through.
struct Changes {
  bool sort = false;
  bool recompute = false;
};

Status takeView(Database& database, const TextEncoding& encoding, const std::string& name,
                Changes& changes) {
  const auto view = viewNamed(database, encoding, name);
  if (!view.ok()) return view.error();
  const ViewChange change = chooseView(database, *view);
  if (!change.switch_to.empty()) {
    return makeError(ErrorKind::kRefused, fmt::format("the view \"{}\" shows another database, {}",
                                                      name, encoding.toUtf8(change.switch_to)));
  }
  changes.sort = changes.sort || change.sort_changed;
  changes.recompute = changes.recompute || change.filter_changed;
  return Done{};
}

Status takeSort(Database& database, const TextEncoding& encoding, const std::string& levels,
                Changes& changes) {
  const auto selection = chooseSort(database, encoding, levels);
  if (!selection.ok()) return selection.error();
  const std::string refusal = storeSortSelection(database, *selection);
  if (!refusal.empty()) return makeError(ErrorKind::kRefused, encoding.toUtf8(refusal));
  changes.sort = true;
  return Done{};
}

}  // namespace

Status showRecords(Database& database, const TextEncoding& encoding, const QuerySettings& settings,
                   const ShownOptions& options) {
  // What is not saved has no use for its offset in the file.
  std::uint32_t number = 0;
  for (Record& record : database.records.records()) record.offset = ++number;

  Changes changes;
  if (!options.view.empty()) {
    if (auto taken = takeView(database, encoding, options.view, changes); !taken) return taken;
  }
  if (!options.filter.empty()) {
    const auto criteria = filterOfWords(database, encoding, options.filter);
    if (!criteria.ok()) return criteria.error();
    database.schema.filters = *criteria;
    changes.recompute = true;
  }
  if (!options.sort.empty()) {
    if (auto taken = takeSort(database, encoding, options.sort, changes); !taken) return taken;
  }
  if (changes.sort) {
    sortAndRecompute(database, settings);
    database.schema.sort_pending = 0;
  } else if (changes.recompute) {
    recomputeDependents(database, settings);
  }
  rebuildFilterIndex(database, settings);
  return Done{};
}

Result<std::vector<int>> chooseColumns(const Database& database, const TextEncoding& encoding,
                                       std::string_view names) {
  auto slots = chooseFields(database, encoding, names);
  if (!slots.ok()) return slots.error();
  for (auto slot = slots->begin(); slot != slots->end(); ++slot) {
    const FieldDefinition& field = database.schema.fields[static_cast<std::size_t>(*slot)];
    const char* fault = nullptr;
    if (field.type == FieldType::kSeparator) fault = "is a separator and has no value";
    if (std::find(slots->begin(), slot, *slot) != slot) fault = "is given more than once";
    if (fault == nullptr) continue;
    return makeError(ErrorKind::kInvalid,
                     fmt::format("\"{}\" {}", fieldLabel(database, encoding, *slot), fault));
  }
  return slots;
}

std::uint32_t recordNumber(const Database& database, std::uint32_t position) {
  return database.records[position].offset;
}

}  // namespace tabelion
