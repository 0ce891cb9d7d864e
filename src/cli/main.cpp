#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <random>

#include "cli/run.h"
#include "platform/std/json_settings.h"
#include "platform/std/std_clock.h"
#include "platform/std/std_files.h"
#include "platform/std/std_locale.h"

int main(int argc, char** argv) {
  // A closed pipe is an output that cannot be written, not a reason to die without a word.
  std::signal(SIGPIPE, SIG_IGN);
  tabelion::StdFiles files;
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
