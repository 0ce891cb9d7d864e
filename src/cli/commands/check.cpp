// check: every deviation from a sound file, one a line with its offset.

#include <algorithm>
#include <set>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "cli/command.h"
#include "cli/kit/context.h"
#include "cli/kit/json_output.h"
#include "engine/check.h"
#include "engine/schema_places.h"
#include "query/formula.h"

namespace tabelion {
namespace {

TextEncoding encodingOf(const DatabaseRecord& schema, CliContext& context) {
  auto own = TextEncoding::open(databaseCodePage(schema));
  if (own.ok()) return std::move(own).value();
  auto users = context.userEncoding();
  return users.ok() ? std::move(users).value() : TextEncoding::utf8();
}

// The offset of the field definitions in the database record.
std::size_t definitionsOffset() {
  const auto parts = databaseRecordParts();
  const auto fields = std::find_if(parts.begin(), parts.end(),
                                   [](const DatabaseRecordPart& part) { return part.item == 11; });
  return fields->offset;
}

// Formulas that have no value of their own, at their fields' definitions.
std::vector<Deviation> checkFormulas(ByteView file, const FileHeader& header, CliContext& context) {
  std::vector<Deviation> deviations;
  const std::vector<FileEntry> entries = fileEntries(file, header);
  const auto schema = std::make_unique<DatabaseRecord>();
  if (entries.empty() || !readDatabaseRecord(entries[0].bytes, *schema)) return deviations;
  const TextEncoding encoding = encodingOf(*schema, context);
  const std::size_t begin = entries[0].offset + definitionsOffset();
  const auto nameOf = [&](int slot) {
    return encoding.toUtf8(fieldName(schema->fields[static_cast<std::size_t>(slot)]));
  };
  const auto report = [&](int slot, const std::string& text) {
    deviations.push_back({begin + static_cast<std::size_t>(slot) * kFieldDefinitionSize, text});
  };
  std::set<int> in_circle;
  for (int slot = 0; slot < kFieldSlots; ++slot) {
    if (schema->fields[static_cast<std::size_t>(slot)].type != FieldType::kCalculated) continue;
    if (isCorrupt(decodeFormula(*schema, slot, FormatSettings{}))) {
      report(slot, fmt::format("the formula of \"{}\" is corrupt", nameOf(slot)));
    }
    // Every field of a circle runs into it; it is named once.
    const std::vector<int> circle = formulaCircle(*schema, slot);
    if (circle.empty() || !in_circle.insert(circle.front()).second) continue;
    in_circle.insert(circle.begin(), circle.end());
    std::vector<std::string> names;
    names.reserve(circle.size());
    for (const int member : circle) names.push_back(nameOf(member));
    report(circle.front(),
           fmt::format("formulas run in a circle: \"{}\"", fmt::join(names, "\" uses \"")));
  }
  return deviations;
}

struct CheckOptions {
  std::string file;
  bool json = false;
};

void putDeviations(const std::vector<Deviation>& deviations, bool json, OutputBuffer& out) {
  if (!json) {
    for (const Deviation& deviation : deviations) {
      out.put(fmt::format("{}: {}\n", deviation.offset, deviation.text));
    }
    return;
  }
  auto figures = versionedJson();
  figures["deviations"] = nlohmann::ordered_json::array();
  for (const Deviation& deviation : deviations) {
    figures["deviations"].push_back({{"offset", deviation.offset}, {"text", deviation.text}});
  }
  putJson(out, figures);
}

ExitCode runCheck(const CheckOptions& options, CliContext& context) {
  const std::string& file = options.file;
  const auto image = context.files.read(file);
  if (!image.ok()) return context.fail(image.error());
  const FileHeader header = parseHeader(image->span());
  if (image->size < kHeaderSize || header.creator != kCreator) {
    return context.fail({ErrorKind::kNotDatabase, file + ": not a Tabelion database"});
  }
  std::vector<Deviation> deviations = checkFile(image->span());
  const auto in_formulas = checkFormulas(image->span(), header, context);
  deviations.insert(deviations.end(), in_formulas.begin(), in_formulas.end());
  putDeviations(deviations, options.json, context.out);
  const ExitCode written = context.finishOutput();
  if (written != ExitCode::kDone || deviations.empty()) return written;
  context.say(fmt::format("{}: {} deviation{}", file, deviations.size(),
                          deviations.size() == 1 ? "" : "s"));
  return ExitCode::kDamaged;
}

}  // namespace

CommandBody declareCheck(OptionList list) {
  const auto options = std::make_shared<CheckOptions>();
  list.required("FILE", options->file, "The file");
  list.flag("--json", options->json, "As JSON");
  return [options](CliContext& context) { return runCheck(*options, context); };
}

}  // namespace tabelion
