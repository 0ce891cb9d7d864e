#include "app/options.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <filesystem>
#include <iostream>
#include <map>
#include <sstream>
#include <system_error>

#include "interchange/terminal_text.h"

namespace tabelion {

namespace {

constexpr int kSmallestSide = 120;
constexpr int kLargestSide = 4000;
constexpr double kSmallestAskedZoom = 0.5;
constexpr double kLargestAskedZoom = 10;

// "240x320"; empty when it is fine, else what is wrong.
std::string parseScreen(const std::string& text, Size& screen) {
  const char* const end = text.data() + text.size();
  Size size;
  const auto width = std::from_chars(text.data(), end, size.width);
  if (width.ec != std::errc() || width.ptr == end || (*width.ptr != 'x' && *width.ptr != 'X')) {
    return "is not a size like 240x320";
  }
  const auto height = std::from_chars(width.ptr + 1, end, size.height);
  if (height.ec != std::errc() || height.ptr != end) return "is not a size like 240x320";
  for (const int side : {size.width, size.height}) {
    if (side < kSmallestSide || side > kLargestSide) {
      return "is not between 120x120 and 4000x4000";
    }
  }
  screen = size;
  return {};
}

// Seen from the folder that we were started in; the copy that opens it may be in another. What the
// folders' links lead to, as the system names the folder of the caller; the file may be a link.
std::string absolutePath(const std::filesystem::path& path) {
  if (path.empty()) return {};
  std::error_code error;
  const auto absolute = std::filesystem::absolute(path, error);
  const auto folder = std::filesystem::canonical(absolute.parent_path(), error);
  return error ? absolute.string() : (folder / absolute.filename()).string();
}

class StandardError : public TextSink {
 public:
  bool write(std::string_view bytes) override {
    std::cerr << bytes;
    return std::cerr.good();
  }
};

std::string joined(const std::vector<std::string>& words) {
  std::string line;
  for (const std::string& word : words) line += (line.empty() ? "" : " ") + word;
  return line;
}

}  // namespace

void sayToTerminal(const std::string& lines) {
  StandardError error;
  TerminalSink(error).write(lines);
}

std::string hintAboutFile(const std::vector<std::string>& words) {
  if (words.empty() || words.front() == "AppRunToHandleNotification") return {};
  std::error_code error;
  const bool exists = std::filesystem::exists(words.front(), error);
  const bool named = words.front().find_first_of("./") != std::string::npos;
  if (!exists && !named) return {};
  return (exists ? std::string() : "there is no file " + words.front() + ". ") +
         "A database is opened with --open " + words.front() + ".";
}

ParsedOptions parseOptions(int argc, const char* const* argv) {
  ParsedOptions parsed;
  ProgramOptions& options = parsed.options;
  CLI::App app(
      "A personal relational database that is worked with a few keys.\n"
      "F1 and F2 are the soft keys, the arrows the navigation pad, Enter the action key,\n"
      "Backspace and Escape the Back key; everything else types. Ctrl + and Ctrl - zoom.",
      "tabelion");
  app.allow_extras();
  app.set_version_flag("--version", "tabelion " TABELION_VERSION);
  app.add_option_function<std::string>(
         "--screen",
         [&options](const std::string& text) {
           Size size;
           const std::string wrong = parseScreen(text, size);
           if (!wrong.empty()) throw CLI::ValidationError("--screen", text + " " + wrong);
           options.screen = size;
         },
         "Size of the phone's screen in its own pixels; as it was left when not given,\n"
         "240x320 at first")
      ->type_name("WIDTHxHEIGHT");
  app.add_option("--zoom", options.zoom, "How large the screen is shown; 1.5 is one and a half")
      ->type_name("N")
      ->check(CLI::Range(kSmallestAskedZoom, kLargestAskedZoom));
  app.add_option("--scheme", options.scheme,
                 "Colours of the window: light, dark, light-contrast or dark-contrast; those of\n"
                 "the desktop when not given")
      ->option_text("NAME")  // the library's own words would list the numbers as well
      ->transform(CLI::CheckedTransformer(
          std::map<std::string, Scheme>{{"light", Scheme::kLight},
                                        {"dark", Scheme::kDark},
                                        {"light-contrast", Scheme::kLightContrast},
                                        {"dark-contrast", Scheme::kDarkContrast}}));
  app.add_option("--documents", options.documents_folder,
                 "Documents folder, in which the databases lie in \"Tabelion\"")
      ->type_name("DIR");
  app.add_option("--card", options.card_folder, "The same of a storage card")->type_name("DIR");
  app.add_option("--code-page", options.code_page,
                 "Code page of databases that name none, for this run")
      ->type_name("NAME");
  app.add_option("--samples", options.samples_folder, "Folder of the sample databases")
      ->type_name("DIR");
  // A desktop that starts us without a file leaves the word out.
  app.add_option_function<std::string>(
         "--open", [&options](const std::string& path) { options.open_file = absolutePath(path); },
         "Open this database, in the copy of the program that runs already if there is one")
      ->type_name("FILE")
      ->expected(0, 1);
  app.add_option("--tour", options.tour_folder,
                 "Walk through the program on the samples, leave pictures in DIR, say what was\n"
                 "checked; needs no display and keeps away from the user's files")
      ->type_name("DIR")
      ->excludes("--open");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    const bool asked = error.get_exit_code() == 0;  // help or version
    std::ostringstream said;
    app.exit(error, std::cout, said);
    sayToTerminal(said.str());
    parsed.exit_code = asked ? 0 : kExitUsage;
    return parsed;
  }
  options.command_line = joined(app.remaining());
  const std::string hint = hintAboutFile(app.remaining());
  if (!hint.empty()) sayToTerminal("tabelion: " + hint + "\n");
  return parsed;
}

}  // namespace tabelion
