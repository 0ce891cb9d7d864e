// Calculated fields as JSON and back.

#include <fmt/format.h>

#include "interchange/schema_json_parts.h"
#include "query/formula.h"
#include "query/formula_text.h"

namespace tabelion {
namespace {

constexpr NamedValue kResults[] = {{0, "4 decimals"}, {1, "whole number"}, {2, "duration"},
                                   {3, "date"},       {4, "3 decimals"},   {5, "2 decimals"},
                                   {6, "1 decimal"}};

Json tokensJson(const StoredFormula& formula, const TextEncoding& encoding) {
  Json json = Json::object();
  if (formula.result_kind != 0) json["result_kind"] = formula.result_kind;
  Json tokens = Json::array();
  for (const StoredFormula::Token& token : formula.tokens) {
    tokens.push_back(Json{{"class", token.type}, {"value", static_cast<std::int8_t>(token.value)}});
  }
  json["tokens"] = std::move(tokens);
  Json constants = Json::array();
  for (const std::string& constant : formula.constants) {
    constants.push_back(textJson(constant, encoding));
  }
  putUnlessEmpty(json, "constants", std::move(constants));
  return json;
}

void readTokens(const JsonNode& node, const TextEncoding& encoding, FieldDefinition& field,
                StoredFormula formula) {
  JsonObject json(node);
  formula.result_kind =
      static_cast<std::uint8_t>(json["result_kind"].integer(0, 255, formula.result_kind));
  for (const JsonNode& entry : json["tokens"].list(kMaxFormulaTokens)) {
    JsonObject token_json(entry);
    StoredFormula::Token token;
    token.type = static_cast<std::uint8_t>(token_json["class"].integer(0, 255, 0));
    token.value = static_cast<std::uint8_t>(token_json["value"].integer(-128, 255, 0));
    token_json.finish();
    formula.tokens.push_back(token);
  }
  for (const JsonNode& entry : json["constants"].list(kFormulaConstantsSize)) {
    std::string constant;
    readText(entry, encoding, constant);
    formula.constants.push_back(std::move(constant));
  }
  if (!setStoredFormula(field, formula)) {
    json["constants"].refuse("must be texts that are not empty, together at most 30 bytes");
  }
  json.finish();
}

// The text of a formula that reads back as exactly this one; none when there is no such text.
std::optional<Json> formulaTextJson(const StoredFormula& formula, const DatabaseRecord& schema,
                                    int slot, const TextEncoding& encoding) {
  if (!formulaCircle(schema, slot).empty()) return std::nullopt;
  const auto text = formulaText(formula, schema);
  if (!text.ok() || normalFormula(formula) != formula) return std::nullopt;
  Json json = textJson(*text, encoding);
  if (!json.is_string()) return std::nullopt;
  return json;
}

}  // namespace

Json formulaJson(const DatabaseRecord& schema, int slot, const TextEncoding& encoding) {
  const StoredFormula formula = storedFormula(schema.fields[static_cast<std::size_t>(slot)]);
  FieldDefinition copy;
  if (!setStoredFormula(copy, formula)) return {};
  const auto text = formulaTextJson(formula, schema, slot, encoding);
  return text ? *text : tokensJson(formula, encoding);
}

Json resultJson(const DatabaseRecord& schema, int slot, const TextEncoding& encoding) {
  const Json formula = formulaJson(schema, slot, encoding);
  const int kind = storedFormula(schema.fields[static_cast<std::size_t>(slot)]).result_kind;
  return formula.is_string() && kind != 0 ? wordJson(kind, kResults) : Json();
}

void readFormula(const JsonNode& node, const JsonNode& result, const DatabaseRecord& schema,
                 const TextEncoding& encoding, FieldDefinition& field) {
  const auto kind = static_cast<std::uint8_t>(readWord(result, kResults, 255, 0));
  if (node.isObject()) return readTokens(node, encoding, field, {{}, {}, kind});
  std::string text;
  if (node.present() && !readText(node, encoding, text)) return;
  const auto formula = parseFormula(text, schema, kind);
  if (!formula.ok()) return node.refuse(encoding.toUtf8(formula.error().text));
  setStoredFormula(field, *formula);
}

void refuseCircle(const JsonNode& formula, const DatabaseRecord& schema, int slot,
                  const TextEncoding& encoding) {
  if (!formula.isText()) return;
  const std::vector<int> circle = formulaCircle(schema, slot);
  if (circle.empty()) return;
  std::string names;
  for (const int member : circle) {
    if (!names.empty()) names += " uses ";
    names += fmt::format(
        "\"{}\"", encoding.toUtf8(fieldName(schema.fields[static_cast<std::size_t>(member)])));
  }
  formula.refuse("runs in a circle: " + names);
}

}  // namespace tabelion
