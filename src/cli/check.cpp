// check: every deviation from a sound file, one a line with its offset.

#include <fmt/format.h>

#include "cli/command.h"
#include "cli/context.h"
#include "engine/check.h"

namespace tabelion {
namespace {

ExitCode runCheck(const std::string& file, CliContext& context) {
  const auto image = context.files.read(file);
  if (!image.ok()) return context.fail(image.error());
  const FileHeader header = parseHeader(image->span());
  if (image->size < kHeaderSize || header.creator != kCreator) {
    return context.fail({ErrorKind::kNotDatabase, file + ": not a Tabelion database"});
  }
  const std::vector<Deviation> deviations = checkFile(image->span());
  for (const Deviation& deviation : deviations) {
    context.out.put(fmt::format("{}: {}\n", deviation.offset, deviation.text));
  }
  const ExitCode written = context.finishOutput();
  if (written != ExitCode::kDone || deviations.empty()) return written;
  context.say(fmt::format("{}: {} deviation{}", file, deviations.size(),
                          deviations.size() == 1 ? "" : "s"));
  return ExitCode::kDamaged;
}

}  // namespace

CommandBody declareCheck(OptionList list) {
  const auto file = std::make_shared<std::string>();
  list.required("FILE", *file, "The file");
  return [file](CliContext& context) { return runCheck(*file, context); };
}

}  // namespace tabelion
