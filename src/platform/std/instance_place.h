// Where the copies of the program meet: a lock that the kernel keeps, and the name of a socket.
#pragma once

#include <string>

#include "platform/result.h"
#include "platform/std/posix.h"

namespace tabelion {

// Both lie in a folder that only this user can enter: $XDG_RUNTIME_DIR, or "tabelion-UID" in the
// temporary folder where there is none, or one whose path is too long for a socket's address.
struct InstancePlace {
  std::string lock_path;
  std::string socket_path;
};

// Makes the folder when it has to. A folder that others may write to, or that belongs to somebody
// else, is refused.
Result<InstancePlace> findInstancePlace();

// Takes the lock without waiting; it is held until the descriptor is closed or its process ends,
// however that ends. kLocked when another process has it; the text names that process. The file
// stays when the lock goes, so that everybody locks the same one.
Result<FileDescriptor> takeInstanceLock(const std::string& lock_path);

}  // namespace tabelion
