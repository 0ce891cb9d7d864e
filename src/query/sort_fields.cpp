#include "query/sort_fields.h"

#include <fmt/format.h>

#include "engine/schema_places.h"
#include "query/formula.h"

namespace tabelion {
namespace {

// Compat: list positions are slot + 1, as if the list left no field out; behind one that it does
// leave out the dialog shows and stores a neighbour
// (SortFields.ThePositionsCountExcludedFieldsToo).
int positionOf(const SortKey& key) {
  return isSlot(key.field) ? key.field + 1 : 0;
}

}  // namespace

std::string sortRefusal(const Database& database, int slot) {
  static const FieldDefinition no_field;
  const FieldDefinition& field =
      isSlot(slot) ? database.schema.fields[static_cast<std::size_t>(slot)] : no_field;
  const std::string name = fieldName(field);
  if (field.encrypt_flag != 0) {
    return fmt::format("This field ({}) is flagged for encrypted, and therefore cannot be sorted!",
                       name);
  }
  if (!traitsOf(field.type).sorts) {
    return fmt::format("This type of field ({}) cannot currently be sorted!", name);
  }
  if (field.type == FieldType::kCalculated && usesOtherRecords(database, slot)) {
    return fmt::format(
        "Since this field ({}) references other records, it's value is relative to it's position, "
        "meaning that it cannot be the basis for a sort!",
        name);
  }
  return {};
}

std::vector<std::string> sortFieldNames(const Database& database) {
  std::vector<std::string> names;
  for (const FieldDefinition& field : database.schema.fields) {
    if (traitsOf(field.type).sorts) names.push_back(fieldName(field));
  }
  return names;
}

SortSelection sortSelection(const Database& database, int view) {
  const DatabaseRecord& schema = database.schema;
  const auto& levels = view < 0 ? schema.sort : schema.views[static_cast<std::size_t>(view)].sort;
  SortSelection selection;
  for (std::size_t i = 0; i < levels.size(); ++i) {
    // Compat: for a view only the first direction is the view's own, the others are the
    // database's (SortFields.AViewShowsTheDatabasesLowerDirections).
    const SortKey& direction = i == 0 ? levels[i] : schema.sort[i];
    selection.field[i] = positionOf(levels[i]);
    selection.forward[i] = direction.order == kSortForward;
  }
  return selection;
}

int sortLevelOf(const DatabaseRecord& schema, int slot) {
  for (std::size_t i = 0; i < schema.sort.size() && isSlot(schema.sort[i].field); ++i) {
    if (schema.sort[i].field == slot) return static_cast<int>(i) + 1;
  }
  return 0;
}

std::string storeSortSelection(Database& database, const SortSelection& selection, int view) {
  std::array<SortKey, kSortLevels> levels;
  for (std::size_t i = 0; i < levels.size(); ++i) {
    levels[i].order = selection.forward[i] ? kSortForward : 0;
    if (selection.field[i] <= 0) continue;
    const int slot = slotOfSortPosition(selection.field[i]);
    if (std::string refusal = sortRefusal(database, slot); !refusal.empty()) return refusal;
    levels[i].field = static_cast<std::uint8_t>(slot);
  }
  DatabaseRecord& schema = database.schema;
  if (view >= 0) {
    schema.views[static_cast<std::size_t>(view)].sort = levels;
  } else {
    schema.sort = levels;
    if (schema.current_view < schema.view_count && schema.current_view < kViewSlots &&
        schema.views[schema.current_view].live_update != 0) {
      schema.views[schema.current_view].sort = levels;
    }
  }
  setDirty(database);
  return {};
}

}  // namespace tabelion
