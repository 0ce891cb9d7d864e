// The step that create and import share.
#pragma once

#include <string>

#include "cli/context.h"

namespace tabelion {

// Adds the rows of the CSV text at `path`, puts all records into order and works out every
// calculated field. Every row that does not fit is said with its line. Done means that the database
// is to be saved.
ExitCode importRows(CliContext& context, const std::string& path, bool skip_bad,
                    Database& database);

}  // namespace tabelion
