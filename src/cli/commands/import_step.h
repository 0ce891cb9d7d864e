// The step that create and import share.
#pragma once

#include <optional>
#include <string>

#include "cli/kit/context.h"
#include "cli/kit/option_list.h"

namespace tabelion {

// Where rows come from and how they are written, as the command line has it.
struct RowOptions {
  std::string path;
  std::string delimiter;    // empty: found out
  std::string encoding;     // empty: found out
  std::string date_format;  // empty: 2024-03-31
  std::string rejects;      // a file for the rows that do not fit; empty for none
  bool skip_bad = false;
};
// All but the path.
void declareRowOptions(OptionList& list, RowOptions& options);

// The file with the rows. To be read before the database is locked: it may be a pipe that takes its
// time. On failure the message has been said and `failure` is set.
std::optional<FileImage> readRows(CliContext& context, const RowOptions& options,
                                  ExitCode& failure);

// Adds the rows, puts all records into order and works out every calculated field. What does not
// fit is said with its lines, a line for all rows of one fault. Done means that the database is to
// be saved.
ExitCode importRows(CliContext& context, const RowOptions& options, const FileImage& rows,
                    Database& database);

}  // namespace tabelion
