// Where passwords come from: a file, a file descriptor or the terminal; never the command line,
// which every other program on the machine can read.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "platform/files.h"
#include "security/password.h"

namespace tabelion {

struct SecretSource {
  std::string file;  // its first line
  std::optional<std::uint32_t> descriptor;
  bool ask = false;  // on the terminal

  bool isGiven() const { return !file.empty() || descriptor.has_value() || ask; }
};

// Asks on the terminal without showing what is typed; none where there is no terminal or the user
// gave up.
using SecretPrompt = std::function<std::optional<std::string>(const std::string& question)>;
std::optional<std::string> askOnTerminal(const std::string& question);

// The password in UTF-8, without its line end. An Error says what could not be read.
Result<std::string> readSecret(const SecretSource& source, Files& files, const SecretPrompt& prompt,
                               const std::string& question);

}  // namespace tabelion
