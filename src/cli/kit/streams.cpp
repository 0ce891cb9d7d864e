#include "cli/kit/streams.h"

#include <fcntl.h>
#include <langinfo.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <clocale>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "cli/kit/interruption.h"
#include "query/text_case.h"

namespace tabelion {

bool DescriptorSink::write(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor_, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR && !isInterrupted()) continue;
    if (count < 0 && errno == EPIPE) is_closed_ = true;
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

TerminalForm terminalFormOf(int descriptor) {
  constexpr int kFewestColumns = 20;
  constexpr int kMostColumns = 400;
  TerminalForm form;
  winsize size{};
  if (::ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) {
    form.columns = size.ws_col;
  } else if (const char* columns = std::getenv("COLUMNS")) {
    const std::string_view text = columns;
    std::from_chars(text.data(), text.data() + text.size(), form.columns);
  }
  form.columns = std::clamp(form.columns, kFewestColumns, kMostColumns);
  // Asked of a locale of its own: the program's stays as it is.
  if (const locale_t users = ::newlocale(LC_CTYPE_MASK, "", nullptr)) {
    form.shows_blocks = std::string_view(::nl_langinfo_l(CODESET, users)) == "UTF-8";
    ::freelocale(users);
  } else {
    form.shows_blocks = false;
  }
  return form;
}

bool confirmOnTerminal(int in, TextSink& out, std::string_view question) {
  if (!out.write(std::string(question) + " [y/N] ")) return false;
  std::string answer;
  for (char c = 0; c != '\n';) {
    const ssize_t count = ::read(in, &c, 1);
    if (count < 0 && errno == EINTR && !isInterrupted()) continue;
    if (count <= 0) return false;  // an answer that was not finished is none
    answer += lowerCase(c);
  }
  return answer == "y\n" || answer == "yes\n";
}

Result<FileImage> readDescriptor(int descriptor) {
  constexpr std::size_t kStep = std::size_t{256} * 1024;
  std::vector<std::uint8_t> bytes;
  for (;;) {
    const std::size_t size = bytes.size();
    bytes.resize(size + std::max(kStep, size / 2));
    const ssize_t count = ::read(descriptor, bytes.data() + size, bytes.size() - size);
    const bool interrupted = count < 0 && errno == EINTR && !isInterrupted();
    bytes.resize(size + (count > 0 ? static_cast<std::size_t>(count) : 0));
    if (count == 0) break;
    if (bytes.size() > kLargestInput) {
      return makeError(
          ErrorKind::kCannotOpen,
          "standard input goes on beyond 1 GiB, which is more than is taken from there");
    }
    if (count < 0 && !interrupted) {
      return makeError(ErrorKind::kCannotOpen, "standard input cannot be read");
    }
  }
  auto owner = std::make_shared<std::vector<std::uint8_t>>(std::move(bytes));
  FileImage image;
  image.size = owner->size();
  const std::uint8_t* data = owner->data();
  image.bytes = std::shared_ptr<const std::uint8_t[]>(std::move(owner), data);
  return image;
}

std::optional<Result<FileImage>> readPipeAt(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return std::nullopt;
  if (!S_ISFIFO(status.st_mode)) return std::nullopt;
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
  if (descriptor < 0) return std::nullopt;
  auto image = readDescriptor(descriptor);
  ::close(descriptor);
  if (!image.ok()) return makeError(image.error().kind, path + ": cannot be read to its end");
  return image;
}

}  // namespace tabelion
