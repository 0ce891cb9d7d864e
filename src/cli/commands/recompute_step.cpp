#include "cli/commands/recompute_step.h"

#include <algorithm>

#include <fmt/format.h>

#include "engine/schema_places.h"

namespace tabelion {
namespace {

CorruptFormula collectInto(std::vector<CorruptField>& corrupt) {
  return [&corrupt](std::uint32_t position, int slot) {
    const auto known = std::find_if(corrupt.begin(), corrupt.end(),
                                    [slot](const auto& entry) { return entry.slot == slot; });
    if (known == corrupt.end()) {
      corrupt.push_back({slot, position, 1});
    } else {
      ++known->values;
    }
  };
}

}  // namespace

RecomputeOutcome recomputeRecords(CliContext& context, const TextEncoding& encoding,
                                  Database& database) {
  RecomputeOutcome outcome;
  context.history.Perform(context.target(database), "Recalculation", [&] {
    outcome.summary =
        recomputeAll(database, context.querySettings(encoding), collectInto(outcome.corrupt));
  });
  return outcome;
}

void sayCorrupt(CliContext& context, const std::string& file, const TextEncoding& encoding,
                const Database& database, const RecomputeOutcome& outcome) {
  for (const CorruptField& field : outcome.corrupt) {
    const auto slot = static_cast<std::size_t>(field.slot);
    context.say(
        fmt::format("{}: the formula of \"{}\" is invalid or corrupt; its value is -1 in {} "
                    "record{}, the first "
                    "is record {}",
                    file, encoding.toUtf8(fieldName(database.schema.fields[slot])), field.values,
                    field.values == 1 ? "" : "s", field.first_position + 1));
  }
}

}  // namespace tabelion
