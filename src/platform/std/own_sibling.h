// New files beside a database that nobody else writes.
#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

#include "platform/std/posix.h"

namespace tabelion {

struct OwnSibling {
  FileDescriptor file;  // none, with errno set, when it could not be made
  std::string path;
};

// Makes ".NAME.KIND-MARK.NUMBER" (process_mark.h) beside `path`, open for reading and writing, and
// removes those of that kind that programs left there which have certainly ended.
OwnSibling makeOwnSibling(const std::string& path, std::string_view kind, mode_t mode);

}  // namespace tabelion
