// info: what a database is, for people or as JSON.

#include <algorithm>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "cli/command.h"
#include "cli/kit/context.h"
#include "cli/kit/json_output.h"
#include "engine/packed_record.h"
#include "security/database_encryption.h"

namespace tabelion {
namespace {

struct InfoOptions {
  std::string file;
  bool json = false;
};

// Every operation that is not simply granted: "add refused, delete asks for the password".
std::string restrictionsText(std::uint32_t security_word) {
  constexpr const char* kOperations[] = {"open",         "add",         "change",
                                         "delete",       "operation 4", "operation 5",
                                         "edit pop-ups", "operation 7"};
  constexpr const char* kCodes[] = {"", " asks for the password", " refused", " restricted"};
  std::string text;
  for (std::size_t i = 0; i < std::size(kOperations); ++i) {
    const std::uint32_t code = security_word >> 2 * i & 3;
    if (code == 0) continue;
    if (!text.empty()) text += ", ";
    text += kOperations[i];
    text += kCodes[code];
  }
  return text.empty() ? "none" : text;
}

struct Counts {
  int fields = 0;
  int flagged_fields = 0;
  std::uint32_t enciphered_records = 0;
  std::uint64_t size = 0;  // of the file
};

Counts countParts(const Database& database, std::uint64_t size) {
  Counts counts;
  counts.size = size;
  for (const FieldDefinition& field : database.schema.fields) {
    if (field.type == FieldType::kUnused) continue;
    ++counts.fields;
    if (field.encrypt_flag != 0) ++counts.flagged_fields;
  }
  if (counts.flagged_fields == 0) return counts;
  for (const Record& record : database.records) {
    if (isRecordEncrypted(record.bytes())) ++counts.enciphered_records;
  }
  return counts;
}

// The same facts in the same order for both forms.
nlohmann::ordered_json infoJson(const Database& database, const Counts& counts,
                                const TextEncoding& encoding) {
  const DatabaseRecord& schema = database.schema;
  const std::string code_page = databaseCodePage(database);
  nlohmann::ordered_json json = versionedJson();
  json["name"] = encoding.toUtf8(areaText(database.header.name));
  json["category"] = encoding.toUtf8(areaText(schema.category));
  json["author"] = encoding.toUtf8(areaText(schema.author));
  const std::uint32_t created = database.header.creation_date;
  json["created"] = nullptr;
  if (created != kNoCreationDate) json["created"] = headerTimeText(created);
  json["modified"] = headerTimeText(database.header.modification_date);
  json["size"] = counts.size;
  json["records"] = database.records.count();
  json["fields"] = counts.fields;
  json["views"] = schema.view_count;
  json["code_page"] = code_page.empty() ? "the user's" : code_page;
  json["restrictions"] = restrictionsText(schema.security_word);
  json["encryption"] = schema.encryption_mode < std::size(kEncryptionModeNames)
                           ? kEncryptionModeNames[schema.encryption_mode]
                           : "unknown";
  json["enciphered_as_a_whole"] = (schema.head[kStampFlagOffset] & kDatabaseEncrypted) != 0;
  json["flagged_fields"] = counts.flagged_fields;
  json["enciphered_records"] = counts.enciphered_records;
  return json;
}

ExitCode runInfo(const InfoOptions& options, CliContext& context) {
  ExitCode failure{};
  const auto database = context.openAsItIs(options.file, failure);
  if (!database) return failure;
  const auto encoding = context.encodingOf(*database);
  if (!encoding.ok()) return context.fail(encoding.error());
  const Counts counts = countParts(*database, database->records.imageSize());
  const auto json = infoJson(*database, counts, *encoding);
  if (options.json) {
    putJson(context.out, json);
    return context.finishOutput();
  }
  for (const auto& [name, value] : json.items()) {
    if (name == kJsonSchemaVersionName) continue;
    std::string text = value.is_string() ? value.get<std::string>() : value.dump();
    if (value.is_boolean()) text = value.get<bool>() ? "yes" : "no";
    if (value.is_null()) text.clear();
    std::string label = name + ':';
    std::replace(label.begin(), label.end(), '_', ' ');
    context.out.put(text.empty() ? label + '\n' : fmt::format("{:<22} {}\n", label, text));
  }
  return context.finishOutput();
}

}  // namespace

CommandBody declareInfo(OptionList list) {
  const auto options = std::make_shared<InfoOptions>();
  list.required("FILE", options->file, "The database");
  list.flag("--json", options->json, "As JSON");
  return [options](CliContext& context) { return runInfo(*options, context); };
}

}  // namespace tabelion
