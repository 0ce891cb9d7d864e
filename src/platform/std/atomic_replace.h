// Putting a new content in a file's place in one step.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "platform/files.h"
#include "platform/result.h"
#include "platform/std/posix.h"

namespace tabelion {

// What a replacement does when a file of that name is there.
enum class Existing { kReplace, kRefuse };

// A new content of a file while it is being written: a hidden sibling ".NAME.saving" that takes
// the file's name at commit(). Until then, and when this object goes without it, the old file is
// untouched and the sibling is removed. A sibling left by a program that was killed is removed by
// the next replacement; one that is being written right now (its writer holds a lock on it) makes
// the next one fail.
//
// A file with several hard links gives its other names the old content.
class Replacement {
 public:
  // Checks that the target may be replaced and opens the sibling. Symbolic links are followed.
  static Result<Replacement> begin(const std::string& path, Existing existing);

  Replacement(Replacement&&) = default;
  Replacement& operator=(Replacement&&) = delete;
  ~Replacement();

  Status append(std::span<const BytePiece> pieces);
  // Gives the new file the mode and the times of `status` (a moved file keeps its own).
  Status takeAttributes(const struct stat& status);
  // Flushes the bytes to the disk, renames, and flushes the folder; kWarning when only that
  // last step failed.
  Status commit();

 private:
  Replacement(std::string target, std::string sibling, Existing existing);
  Status createSibling(mode_t mode);
  Status keepAttributes(int old_fd, const struct stat& old);
  Error failed(std::string_view step, int error_number) const;
  Error failed(std::string_view reason) const;
  Error failed(int error_number) const;

  std::string target_;
  std::string sibling_;
  Existing existing_;
  FileDescriptor file_;  // the sibling; closed when there is nothing to remove
};

// Writes the pieces, in order, as the new content of `path`; see Files::replace.
Status replaceFile(const std::string& path, std::span<const BytePiece> pieces);

// Renames without ever overwriting. False with errno set (EEXIST: `to` is there).
bool renameNoReplace(const std::string& from, const std::string& to);

}  // namespace tabelion
