// The reference is true: its tables are the program's, its examples print what they say.

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <sstream>

#include "cli/command.h"
#include "cli/run.h"
#include "support/fake_clock.h"
#include "support/fixed_locale.h"
#include "support/memory_files.h"
#include "support/memory_settings.h"

namespace tabelion {
namespace {

std::string referenceText() {
  std::ifstream file(TABELION_SOURCE_DIR "/docs/cli.md", std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

class Transcript : public TextSink {
 public:
  bool write(std::string_view bytes) override {
    text += bytes;
    return true;
  }
  std::string text;
};

// The "…" of an example stands for anything.
bool printsAs(const std::string& printed, const std::string& example) {
  const std::string ellipsis = "…";
  std::size_t at = 0;
  std::size_t begin = 0;
  for (bool first = true;; first = false) {
    const std::size_t end = example.find(ellipsis, begin);
    const std::string piece = example.substr(begin, end - begin);
    const std::size_t found = printed.find(piece, at);
    if (found == std::string::npos || (first && found != 0)) return false;
    at = found + piece.size();
    if (end == std::string::npos) {
      return at == printed.size() ||
             printed.compare(printed.size() - piece.size(), piece.size(), piece) == 0;
    }
    begin = end + ellipsis.size();
  }
}

// The words of a command, as a shell takes them: parted by blanks, what stands in quotes is one.
std::vector<std::string> wordsOf(const std::string& command) {
  std::vector<std::string> words;
  bool inside = false;
  char quote = 0;
  for (const char c : command) {
    if (quote == 0 && c == ' ') {
      inside = false;
      continue;
    }
    if (!inside) words.emplace_back();
    inside = true;
    if (quote == 0 && (c == '\'' || c == '"')) {
      quote = c;
    } else if (c == quote) {
      quote = 0;
    } else {
      words.back() += c;
    }
  }
  return words;
}

// Runs the commands of a console block and compares what each prints; how many there were.
int runExamples(const std::string& block, MemoryFiles& files) {
  FakeClock clock;
  FixedLocale locale;
  MemorySettings settings;
  std::istringstream lines(block);
  std::string line;
  std::getline(lines, line);
  int examples = 0;
  while (lines) {
    const std::string command = line;
    std::vector<std::string> arguments = wordsOf(command);
    EXPECT_TRUE(command.starts_with("$ tabelion-cli ")) << command;
    arguments.erase(arguments.begin(), arguments.begin() + 2);
    std::string example;
    while (std::getline(lines, line) && !line.starts_with("$ ")) example += line + "\n";
    Transcript transcript;
    Streams streams{transcript, transcript, {}};
    CliPlatform platform{files, clock, locale, settings, [] { return 3u; }};
    runCli(arguments, platform, streams);
    EXPECT_TRUE(printsAs(transcript.text, example)) << command << "\nprints\n"
                                                    << transcript.text << "\nnot\n"
                                                    << example;
    ++examples;
  }
  return examples;
}

TEST(Reference, ListsTheCommandsAndExitCodesOfTheProgram) {
  std::string commands_table;
  for (const Command& command : commands()) {
    commands_table += std::string("| `") + command.name + "` | " + command.summary + " |\n";
  }
  std::string codes_table;
  for (const ExitCodeText& entry : kExitCodes) {
    codes_table +=
        "| " + std::to_string(static_cast<int>(entry.code)) + " | " + entry.meaning + " |\n";
  }
  const std::string text = referenceText();
  EXPECT_NE(text.find("|---|---|\n" + commands_table + "\n"), std::string::npos) << commands_table;
  EXPECT_NE(text.find("|---|---|\n" + codes_table + "\n"), std::string::npos) << codes_table;
  for (const Command& command : commands()) {
    EXPECT_NE(text.find(std::string("## ") + command.name + "\n\n`tabelion-cli " + command.name),
              std::string::npos)
        << command.name;
  }
}

// The options that a command and the actions in it take.
void collectOptions(const CommandForm& form, std::vector<std::string>& into) {
  for (const OptionForm& option : form.options) {
    // An argument that is one of a few words stands there as these.
    into.push_back(option.isArgument() && !option.words.empty() ? option.words.back()
                                                                : option.name);
    EXPECT_NE(option.help, "") << option.name;
  }
  for (const CommandForm& action : form.actions) collectOptions(action, into);
}

TEST(Reference, NamesEveryOptionInTheUsageOfItsCommand) {
  const std::string text = referenceText();
  for (const CommandForm& command : programForm().actions) {
    const std::size_t begin = text.find("\n## " + command.name + "\n\n");
    ASSERT_NE(begin, std::string::npos) << command.name;
    const std::string usage =
        text.substr(begin, text.find("\n\n", begin + command.name.size() + 8) - begin);
    std::vector<std::string> options;
    collectOptions(command, options);
    for (const std::string& option : options) {
      EXPECT_NE(usage.find(option), std::string::npos) << command.name << ' ' << option;
    }
  }
}

TEST(Reference, ExamplesPrintWhatTheySay) {
  MemoryFiles files;
  std::istringstream document(referenceText());
  // Files that the story uses, and console blocks, in the order of the document.
  const std::string file_mark = "<!-- file: ";
  std::string file_name;
  int examples = 0;
  for (std::string line; std::getline(document, line);) {
    if (line.starts_with(file_mark)) {
      file_name = line.substr(file_mark.size(), line.find(" -->") - file_mark.size());
    }
    if (!line.starts_with("```")) continue;
    const bool is_console = line == "```console";
    std::string block;
    while (std::getline(document, line) && line != "```") block += line + "\n";
    if (is_console) examples += runExamples(block, files);
    if (!file_name.empty()) files.put(file_name, block);
    file_name.clear();
  }
  EXPECT_GE(examples, 10);
}

}  // namespace
}  // namespace tabelion
