#include "engine/schema_places.h"

#include <algorithm>

namespace tabelion {
namespace {

constexpr std::size_t kDisplayFieldOffset = 0;  // in area E, as the lookup's link field
constexpr std::size_t kLinkKindOffset = 2;      // in area E
constexpr std::size_t kLinkDatabaseSize = 32;   // in area F
constexpr std::size_t kLookupNameSize = 20;     // in area I
constexpr std::size_t kParameterSize = 20;      // in area I
constexpr std::size_t kTokenClassOffset = 1;    // in area F
constexpr std::size_t kTokenValueOffset = 20;   // in area F
static_assert(kTokenClassOffset + kMaxFormulaTokens <= kResultKindOffset);
static_assert(kTokenValueOffset + kMaxFormulaTokens <= 40);

int slotFromByte(std::uint8_t byte) {
  return byte < kFieldSlots ? byte : -1;
}
std::uint8_t byteFromSlot(int slot) {
  return slot >= 0 && slot < kFieldSlots ? static_cast<std::uint8_t>(slot) : kNoField;
}

template <std::size_t Count, std::size_t Size>
std::span<std::uint8_t> front(std::array<std::uint8_t, Size>& area) {
  return std::span(area).template first<Count>();
}
template <std::size_t Count, std::size_t Size>
ByteView front(const std::array<std::uint8_t, Size>& area) {
  return std::span(area).template first<Count>();
}

}  // namespace

std::string fieldName(const FieldDefinition& field) {
  return areaText(field.name);
}
bool setFieldName(FieldDefinition& field, std::string_view name) {
  return setAreaText(field.name, name);
}

int fieldDecimals(const FieldDefinition& field) {
  return field.byte_g;
}
void setFieldDecimals(FieldDefinition& field, int decimals) {
  field.byte_g = static_cast<std::uint8_t>(decimals);
}

int fieldDefaultOption(const FieldDefinition& field) {
  return field.byte_h;
}
void setFieldDefaultOption(FieldDefinition& field, int option) {
  field.byte_h = static_cast<std::uint8_t>(option);
}

LinkSettings linkSettings(const FieldDefinition& field) {
  return {areaText(front<kLinkDatabaseSize>(field.area_f)),
          slotFromByte(field.area_e[kDisplayFieldOffset]), field.area_e[kLinkKindOffset]};
}

bool setLinkSettings(FieldDefinition& field, const LinkSettings& link) {
  if (!setAreaText(front<kLinkDatabaseSize>(field.area_f), link.database)) return false;
  field.area_e[kDisplayFieldOffset] = byteFromSlot(link.display_field);
  field.area_e[kLinkKindOffset] = link.kind;
  return true;
}

LookupSettings lookupSettings(const FieldDefinition& field) {
  return {slotFromByte(field.area_e[kDisplayFieldOffset]),
          areaText(front<kLookupNameSize>(field.area_i))};
}

bool setLookupSettings(FieldDefinition& field, const LookupSettings& lookup) {
  if (!setAreaText(front<kLookupNameSize>(field.area_i), lookup.shown_field)) return false;
  field.area_e[kDisplayFieldOffset] = byteFromSlot(lookup.link_field);
  return true;
}

PluginSettings pluginSettings(const FieldDefinition& field) {
  return {areaText(field.area_f), areaText(front<kParameterSize>(field.area_i))};
}

bool setPluginSettings(FieldDefinition& field, const PluginSettings& plugin) {
  if (plugin.name.size() >= field.area_f.size()) return false;
  if (!setAreaText(front<kParameterSize>(field.area_i), plugin.parameter)) return false;
  return setAreaText(field.area_f, plugin.name);
}

StoredFormula storedFormula(const FieldDefinition& field) {
  StoredFormula formula;
  formula.result_kind = field.area_f[kResultKindOffset];
  const std::size_t count = std::min<std::size_t>(field.area_f[0], kMaxFormulaTokens);
  for (std::size_t i = 0; i < count; ++i) {
    formula.tokens.push_back(
        {field.area_f[kTokenClassOffset + i], field.area_f[kTokenValueOffset + i]});
  }
  ByteView rest = field.area_i;
  while (!rest.empty() && rest[0] != 0) {
    formula.constants.push_back(areaText(rest));
    rest = rest.subspan(std::min(rest.size(), formula.constants.back().size() + 1));
  }
  return formula;
}

bool setStoredFormula(FieldDefinition& field, const StoredFormula& formula) {
  if (formula.tokens.size() > kMaxFormulaTokens) return false;
  std::array<std::uint8_t, kFormulaConstantsSize> constants{};
  std::size_t used = 0;
  for (const std::string& constant : formula.constants) {
    // An empty text would end the list for its reader.
    if (constant.empty() || constant.find('\0') != std::string::npos) return false;
    if (constants.size() - used < constant.size() + 1) return false;
    std::copy(constant.begin(), constant.end(), constants.begin() + used);
    used += constant.size() + 1;
  }
  field.area_f[0] = static_cast<std::uint8_t>(formula.tokens.size());
  std::fill_n(field.area_f.begin() + kTokenClassOffset, kMaxFormulaTokens, std::uint8_t{0});
  std::fill_n(field.area_f.begin() + kTokenValueOffset, kMaxFormulaTokens, std::uint8_t{0});
  for (std::size_t i = 0; i < formula.tokens.size(); ++i) {
    field.area_f[kTokenClassOffset + i] = formula.tokens[i].type;
    field.area_f[kTokenValueOffset + i] = formula.tokens[i].value;
  }
  field.area_f[kResultKindOffset] = formula.result_kind;
  field.area_i = constants;
  return true;
}

ResultMeaning resultMeaning(const FieldDefinition& field) {
  switch (field.area_f[kResultKindOffset]) {
    case 0:
    case 4:
    case 5:
    case 6:
      return ResultMeaning::kNumber;
    case 1:
      return ResultMeaning::kWholeNumber;
    case 2:
      return ResultMeaning::kDuration;
    case 3:
      return ResultMeaning::kDate;
    default:
      return ResultMeaning::kUnknown;
  }
}

FieldType effectiveType(const FieldDefinition& field) {
  if (field.type != FieldType::kCalculated) return field.type;
  switch (resultMeaning(field)) {
    case ResultMeaning::kNumber:
      return FieldType::kFloat;
    case ResultMeaning::kWholeNumber:
      return FieldType::kInteger;
    case ResultMeaning::kDuration:
      return FieldType::kTime;
    case ResultMeaning::kDate:
      return FieldType::kDate;
    case ResultMeaning::kUnknown:
      break;
  }
  return FieldType::kCalculated;
}

std::size_t fieldValueSize(const FieldDefinition& field) {
  const FieldTypeTraits& traits = traitsOf(field.type);
  return traits.area + (traits.area_adds_width ? static_cast<std::size_t>(field.width) : 0);
}

}  // namespace tabelion
