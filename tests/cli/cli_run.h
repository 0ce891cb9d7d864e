// The program in process for tests: a command line in; exit code, output and messages out.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/run.h"
#include "support/fake_clock.h"
#include "support/fixed_locale.h"
#include "support/memory_files.h"
#include "support/memory_settings.h"

namespace tabelion {

class StringSink : public TextSink {
 public:
  bool write(std::string_view bytes) override {
    text += bytes;
    return true;
  }
  std::string text;
};

class CliRun : public ::testing::Test {
 protected:
  // `out` and `err` are those of the last run.
  int run(const std::vector<std::string>& arguments) {
    out = {};
    err = {};
    Streams streams{out, err,
                    [this]() -> Result<FileImage> {
                      files.put("/stdin", input);
                      return files.read("/stdin");
                    },
                    nullptr, confirm};
    streams.terminal = terminal;
    CliPlatform platform{files, clock, locale, settings, [] { return 4u; }, ask_secret, sleep};
    return static_cast<int>(runCli(arguments, platform, streams));
  }
  // Makes a database from a description and CSV.
  void createFrom(const std::string& path, const std::string& description, const std::string& csv) {
    files.put("/description.json", description);
    files.put("/data.csv", csv);
    ASSERT_EQ(run({"create", path, "--schema", "/description.json", "--data", "/data.csv"}), 0)
        << err.text;
  }
  std::string exported(const std::string& path) {
    EXPECT_EQ(run({"export", path, "--format", "csv"}), 0) << err.text;
    return out.text;
  }

  MemoryFiles files;
  FakeClock clock;
  FixedLocale locale;
  MemorySettings settings;
  std::string input;
  std::function<void(std::chrono::milliseconds)> sleep;
  std::function<bool(std::string_view)> confirm;  // the terminal's answer, if there is one
  SecretPrompt ask_secret;                        // likewise
  TerminalForm terminal;
  StringSink out;
  StringSink err;
};

}  // namespace tabelion
