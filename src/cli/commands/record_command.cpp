#include "cli/commands/record_command.h"

#include <charconv>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "cli/kit/json_output.h"
#include "engine/schema_places.h"
#include "interchange/record_id.h"
#include "query/formula.h"
#include "services/changes/record_steps.h"

namespace tabelion {
namespace {

const char* nameOf(Operation operation) {
  switch (operation) {
    case Operation::kAdd:
      return "adding records";
    case Operation::kDelete:
      return "deleting records";
    default:
      return "changing records";
  }
}

// Records that can be looked at only cannot be changed; other operations go on when restricted.
bool isAllowed(const DatabaseRecord& schema, Operation operation) {
  const int access = CheckSecurity(schema, operation);
  return access == kAccessGranted ||
         (access == kAccessRestricted && operation != Operation::kChange);
}

}  // namespace

std::optional<OpenedDatabase> openFor(CliContext& context, const std::string& path,
                                      Operation operation, ExitCode& failure) {
  auto opened = context.openToChange(path, failure);
  if (opened && !isAllowed(opened->database->schema, operation)) {
    failure = failAt(
        context, *opened->database,
        {ErrorKind::kRefused, fmt::format("its access rights do not allow {}", nameOf(operation))});
    return std::nullopt;
  }
  return opened;
}

Result<std::uint32_t> chooseRecord(const Database& database, std::string_view number) {
  if (isRecordId(number)) return recordWithId(database, number);
  std::uint32_t value = 0;
  const auto read = std::from_chars(number.data(), number.data() + number.size(), value);
  if (read.ec == std::errc::invalid_argument || read.ptr != number.data() + number.size()) {
    return makeError(ErrorKind::kInvalid, fmt::format("\"{}\" is not a record number", number));
  }
  const std::uint32_t count = database.records.count();
  if (read.ec != std::errc() || value == 0 || value > count) {
    return makeError(ErrorKind::kInvalid,
                     fmt::format("there is no record {}; it has {}", number, count));
  }
  return value - 1;
}

ExitCode failAt(CliContext& context, const Database& database, const Error& error) {
  return context.fail({error.kind, database.path + ": " + error.text});
}

ExitCode storeAndSave(CliContext& context, Database& database, const TextEncoding& encoding,
                      std::uint32_t position, UnpackedRecord record, bool json) {
  const auto warn = [&](std::uint32_t, int slot) {
    const FieldDefinition& field = database.schema.fields[static_cast<std::size_t>(slot)];
    context.say(fmt::format("{}: {}: {}", database.path, encoding.toUtf8(fieldName(field)),
                            kFormulaErrorText));
  };
  const bool was_full = position == kNoPosition && database.records.isFull();
  const std::uint32_t place =
      StoreRecord(context.history, context.target(database), context.engine, position,
                  std::move(record), context.querySettings(encoding), warn);
  if (place == kNoPosition) {
    const std::string reason =
        was_full ? fmt::format("is full: it holds {} records, the most it can", kMaxRecords)
                 : fmt::format("the record takes more than {} bytes", kMaxRecordSize);
    return failAt(context, database, {ErrorKind::kRefused, reason});
  }
  const ExitCode saved = context.save(database);
  if (saved != ExitCode::kDone || database.path == kPipe) return saved;
  if (json) {
    auto figures = versionedJson();
    figures["record"] = place + 1;
    figures["id"] = idJson(database.records[place].bytes());
    putJson(context.out, figures);
  } else {
    context.out.put(fmt::format("{}\n", place + 1));
  }
  return context.finishAfterSave(database.path);
}

}  // namespace tabelion
