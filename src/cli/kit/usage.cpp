#include "cli/kit/usage.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include <fmt/format.h>

#include "engine/ascii.h"
#include "query/near_names.h"

namespace tabelion {
namespace {

std::string hint(const std::string& path) {
  return fmt::format("; \"tabelion-cli help{}{}\" tells more", path.empty() ? "" : " ", path);
}

std::string nearOrHint(std::string_view word, const std::vector<std::string>& known,
                       const std::string& path) {
  const auto near = nearestNames(word, known);
  return near.empty() ? hint(path) : "; there is " + alternatives(near);
}

std::vector<std::string> namesOf(const std::list<CommandForm>& commands) {
  std::vector<std::string> names;
  for (const CommandForm& command : commands) names.push_back(command.name);
  return names;
}

// Neither "-", which is a file, nor a negative number.
bool isOption(std::string_view word) {
  return word.size() > 1 && word[0] == '-' && !isDigit(word[1]);
}

// Walks the arguments as the parser does, up to the first that cannot be understood.
class Walk {
 public:
  explicit Walk(const CommandForm& program) : program_(program), form_(&program) {}

  std::optional<std::string> faultIn(const std::vector<std::string>& arguments) {
    bool options_end = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      const std::string& word = arguments[i];
      std::optional<std::string> fault;
      if (!options_end && word == "--") {
        options_end = true;
      } else if (!options_end && isOption(word)) {
        const bool has_next = i + 1 < arguments.size();
        fault = takeOption(word, has_next ? &arguments[i + 1] : nullptr, i);
      } else {
        fault = takeWord(word);
      }
      if (fault) return about(*fault);
    }
    if (auto missing = whatIsMissing()) return about(*missing);
    return std::nullopt;
  }

 private:
  std::string about(const std::string& fault) const {
    return path_.empty() ? fault : path_ + ": " + fault;
  }

  const OptionForm* optionNamed(std::string_view name) const {
    for (const CommandForm* form : {form_, &program_}) {
      for (const OptionForm& option : form->options) {
        if (option.name == name) return &option;
      }
    }
    return nullptr;
  }

  std::optional<std::string> takeOption(const std::string& word, const std::string* next,
                                        std::size_t& at) {
    const std::size_t equals = word.find('=');
    const std::string name = word.substr(0, equals);
    const OptionForm* option = optionNamed(name);
    if (option == nullptr) return unknownOption(name);
    given_.push_back(name);
    if (option->isFlag()) return std::nullopt;
    if (equals == std::string::npos) {
      if (next == nullptr) return fmt::format("{} needs {} behind it", name, option->value_name);
      ++at;
    }
    return wordFault(*option, equals == std::string::npos ? *next : word.substr(equals + 1));
  }

  std::string unknownOption(const std::string& name) const {
    std::vector<std::string> known;
    for (const CommandForm* form : {form_, &program_}) {
      for (const OptionForm& option : form->options) {
        if (!option.isArgument()) known.push_back(option.name);
      }
    }
    // A text or a negative number, not a misspelled option.
    if (!name.starts_with("--")) {
      return fmt::format(
          "there is no option \"{0}\"; put \"--\" in front of a \"{0}\" that is none", name);
    }
    return fmt::format("there is no option \"{}\"{}", name, nearOrHint(name, known, path_));
  }

  static std::optional<std::string> wordFault(const OptionForm& option, const std::string& value) {
    if (option.words.empty()) return std::nullopt;
    if (std::find(option.words.begin(), option.words.end(), value) != option.words.end()) {
      return std::nullopt;
    }
    return fmt::format("{} takes {}, not \"{}\"", option.name, alternatives(option.words), value);
  }

  // The argument that stands at the place of the next word.
  const OptionForm* nextArgument() const {
    std::size_t place = 0;
    for (const OptionForm& option : form_->options) {
      if (!option.isArgument()) continue;
      if (place++ == arguments_ || option.is_repeatable) return &option;
    }
    return nullptr;
  }

  std::optional<std::string> takeWord(const std::string& word) {
    if (const OptionForm* argument = nextArgument()) {
      ++arguments_;
      return wordFault(*argument, word);
    }
    if (form_->actions.empty())
      return fmt::format("\"{}\" is one word too many{}", word, hint(path_));
    for (const CommandForm& action : form_->actions) {
      if (action.name != word) continue;
      if (auto missing = whatIsMissing(false)) return missing;
      path_ += path_.empty() ? word : ' ' + word;
      form_ = &action;
      arguments_ = 0;
      given_.clear();
      return std::nullopt;
    }
    if (form_ == &program_ && word.find_first_of("./") != std::string::npos) {
      return fmt::format(
          "\"{0}\" is no command; one stands in front of the file, as in \"tabelion-cli list {0}\"",
          word);
    }
    return fmt::format("there is no command \"{}\"{}", word,
                       nearOrHint(word, namesOf(form_->actions), path_));
  }

  std::optional<std::string> whatIsMissing(bool with_action = true) const {
    std::size_t place = 0;
    for (const OptionForm& option : form_->options) {
      const bool is_given = option.isArgument() ? place++ < arguments_
                                                : std::find(given_.begin(), given_.end(),
                                                            option.name) != given_.end();
      if (!option.is_required || is_given) continue;
      return fmt::format("{} is missing{}", option.name, hint(path_));
    }
    if (!with_action || form_->actions.empty()) return std::nullopt;
    if (form_ == &program_) return "a command is missing" + hint(path_);
    return fmt::format("{} is missing", alternatives(namesOf(form_->actions)));
  }

  const CommandForm& program_;
  const CommandForm* form_;
  std::string path_;
  std::size_t arguments_ = 0;
  std::vector<std::string> given_;  // options of this command
};

}  // namespace

std::string usageFault(const CommandForm& program, const std::vector<std::string>& arguments,
                       const std::string& parser_says) {
  if (auto fault = Walk(program).faultIn(arguments)) return *fault;
  // "--csv excludes --json"
  std::string fault = parser_says;
  constexpr std::string_view kExcludes = " excludes ";
  const std::size_t at = fault.find(kExcludes);
  if (at != std::string::npos) fault.replace(at, kExcludes.size(), " does not go with ");
  return fault;
}

}  // namespace tabelion
