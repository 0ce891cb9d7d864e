// import: the rows of a CSV text as records, all or none unless asked otherwise.

#include <fmt/format.h>

#include "cli/command.h"
#include "cli/commands/import_step.h"
#include "cli/commands/recompute_step.h"
#include "cli/commands/refused_rows.h"
#include "cli/kit/context.h"
#include "interchange/input_text.h"
#include "interchange/table_import.h"
#include "query/filter.h"
#include "query/recompute.h"
#include "query/record_index.h"

namespace tabelion {
namespace {

struct ImportOptions {
  std::string file;
  RowOptions rows;
};

ExitCode runImport(const ImportOptions& options, CliContext& context) {
  ExitCode failure{};
  const auto rows = readRows(context, options.rows, failure);
  if (!rows) return failure;
  const auto lock = context.lock(options.file, failure);
  if (!lock) return failure;
  const auto database = context.open(options.file, failure);
  if (!database) return failure;
  const ExitCode code = importRows(context, options.rows, *rows, *database);
  if (code != ExitCode::kDone) return code;
  // A database that is piped through goes on even when nothing was added.
  if (!isDirty(*database) && options.file != kPipe) return ExitCode::kDone;
  return context.save(*database);
}

std::string counted(std::uint64_t count, std::string_view what) {
  return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

// The records from `first` on into the order of the others, and every calculated field worked out.
void bringUpToDate(CliContext& context, const TextEncoding& encoding, std::uint32_t first,
                   Database& database) {
  if (!isDirty(database)) return;
  const QuerySettings settings = context.querySettings(encoding);
  // New records have values also where the filter leaves them out.
  if (isFilterInUse(database.schema)) recomputeAdded(database, first, settings);
  refreshRecordIndex(database, settings);
  sayCorrupt(context, database.path, encoding, database,
             recomputeRecords(context, encoding, database));
}

struct DateFormat {
  const char* words;
  int choice;  // FormatChoices::date_format
};
constexpr DateFormat kDateFormats[] = {{"y-m-d", 6}, {"m/d/y", 0}, {"d/m/y", 1}, {"d.m.y", 2},
                                       {"d-m-y", 3}, {"y/m/d", 4}, {"y.m.d", 5}};

std::optional<FormatSettings> datesIn(const std::string& words) {
  for (const DateFormat& format : kDateFormats) {
    if (words == format.words) {
      return makeFormatSettings({format.choice, 0, false}, LocaleInfo{});
    }
  }
  return std::nullopt;
}

Result<ImportForm> formOf(const RowOptions& options) {
  ImportForm form;
  form.dates = datesIn(options.date_format);
  const std::string& delimiter = options.delimiter;
  if (delimiter.empty()) return form;
  form.delimiter = delimiter == "tab" || delimiter == "\\t" ? '\t' : delimiter[0];
  const bool is_one = delimiter.size() == 1 || form.delimiter == '\t';
  if (!is_one || *form.delimiter == '"' || *form.delimiter == '\n' || *form.delimiter == '\r' ||
      static_cast<unsigned char>(*form.delimiter) >= 0x80) {
    return makeError(
        ErrorKind::kInvalid,
        fmt::format("--delimiter takes one character or \"tab\", not \"{}\"", delimiter));
  }
  return form;
}

// The text in UTF-8. Where that had to be found out, it is said.
Result<InputText> textOf(CliContext& context, const RowOptions& options, const FileImage& rows,
                         const TextEncoding& encoding) {
  auto text = InputText::read(rows.span(), options.encoding, encoding);
  if (!text.ok()) {
    return makeError(text.error().kind, options.path + ": " + text.error().text);
  }
  if (text->isGuess()) {
    context.say(fmt::format("{}: is not UTF-8; read as {} (--encoding names another)", options.path,
                            text->encoding()));
  }
  return text;
}

bool isSameFile(Files& files, const std::string& a, const std::string& b) {
  if (a == b) return true;
  const auto info_a = files.info(a);
  const auto info_b = files.info(b);
  return info_a.ok() && info_b.ok() && info_a->version == info_b->version;
}

Status writeRejects(CliContext& context, const RowOptions& options, const ImportSummary& summary,
                    const Database& database) {
  if (options.rejects.empty()) return Done{};
  if (isSameFile(context.files, options.rejects, options.path) ||
      isSameFile(context.files, options.rejects, database.path)) {
    return makeError(ErrorKind::kRefused,
                     options.rejects + ": is a file of this import; --rejects needs another one");
  }
  const std::string table = refusedTable(summary);
  const BytePiece piece(reinterpret_cast<const std::uint8_t*>(table.data()), table.size());
  return context.files.replace(options.rejects, {&piece, 1});
}

// Says what does not fit, and whether the rest is taken.
ExitCode settleRefused(CliContext& context, const RowOptions& options,
                       const ImportSummary& summary) {
  if (summary.refused.empty()) return ExitCode::kDone;
  OutputBuffer err(context.streams.err);
  for (const std::string& line : faultLines(summary.refused)) {
    err.put(fmt::format("tabelion-cli: {}: {}\n", options.path, line));
  }
  err.flush();
  const std::string refused = counted(summary.refused.size(), "row");
  const bool takes_rest = options.skip_bad || !options.rejects.empty();
  if (!takes_rest || summary.records == 0) {
    context.say(fmt::format("{}: {} of {} refused; nothing was imported", options.path, refused,
                            summary.rows));
    return ExitCode::kRefused;
  }
  context.say(fmt::format("{}: {} left out, {} imported", options.path, refused,
                          counted(summary.records, "record")));
  return ExitCode::kDone;
}

ExitCode takeIn(CliContext& context, const RowOptions& options, const ImportForm& form,
                const TextEncoding& encoding, std::string_view text, Database& database) {
  const std::uint32_t first = database.records.count();
  const auto summary =
      importCsv(text, form, encoding, context.engine, database, context.progress("importing"));
  if (!summary.ok()) {
    return context.fail({summary.error().kind, options.path + ": " + summary.error().text});
  }
  context.clearProgress();
  const ExitCode settled = settleRefused(context, options, *summary);
  // Rows that do not fit are safe before those that do become records.
  const Status written = writeRejects(context, options, *summary, database);
  if (!written.ok()) return context.fail(written.error());
  if (settled == ExitCode::kDone) bringUpToDate(context, encoding, first, database);
  return settled;
}

}  // namespace

void declareRowOptions(OptionList& list, RowOptions& options) {
  list.flag("--skip-bad", options.skip_bad,
            "Import the rows that fit and list the others, instead of importing nothing");
  list.optional("--rejects OUT", options.rejects,
                "The same, and write the other rows to this file, each with what is wrong");
  list.optional("--delimiter CHARACTER", options.delimiter,
                "What stands between cells, a character or \"tab\" (default: found out)");
  list.optional("--encoding NAME", options.encoding,
                "Encoding of the text, as \"UTF-8\", \"1252\" or \"UTF-16\" (default: found out)");
  std::vector<std::string> formats;
  for (const DateFormat& format : kDateFormats) formats.emplace_back(format.words);
  list.optionalOneOf("--date-format FORM", options.date_format, formats,
                     "Order of year, month and day in dates that are not as 2024-03-31");
}

std::optional<FileImage> readRows(CliContext& context, const RowOptions& options,
                                  ExitCode& failure) {
  auto image = context.files.read(options.path);
  if (image.ok()) return std::move(image).value();
  failure = context.fail(image.error());
  return std::nullopt;
}

ExitCode importRows(CliContext& context, const RowOptions& options, const FileImage& rows,
                    Database& database) {
  const auto encoding = context.encodingOf(database);
  if (!encoding.ok()) return context.fail(encoding.error());
  const auto form = formOf(options);
  if (!form.ok()) return context.fail(form.error());
  const auto text = textOf(context, options, rows, *encoding);
  if (!text.ok()) return context.fail(text.error());
  ExitCode code = ExitCode::kRefused;
  // What does not come in as it should is taken back at once.
  context.history.Attempt(context.target(database), "Import", [&] {
    code = takeIn(context, options, *form, *encoding, text->text(), database);
    return code == ExitCode::kDone;
  });
  return code;
}

CommandBody declareImport(OptionList list) {
  const auto options = std::make_shared<ImportOptions>();
  list.required("FILE", options->file, "The database");
  list.required("DATA", options->rows.path, "CSV; its first row names the fields");
  declareRowOptions(list, options->rows);
  return [options](CliContext& context) { return runImport(*options, context); };
}

}  // namespace tabelion
