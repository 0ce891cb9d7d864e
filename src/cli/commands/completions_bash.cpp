#include <fmt/format.h>

#include "cli/commands/completions.h"

namespace tabelion {
namespace {

// Walks the words before the cursor: `path` is the command and action that they name, `argument`
// how many arguments it has been given, `file` the first of them, `pending` the option whose value
// comes next.
constexpr const char* kWalk = R"bash(
# Names of the file, as the program gives them: of fields or views, in any case, quoted as needed.
# What stands before the last comma of a list is kept.
_tabelion_cli_names() {
  local what=$1 file=$2 cur=$3 end=$4 before='' name
  local quote=${cur:0:1}
  [[ $quote == [\"\'] ]] && cur=${cur:1} || quote=''
  cur=${cur//\\/}
  if [[ $5 == list && $cur == *,* ]]; then
    before="${cur%,*},"
    cur=${cur##*,}
  fi
  while IFS= read -r name; do
    [[ ${name,,} == "${cur,,}"* ]] || continue
    name="$before$name$end"
    [[ -n $quote ]] || printf -v name %q "$name"
    COMPREPLY+=("$name")
  done < <("${COMP_WORDS[0]/#\~/$HOME}" completions "$what" "$file" 2>/dev/null)
  [[ -n $end ]] && compopt -o nospace 2>/dev/null
}

_tabelion_cli() {
  local cur=${COMP_WORDS[COMP_CWORD]} path='' argument=0 pending='' file='' word i kind
  COMPREPLY=()
  [[ $cur == '=' ]] && cur=''
  for ((i = 1; i < COMP_CWORD; i++)); do
    word=${COMP_WORDS[i]}
    if [[ $word == '=' ]]; then
      continue
    elif [[ -n $pending ]]; then
      pending=''
    elif [[ $word == -?* ]]; then
      [[ -n $(_tabelion_cli_value "$path $word") ]] && pending=$word
    elif [[ " $(_tabelion_cli_commands "$path $argument") " == *" $word "* ]]; then
      path="${path:+$path }$word"
      argument=0
    else
      argument=$((argument + 1))
      [[ -n $file ]] || file=${word//[\\\"\']/}
    fi
  done
  if [[ -n $pending ]]; then
    kind=$(_tabelion_cli_value "$path $pending")
  elif [[ $cur == -* ]]; then
    kind=$(_tabelion_cli_options '')
    [[ -n $path ]] && kind="$kind $(_tabelion_cli_options "$path")"
  else
    kind="$(_tabelion_cli_value "$path $((argument + 1))")$(_tabelion_cli_commands "$path $argument")"
  fi
  case $kind in
    @file)
      compopt -o filenames 2>/dev/null
      mapfile -t COMPREPLY < <(compgen -f -- "$cur")
      ;;
    @field) _tabelion_cli_names fields "$file" "$cur" '' ;;
    @fields) _tabelion_cli_names fields "$file" "$cur" '' list ;;
    @assignment) _tabelion_cli_names fields "$file" "$cur" '=' ;;
    @view) _tabelion_cli_names views "$file" "$cur" '' ;;
    @text) ;;
    *) mapfile -t COMPREPLY < <(compgen -W "$kind" -- "$cur") ;;
  esac
}
complete -F _tabelion_cli tabelion-cli
)bash";

std::string valueKind(const OptionForm& option) {
  if (!option.words.empty()) return fmt::format("{}", fmt::join(option.words, " "));
  if (option.takesFile()) return "@file";
  if (option.takesField()) return "@field";
  if (option.takesFields()) return "@fields";
  if (option.takesAssignment()) return "@assignment";
  return option.takesView() ? "@view" : "@text";
}

// The lines of the three tables below, for one command.
struct Tables {
  std::string commands;
  std::string options;
  std::string values;

  void add(const std::string& path, const CommandForm& form) {
    int arguments = 0;
    std::string names;
    for (const OptionForm& option : form.options) {
      if (option.isArgument()) {
        addValue(path, std::to_string(++arguments), option);
        if (option.is_repeatable) addRepeated(path, arguments, option);
      } else {
        names += ' ' + option.name;
        if (!option.isFlag()) addValue(path, option.name, option);
      }
    }
    if (!names.empty()) options += fmt::format("    '{}') echo{} ;;\n", path, names);
    if (form.actions.empty()) return;
    commands += fmt::format("    '{} {}') echo", path, arguments);
    for (const CommandForm& action : form.actions) commands += ' ' + action.name;
    commands += " ;;\n";
  }

 private:
  void addValue(const std::string& path, const std::string& place, const OptionForm& option) {
    // The program's own options are taken behind every command as well.
    values += fmt::format("    {}'{} {}') echo '{}' ;;\n", path.empty() ? "*" : "", path, place,
                          valueKind(option));
  }
  void addRepeated(const std::string& path, int argument, const OptionForm& option) {
    values += fmt::format("    '{} '[{}-9]*) echo '{}' ;;\n", path, argument, valueKind(option));
  }
};

}  // namespace

std::string bashCompletions(const CommandForm& program) {
  Tables tables;
  forEachCommand(program,
                 [&](const std::string& path, const CommandForm& form) { tables.add(path, form); });
  return "# Completes command lines of tabelion-cli in bash.\n\n"
         "# The commands that may stand behind a command and so many arguments.\n"
         "_tabelion_cli_commands() {\n  case $1 in\n" +
         tables.commands +
         "  esac\n}\n\n"
         "# The options of a command.\n"
         "_tabelion_cli_options() {\n  case $1 in\n" +
         tables.options +
         "  esac\n}\n\n"
         "# What an option, or the argument of this number, takes; nothing for a flag.\n"
         "_tabelion_cli_value() {\n  case $1 in\n" +
         tables.values + "  esac\n}\n" + kWalk;
}

}  // namespace tabelion
