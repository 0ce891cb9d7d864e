#include "platform/std/process_mark.h"

#include <fmt/format.h>
#include <signal.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cstdint>
#include <fstream>
#include <optional>

namespace tabelion {
namespace {

struct Mark {
  std::uint32_t place = 0;
  std::uint32_t boot = 0;  // 16 bits; 0: cannot be told
  std::uint32_t process = 0;
  std::uint64_t start = 0;  // in the kernel's ticks since the machine was started; 0: likewise
};

std::uint32_t hashOf(std::string_view text) {
  std::uint32_t hash = 2166136261u;
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
  return hash;
}

std::string firstLine(const char* path) {
  std::ifstream file(path);
  std::string line;
  std::getline(file, line);
  return line;
}

// Process numbers mean something within their namespace only.
std::string processNamespace() {
  char text[64];
  const ssize_t length = ::readlink("/proc/self/ns/pid", text, sizeof text);
  return length > 0 ? std::string(text, static_cast<std::size_t>(length)) : std::string();
}

// When a process was started; 0 when that cannot be told, none when it is only waiting for its
// parent to take note of its end.
std::optional<std::uint64_t> startOf(std::uint32_t process) {
  const std::string line = firstLine(fmt::format("/proc/{}/stat", process).c_str());
  // "PID (NAME) STATE …", where the name may hold anything; the start is the 20th word behind it.
  std::size_t at = line.rfind(')');
  if (at == std::string::npos || at + 2 >= line.size()) return 0;
  at += 2;
  if (line[at] == 'Z' || line[at] == 'X') return std::nullopt;
  for (int word = 0; word < 19 && at != std::string::npos; ++word) {
    at = line.find(' ', at);
    if (at != std::string::npos) ++at;
  }
  std::uint64_t start = 0;
  if (at != std::string::npos) {
    std::from_chars(line.data() + at, line.data() + line.size(), start);
  }
  return start;
}

Mark ownMark() {
  Mark mark;
  const std::string machine = firstLine("/etc/machine-id");
  const std::string boot = firstLine("/proc/sys/kernel/random/boot_id");
  // Two machines that cannot be told apart by their ids may still have one name: then another boot
  // counts as another machine.
  const std::string id = machine.empty() ? boot : machine;
  mark.place = hashOf(hostName() + '\n' + id + '\n' + processNamespace());
  if (!boot.empty()) mark.boot = hashOf(boot) % 0xFFFF + 1;
  mark.process = static_cast<std::uint32_t>(::getpid());
  mark.start = startOf(mark.process).value_or(0);
  return mark;
}

template <class Number>
bool readHex(std::string_view& text, Number& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, 16);
  if (error != std::errc()) return false;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  if (text.starts_with('-')) text.remove_prefix(1);
  return true;
}

std::optional<Mark> parseMark(std::string_view text) {
  Mark mark;
  const bool read = readHex(text, mark.place) && readHex(text, mark.boot) &&
                    readHex(text, mark.process) && readHex(text, mark.start) && text.empty();
  return read && mark.process <= INT_MAX ? std::optional(mark) : std::nullopt;
}

}  // namespace

std::string hostName() {
  char name[HOST_NAME_MAX + 1] = {};
  return ::gethostname(name, sizeof name - 1) == 0 ? name : "this machine";
}

std::string processMark() {
  const Mark mark = ownMark();
  return fmt::format("{:08x}-{:04x}-{:x}-{:x}", mark.place, mark.boot, mark.process, mark.start);
}

bool hasEnded(std::string_view text) {
  const std::optional<Mark> mark = parseMark(text);
  const Mark own = ownMark();
  if (!mark || mark->place != own.place) return false;
  if (mark->boot == 0 || own.boot == 0) return false;
  if (mark->boot != own.boot) return true;
  if (::kill(static_cast<pid_t>(mark->process), 0) != 0 && errno == ESRCH) return true;
  const std::optional<std::uint64_t> start = startOf(mark->process);
  if (!start) return true;
  // Another user's processes may be hidden here: then its number alone says that it lives.
  return *start != 0 && mark->start != 0 && *start != mark->start;
}

}  // namespace tabelion
