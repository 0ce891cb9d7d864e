// What the commands that add, change and delete records share.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "cli/kit/context.h"
#include "engine/packed_record.h"
#include "security/access_rights.h"

namespace tabelion {

// Locks and opens the database at `path` where its access rights allow the operation. On failure
// the message has been said and `failure` is set.
std::optional<OpenedDatabase> openFor(CliContext& context, const std::string& path,
                                      Operation operation, ExitCode& failure);

// The position of the record with this number, counted from 1 in database order, or with this id.
Result<std::uint32_t> chooseRecord(const Database& database, std::string_view number);

// The message, with the file in front of it.
ExitCode failAt(CliContext& context, const Database& database, const Error& error);

// Stores the record at `position`, or as a new one for kNoPosition, saves the database and prints
// the number that the record has then; nothing is printed when standard output is the database.
ExitCode storeAndSave(CliContext& context, Database& database, const TextEncoding& encoding,
                      std::uint32_t position, UnpackedRecord record, bool json);

}  // namespace tabelion
