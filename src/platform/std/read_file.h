// Reading files whole, as fast as the machine gives memory for them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/files.h"
#include "platform/result.h"

namespace tabelion {

// One open, one buffer, as few reads as the system allows. Folders, devices and files over 4 GiB
// are refused. The bytes are a copy: another program that truncates the file meanwhile cannot take
// them away, and a file that shrinks while it is read gives what was read.
Result<FileImage> readWholeFile(const std::string& path);

// The same bytes without a copy where the file is large: pages of it that nobody looks at are not
// even read. They are the file's own, so a program that goes on for long must not take them: when
// another program cuts the file short, the system ends this one (SIGBUS) where it touches a page
// that is gone, unless it handles that. Files that are replaced rather than written over stay.
Result<FileImage> viewWholeFile(const std::string& path);

Result<std::vector<std::uint8_t>> readFilePart(const std::string& path, std::uint64_t offset,
                                               std::size_t limit);

}  // namespace tabelion
