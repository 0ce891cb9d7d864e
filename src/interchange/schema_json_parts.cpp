#include "interchange/schema_json_parts.h"

#include <algorithm>
#include <numeric>

#include <fmt/format.h>

#include "interchange/hex.h"

namespace tabelion {
namespace {

bool hasControlCharacters(std::string_view text) {
  return std::any_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x20 && c != '\n'; });
}

Json hexJson(ByteView bytes) {
  return Json{{"hex", toHex(bytes)}};
}

ByteView withoutTrailingZeros(ByteView bytes) {
  while (!bytes.empty() && bytes.back() == 0) bytes = bytes.first(bytes.size() - 1);
  return bytes;
}

}  // namespace

Json textJson(std::string_view text, const TextEncoding& encoding) {
  if (hasControlCharacters(text)) return hexJson(asBytes(text));
  std::string utf8 = encoding.toUtf8(text);
  // What does not come back as the same bytes can not stand as a text.
  if (encoding.fromUtf8(utf8).bytes != text) return hexJson(asBytes(text));
  return utf8;
}

Json areaJson(ByteView area, const TextEncoding& encoding) {
  const std::string text = areaText(area);
  const ByteView used = withoutTrailingZeros(area);
  const bool only_text = used.size() == text.size() && text.size() < area.size();
  return only_text ? textJson(text, encoding) : hexJson(used);
}

bool readText(const JsonNode& node, const TextEncoding& encoding, std::string& into) {
  if (!node.present()) return false;
  if (node.isObject()) {
    JsonObject object(node);
    const JsonNode hex = object["hex"];
    object.finish();
    const auto bytes = fromHex(hex.text("?"));
    if (!bytes) {
      hex.refuse("must be an even number of hexadecimal digits");
      return false;
    }
    into.assign(bytes->begin(), bytes->end());
    return true;
  }
  const std::string utf8 = node.text("");
  Encoded text = encoding.fromUtf8(utf8);
  if (!text.ok()) {
    node.refuse(describeFault(*text.fault, encoding));
    return false;
  }
  if (text.bytes.find('\0') != std::string::npos) {
    node.refuse("must not hold a NUL");
    return false;
  }
  into = std::move(text.bytes);
  return true;
}

bool readArea(const JsonNode& node, const TextEncoding& encoding, std::span<std::uint8_t> area) {
  std::string text;
  if (!readText(node, encoding, text)) return false;
  // Hex digits may fill the area to its last byte; a text needs its NUL.
  const std::size_t most = node.isObject() ? area.size() : area.size() - 1;
  if (text.size() > most) {
    node.refuse(fmt::format("takes {} bytes; {} is the limit", text.size(), most));
    return false;
  }
  std::fill(area.begin(), area.end(), std::uint8_t{0});
  std::copy(text.begin(), text.end(), area.begin());
  return true;
}

FieldNames::FieldNames(const DatabaseRecord& schema, const TextEncoding& encoding)
    : names_(kFieldSlots) {
  for (std::size_t slot = 0; slot < kFieldSlots; ++slot) {
    const FieldDefinition& field = schema.fields[slot];
    if (field.type == FieldType::kUnused) continue;
    const Json name = areaJson(field.name, encoding);
    if (name.is_string()) names_[slot] = name.get<std::string>();
  }
  const std::vector<std::string> all = names_;
  for (std::string& name : names_) {
    if (std::count(all.begin(), all.end(), name) > 1) name.clear();
  }
}

Json FieldNames::reference(int slot) const {
  if (slot == kNoField) return nullptr;
  if (slot >= 0 && slot < kFieldSlots && !names_[static_cast<std::size_t>(slot)].empty()) {
    return names_[static_cast<std::size_t>(slot)];
  }
  return slot;
}

int FieldNames::slotOf(const JsonNode& node, int most, int otherwise) const {
  if (!node.present()) return otherwise;
  if (node.isNull()) return kNoField;
  if (!node.isText()) return static_cast<int>(node.integer(0, most, otherwise));
  const std::string name = node.text("");
  const auto found = std::find(names_.begin(), names_.end(), name);
  if (name.empty() || found == names_.end()) {
    node.refuse(fmt::format("no field, or more than one, is called \"{}\"", name));
    return otherwise;
  }
  return static_cast<int>(found - names_.begin());
}

Json orderJson(const SlotOrder& order, const FieldNames& names) {
  std::array<std::uint8_t, kFieldSlots> sorted = order;
  std::sort(sorted.begin(), sorted.end());
  std::array<std::uint8_t, kFieldSlots> natural;
  std::iota(natural.begin(), natural.end(), std::uint8_t{0});
  std::size_t count = order.size();
  if (sorted == natural) {
    // The tail that ascends is what a reader fills in, as long as nothing before it is larger
    // than it would be without the list.
    while (count > 0) {
      const std::size_t shorter = count - 1;
      if (!std::is_sorted(order.begin() + static_cast<std::ptrdiff_t>(shorter), order.end())) break;
      count = shorter;
    }
  }
  Json list = Json::array();
  for (std::size_t i = 0; i < count; ++i) list.push_back(names.reference(order[i]));
  return list;
}

void readOrder(const JsonNode& node, const FieldNames& names, SlotOrder& order) {
  if (!node.present()) return;
  std::array<bool, 256> used{};
  std::size_t filled = 0;
  for (const JsonNode& entry : node.list(kFieldSlots)) {
    const int slot = names.slotOf(entry, 255, 0);
    used[static_cast<std::size_t>(slot)] = true;
    order[filled++] = static_cast<std::uint8_t>(slot);
  }
  for (std::size_t slot = 0; slot < kFieldSlots && filled < order.size(); ++slot) {
    if (!used[slot]) order[filled++] = static_cast<std::uint8_t>(slot);
  }
  while (filled < order.size()) order[filled++] = kNoField;
}

Json wordJson(std::int64_t value, std::span<const NamedValue> words) {
  for (const NamedValue& named : words) {
    if (named.value == value) return std::string(named.word);
  }
  return value;
}

std::int64_t readWord(const JsonNode& node, std::span<const NamedValue> words, std::int64_t most,
                      std::int64_t otherwise) {
  if (!node.isText()) return node.integer(0, most, otherwise);
  const std::string word = node.text("");
  std::string known;
  for (const NamedValue& named : words) {
    if (named.word == word) return named.value;
    known += fmt::format("{}\"{}\"", known.empty() ? "" : ", ", named.word);
  }
  node.refuse(fmt::format("\"{}\" is not one of {}", word, known));
  return otherwise;
}

void putUnlessEmpty(Json& object, const std::string& name, Json value) {
  const auto* text = value.get_ptr<const std::string*>();
  if (!value.empty() && !(text && text->empty())) object[name] = std::move(value);
}

}  // namespace tabelion
