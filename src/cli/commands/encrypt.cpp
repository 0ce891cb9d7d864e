// encrypt, decrypt: the flagged fields of a database's records, with a password.

#include <fmt/format.h>

#include "cli/command.h"
#include "cli/kit/context.h"
#include "engine/schema_places.h"
#include "interchange/words/field_choice.h"
#include "security/database_encryption.h"

namespace tabelion {
namespace {

struct EncryptOptions {
  std::string file;
  std::vector<std::string> fields;
  std::string keep;
  bool overlong = false;
};

// In the order of the modes.
constexpr const char* kKept[] = {"whole-database", "automatic", "by-record"};

// The slots that are to be flagged and are not yet. A field that the records are sorted by cannot
// be one.
Result<std::vector<int>> fieldsToFlag(const EncryptOptions& options, const Database& database,
                                      const TextEncoding& encoding) {
  std::vector<int> slots;
  for (const std::string& name : options.fields) {
    const Result<int> slot = chooseField(database, encoding, name);
    if (!slot.ok()) return slot.error();
    for (const SortKey& key : database.schema.sort) {
      if (key.field == *slot) {
        return makeError(ErrorKind::kRefused,
                         fmt::format("the records are sorted by \"{}\", which an enciphered field "
                                     "cannot be used for; sort by another one first",
                                     name));
      }
    }
    const FieldDefinition& field = database.schema.fields[static_cast<std::size_t>(*slot)];
    if (field.encrypt_flag == 0) slots.push_back(*slot);
  }
  if (!slots.empty() || hasFlaggedFields(database.schema)) return slots;
  return makeError(ErrorKind::kInvalid, "no field is to be enciphered; --field names one");
}

// Whether the password opened every enciphered record, for certain: they are written in clear then,
// or under other flags.
bool decipherAll(Database& database, const Password& password, PasswordAttempt& attempt) {
  OpenedRecords deciphered;  // which are to stay in clear
  attempt = deciphered.open(database, password, true);
  if (attempt.isComplete()) {
    deciphered.closeUncertain(database, OpenedRecords::Before::kWritingInClear);
    attempt.doubtful = HasEncipheredRecords(database);
  }
  return attempt.isComplete();
}

// Texts that other devices could not read back; says each.
bool hasOverlongValues(const EncryptOptions& options, const OpenedDatabase& opened,
                       CliContext& context) {
  const auto overlong = overlongValues(*opened.database);
  if (options.overlong) return false;
  for (const auto& [position, value] : overlong) {
    const FieldDefinition& field =
        opened.database->schema.fields[static_cast<std::size_t>(value.slot)];
    context.say(fmt::format(
        "{}: record {}: the text of \"{}\" has {} bytes; enciphered, other "
        "devices read back at most 255",
        options.file, position + 1, opened.encoding.toUtf8(fieldName(field)), value.length));
  }
  if (overlong.empty()) return false;
  context.say("nothing was changed; --overlong enciphers them all the same");
  return true;
}

ExitCode runEncrypt(const EncryptOptions& options, CliContext& context) {
  ExitCode failure{};
  const auto opened = context.openToChange(options.file, failure, CliContext::Opening::kAsItIs);
  if (!opened) return failure;
  Database& database = *opened->database;
  const auto to_flag = fieldsToFlag(options, database, opened->encoding);
  if (!to_flag.ok()) {
    return context.fail({to_flag.error().kind, options.file + ": " + to_flag.error().text});
  }
  const auto ask = [&] {
    const bool is_new =
        database.schema.password_check_present == 0 && !HasEncipheredRecords(database);
    const auto how = is_new ? &CliContext::askNewPassword : &CliContext::askPassword;
    return (context.*how)(context.options().encryption_password, "Encryption password",
                          opened->encoding, failure);
  };
  std::optional<Password> password;
  // What is enciphered already was so without the new fields, and would be read with them.
  if (!to_flag->empty() && HasEncipheredRecords(database)) {
    password = ask();
    if (!password) return failure;
    PasswordAttempt attempt;
    if (!decipherAll(database, *password, attempt)) return failWith(context, database, attempt);
  }
  for (const int slot : *to_flag) {
    database.schema.fields[static_cast<std::size_t>(slot)].encrypt_flag = 1;
  }
  for (std::uint8_t mode = 0; mode < std::size(kKept); ++mode) {
    if (options.keep == kKept[mode]) database.schema.encryption_mode = mode;
  }
  if (database.schema.encryption_mode > kEncryptRecordsByHand) {
    database.schema.encryption_mode = kEncryptWholeDatabase;
  }
  if (hasOverlongValues(options, *opened, context)) return ExitCode::kRefused;
  if (!password) {
    password = ask();
    if (!password) return failure;
    if (!PasswordMatchesCheck(database.schema, password->text())) {
      context.say(options.file + ": another password enciphered records of this database");
      return ExitCode::kWrongPassword;
    }
  }
  ExpandedKey key;
  MakeKey(password->text(), key);
  const EncryptSummary summary = encryptRecords(database, context.engine, key);
  if (summary.too_long != kNoPosition) {
    return context.fail({ErrorKind::kRefused,
                         fmt::format("{}: record {} would become too long; nothing was changed",
                                     options.file, summary.too_long + 1)});
  }
  SetPasswordCheck(database.schema, password->text(), context.engine.random);
  setDirty(database);
  return context.save(database);
}

ExitCode runDecrypt(const EncryptOptions& options, CliContext& context) {
  ExitCode failure{};
  const auto opened = context.openToChange(options.file, failure, CliContext::Opening::kAsItIs);
  if (!opened) return failure;
  Database& database = *opened->database;
  const auto password = context.askPassword(context.options().encryption_password,
                                            "Encryption password", opened->encoding, failure);
  if (!password) return failure;
  PasswordAttempt attempt;
  if (!decipherAll(database, *password, attempt)) return failWith(context, database, attempt);
  database.schema.encryption_mode = kEncryptNever;
  markDeciphered(database.schema);
  setDirty(database);
  return context.save(database);
}

}  // namespace

CommandBody declareEncrypt(OptionList list) {
  const auto options = std::make_shared<EncryptOptions>();
  list.required("FILE", options->file, "The database");
  list.several("--field FIELD", options->fields, "Encipher this field too; may be repeated");
  list.optionalOneOf(
      "--keep HOW", options->keep, {std::begin(kKept), std::end(kKept)},
      "What the window enciphers later: everything when the database is closed, each "
      "record that is saved, or only what it is told to (default: as before, else "
      "whole-database)");
  list.flag("--overlong", options->overlong,
            "Encipher also texts of more than 255 bytes, which other devices cannot read back");
  return [options](CliContext& context) { return runEncrypt(*options, context); };
}

CommandBody declareDecrypt(OptionList list) {
  const auto options = std::make_shared<EncryptOptions>();
  list.required("FILE", options->file, "The database");
  return [options](CliContext& context) { return runDecrypt(*options, context); };
}

}  // namespace tabelion
