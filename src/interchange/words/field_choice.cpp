#include "interchange/words/field_choice.h"

#include <algorithm>

#include <fmt/format.h>

#include "engine/schema_places.h"
#include "interchange/words/criterion_values.h"
#include "query/report.h"
#include "query/sort_fields.h"
#include "query/text_case.h"
#include "query/typed_tokens.h"

namespace tabelion {
namespace {

struct NamedField {
  int slot;
  std::string name;  // unique unless another field is called just like this one with its number
};

std::vector<NamedField> namedFields(const DatabaseRecord& schema, const TextEncoding& encoding) {
  std::vector<NamedField> fields;
  for (int slot = 0; slot < kFieldSlots; ++slot) {
    const FieldDefinition& field = schema.fields[static_cast<std::size_t>(slot)];
    if (isValidType(field.type)) fields.push_back({slot, encoding.toUtf8(fieldName(field))});
  }
  std::vector<bool> shared;
  shared.reserve(fields.size());
  for (const NamedField& field : fields) {
    shared.push_back(std::count_if(fields.begin(), fields.end(), [&](const NamedField& other) {
                       return other.name == field.name;
                     }) > 1);
  }
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (shared[i]) fields[i].name += fmt::format(" #{}", fields[i].slot);
  }
  return fields;
}

Error unknownField(std::string_view name, const std::vector<NamedField>& fields) {
  std::vector<std::string> known;
  known.reserve(fields.size());
  for (const NamedField& field : fields) known.push_back(field.name);
  const auto near = nearNames(name, known);
  std::string text = fmt::format("no field is called \"{}\"", name);
  if (!near.empty()) text += "; there is " + alternatives(near);
  return makeError(ErrorKind::kInvalid, text);
}

bool hasUse(const Database& database, int slot, FieldUse use) {
  const FieldDefinition& field = database.schema.fields[static_cast<std::size_t>(slot)];
  switch (use) {
    case FieldUse::kAnything:
      return true;
    case FieldUse::kFilter:
      return criterionKind(field) != CriterionKind::kNothing;
    case FieldUse::kSort:
      return isSortable(database, slot);
    case FieldUse::kReport:
      break;
    case FieldUse::kFind:
      return traitsOf(field.type).finds;
  }
  return false;
}

}  // namespace

std::vector<int> fieldsFor(const Database& database, FieldUse use) {
  if (use == FieldUse::kReport) return reportFields(database.schema);
  std::vector<int> slots;
  for (int slot = 0; slot < kFieldSlots; ++slot) {
    if (!isValidType(database.schema.fields[static_cast<std::size_t>(slot)].type)) continue;
    if (hasUse(database, slot, use)) slots.push_back(slot);
  }
  return slots;
}

std::string fieldLabel(const Database& database, const TextEncoding& encoding, int slot) {
  for (NamedField& field : namedFields(database.schema, encoding)) {
    if (field.slot == slot) return std::move(field.name);
  }
  return {};
}

Result<int> chooseField(const Database& database, const TextEncoding& encoding,
                        std::string_view name) {
  const std::vector<NamedField> fields = namedFields(database.schema, encoding);
  for (const NamedField& field : fields) {
    if (field.name == name) return field.slot;
  }
  std::vector<const NamedField*> same;
  std::vector<std::string> same_names;
  for (const NamedField& field : fields) {
    const std::string own =
        encoding.toUtf8(fieldName(database.schema.fields[static_cast<std::size_t>(field.slot)]));
    if (compareAnyCase(field.name, name) != 0 && compareAnyCase(own, name) != 0) continue;
    same.push_back(&field);
    same_names.push_back(field.name);
  }
  if (same.size() == 1) return same.front()->slot;
  if (same.empty()) return unknownField(name, fields);
  return makeError(ErrorKind::kInvalid,
                   fmt::format("\"{}\" may be the field {}", name, alternatives(same_names)));
}

Result<std::vector<int>> chooseFields(const Database& database, const TextEncoding& encoding,
                                      std::string_view names) {
  if (names.find(',') != std::string_view::npos) {
    if (const auto whole = chooseField(database, encoding, names); whole.ok()) {
      return std::vector<int>{*whole};
    }
  }
  std::vector<int> slots;
  for (;;) {
    const std::size_t comma = names.find(',');
    const auto slot = chooseField(database, encoding, withoutBlanks(names.substr(0, comma)));
    if (!slot.ok()) return slot.error();
    slots.push_back(*slot);
    if (comma == std::string_view::npos) return slots;
    names.remove_prefix(comma + 1);
  }
}

}  // namespace tabelion
