// create: a database from its description, with records from CSV.

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "cli/command.h"
#include "cli/commands/import_step.h"
#include "cli/kit/context.h"
#include "interchange/schema_json.h"

namespace tabelion {
namespace {

struct CreateOptions {
  std::string file;
  std::string schema;
  RowOptions rows;
  bool force = false;
};

// Calls the database after its file: "Contacts" for "/home/me/Contacts.PDB", as much of it as a
// name can hold.
Status nameAfterFile(const std::string& path, const TextEncoding& encoding, Database& database) {
  std::string name = fileNameOf(path);
  const std::size_t dot = name.find_last_of('.');
  if (dot != std::string::npos && dot > 0) name.resize(dot);
  const Encoded encoded = encoding.fromUtf8(name);
  if (!encoded.ok()) {
    return makeError(ErrorKind::kInvalid,
                     fmt::format("{}: cannot be the name of the database, {}; give one in the "
                                 "description",
                                 name, describeFault(*encoded.fault, encoding)));
  }
  setAreaText(database.header.name, encoding.cut(encoded.bytes, kNameSize - 1));
  return Done{};
}

Result<nlohmann::ordered_json> parseJson(std::span<const std::uint8_t> bytes) {
  try {
    return nlohmann::ordered_json::parse(bytes.begin(), bytes.end());
  } catch (const nlohmann::json::parse_error& error) {
    // The library's own tag in brackets says nothing to a person.
    const std::string_view text = error.what();
    const std::size_t bracket = text.find("] ");
    return makeError(ErrorKind::kInvalid,
                     std::string(text.substr(bracket == text.npos ? 0 : bracket + 2)));
  }
}

Status describe(const CreateOptions& options, CliContext& context, Database& database) {
  const auto image = context.files.read(options.schema);
  if (!image.ok()) return image.error();
  const auto parsed = parseJson(image->span());
  if (!parsed.ok()) {
    return makeError(parsed.error().kind, options.schema + ": " + parsed.error().text);
  }
  const nlohmann::ordered_json& json = *parsed;
  const auto encoding = context.userEncoding();
  if (!encoding.ok()) return encoding.error();
  const Status status = schemaFromJson(json, *encoding, database);
  if (!status.ok()) {
    return makeError(status.error().kind, options.schema + ": " + status.error().text);
  }
  if (json.contains("name") || options.file == kPipe) return Done{};
  const auto own_encoding = context.encodingOf(database);
  if (!own_encoding.ok()) return own_encoding.error();
  return nameAfterFile(options.file, *own_encoding, database);
}

ExitCode runCreate(const CreateOptions& options, CliContext& context) {
  ExitCode failure{};
  std::optional<FileImage> rows;
  if (!options.rows.path.empty()) {
    rows = readRows(context, options.rows, failure);
    if (!rows) return failure;
  }
  const auto lock = context.lock(options.file, failure);
  if (!lock) return failure;
  if (!options.force && context.files.info(options.file).ok()) {
    return context.fail(
        {ErrorKind::kRefused, options.file + ": is already there; --force replaces it"});
  }
  const auto database = std::make_unique<Database>();
  initDatabase(*database, context.engine);
  database->path = options.file;
  const Status described = describe(options, context, *database);
  if (!described.ok()) return context.fail(described.error());
  if (rows) {
    const ExitCode code = importRows(context, options.rows, *rows, *database);
    if (code != ExitCode::kDone) return code;
  }
  return context.save(*database);
}

}  // namespace

CommandBody declareCreate(OptionList list) {
  const auto options = std::make_shared<CreateOptions>();
  list.required("FILE", options->file, "The database to be made");
  list.required("--schema FILE", options->schema, "Its description as JSON");
  list.optional("--data FILE", options->rows.path, "Records as CSV");
  declareRowOptions(list, options->rows);
  list.flag("--force", options->force, "Replace a file that is there");
  return [options](CliContext& context) { return runCreate(*options, context); };
}

}  // namespace tabelion
