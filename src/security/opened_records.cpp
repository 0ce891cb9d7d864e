#include "security/opened_records.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "security/database_encryption.h"
#include "security/plausible_values.h"

namespace tabelion {
namespace {

// Evidence is counted in bits. A record's checksum, and the check block, are one byte each.
constexpr double kOneByte = 8;
constexpr double kOtherThanTheLast = -4;  // most databases have one password
constexpr double kEnough = 8;
constexpr double kCertain = 14;
constexpr double kOddestValues = -6;           // values may look odd and be right
constexpr std::uint32_t kCertainlyEnough = 4;  // records, when a password opens all of them
constexpr std::uint32_t kOthersToTry = 32;     // for a record that is opened alone

bool sameBytes(ByteView a, ByteView b) {
  return std::ranges::equal(a, b);
}

Record recordLike(const Record& model, Record bytes) {
  bytes.unique_id = model.unique_id;
  bytes.attributes = model.attributes;
  bytes.offset = model.offset;
  return bytes;
}

bool isByHand(const Database& database) {
  return database.schema.encryption_mode == kEncryptRecordsByHand;
}

// Where single records are enciphered by hand, one that is deciphered with all others says so.
void markByHand(const Database& database, RecordFront& clear) {
  if (isByHand(database)) clear.bytes[1 + kStampFlagOffset] |= kClearByDatabase;
}

// What a record is in clear.
Bytes wholeRecord(RecordFront& clear, ByteView sealed, const Database& database) {
  markByHand(database, clear);
  Bytes record = clear.bytes;
  const ByteView rest = sealed.subspan(clear.old_size);
  record.insert(record.end(), rest.begin(), rest.end());
  return record;
}

IdentityIndex positionsInClear(const Database& database) {
  IdentityIndex positions;
  for (std::uint32_t i = 0; i < database.records.count(); ++i) {
    const ByteView record = database.records[i].bytes();
    if (!isRecordEncrypted(record)) positions.add(stampIdentity(record), i);
  }
  positions.sort();
  return positions;
}

}  // namespace

double OpenedRecords::KnownPassword::share() const {
  const double others = tried > 0 ? tried - 1 : 0;
  const double fitting = fits > 0 ? fits - 1 : 0;
  const double really = std::max(0.0, fitting - (others - fitting) / 255);
  const double doubt = 1 / (1 + std::exp2(check));
  return std::log2((really + 1 - doubt) / (others - really + doubt));
}

std::uint32_t OpenedRecords::know(const Database& database, const Password& password) {
  auto typed = std::make_unique<KnownPassword>(password);
  const auto known = std::ranges::find_if(passwords_, [&](const auto& other) {
    return std::ranges::equal(other->key.bytes(), typed->key.bytes());
  });
  if (known != passwords_.end()) return static_cast<std::uint32_t>(known - passwords_.begin());
  if (database.schema.password_check_present != 0) {
    typed->check =
        PasswordMatchesCheck(database.schema, password.text()) ? kOneByte : kOtherThanTheLast;
  }
  passwords_.push_back(std::move(typed));
  return static_cast<std::uint32_t>(passwords_.size() - 1);
}

// The bits that speak for the password by which a record was opened, which is `clear` now.
double OpenedRecords::evidence(const Database& database, const Opened& opened,
                               ByteView clear) const {
  const KnownPassword& with = *passwords_[opened.password];
  const double values = plausibility(database, clear);
  // One record of several may have a password of its own all the same, so noise still speaks.
  if (!with.failed() && with.fits >= kCertainlyEnough) return 2 * kCertain + std::min(0.0, values);
  return with.share() + kOneByte + std::max(values, kOddestValues);
}

// Enough to show it.
bool OpenedRecords::looksRight(const Database& database, const Opened& opened,
                               ByteView clear) const {
  return passwords_[opened.password]->believed || evidence(database, opened, clear) >= kEnough;
}

// Enough to let what it was in the file go.
bool OpenedRecords::isCertain(const Database& database, const Opened& opened,
                              ByteView clear) const {
  return evidence(database, opened, clear) >= kCertain;
}

PasswordAttempt OpenedRecords::open(Database& database, const Password& password, bool forced) {
  PasswordAttempt attempt;
  if (isByHand(database) && !forced) return attempt;
  const auto known = passwords_.size();
  const std::uint32_t number = know(database, password);
  KnownPassword& with = *passwords_[number];
  if (passwords_.size() == known) with.believed = with.doubted;
  with.tried = with.fits = static_cast<std::uint32_t>(std::ranges::count_if(
      opened_, [number](const Opened& opened) { return opened.password == number; }));
  const std::size_t before = opened_.size();
  const FlaggedFields flagged(database.schema);
  RecordFront clear;
  for (std::uint32_t i = 0; i < database.records.count(); ++i) {
    database.records.fetchAhead(i, clear.old_size);
    Record& record = database.records[i];
    if (!isRecordEncrypted(record.bytes())) continue;
    if (decryptRecordFront(flagged, record.bytes(), with.key, clear) != kRecordDecrypted) {
      ++attempt.closed;
      continue;
    }
    markByHand(database, clear);
    if (attempt.opened++ == 0) opened_.reserve(before + database.records.count() - i);
    Record in_clear =
        recordLike(record, Record::copied(clear.bytes, record.bytes().subspan(clear.old_size)));
    record.swap(in_clear);
    opened_.push_back({std::move(in_clear), stampIdentity(record.bytes()), number});
  }
  wipeBytes(clear.bytes);
  with.tried += attempt.opened + attempt.closed;
  with.fits += attempt.opened;
  tryAgain(database, number);
  const bool few = attempt.opened > 0 && attempt.opened < kCertainlyEnough;
  if (attempt.closed == 0 && few && !with.believed) {
    IdentityIndex positions = positionsInClear(database);
    for (std::size_t i = before; i < opened_.size(); ++i) {
      positions.forEach(opened_[i].identity, [&](std::uint32_t position) {
        attempt.doubtful |= !looksRight(database, opened_[i], database.records[position].bytes());
        return attempt.doubtful;
      });
    }
  }
  with.doubted |= attempt.doubtful;
  return attempt;
}

// What other passwords opened, of those that failed on some records, may be this one's.
void OpenedRecords::tryAgain(Database& database, std::uint32_t number) {
  KnownPassword& with = *passwords_[number];
  const FlaggedFields flagged(database.schema);
  std::vector<std::uint32_t> contested;
  RecordFront clear;
  for (std::uint32_t i = 0; i < opened_.size(); ++i) {
    const std::uint32_t other = opened_[i].password;
    if (other == number ||
        (!passwords_[other]->failed() && passwords_[other]->fits >= kCertainlyEnough))
      continue;
    ++with.tried;
    if (decryptRecordFront(flagged, opened_[i].sealed.bytes(), with.key, clear) !=
        kRecordDecrypted) {
      continue;
    }
    ++with.fits;
    contested.push_back(i);
  }
  if (contested.empty()) return;
  IdentityIndex positions = positionsInClear(database);
  RecordFront as_opened;
  for (const std::uint32_t i : contested) {
    Opened& opened = opened_[i];
    const KnownPassword& other = *passwords_[opened.password];
    const ByteView sealed = opened.sealed.bytes();
    const bool fits_both =
        decryptRecordFront(flagged, sealed, with.key, clear) == kRecordDecrypted &&
        decryptRecordFront(flagged, sealed, other.key, as_opened) == kRecordDecrypted;
    if (!fits_both) continue;
    Bytes mine = wholeRecord(clear, sealed, database);
    Bytes theirs = wholeRecord(as_opened, sealed, database);
    if (plausibility(database, mine) + with.share() >
        plausibility(database, theirs) + other.share()) {
      positions.forEach(opened.identity, [&](std::uint32_t position) {
        // One that was changed is whoever's who changed it.
        if (!sameBytes(database.records[position].bytes(), theirs)) return false;
        (void)database.records.replace(position, mine);  // it came out of a record
        opened.password = number;
        return true;
      });
    }
    wipeBytes(mine);
    wipeBytes(theirs);
  }
  wipeBytes(clear.bytes);
  wipeBytes(as_opened.bytes);
}

void OpenedRecords::closeUncertain(Database& database, Before before) {
  IdentityIndex positions = positionsInClear(database);
  const FlaggedFields flagged(database.schema);
  RecordFront front;
  std::erase_if(opened_, [&](Opened& opened) {
    return positions.forEach(opened.identity, [&](std::uint32_t position) {
      Record& record = database.records[position];
      const ByteView clear = record.bytes();
      if (isRecordEncrypted(clear)) return false;
      const bool stays_open = before == Before::kLooking ? looksRight(database, opened, clear)
                                                         : isCertain(database, opened, clear);
      const ByteView sealed = opened.sealed.bytes();
      if (stays_open ||
          !resealRecordFront(flagged, clear, sealed, passwords_[opened.password]->key, front)) {
        return false;
      }
      if (isWhole(front, clear, sealed)) {
        record.swap(opened.sealed);
        return true;
      }
      return database.records.replaceFront(position, front.old_size, front.bytes);
    });
  });
}

int OpenedRecords::openOne(const Database& database, Bytes& record, const Password& password,
                           Trust trust) {
  const std::uint32_t number = know(database, password);
  KnownPassword& with = *passwords_[number];
  Bytes clear;
  const int result = DecryptRecord(database.schema, record, with.key, clear);
  if (result != kRecordDecrypted) return result;
  with.tried = with.fits = 1;
  const FlaggedFields flagged(database.schema);
  RecordFront other;
  for (const Record& stored : database.records) {
    if (with.tried > kOthersToTry) break;
    if (!isRecordEncrypted(stored.bytes()) || sameBytes(stored.bytes(), record)) continue;
    ++with.tried;
    if (decryptRecordFront(flagged, stored.bytes(), with.key, other) == kRecordDecrypted) {
      ++with.fits;
    }
  }
  wipeBytes(other.bytes);
  Opened opened{Record::copied(record), stampIdentity(record), number};
  // By hand, the record is going to be written in clear.
  const bool is_right =
      isByHand(database) ? isCertain(database, opened, clear) : looksRight(database, opened, clear);
  if (trust == Trust::kDoubts && !is_right) {
    wipeBytes(clear);
    return kDoubtfulPassword;
  }
  std::erase_if(opened_,
                [&](const Opened& earlier) { return sameBytes(earlier.sealed.bytes(), record); });
  opened_.push_back(std::move(opened));
  record.swap(clear);
  return result;
}

std::uint32_t OpenedRecords::mainNumber() const {
  std::vector<std::uint32_t> counts(passwords_.size());
  for (const Opened& opened : opened_) ++counts[opened.password];
  return static_cast<std::uint32_t>(std::max_element(counts.begin(), counts.end()) -
                                    counts.begin());
}

const Password* OpenedRecords::mainPassword() const {
  return opened_.empty() ? nullptr : &passwords_[mainNumber()]->password;
}

const Password* OpenedRecords::onlyPassword() const {
  if (opened_.empty()) return nullptr;
  const std::uint32_t first = opened_.front().password;
  const bool only = std::ranges::all_of(
      opened_, [first](const Opened& opened) { return opened.password == first; });
  return only ? &passwords_[first]->password : nullptr;
}

bool OpenedRecords::openedAll(const Password& password) const {
  const Password* only = onlyPassword();
  if (only == nullptr) return false;
  ExpandedKey key;
  MakeKey(password.text(), key);
  return std::ranges::equal(key.bytes(), passwords_[opened_.front().password]->key.bytes());
}

bool OpenedRecords::knows(const Password& password) const {
  ExpandedKey key;
  MakeKey(password.text(), key);
  return std::ranges::any_of(opened_, [&](const Opened& opened) {
    return std::ranges::equal(key.bytes(), passwords_[opened.password]->key.bytes());
  });
}

const Password* OpenedRecords::passwordFor(ByteView record) const {
  const auto known = std::ranges::find(opened_, stampIdentity(record), &Opened::identity);
  return known == opened_.end() ? mainPassword() : &passwords_[known->password]->password;
}

void OpenedRecords::forget() {
  opened_.clear();
  opened_.shrink_to_fit();
  passwords_.clear();
}

void unseal(Database& database, Sealing& sealing) {
  for (auto& [position, record] : sealing.clear) database.records[position].swap(record);
  sealing.clear.clear();
}

}  // namespace tabelion
