#include "interchange/words/field_choice.h"

#include <algorithm>
#include <functional>
#include <utility>

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
  std::string name;
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

FieldNames::FieldNames(const Database& database, const TextEncoding& encoding) {
  for (NamedField& field : namedFields(database.schema, encoding)) {
    const FieldDefinition& definition =
        database.schema.fields[static_cast<std::size_t>(field.slot)];
    std::string own = encoding.toUtf8(fieldName(definition));
    lengths_.push_back(own.size());
    lengths_.push_back(field.name.size());
    fields_.push_back({field.slot, std::move(own), std::move(field.name)});
  }
  std::sort(lengths_.begin(), lengths_.end(), std::greater<>());
  lengths_.erase(std::unique(lengths_.begin(), lengths_.end()), lengths_.end());
}

// The one field with exactly this name, else all that have it in any case.
std::vector<const FieldNames::Field*> FieldNames::called(std::string_view name) const {
  std::vector<const Field*> same;
  for (const Field& field : fields_) {
    if (field.name == name) return {&field};
    const auto is = [&](const std::string& known) {
      return known.size() == name.size() && compareAnyCase(known, name) == 0;
    };
    if (is(field.name) || is(field.own)) same.push_back(&field);
  }
  return same;
}

std::optional<int> FieldNames::find(std::string_view name) const {
  const auto same = called(name);
  return same.size() == 1 ? std::optional(same.front()->slot) : std::nullopt;
}

Result<int> FieldNames::choose(std::string_view name) const {
  const auto same = called(name);
  if (same.size() == 1) return same.front()->slot;
  std::vector<std::string> names;
  if (!same.empty()) {
    for (const Field* field : same) names.push_back(field->name);
    return makeError(ErrorKind::kInvalid,
                     fmt::format("\"{}\" may be the field {}", name, alternatives(names)));
  }
  for (const Field& field : fields_) names.push_back(field.name);
  const auto near = nearNames(name, names);
  std::string text = fmt::format("no field is called \"{}\"", name);
  if (!near.empty()) text += "; there is " + alternatives(near);
  return makeError(ErrorKind::kInvalid, text);
}

Result<int> chooseField(const Database& database, const TextEncoding& encoding,
                        std::string_view name) {
  return FieldNames(database, encoding).choose(name);
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
