// filter: show or set which records a database shows.

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "cli/command.h"
#include "cli/kit/context.h"
#include "cli/kit/json_output.h"
#include "interchange/words/filter_words.h"
#include "query/recompute.h"

namespace tabelion {
namespace {

struct FilterOptions {
  std::string file;
  std::vector<std::string> conditions;
  bool clear = false;
  bool json = false;
};

ExitCode printFilter(const FilterOptions& options, const Database& database,
                     const TextEncoding& encoding, CliContext& context) {
  const auto words = wordsOfFilter(database, encoding, database.schema.filters);
  if (options.json) {
    nlohmann::ordered_json json = versionedJson();
    json["conditions"] = words;
    putJson(context.out, json);
  } else {
    for (const std::string& condition : words) context.out.put(condition + '\n');
  }
  return context.finishOutput();
}

ExitCode showFilter(const FilterOptions& options, CliContext& context) {
  ExitCode failure{};
  const auto database = context.open(options.file, failure);
  if (!database) return failure;
  const auto encoding = context.encodingOf(*database);
  if (!encoding.ok()) return context.fail(encoding.error());
  return printFilter(options, *database, *encoding, context);
}

// Criteria that the new filter leaves free keep what they were set to, switched off.
void storeFilter(Database& database, const FilterCriteria& criteria) {
  for (std::size_t i = 0; i < criteria.size(); ++i) {
    FilterBlock& stored = database.schema.filters[i];
    if (criteria[i].enabled != 0) {
      stored = criteria[i];
    } else {
      stored.enabled = 0;
    }
  }
  setDirty(database);
}

ExitCode changeFilter(const FilterOptions& options, CliContext& context) {
  ExitCode failure{};
  const auto opened = context.openToChange(options.file, failure);
  if (!opened) return failure;
  Database& database = *opened->database;
  const TextEncoding& encoding = opened->encoding;
  const auto criteria = filterOfWords(database, encoding, options.conditions);
  if (!criteria.ok()) {
    return context.fail({criteria.error().kind, options.file + ": " + criteria.error().text});
  }
  context.history.Perform(context.target(database), "Filter", [&] {
    storeFilter(database, *criteria);
    recomputeDependents(database, context.querySettings(encoding));
  });
  return context.save(database);
}

ExitCode runFilter(const FilterOptions& options, CliContext& context) {
  const bool changes = options.clear || !options.conditions.empty();
  return changes ? changeFilter(options, context) : showFilter(options, context);
}

}  // namespace

CommandBody declareFilter(OptionList list) {
  const auto options = std::make_shared<FilterOptions>();
  list.required("FILE", options->file, "The database");
  list.several("CONDITION", options->conditions,
               "What is true of the records shown, as \"Price between 10 and 20\"; at most six");
  list.flag("--clear", options->clear, "Show all records");
  list.flag("--json", options->json, "The filter that there is as JSON");
  list.exclusive({"CONDITION", "--clear", "--json"});
  return [options](CliContext& context) { return runFilter(*options, context); };
}

}  // namespace tabelion
