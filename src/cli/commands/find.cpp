// find: the records that have a text in a field.

#include <fmt/format.h>

#include "cli/command.h"
#include "cli/kit/context.h"
#include "cli/kit/row_output.h"
#include "cli/kit/shown_records.h"
#include "engine/schema_places.h"
#include "interchange/words/field_choice.h"
#include "query/find.h"
#include "query/list_columns.h"

namespace tabelion {
namespace {

struct FindOptions {
  std::string file;
  std::string text;
  std::string field;
  bool begins = false;
  bool with_case = false;
  bool all = false;
  bool ids = false;
  bool safe_csv = false;
  bool csv = false;
  bool json = false;
};

Result<SearchSettings> searchOf(const FindOptions& options, const Database& database,
                                const TextEncoding& encoding) {
  SearchSettings search{-1, options.with_case, options.begins, {}};
  if (!options.field.empty()) {
    const auto slot = chooseField(database, encoding, options.field);
    if (!slot.ok()) return slot.error();
    search.field = *slot;
  }
  Encoded text = encoding.fromUtf8(options.text);
  if (!text.ok()) return makeError(ErrorKind::kInvalid, describeFault(*text.fault, encoding));
  search.text = std::move(text.bytes);
  return search;
}

// How many records were found.
std::uint32_t putFound(const RecordFinder& finder, bool all, const RowSource& source,
                       RowOutput& rows) {
  std::uint32_t count = 0;
  std::uint32_t start = 0;
  do {
    const FoundField found = finder.find(start);
    if (found.position == kNoPosition) break;
    const FieldDefinition& field =
        source.database.schema.fields[static_cast<std::size_t>(found.slot)];
    rows.put(found.position, recordNumber(source.database, found.position),
             source.encoding.toUtf8(fieldName(field)));
    start = found.position + 1;
    ++count;
  } while (all);
  return count;
}

ExitCode runFind(const FindOptions& options, CliContext& context) {
  ExitCode failure{};
  const auto database = context.open(options.file, failure);
  if (!database) return failure;
  const auto encoding = context.encodingOf(*database);
  if (!encoding.ok()) return context.fail(encoding.error());
  const auto search = searchOf(options, *database, *encoding);
  if (!search.ok()) {
    return context.fail({search.error().kind, options.file + ": " + search.error().text});
  }
  const QuerySettings settings = context.querySettings(*encoding);
  if (const Status shown = showRecords(*database, *encoding, settings, {}); !shown.ok()) {
    return context.fail(shown.error());
  }
  const std::vector<int> slots = listedSlots(database->schema);
  const RowFormat format = options.json  ? RowFormat::kJson
                           : options.csv ? RowFormat::kCsv
                                         : RowFormat::kTable;
  const RowSource source{*database, *encoding, settings,    slots,
                         0,         true,      options.ids, options.safe_csv};
  const auto rows = makeRowOutput(source, format, context.out);
  const std::uint32_t count =
      putFound(RecordFinder(*database, *search, settings), options.all, source, *rows);
  if (count > 0 || format != RowFormat::kTable) rows->finish();
  const ExitCode written = context.finishOutput();
  if (written != ExitCode::kDone || count > 0) return written;
  context.say(fmt::format("{}: {}", options.file, kNotFoundText));
  return ExitCode::kNotFound;
}

}  // namespace

CommandBody declareFind(OptionList list) {
  const auto options = std::make_shared<FindOptions>();
  list.required("FILE", options->file, "The database");
  list.required("TEXT", options->text, "What is looked for, in all fields unless one is named");
  list.optional("--field FIELD", options->field, "In this field alone");
  list.flag("--begins", options->begins, "Where the field begins with it");
  list.flag("--case", options->with_case, "Small and capital letters as they stand");
  list.flag("--all", options->all, "Every record that has it, not the first alone");
  list.flag("--id", options->ids, "With ids of records that never change");
  list.flag("--safe-csv", options->safe_csv,
            "In CSV, an apostrophe in front of texts that a spreadsheet would take for formulas");
  list.flag("--csv", options->csv, "As CSV, with the values of an export");
  list.flag("--json", options->json, "As JSON, with the values of an export");
  list.exclusive({"--csv", "--json"});
  return [options](CliContext& context) { return runFind(*options, context); };
}

}  // namespace tabelion
