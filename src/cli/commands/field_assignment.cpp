#include "cli/commands/field_assignment.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include <fmt/format.h>

#include "interchange/cell_text.h"
#include "interchange/words/field_choice.h"
#include "query/field_text.h"
#include "query/field_value.h"

namespace tabelion {
namespace {

constexpr std::string_view kKeySuffix = ".key";

struct Target {
  int slot = 0;
  bool is_link_key = false;
  bool operator==(const Target&) const = default;
};

struct Assignment {
  Target target;
  std::string name;   // as given
  std::string value;  // UTF-8
};

const FieldDefinition& fieldAt(const Database& database, int slot) {
  return database.schema.fields[static_cast<std::size_t>(slot)];
}

Result<Target> chooseTarget(const Database& database, const TextEncoding& encoding,
                            std::string_view name) {
  const auto slot = chooseField(database, encoding, name);
  if (slot.ok()) return Target{*slot};
  if (name.ends_with(kKeySuffix)) {
    name.remove_suffix(kKeySuffix.size());
    const auto link = chooseField(database, encoding, name);
    if (link.ok() && fieldAt(database, *link).type == FieldType::kLinkField)
      return Target{*link, true};
  }
  return slot.error();
}

// A field may have "=" in its name: the first place where a name ends in front of one counts.
Result<Assignment> readAssignment(const Database& database, const TextEncoding& encoding,
                                  const std::string& text) {
  std::optional<Error> unknown;
  for (std::size_t at = text.find('='); at != std::string::npos; at = text.find('=', at + 1)) {
    auto target = chooseTarget(database, encoding, std::string_view(text).substr(0, at));
    if (target.ok()) return Assignment{*target, text.substr(0, at), text.substr(at + 1)};
    if (!unknown) unknown = target.error();
  }
  if (unknown) return *unknown;
  return makeError(ErrorKind::kInvalid, fmt::format("\"{}\" is not Field=VALUE", text));
}

// Why nobody but the program gives this field a value; null when people do.
const char* givenByProgram(FieldType type) {
  switch (traitsOf(type).source) {
    case ValueSource::kCounter:
      return "gets its number from the database";
    case ValueSource::kFormula:
      return "gets its value from a formula";
    case ValueSource::kOtherDatabase:
      return "shows a value of another database";
    case ValueSource::kNobody:
      return "is a separator and has no value";
    case ValueSource::kPerson:
      break;
  }
  return nullptr;
}

Error about(const Assignment& assignment, std::string_view reason) {
  return makeError(ErrorKind::kInvalid, fmt::format("{}: {}", assignment.name, reason));
}

// As the cell of an import: pop-ups by the names of their items, external fields in hexadecimal
// digits.
Result<Bytes> cellValue(const Database& database, const TextEncoding& encoding,
                        const Assignment& assignment) {
  const int slot = assignment.target.slot;
  const FieldDefinition& field = fieldAt(database, slot);
  const PopupNames names(database.fields[static_cast<std::size_t>(slot)], encoding);
  Bytes value;
  const TableColumn column{assignment.name, slot, field.type, false};
  const Status read = readCell({column, field, names, encoding}, assignment.value, value);
  if (!read.ok()) return about(assignment, read.error().text);
  fitValue(field, value);
  return value;
}

Result<Bytes> valueFor(const Database& database, const TextEncoding& encoding,
                       const Assignment& assignment, ByteView previous) {
  const auto slot = static_cast<std::size_t>(assignment.target.slot);
  const FieldDefinition& field = database.schema.fields[slot];
  if (assignment.target.is_link_key) {
    const auto key = parseAutoNumber(assignment.value, FieldType::kLinkedField);
    if (!key) {
      return about(assignment,
                   fmt::format("\"{}\" is not the number of a record", assignment.value));
    }
    return linkValue(*key, linkText(previous), previous);
  }
  // What a form has no text for.
  if (field.type == FieldType::kPopup || field.type == FieldType::kExternal) {
    return cellValue(database, encoding, assignment);
  }
  const Encoded text = encoding.fromUtf8(assignment.value);
  if (!text.ok()) return about(assignment, describeFault(*text.fault, encoding));
  auto value = valueOfText(field, database.fields[slot], text.bytes, isoSettings(encoding.isUtf8()),
                           previous, InputCare::kFile);
  if (!value.ok()) {
    return about(assignment, fmt::format("\"{}\" {}", assignment.value, value.error().text));
  }
  return value;
}

}  // namespace

Status assignFields(const Database& database, const TextEncoding& encoding,
                    const std::vector<std::string>& assignments, UnpackedRecord& record) {
  Bytes packed;
  if (!packRecord(record, packed)) return makeError(ErrorKind::kRefused, "is too long");
  std::vector<Target> done;
  for (const std::string& text : assignments) {
    const auto assignment = readAssignment(database, encoding, text);
    if (!assignment.ok()) return assignment.error();
    const Target target = assignment->target;
    if (std::find(done.begin(), done.end(), target) != done.end()) {
      return about(*assignment, "is given more than once");
    }
    done.push_back(target);
    const FieldDefinition& field = fieldAt(database, target.slot);
    if (const char* reason = givenByProgram(field.type)) return about(*assignment, reason);
    if (isMasked(field, packed)) return about(*assignment, "is enciphered in this record");
    auto& stored = record.slots[static_cast<std::size_t>(target.slot)];
    const Bytes previous = stored.value_or(Bytes());
    auto value = valueFor(database, encoding, *assignment, previous);
    if (!value.ok()) return value.error();
    stored = std::move(value).value();
  }
  return Done{};
}

}  // namespace tabelion
