// How a command ended, for scripts. docs/cli.md lists them; never renumber.
#pragma once

#include "platform/result.h"

namespace tabelion {

enum class ExitCode {
  kDone = 0,
  kNotFound = 1,
  kUsage = 2,
  kCannotOpen = 3,
  kNotDatabase = 4,
  kDamaged = 5,
  kLocked = 6,
  kRefused = 7,
  kCannotWrite = 8,
  kWrongPassword = 9,
  kNoMemory = 12,
};

struct ExitCodeText {
  ExitCode code;
  const char* meaning;
};
// For --help and the reference.
inline constexpr ExitCodeText kExitCodes[] = {
    {ExitCode::kDone, "done"},
    {ExitCode::kNotFound, "nothing was found"},
    {ExitCode::kUsage, "the command line is not understood"},
    {ExitCode::kCannotOpen, "an input file is not there or cannot be read"},
    {ExitCode::kNotDatabase, "the file is not a Tabelion database"},
    {ExitCode::kDamaged, "the database is damaged, or check or recalc found it not sound"},
    {ExitCode::kLocked, "another program has the database open"},
    {ExitCode::kRefused, "an input is not accepted"},
    {ExitCode::kCannotWrite, "an output could not be written"},
    {ExitCode::kWrongPassword, "a password is missing or wrong"},
    {ExitCode::kNoMemory, "there is not enough memory"},
};

ExitCode exitCodeFor(ErrorKind kind);

}  // namespace tabelion
