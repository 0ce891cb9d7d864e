// The description of a database: everything that it holds beside its records, as JSON that a
// person can read and write. docs/cli.md describes every member.
//
// What equals the default of a new database is left out, so a description by hand is short. What
// no named member covers stands under "raw" as hexadecimal digits, so a description is complete:
// a database made from it has an equal description. Left out are the marks of a file's daily life:
// which record was current, whether the order is stale, dirty marks and the dates of saves.
#pragma once

#include <nlohmann/json.hpp>

#include "engine/database.h"
#include "interchange/text_encoding.h"
#include "platform/result.h"

namespace tabelion {

nlohmann::ordered_json schemaToJson(const Database& database, const TextEncoding& encoding);

// Describes a new database (see initDatabase) as the JSON says. `user_encoding` serves a
// description that names no code page of its own. kInvalid names the place and the reason; the
// database must not be used then.
Status schemaFromJson(const nlohmann::ordered_json& json, const TextEncoding& user_encoding,
                      Database& database);

}  // namespace tabelion
