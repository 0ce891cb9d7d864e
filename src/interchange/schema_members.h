// The members of one object of a database's description, each named once: a function lists them,
// and a MemberWriter or a MemberReader walks the list. Internal to interchange/.
//
// A writer leaves out what equals the standard; a reader leaves a value as it is where the member
// is missing, so what it reads into starts as the standard.
#pragma once

#include <limits>
#include <optional>
#include <span>
#include <string>
#include <type_traits>

#include "interchange/hex.h"
#include "interchange/schema_json_parts.h"

namespace tabelion {

struct NumberRange {
  std::int64_t least;
  std::int64_t most;
};
inline constexpr NumberRange kUnsigned16{0, UINT16_MAX};
inline constexpr NumberRange kSigned16{INT16_MIN, INT16_MAX};

template <class Number>
constexpr NumberRange rangeOf() {
  return {std::numeric_limits<Number>::min(), std::numeric_limits<Number>::max()};
}

// What a reader does with a member of its own form. A writer walks the same list over what it must
// not change, where this does nothing.
template <class Value, class From>
void setMember(Value& value, From from) {
  if constexpr (!std::is_const_v<Value>) value = static_cast<Value>(from);
}

class MemberWriter {
 public:
  static constexpr bool kReads = false;

  explicit MemberWriter(const DescriptionContext& context) : context_(context) {}

  const DescriptionContext& context() const { return context_; }
  Json take() { return std::move(json_); }

  template <class Number>
  void number(const std::string& key, Number value, std::type_identity_t<Number> standard,
              NumberRange = {}) {
    if (value != standard) json_[key] = value;
  }
  // A byte or two that are a yes or no almost always.
  template <class Number>
  void flag(const std::string& key, Number value, std::type_identity_t<Number> standard) {
    if (value != standard) json_[key] = flagJson(value);
  }
  // A number that has names for some of its values.
  template <class Number>
  void word(const std::string& key, Number value, std::type_identity_t<Number> standard,
            std::span<const NamedValue> words, NumberRange = {}) {
    if (value != standard) json_[key] = wordJson(value, words);
  }
  void hex(const std::string& key, ByteView bytes, ByteView standard) {
    if (!std::equal(bytes.begin(), bytes.end(), standard.begin(), standard.end())) {
      json_[key] = toHex(bytes);
    }
  }
  // As many bytes as there are, at most as many as the digits say.
  void bytes(const std::string& key, const Bytes& bytes, const Bytes& standard) {
    hex(key, bytes, standard);
  }
  void area(const std::string& key, ByteView area, ByteView standard) {
    if (!std::equal(area.begin(), area.end(), standard.begin(), standard.end())) {
      json_[key] = areaJson(area, context_.encoding);
    }
  }
  void text(const std::string& key, const std::string& text, NeededMember needed) {
    if (needed == NeededMember::kYes || !text.empty()) {
      json_[key] = textJson(text, context_.encoding);
    }
  }
  template <class List>
  void object(const std::string& key, const List& list) {
    MemberWriter members(context_);
    list(members);
    putUnlessEmpty(json_, key, members.take());
  }
  void order(const std::string& key, const SlotOrder& order) {
    putUnlessEmpty(json_, key, orderJson(order, context_.names));
  }
  void sort(const std::string& key, const SortKeys& keys) {
    putUnlessEmpty(json_, key, sortJson(keys, context_));
  }
  void filters(const std::string& key, const FilterBlocks& filters) {
    putUnlessEmpty(json_, key, filtersJson(filters, context_));
  }
  // For what no row above can say: `write` gives the JSON, empty where it has nothing to say;
  // `read` takes the node, which may be missing; a writer does not compile it.
  template <class Write, class Read>
  void member(const std::string& key, const Write& write, const Read&) {
    putUnlessEmpty(json_, key, write());
  }
  // As member, but null and empty values are values; nothing is left out but nullopt.
  template <class Write, class Read>
  void optionalMember(const std::string& key, const Write& write, const Read&) {
    if (std::optional<Json> json = write()) json_[key] = *std::move(json);
  }

 private:
  const DescriptionContext& context_;
  Json json_ = Json::object();
};

class MemberReader {
 public:
  static constexpr bool kReads = true;

  MemberReader(JsonObject& json, const DescriptionContext& context)
      : json_(json), context_(context) {}

  const DescriptionContext& context() const { return context_; }

  template <class Number>
  void number(const std::string& key, Number& value, std::type_identity_t<Number>,
              NumberRange range = rangeOf<Number>()) {
    value = static_cast<Number>(json_[key].integer(range.least, range.most, value));
  }
  template <class Number>
  void flag(const std::string& key, Number& value, std::type_identity_t<Number>) {
    value = static_cast<Number>(json_[key].flag(std::numeric_limits<Number>::max(), value));
  }
  template <class Number>
  void word(const std::string& key, Number& value, std::type_identity_t<Number>,
            std::span<const NamedValue> words, NumberRange range = rangeOf<Number>()) {
    value = static_cast<Number>(readWord(json_[key], words, range.most, value));
  }
  void hex(const std::string& key, std::span<std::uint8_t> bytes, ByteView) {
    json_[key].hexInto(bytes.data(), bytes.size());
  }
  void bytes(const std::string& key, Bytes& bytes, const Bytes&) {
    const JsonNode node = json_[key];
    if (!node.present()) return;
    bytes.resize(node.text("").size() / 2);
    node.hexInto(bytes.data(), bytes.size());
  }
  void area(const std::string& key, std::span<std::uint8_t> area, ByteView) {
    readArea(json_[key], context_.encoding, area);
  }
  void text(const std::string& key, std::string& text, NeededMember) {
    readText(json_[key], context_.encoding, text);
  }
  template <class List>
  void object(const std::string& key, const List& list) {
    readMembers(json_[key], context_, list);
  }
  void order(const std::string& key, SlotOrder& order) {
    readOrder(json_[key], context_.names, order);
  }
  void sort(const std::string& key, SortKeys& keys) { readSort(json_[key], context_, keys); }
  void filters(const std::string& key, FilterBlocks& filters) {
    readFilters(json_[key], context_, filters);
  }
  template <class Write, class Read>
  void member(const std::string& key, const Write&, const Read& read) {
    read(json_[key]);
  }
  template <class Write, class Read>
  void optionalMember(const std::string& key, const Write&, const Read& read) {
    read(json_[key]);
  }

  // Reads an object of its own and refuses what the list does not name.
  template <class List>
  static void readMembers(const JsonNode& node, const DescriptionContext& context,
                          const List& list) {
    JsonObject json(node);
    MemberReader members(json, context);
    list(members);
    json.finish();
  }

 private:
  JsonObject& json_;
  const DescriptionContext& context_;
};

// The object that the list describes, on its own.
template <class List>
Json membersJson(const DescriptionContext& context, const List& list) {
  MemberWriter members(context);
  list(members);
  return members.take();
}
template <class List>
void readMembers(const JsonNode& node, const DescriptionContext& context, const List& list) {
  MemberReader::readMembers(node, context, list);
}

}  // namespace tabelion
