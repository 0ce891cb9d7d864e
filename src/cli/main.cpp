#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <memory>
#include <new>
#include <random>
#include <string_view>
#include <thread>

#include "cli/kit/interruption.h"
#include "cli/run.h"
#include "interchange/terminal_text.h"
#include "platform/std/core_dumps.h"
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
  tabelion::forbidCoreDumps();
  tabelion::StdFiles files({.views_files = true});
  tabelion::StdClock clock;
  tabelion::StdLocale locale;
  tabelion::DescriptorSink out(STDOUT_FILENO);
  tabelion::DescriptorSink err(STDERR_FILENO);
  tabelion::TerminalSink shown_out(out);
  tabelion::TerminalSink shown_err(err);
  const auto sink = [](int descriptor, tabelion::TextSink& plain,
                       tabelion::TextSink& shown) -> tabelion::TextSink& {
    return isatty(descriptor) == 1 ? shown : plain;
  };
  tabelion::Streams streams{sink(STDOUT_FILENO, out, shown_out),
                            sink(STDERR_FILENO, err, shown_err),
                            [] { return tabelion::readDescriptor(STDIN_FILENO); }};
  tabelion::JsonSettingsOptions settings_options;
  settings_options.warn = [&streams](const std::string& text) {
    streams.err.write("tabelion-cli: " + text + "\n");
  };
  tabelion::JsonSettings settings(settings_options);
  std::minstd_rand generator(std::random_device{}());
  tabelion::CliPlatform platform{files,
                                 clock,
                                 locale,
                                 settings,
                                 [&generator] { return static_cast<std::uint32_t>(generator()); },
                                 tabelion::askOnTerminal,
                                 [](auto time) { std::this_thread::sleep_for(time); }};
  streams.reader_is_gone = [&out] { return out.isClosed(); };
  streams.terminal = tabelion::terminalFormOf(STDOUT_FILENO);
  streams.read_pipe = tabelion::readPipeAt;
  streams.hold_interruptions = [] { return std::make_shared<tabelion::InterruptionHold>(); };
  if (isatty(STDERR_FILENO) == 1) streams.progress = &err;
  if (isatty(STDIN_FILENO) == 1 && streams.progress) {
    streams.confirm = [&streams](std::string_view question) {
      return tabelion::confirmOnTerminal(STDIN_FILENO, streams.err, question);
    };
  }
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  try {
    return static_cast<int>(tabelion::runCli(arguments, platform, streams));
  } catch (const std::bad_alloc&) {
    // What was being written beside a file is cleared away by now, and the file is as it was.
    streams.err.write("tabelion-cli: there is not enough memory for this\n");
    return static_cast<int>(tabelion::ExitCode::kNoMemory);
  }
}
