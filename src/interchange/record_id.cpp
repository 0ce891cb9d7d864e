#include "interchange/record_id.h"

#include <algorithm>

#include <fmt/format.h>

#include "engine/packed_record.h"
#include "interchange/hex.h"

namespace tabelion {
namespace {

using Identity = std::array<std::uint8_t, kStampIdentitySize>;
static_assert(kRecordIdDigits == 2 * kStampIdentitySize);

// The flag byte tells whether the record is enciphered at present, which is not who it is.
std::optional<Identity> identityOf(ByteView record) {
  const auto stamp = recordStamp(record);
  if (!stamp) return std::nullopt;
  Identity identity;
  std::copy_n(stamp->begin(), identity.size(), identity.begin());
  identity[kStampFlagOffset] = 0;
  return identity;
}

}  // namespace

std::string recordId(ByteView record) {
  const auto identity = identityOf(record);
  return identity ? toHex(*identity) : std::string();
}

bool isRecordId(std::string_view text) {
  return text.size() == kRecordIdDigits && fromHex(text).has_value();
}

Result<std::uint32_t> recordWithId(const Database& database, std::string_view id) {
  const auto wanted = fromHex(id);
  std::optional<std::uint32_t> found;
  for (std::uint32_t position = 0; wanted && position < database.records.count(); ++position) {
    const auto identity = identityOf(database.records[position].bytes());
    if (!identity ||
        !std::equal(wanted->begin(), wanted->end(), identity->begin(), identity->end()))
      continue;
    if (found) {
      return makeError(ErrorKind::kRefused, fmt::format("records {} and {} both have the id {}",
                                                        *found + 1, position + 1, id));
    }
    found = position;
  }
  if (found) return *found;
  return makeError(ErrorKind::kInvalid, fmt::format("no record has the id {}", id));
}

}  // namespace tabelion
