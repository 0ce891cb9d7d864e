// What a file's replacement takes over from it besides its name.
#pragma once

#include "platform/result.h"

struct stat;

namespace tabelion {

// Gives the file that is open as `fresh`, which we made, what the one open as `old_fd` has: owner,
// group, extended attributes with the access list, and mode. Only an administrator may give a file
// to another owner, and others only to their own groups; where that fails, the file stays ours as
// long as nobody gains or loses a right by it. The error says why it cannot be, as the end of a
// sentence about the file.
Status keepAttributes(int old_fd, const struct stat& old, int fresh);

}  // namespace tabelion
