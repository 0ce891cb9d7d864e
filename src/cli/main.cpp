#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <random>
#include <string_view>

#include "cli/run.h"
#include "platform/std/json_settings.h"
#include "platform/std/std_clock.h"
#include "platform/std/std_files.h"
#include "platform/std/std_locale.h"

namespace {

// Files are looked at where they lie. One that another program cuts short meanwhile cannot be
// finished, and was not saved by then.
void endOnLostPage(int) {
  constexpr std::string_view kWhy =
      "tabelion-cli: a file was cut short by another program while it was read\n";
  (void)!write(STDERR_FILENO, kWhy.data(), kWhy.size());
  _exit(static_cast<int>(tabelion::ExitCode::kCannotOpen));
}

}  // namespace

int main(int argc, char** argv) {
  // A closed pipe is an output that cannot be written, not a reason to die without a word.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGBUS, endOnLostPage);
  tabelion::StdFiles files({.views_files = true});
  tabelion::StdClock clock;
  tabelion::StdLocale locale;
  tabelion::JsonSettings settings;
  std::minstd_rand generator(std::random_device{}());
  tabelion::CliPlatform platform{files,
                                 clock,
                                 locale,
                                 settings,
                                 [&generator] { return static_cast<std::uint32_t>(generator()); },
                                 tabelion::askOnTerminal};
  tabelion::DescriptorSink out(STDOUT_FILENO);
  tabelion::DescriptorSink err(STDERR_FILENO);
  tabelion::Streams streams{out, err, [] { return tabelion::readDescriptor(STDIN_FILENO); },
                            isatty(STDERR_FILENO) == 1};
  if (isatty(STDIN_FILENO) == 1 && streams.err_is_terminal) {
    streams.confirm = [](std::string_view question) {
      return tabelion::confirmOnTerminal(STDIN_FILENO, STDERR_FILENO, question);
    };
  }
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  return static_cast<int>(tabelion::runCli(arguments, platform, streams));
}
