#include "cli/kit/option_list.h"

#include <fmt/format.h>
#include <CLI/CLI.hpp>

namespace tabelion {
namespace {

// A value as the help text shows it: "--sort FIELDS", and nothing of the parser's own types.
void showValueName(CLI::Option& option, const OptionForm& form) {
  option.type_name(form.isArgument() ? "" : form.value_name);
}

}  // namespace

OptionForm& OptionList::write(const char* name, const char* help) {
  OptionForm form;
  const std::string_view text = name;
  const std::size_t space = text.find(' ');
  form.name = text.substr(0, space);
  form.help = help;
  if (form.isArgument()) {
    form.value_name = form.name;
  } else if (space != std::string_view::npos) {
    form.value_name = text.substr(space + 1);
  }
  form_.options.push_back(form);
  return form_.options.back();
}

void OptionList::required(const char* name, std::string& value, const char* help) {
  OptionForm& form = write(name, help);
  form.is_required = true;
  showValueName(*app_.add_option(form.name, value, help)->required(), form);
}

void OptionList::optional(const char* name, std::string& value, const char* help) {
  OptionForm& form = write(name, help);
  showValueName(*app_.add_option(form.name, value, help), form);
}

void OptionList::optional(const char* name, std::optional<std::string>& value, const char* help) {
  OptionForm& form = write(name, help);
  showValueName(*app_.add_option(form.name, value, help), form);
}

void OptionList::flag(const char* name, bool& value, const char* help) {
  app_.add_flag(write(name, help).name, value, help);
}

void OptionList::number(const char* name, std::optional<std::uint32_t>& value, std::uint32_t least,
                        std::uint32_t most, const char* help) {
  OptionForm& form = write(name, help);
  CLI::Option* option = app_.add_option(form.name, value, help);
  option->check(CLI::Range(least, most));
  showValueName(*option, form);
}

void OptionList::several(const char* name, std::vector<std::string>& values, const char* help) {
  OptionForm& form = write(name, help);
  form.is_repeatable = true;
  CLI::Option* option = app_.add_option(form.name, values, help);
  // One value each time: what follows it is the next argument.
  if (!form.isArgument()) option->expected(1)->take_all();
  showValueName(*option, form);
}

void OptionList::atLeastOne(const char* name, std::vector<std::string>& values, const char* help) {
  several(name, values, help);
  form_.options.back().is_required = true;
  app_.get_option(form_.options.back().name)->required();
}

void OptionList::restrict(CLI::Option& option, OptionForm& form,
                          const std::vector<std::string>& words) {
  form.words = words;
  showValueName(option, form);
  option.check(CLI::IsMember(words));
}

void OptionList::oneOf(const char* name, std::string& value, const std::vector<std::string>& words,
                       const char* help) {
  OptionForm& form = write(name, help);
  form.is_required = true;
  restrict(*app_.add_option(form.name, value, help)->required(), form, words);
}

void OptionList::optionalOneOf(const char* name, std::string& value,
                               const std::vector<std::string>& words, const char* help) {
  OptionForm& form = write(name, help);
  restrict(*app_.add_option(form.name, value, help), form, words);
}

void OptionList::exclusive(const std::vector<const char*>& names) {
  for (std::size_t i = 0; i < names.size(); ++i) {
    for (std::size_t j = i + 1; j < names.size(); ++j) {
      app_.get_option(names[i])->excludes(app_.get_option(names[j]));
    }
  }
}

OptionList OptionList::action(const char* name, const char* summary, std::string& chosen) {
  CLI::App* sub = app_.add_subcommand(name, summary);
  sub->parse_complete_callback([&chosen, name] { chosen = name; });
  app_.require_subcommand(1);
  form_.actions.push_back({name, summary, {}, {}});
  return {*sub, form_.actions.back()};
}

}  // namespace tabelion
