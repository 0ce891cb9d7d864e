// Preloaded into a saving program: writes down what it does to files, a line each, in TRACE_FILE.
//
//   open FD PATH · write FD BYTES · dup FD NEW · close FD · sync FD · rename FROM TO · unlink PATH
//
// Paths have no blanks in the tests. Only what succeeded is written down.
#define _GNU_SOURCE
#include <dlfcn.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#define REAL(name) ((__typeof__(&name))dlsym(RTLD_NEXT, #name))

// With bare system calls, which do not come back here.
static void note(const char* format, ...) {
  const char* path = getenv("TRACE_FILE");
  if (!path) return;
  char line[1024];
  va_list values;
  va_start(values, format);
  vsnprintf(line, sizeof line, format, values);
  va_end(values);
  const long fd = syscall(SYS_openat, AT_FDCWD, path, O_WRONLY | O_CREAT | O_APPEND, 0600);
  if (fd < 0) return;
  syscall(SYS_write, fd, line, strlen(line));
  syscall(SYS_close, fd);
}

#define TRACED_OPEN(name)                                           \
  int name(const char* path, int flags, ...) {                      \
    va_list rest;                                                   \
    va_start(rest, flags);                                          \
    const mode_t mode = flags & O_CREAT ? va_arg(rest, mode_t) : 0; \
    va_end(rest);                                                   \
    const int fd = REAL(name)(path, flags, mode);                   \
    if (fd >= 0) note("open %d %s\n", fd, path);                    \
    return fd;                                                      \
  }
TRACED_OPEN(open)
TRACED_OPEN(open64)

ssize_t write(int fd, const void* bytes, size_t size) {
  const ssize_t done = REAL(write)(fd, bytes, size);
  if (done > 0) note("write %d %zd\n", fd, done);
  return done;
}

ssize_t writev(int fd, const struct iovec* pieces, int count) {
  const ssize_t done = REAL(writev)(fd, pieces, count);
  if (done > 0) note("write %d %zd\n", fd, done);
  return done;
}

int dup(int fd) {
  const int made = REAL(dup)(fd);
  if (made >= 0) note("dup %d %d\n", fd, made);
  return made;
}

int close(int fd) {
  const int result = REAL(close)(fd);
  note("close %d\n", fd);
  return result;
}

int fsync(int fd) {
  const int result = REAL(fsync)(fd);
  if (result == 0) note("sync %d\n", fd);
  return result;
}

int rename(const char* from, const char* to) {
  const int result = REAL(rename)(from, to);
  if (result == 0) note("rename %s %s\n", from, to);
  return result;
}

int unlink(const char* path) {
  const int result = REAL(unlink)(path);
  if (result == 0) note("unlink %s\n", path);
  return result;
}
