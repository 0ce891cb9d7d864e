// Putting a new content in a file's place in one step.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "platform/files.h"
#include "platform/result.h"
#include "platform/std/posix.h"

namespace tabelion {

// What a replacement does when a file of that name is there.
enum class Existing { kReplace, kRefuse };

// Who may read and write the new file.
enum class Privacy {
  kAsBefore,   // whoever could; a new file follows the user's mask
  kOwnerOnly,  // its owner alone, whatever it was
};

// A new content of a file while it is being written: a hidden sibling
// (own_sibling.h) that takes the file's name at commit(). Until then, and when this object goes
// without it, the old file is untouched and the sibling is removed. A sibling left by a program
// that was killed is removed by the next replacement.
//
// The other names of a file with several hard links get the new content too when they are in the
// same folder; with one elsewhere the file is refused, because it would keep the old content.
class Replacement {
 public:
  // Checks that the target may be replaced and opens the sibling. Symbolic links are followed.
  static Result<Replacement> begin(const std::string& path, Existing existing,
                                   Privacy privacy = Privacy::kAsBefore);

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
  Replacement(std::string target, Existing existing);
  Status findOtherNames(const struct stat& old);
  Status createSibling(mode_t mode);
  Status takeOtherNames() const;
  Error failed(std::string_view reason) const;
  Error failed(int error_number) const;

  std::string target_;
  std::string sibling_;
  std::vector<std::string> other_names_;
  Existing existing_;
  FileDescriptor file_;  // the sibling; closed when there is nothing to remove
};

// Writes the pieces, in order, as the new content of `path`; see Files::replace.
Status replaceFile(const std::string& path, std::span<const BytePiece> pieces,
                   Privacy privacy = Privacy::kAsBefore);

// Renames without ever overwriting. False with errno set (EEXIST: `to` is there).
bool renameNoReplace(const std::string& from, const std::string& to);

}  // namespace tabelion
