// rights, passwd: what a database allows, and the password that opening asks for.

#include <algorithm>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "cli/command.h"
#include "cli/kit/context.h"
#include "cli/kit/json_output.h"
#include "security/access_rights.h"

namespace tabelion {
namespace {

struct RightsOptions {
  std::string file;
  std::string rights;
  bool json = false;
};

// The operations that are in use.
constexpr Operation kOperations[] = {Operation::kOpen, Operation::kAdd, Operation::kChange,
                                     Operation::kDelete, Operation::kEditPopups};

const char* nameOf(Operation operation) {
  return kOperationNames[static_cast<int>(operation)];
}

// Changes the rights by a text such as "open=password,delete=refused".
Status changeRights(std::string_view text, DatabaseRecord& schema) {
  while (!text.empty()) {
    const std::size_t comma = std::min(text.find(','), text.size());
    const std::string_view part = text.substr(0, comma);
    text.remove_prefix(std::min(comma + 1, text.size()));
    const std::size_t equals = std::min(part.find('='), part.size());
    const auto operation = std::find_if(
        std::begin(kOperations), std::end(kOperations),
        [&](Operation candidate) { return part.substr(0, equals) == nameOf(candidate); });
    const auto code = std::find(std::begin(kSecurityCodeNames), std::end(kSecurityCodeNames),
                                part.substr(std::min(equals + 1, part.size())));
    if (operation == std::end(kOperations) || code == std::end(kSecurityCodeNames)) {
      return makeError(
          ErrorKind::kInvalid,
          fmt::format("\"{}\" is no right; write OPERATION=CODE with open, add, change, "
                      "delete or popups, and {}",
                      part, fmt::join(kSecurityCodeNames, ", ")));
    }
    setSecurityCode(schema, *operation, static_cast<int>(code - std::begin(kSecurityCodeNames)));
  }
  return Done{};
}

ExitCode printRights(const RightsOptions& options, const Database& database, CliContext& context) {
  auto figures = versionedJson();
  for (const Operation operation : kOperations) {
    const char* code = kSecurityCodeNames[securityCode(database.schema, operation)];
    if (options.json) {
      figures[nameOf(operation)] = code;
    } else {
      context.out.put(fmt::format("{:<8} {}\n", nameOf(operation), code));
    }
  }
  if (options.json) putJson(context.out, figures);
  return context.finishOutput();
}

ExitCode runRights(const RightsOptions& options, CliContext& context) {
  ExitCode failure{};
  const auto lock = options.rights.empty() ? nullptr : context.lock(options.file, failure);
  if (!options.rights.empty() && !lock) return failure;
  const auto database = context.openAsItIs(options.file, failure);
  if (!database) return failure;
  if (options.rights.empty()) return printRights(options, *database, context);
  const Status changed = changeRights(options.rights, database->schema);
  if (!changed.ok()) return context.fail(changed.error());
  setDirty(*database);
  return context.save(*database);
}

struct PasswdOptions {
  std::string file;
  SecretSource new_password;
  bool clear = false;
};

ExitCode runPasswd(const PasswdOptions& options, CliContext& context) {
  ExitCode failure{};
  const auto opened = context.openToChange(options.file, failure, CliContext::Opening::kAsItIs);
  if (!opened) return failure;
  Database& database = *opened->database;
  const TextEncoding& encoding = opened->encoding;
  auto& stored = database.schema.access_password;
  if (!areaText(stored).empty()) {
    const auto old = context.askPassword(context.options().access_password,
                                         "Present access password", encoding, failure);
    if (!old) return failure;
    if (old->text() != areaText(stored)) {
      context.say(options.file + ": this is not its access password; nothing was changed");
      return ExitCode::kWrongPassword;
    }
  }
  Password password;
  if (!options.clear) {
    const auto typed =
        context.askNewPassword(options.new_password, "New access password", encoding, failure);
    if (!typed) return failure;
    password = *typed;
  }
  setAreaText(stored, password.text());
  const bool asks = !password.text().empty();
  if (asks || securityCode(database.schema, Operation::kOpen) == kCodePassword) {
    setSecurityCode(database.schema, Operation::kOpen, asks ? kCodePassword : kCodeFree);
  }
  setDirty(database);
  return context.save(database);
}

}  // namespace

CommandBody declareRights(OptionList list) {
  const auto options = std::make_shared<RightsOptions>();
  list.required("FILE", options->file, "The database");
  list.optional("RIGHTS", options->rights,
                "Rights to change, such as open=password,delete=refused (default: show them)");
  list.flag("--json", options->json, "As JSON");
  return [options](CliContext& context) { return runRights(*options, context); };
}

CommandBody declarePasswd(OptionList list) {
  const auto options = std::make_shared<PasswdOptions>();
  list.required("FILE", options->file, "The database");
  list.optional("--new-password-file FILE", options->new_password.file,
                "File whose first line is the new password (default: ask on the terminal)");
  list.flag("--clear", options->clear, "Open the database without a password from now on");
  list.exclusive({"--new-password-file", "--clear"});
  return [options](CliContext& context) { return runPasswd(*options, context); };
}

}  // namespace tabelion
