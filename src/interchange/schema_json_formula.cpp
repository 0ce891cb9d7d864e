// Calculated fields as JSON and back.

#include <algorithm>
#include <array>

#include <fmt/format.h>

#include "interchange/schema_json_parts.h"
#include "query/formula.h"
#include "query/formula_text.h"

namespace tabelion {
namespace {

// By result kind.
constexpr std::array<std::string_view, 7> kResults = {
    "4 decimals", "whole number", "duration", "date", "3 decimals", "2 decimals", "1 decimal"};

Json resultJson(std::uint8_t kind) {
  if (kind < kResults.size()) return std::string(kResults[kind]);
  return static_cast<int>(kind);
}

void readResult(const JsonNode& node, std::uint8_t& kind) {
  if (!node.isText()) return readNumber(node, 0, 255, kind);
  const std::string word = node.text("");
  const auto* found = std::find(kResults.begin(), kResults.end(), word);
  if (found != kResults.end()) {
    kind = static_cast<std::uint8_t>(found - kResults.begin());
    return;
  }
  node.refuse(fmt::format("\"{}\" is not one of \"{}\"", word, fmt::join(kResults, "\", \"")));
}

Json tokensJson(const StoredFormula& formula, const TextEncoding& encoding) {
  Json json = Json::object();
  putUnless(json, "result_kind", static_cast<int>(formula.result_kind), 0);
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
  readNumber(json["result_kind"], 0, 255, formula.result_kind);
  for (const JsonNode& entry : json["tokens"].list(kMaxFormulaTokens)) {
    JsonObject token_json(entry);
    StoredFormula::Token token;
    readNumber(token_json["class"], 0, 255, token.type);
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

void putFormula(Json& field_json, const DatabaseRecord& schema, int slot,
                const TextEncoding& encoding) {
  const StoredFormula formula = storedFormula(schema.fields[static_cast<std::size_t>(slot)]);
  const auto text = formulaTextJson(formula, schema, slot, encoding);
  if (!text) {
    field_json["formula"] = tokensJson(formula, encoding);
    return;
  }
  putUnless(field_json, "formula", *text, Json(""));
  putUnless(field_json, "result", resultJson(formula.result_kind), resultJson(0));
}

void readFormula(JsonObject& field_json, const DatabaseRecord& schema, const TextEncoding& encoding,
                 FieldDefinition& field) {
  const JsonNode node = field_json["formula"];
  std::uint8_t kind = 0;
  readResult(field_json["result"], kind);
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
