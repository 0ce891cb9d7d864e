#include "engine/schema_bytes.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "engine/database_record_order.h"

namespace tabelion {
namespace {

// What the codecs here have in common: the place that they have come to, and which definitions and
// views they pass over.
class PlacedCodec {
 public:
  explicit PlacedCodec(SchemaExtent extent) : extent_(extent) {}
  void item(int, std::string_view) {}
  bool wantsInside(std::size_t size) {
    if (extent_ == SchemaExtent::kSettings) at_ += size;
    return extent_ == SchemaExtent::kWhole;
  }

 protected:
  std::size_t pass(std::size_t size) {
    const std::size_t place = at_;
    at_ += size;
    return place;
  }

 private:
  std::size_t at_ = 0;
  SchemaExtent extent_;
};

// Hands every value on in its form in the file.
template <class Derived>
class EncodingCodec : public PlacedCodec {
 public:
  using PlacedCodec::PlacedCodec;
  void byte(std::uint8_t value) { bytes(std::array{value}); }
  void be16(std::uint16_t value) {
    std::array<std::uint8_t, 2> encoded;
    storeBe16(encoded.data(), value);
    bytes(encoded);
  }
  void be32(std::uint32_t value) {
    std::array<std::uint8_t, 4> encoded;
    storeBe16(encoded.data(), value >> 16);
    storeBe16(encoded.data() + 2, value);
    bytes(encoded);
  }
  void unsigned16(std::int32_t value) { be16(static_cast<std::uint16_t>(value)); }
  void type(FieldType value) { unsigned16(codeOf(value)); }
  void signed16(std::int32_t value) { be16(static_cast<std::uint16_t>(value)); }
  void low16(std::uint32_t value) { be16(static_cast<std::uint16_t>(value)); }
  template <std::size_t N>
  void bytes(const std::array<std::uint8_t, N>& value) {
    static_cast<Derived*>(this)->take(pass(N), value.data(), N);
  }
};

class CopyCodec : public EncodingCodec<CopyCodec> {
 public:
  CopyCodec(SchemaExtent extent, std::uint8_t* into) : EncodingCodec(extent), into_(into) {}
  void take(std::size_t at, const std::uint8_t* value, std::size_t size) {
    std::memcpy(into_ + at, value, size);
  }

 private:
  std::uint8_t* into_;
};

class CompareCodec : public EncodingCodec<CompareCodec> {
 public:
  CompareCodec(SchemaExtent extent, const std::uint8_t* copy)
      : EncodingCodec(extent), copy_(copy) {}
  void take(std::size_t at, const std::uint8_t* value, std::size_t size) {
    if (std::memcmp(copy_ + at, value, size) != 0) changed.push_back({at, size});
  }

  std::vector<SchemaPlace> changed;

 private:
  const std::uint8_t* copy_;
};

// Reads the values that begin inside the window.
class WindowCodec {
 public:
  WindowCodec(std::size_t offset, ByteView bytes) : offset_(offset), bytes_(bytes) {}
  void item(int, std::string_view) {}
  bool wantsInside(std::size_t size) {
    const bool wanted = at_ < offset_ + bytes_.size() && at_ + size > offset_;
    if (!wanted) at_ += size;
    return wanted;
  }
  void byte(std::uint8_t& value) {
    if (const std::uint8_t* at = enter(1)) value = *at;
  }
  void be16(std::uint16_t& value) {
    if (const std::uint8_t* at = enter(2)) value = loadBe16(at);
  }
  void be32(std::uint32_t& value) {
    if (const std::uint8_t* at = enter(4)) value = loadBe32(at);
  }
  void unsigned16(std::int32_t& value) {
    if (const std::uint8_t* at = enter(2)) value = loadBe16(at);
  }
  void type(FieldType& value) {
    if (const std::uint8_t* at = enter(2)) value = FieldType{loadBe16(at)};
  }
  void signed16(std::int32_t& value) {
    if (const std::uint8_t* at = enter(2)) value = static_cast<std::int16_t>(loadBe16(at));
  }
  void low16(std::uint32_t& value) {
    if (const std::uint8_t* at = enter(2)) value = loadBe16(at);
  }
  template <std::size_t N>
  void bytes(std::array<std::uint8_t, N>& value) {
    if (const std::uint8_t* at = enter(N)) std::copy(at, at + N, value.begin());
  }

 private:
  const std::uint8_t* enter(std::size_t size) {
    const std::size_t at = at_;
    at_ += size;
    if (at < offset_ || bytes_.size() < size || at - offset_ > bytes_.size() - size) return nullptr;
    return bytes_.data() + (at - offset_);
  }

  std::size_t at_ = 0;
  std::size_t offset_;
  ByteView bytes_;
};

}  // namespace

void copySchemaBytes(const DatabaseRecord& schema, SchemaExtent extent,
                     std::span<std::uint8_t, kDatabaseRecordSize> into) {
  CopyCodec codec(extent, into.data());
  codeDatabaseRecord(codec, schema);
}

std::vector<SchemaPlace> changedSchemaValues(
    const DatabaseRecord& schema, SchemaExtent extent,
    std::span<const std::uint8_t, kDatabaseRecordSize> copy) {
  CompareCodec codec(extent, copy.data());
  codeDatabaseRecord(codec, schema);
  return std::move(codec.changed);
}

void setSchemaBytes(DatabaseRecord& schema, std::size_t offset, ByteView bytes) {
  WindowCodec codec(offset, bytes);
  codeDatabaseRecord(codec, schema);
}

}  // namespace tabelion
