// What is written in a lock file; file_lock.h has the form.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tabelion {

struct LockNote {
  std::string holder;        // "HOLDER (process PID on HOST)"
  std::string mark;          // of the process (process_mark.h)
  bool by_existing = false;  // the file itself is the lock
  bool empty() const { return holder.empty() && mark.empty(); }
};

// Of a file that is open for reading.
LockNote readNote(int fd);

// `kind` is "kernel" or "file". False with errno set when not all of it could be written.
bool writeNote(int fd, const std::string& holder, std::string_view kind);

// Whether a lock file is left of a program that has ended. `now` in seconds since 1970.
bool isAbandoned(int fd, std::int64_t now);

}  // namespace tabelion
