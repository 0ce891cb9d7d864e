#include "platform/std/lock_note.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/std/process_mark.h"

namespace tabelion {
namespace {

// A file that says nothing of its maker for so long was left by one that was killed between making
// it and writing its name.
constexpr std::int64_t kNamelessSeconds = 60;

}  // namespace

LockNote readNote(int fd) {
  char text[512];
  const ssize_t got = ::pread(fd, text, sizeof text, 0);
  std::string_view rest(text, got > 0 ? static_cast<std::size_t>(got) : 0);
  const auto line = [&] {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    const std::string_view first = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return first;
  };
  LockNote note;
  note.holder = line();
  if (const std::size_t comma = note.holder.rfind(", "); comma != std::string::npos) {
    note.holder =
        fmt::format("{} ({})", note.holder.substr(0, comma), note.holder.substr(comma + 2));
  }
  const std::string_view second = line();
  const std::size_t blank = std::min(second.find(' '), second.size());
  note.mark = second.substr(0, blank);
  note.by_existing = second.substr(blank) == " file";
  return note;
}

bool writeNote(int fd, const std::string& holder, std::string_view kind) {
  const std::string text = fmt::format("{}, process {} on {}\n{} {}\n", holder, ::getpid(),
                                       hostName(), processMark(), kind);
  if (::ftruncate(fd, 0) != 0) return false;
  errno = ENOSPC;  // for a write that comes short
  return ::pwrite(fd, text.data(), text.size(), 0) == static_cast<ssize_t>(text.size());
}

bool isAbandoned(int fd, std::int64_t now) {
  const LockNote note = readNote(fd);
  if (!note.empty()) return hasEnded(note.mark);
  struct stat status {};
  return ::fstat(fd, &status) == 0 && now - status.st_mtim.tv_sec > kNamelessSeconds;
}

}  // namespace tabelion
