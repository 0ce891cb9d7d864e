#include "interchange/json_node.h"

#include <cstring>

#include <fmt/format.h>

#include "interchange/hex.h"

namespace tabelion {

void JsonProblem::report(std::string_view place, std::string_view what) {
  if (first.empty()) first = place.empty() ? std::string(what) : fmt::format("{}: {}", place, what);
}

std::int64_t JsonNode::integer(std::int64_t least, std::int64_t most,
                               std::int64_t otherwise) const {
  if (!present()) return otherwise;
  // Numbers above the signed range are held unsigned.
  const bool too_large = value_->is_number_unsigned() &&
                         value_->get<std::uint64_t>() > static_cast<std::uint64_t>(INT64_MAX);
  if (!value_->is_number_integer() || too_large) {
    refuse(fmt::format("must be a whole number of {} to {}", least, most));
    return otherwise;
  }
  const auto number = value_->get<std::int64_t>();
  if (number < least || number > most) {
    refuse(fmt::format("{} is outside {} to {}", number, least, most));
    return otherwise;
  }
  return number;
}

std::int64_t JsonNode::flag(std::int64_t most, std::int64_t otherwise) const {
  if (present() && value_->is_boolean()) return value_->get<bool>() ? 1 : 0;
  if (present() && !value_->is_number()) {
    refuse("must be true or false");
    return otherwise;
  }
  return integer(0, most, otherwise);
}

std::string JsonNode::text(std::string_view otherwise) const {
  if (!present()) return std::string(otherwise);
  if (!value_->is_string()) {
    refuse("must be a text");
    return std::string(otherwise);
  }
  return value_->get<std::string>();
}

std::vector<JsonNode> JsonNode::list(std::size_t most) const {
  std::vector<JsonNode> nodes;
  if (!present()) return nodes;
  if (!value_->is_array()) {
    refuse("must be a list");
    return nodes;
  }
  if (value_->size() > most) {
    refuse(fmt::format("holds {} entries; {} is the limit", value_->size(), most));
    return nodes;
  }
  nodes.reserve(value_->size());
  for (const Json& element : *value_) {
    nodes.emplace_back(&element, fmt::format("{}[{}]", place_, nodes.size()), *problem_);
  }
  return nodes;
}

bool JsonNode::hexInto(std::uint8_t* area, std::size_t size) const {
  if (!present()) return false;
  const auto bytes = isText() ? fromHex(value_->get_ref<const std::string&>()) : std::nullopt;
  if (!bytes) {
    refuse("must be an even number of hexadecimal digits");
    return false;
  }
  if (bytes->size() > size) {
    refuse(fmt::format("holds {} bytes; {} is the limit", bytes->size(), size));
    return false;
  }
  std::memset(area, 0, size);
  if (!bytes->empty()) std::memcpy(area, bytes->data(), bytes->size());
  return true;
}

JsonObject::JsonObject(const JsonNode& node) : node_(node) {
  if (node.present() && !node.isObject()) node.refuse("must be an object");
}

JsonNode JsonObject::operator[](std::string_view name) {
  asked_.emplace(name);
  std::string place =
      node_.place_.empty() ? std::string(name) : node_.place_ + "." + std::string(name);
  const Json* member = nullptr;
  if (node_.isObject()) {
    const auto found = node_.value_->find(name);
    if (found != node_.value_->end()) member = &*found;
  }
  return {member, std::move(place), *node_.problem_};
}

std::vector<std::pair<std::string, JsonNode>> JsonObject::all() {
  std::vector<std::pair<std::string, JsonNode>> members;
  if (!node_.isObject()) return members;
  for (const auto& [name, value] : node_.value_->items()) members.emplace_back(name, (*this)[name]);
  return members;
}

void JsonObject::finish() const {
  if (!node_.isObject()) return;
  for (const auto& [name, value] : node_.value_->items()) {
    if (asked_.find(name) != asked_.end()) continue;
    const std::string place = node_.place_.empty() ? name : node_.place_ + "." + name;
    node_.problem_->report(place, "no such setting");
  }
}

Json flagJson(std::int64_t value) {
  if (value == 0 || value == 1) return value == 1;
  return value;
}

}  // namespace tabelion
