// Preloaded into a saving program: counts its system calls and spoils the one that a test chose.
//
//   FAULT_MODE   kill       the process dies at the call; a transfer has done half its bytes
//                fail       the call fails with FAULT_ERRNO and does nothing
//                rest       so do all calls after it
//                short      a transfer moves half its bytes; only transfers count
//                interrupt  the call fails with EINTR; only calls that can wait count
//   FAULT_AT     number of the call, from 1; 0: none
//   NO_FLOCK     set: the disk knows no locks
//   FAULT_LOG    file that gets the name of every counted call, a line each; the spoiled one is
//                marked with "!"
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <sys/uio.h>
#include <sys/xattr.h>
#include <unistd.h>

enum kind { kTransfer, kWaits, kOther };
enum verdict { kGoOn, kFail, kHalf };

static int in_mode(const char* name) {
  const char* mode = getenv("FAULT_MODE");
  return mode && strcmp(mode, name) == 0;
}

static int number(const char* name) {
  const char* text = getenv(name);
  return text ? atoi(text) : 0;
}

// The log is written with bare system calls, which do not come back here.
static void note(const char* name, int spoiled) {
  const char* path = getenv("FAULT_LOG");
  if (!path) return;
  char line[64] = {0};
  strncat(line, name, 40);
  strcat(line, spoiled ? " !\n" : "\n");
  long fd = syscall(SYS_openat, AT_FDCWD, path, O_WRONLY | O_CREAT | O_APPEND, 0600);
  if (fd >= 0) {
    syscall(SYS_write, fd, line, strlen(line));
    syscall(SYS_close, fd);
  }
}

static enum verdict judge(const char* name, enum kind kind) {
  static int count;
  if (in_mode("short") && kind != kTransfer) return kGoOn;
  if (in_mode("interrupt") && kind == kOther) return kGoOn;
  const int at = number("FAULT_AT");
  ++count;
  const int spoiled = at > 0 && (count == at || (count > at && in_mode("rest")));
  note(name, spoiled);
  if (!spoiled) return kGoOn;
  if (in_mode("kill") && kind != kTransfer) kill(getpid(), SIGKILL);
  if (in_mode("kill") || in_mode("short")) return kHalf;
  errno = in_mode("interrupt") ? EINTR : number("FAULT_ERRNO");
  return kFail;
}

static void die_if_killed(void) {
  if (in_mode("kill")) kill(getpid(), SIGKILL);
}

#define REAL(name) ((__typeof__(&name))dlsym(RTLD_NEXT, #name))

// A call that is made, or fails with -1.
#define SPOILED(type, name, kind, parameters, arguments) \
  type name parameters {                                 \
    if (judge(#name, kind) == kFail) return -1;          \
    return REAL(name) arguments;                         \
  }

// A transfer of `size` bytes, at most half of which are moved when it is cut short.
#define SPOILED_TRANSFER(name, parameters, arguments)     \
  ssize_t name parameters {                               \
    const enum verdict verdict = judge(#name, kTransfer); \
    if (verdict == kFail) return -1;                      \
    if (verdict == kHalf && size > 1) size /= 2;          \
    const ssize_t result = REAL(name) arguments;          \
    if (verdict == kHalf) die_if_killed();                \
    return result;                                        \
  }

SPOILED_TRANSFER(read, (int fd, void* data, size_t size), (fd, data, size))
SPOILED_TRANSFER(write, (int fd, const void* data, size_t size), (fd, data, size))
SPOILED_TRANSFER(pread, (int fd, void* data, size_t size, off_t at), (fd, data, size, at))
SPOILED_TRANSFER(pwrite, (int fd, const void* data, size_t size, off_t at), (fd, data, size, at))

ssize_t writev(int fd, const struct iovec* pieces, int count) {
  const enum verdict verdict = judge("writev", kTransfer);
  if (verdict == kFail) return -1;
  if (verdict == kGoOn) return REAL(writev)(fd, pieces, count);
  // Half the pieces, and half of the last of them, so that the cut falls inside one.
  const int whole = count / 2;
  ssize_t done = whole > 0 ? REAL(writev)(fd, pieces, whole) : 0;
  const size_t part = (pieces[whole].iov_len + 1) / 2;
  if (done >= 0) done += syscall(SYS_write, fd, pieces[whole].iov_base, part);
  die_if_killed();
  return done;
}

// Both names that a compiler may give it.
#define SPOILED_OPEN(name)                                          \
  int name(const char* path, int flags, ...) {                      \
    va_list rest;                                                   \
    va_start(rest, flags);                                          \
    const mode_t mode = flags & O_CREAT ? va_arg(rest, mode_t) : 0; \
    va_end(rest);                                                   \
    if (judge("open", kWaits) == kFail) return -1;                  \
    return REAL(name)(path, flags, mode);                           \
  }
SPOILED_OPEN(open)
SPOILED_OPEN(open64)

// A close that reports an error has closed all the same.
int close(int fd) {
  const enum verdict verdict = judge("close", kOther);
  const int result = REAL(close)(fd);
  if (verdict == kFail) errno = number("FAULT_ERRNO");
  return verdict == kFail ? -1 : result;
}

SPOILED(int, fsync, kWaits, (int fd), (fd))
SPOILED(int, fdatasync, kWaits, (int fd), (fd))
SPOILED(int, ftruncate, kOther, (int fd, off_t size), (fd, size))

// A disk without locks is no fault of one call: it is so from beginning to end.
int flock(int fd, int operation) {
  if (getenv("NO_FLOCK")) {
    errno = ENOLCK;
    return -1;
  }
  return judge("flock", kOther) == kFail ? -1 : REAL(flock)(fd, operation);
}

SPOILED(int, dup, kOther, (int fd), (fd))
SPOILED(int, stat, kOther, (const char* path, struct stat* to), (path, to))
SPOILED(int, lstat, kOther, (const char* path, struct stat* to), (path, to))
SPOILED(int, fstat, kOther, (int fd, struct stat* to), (fd, to))
SPOILED(int, fchmod, kOther, (int fd, mode_t mode), (fd, mode))
SPOILED(int, fchown, kOther, (int fd, uid_t user, gid_t group), (fd, user, group))
SPOILED(int, rename, kOther, (const char* from, const char* to), (from, to))
SPOILED(int, unlink, kOther, (const char* path), (path))
SPOILED(ssize_t, readlink, kOther, (const char* path, char* to, size_t size), (path, to, size))
SPOILED(ssize_t, flistxattr, kOther, (int fd, char* to, size_t size), (fd, to, size))
SPOILED(ssize_t, fgetxattr, kOther, (int fd, const char* name, void* to, size_t size),
        (fd, name, to, size))
SPOILED(int, fsetxattr, kOther,
        (int fd, const char* name, const void* from, size_t size, int flags),
        (fd, name, from, size, flags))
SPOILED(int, fremovexattr, kOther, (int fd, const char* name), (fd, name))

char* realpath(const char* path, char* to) {
  if (judge("realpath", kOther) == kFail) return NULL;
  return REAL(realpath)(path, to);
}
