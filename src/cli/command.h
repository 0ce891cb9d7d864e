// The table of commands. A command declares its options and hands back what runs it.
#pragma once

#include <functional>
#include <span>

#include "cli/exit_code.h"
#include "cli/option_list.h"

namespace tabelion {

class CliContext;

using CommandBody = std::function<ExitCode(CliContext&)>;

struct Command {
  const char* name;
  const char* summary;  // one line, for --help and the reference
  CommandBody (*declare)(OptionList list);
};

// In the order of --help.
std::span<const Command> commands();

// The whole program as its options and commands ask for things, for what is made from that: the
// manual page and the shells' completions.
CommandForm programForm();

CommandBody declareInfo(OptionList list);
CommandBody declareDump(OptionList list);
CommandBody declareCheck(OptionList list);
CommandBody declareSchema(OptionList list);
CommandBody declareCreate(OptionList list);
CommandBody declareImport(OptionList list);
CommandBody declareExport(OptionList list);
CommandBody declareRecalc(OptionList list);
CommandBody declareList(OptionList list);
CommandBody declareFilter(OptionList list);
CommandBody declareFind(OptionList list);
CommandBody declareRewrite(OptionList list);
CommandBody declareCompletions(OptionList list);
CommandBody declareManual(OptionList list);
CommandBody declareReport(OptionList list);
CommandBody declareSort(OptionList list);
CommandBody declareSet(OptionList list);
CommandBody declareAdd(OptionList list);
CommandBody declareDelete(OptionList list);
CommandBody declareView(OptionList list);
CommandBody declareEncrypt(OptionList list);
CommandBody declareDecrypt(OptionList list);
CommandBody declarePasswd(OptionList list);
CommandBody declareRights(OptionList list);

}  // namespace tabelion
