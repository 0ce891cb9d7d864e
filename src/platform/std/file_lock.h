// Advisory locks between programs, and between two users of a file in one program.
#pragma once

#include <memory>
#include <string>

#include "platform/files.h"
#include "platform/result.h"

namespace tabelion {

// Takes the lock of the file that `path` leads to, by a sibling ".NAME.lock" that the kernel
// locks; it holds one line, "HOLDER, process PID on HOST", and is removed on release. A lock ends
// with its process, however that ends. See Files::lock.
Result<std::unique_ptr<FileLock>> lockFile(const std::string& path, const std::string& holder);

}  // namespace tabelion
