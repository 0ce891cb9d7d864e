// Small helpers around the system's calls that several files here share.
#pragma once

#include <cerrno>
#include <string>
#include <string_view>
#include <vector>

#include "platform/result.h"

struct stat;

namespace tabelion {

// A file descriptor that is closed when it goes. Where the result of closing matters, call close().
class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int fd) : fd_(fd) {}
  FileDescriptor(FileDescriptor&& other) noexcept : fd_(other.release()) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept;
  ~FileDescriptor();

  int get() const { return fd_; }
  explicit operator bool() const { return fd_ >= 0; }
  int release();
  bool close();  // false, with errno set, when the system reports a late write error

 private:
  int fd_ = -1;
};

// Repeats a call that a signal interrupted.
template <class Call>
auto retryInterrupted(Call call) {
  decltype(call()) result;
  do {
    result = call();
  } while (result < 0 && errno == EINTR);
  return result;
}

// Why the system refused, for people: "the disk is full". The system's own words where it has no
// better ones here.
std::string reasonInWords(int error_number);

// "WHAT: reason", the reason as reasonInWords() says it.
Error systemError(ErrorKind kind, std::string_view what, int error_number);

std::string folderOf(const std::string& path);   // "." for a bare name
std::string_view nameOf(std::string_view path);  // what follows the last slash

// The path of the file that opening `path` for writing would reach: every symbolic link followed,
// also one whose target is not there yet. The folder must exist.
Result<std::string> resolveTarget(const std::string& path);

// A hidden name in the same folder, derived from the file's name: ".NAME.SUFFIX", the name
// shortened where the file system's limit for names would be passed, and alike for every suffix of
// at most kLongestSuffix characters.
inline constexpr std::size_t kLongestSuffix = 60;
std::string siblingPath(const std::string& path, std::string_view suffix);

// The paths of all names that a file has in its folder (hard links), sorted; the given one alone
// where there is no such file.
std::vector<std::string> namesOfFile(const std::string& path);

bool sameFile(const struct stat& a, const struct stat& b);

}  // namespace tabelion
