// Advisory locks between programs, and between two users of a file in one program.
#pragma once

#include <memory>
#include <string>

#include "platform/files.h"
#include "platform/result.h"

namespace tabelion {

// Takes the lock of the file that `path` leads to, by a sibling ".NAME.lock", which is removed on
// release. It holds two lines:
//
//   HOLDER, process PID on HOST
//   MARK kernel          (process_mark.h)
//
// "kernel": the kernel keeps the lock on the sibling, and it ends with its process, however that
// ends. "file": the disk has no such locks, and the sibling itself is the lock; one whose process
// has certainly ended is cleared away, any other keeps the file locked until somebody removes it,
// which the error says. Both kinds heed each other.
//
// A file with several names in its folder (hard links) is locked under all of them. See
// Files::lock.
Result<std::unique_ptr<FileLock>> lockFile(const std::string& path, const std::string& holder);

}  // namespace tabelion
