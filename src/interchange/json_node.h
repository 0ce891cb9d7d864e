// Reads a JSON document of known shape and remembers the first thing that is wrong with it,
// together with its place ("fields[3].type"). Readers ask for what they need, get a default where
// something is missing or wrong, and the caller looks at the problem once, at the end.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

namespace tabelion {

using Json = nlohmann::ordered_json;

struct JsonProblem {
  std::string first;  // "PLACE: what is wrong"; empty while there is none

  void report(std::string_view place, std::string_view what);
};

class JsonNode {
 public:
  JsonNode(const Json* value, std::string place, JsonProblem& problem)
      : value_(value), place_(std::move(place)), problem_(&problem) {}

  bool present() const { return value_ != nullptr; }
  bool isText() const { return value_ != nullptr && value_->is_string(); }
  bool isNumber() const { return value_ != nullptr && value_->is_number_integer(); }
  bool isObject() const { return value_ != nullptr && value_->is_object(); }
  bool isNull() const { return value_ != nullptr && value_->is_null(); }
  const std::string& place() const { return place_; }
  JsonProblem& problem() const { return *problem_; }
  void refuse(std::string_view why) const { problem_->report(place_, why); }

  // A whole number in the range; `otherwise` when the member is missing or the value refused.
  std::int64_t integer(std::int64_t least, std::int64_t most, std::int64_t otherwise) const;
  // true, false or a number of 0 to `most`, for bytes that are a yes or no almost always.
  std::int64_t flag(std::int64_t most, std::int64_t otherwise) const;
  std::string text(std::string_view otherwise) const;
  // The elements of a list; none when missing. Longer lists are refused.
  std::vector<JsonNode> list(std::size_t most) const;
  // Hex digits into an area; fewer bytes leave the rest zero. False when refused or missing.
  bool hexInto(std::uint8_t* area, std::size_t size) const;

 private:
  friend class JsonObject;
  const Json* value_;
  std::string place_;
  JsonProblem* problem_;
};

// The members of an object. finish() refuses the members that nobody has asked for, so that a
// misspelt name does not pass in silence.
class JsonObject {
 public:
  explicit JsonObject(const JsonNode& node);

  JsonNode operator[](std::string_view name);
  // All members, in the order of the document; they count as asked for.
  std::vector<std::pair<std::string, JsonNode>> all();
  void finish() const;

 private:
  JsonNode node_;
  std::set<std::string, std::less<>> asked_;
};

// The flag as a reader of JSON likes it: true or false for 1 or 0, else the number.
Json flagJson(std::int64_t value);

}  // namespace tabelion
