#include <algorithm>
#include <optional>

#include "security/database_encryption.h"
#include "security/opened_records.h"
#include "security/plausible_values.h"

namespace tabelion {
namespace {

// A record as it is to be written.
struct SealedForm {
  RecordFront front;                  // enciphered, unless it is
  const Record* as_before = nullptr;  // what it was in the file
  bool too_long = false;
};

Record written(const Record& clear, const SealedForm& form) {
  Record record =
      form.as_before != nullptr
          ? Record::borrowed(form.as_before->bytes())
          : Record::copied(form.front.bytes, clear.bytes().subspan(form.front.old_size));
  record.unique_id = clear.unique_id;
  record.attributes = clear.attributes;
  return record;
}

bool opensLike(const ExpandedKey& key, const Password& password) {
  ExpandedKey other;
  MakeKey(password.text(), other);
  return std::ranges::equal(key.bytes(), other.bytes());
}

}  // namespace

// Whether what one password opened may as well be the other's: it fits as well, and what it makes
// of the values looks no worse.
bool OpenedRecords::looksLike(const Database& database, const Opened& opened, ByteView clear,
                              const KnownPassword& other) const {
  Bytes under_other;
  if (DecryptRecord(database.schema, opened.sealed.bytes(), other.key, under_other) !=
      kRecordDecrypted) {
    return false;
  }
  const bool as_likely = plausibility(database, under_other) + other.share() >=
                         plausibility(database, clear) + passwords_[opened.password]->share();
  wipeBytes(under_other);
  return as_likely;
}

IdentityIndex OpenedRecords::index() const {
  IdentityIndex index;
  for (std::uint32_t i = 0; i < opened_.size(); ++i) index.add(opened_[i].identity, i);
  index.sort();
  return index;
}

// `form` makes the enciphered form of a record, of which `known` is what was opened, if it is known
// at all; whether it is still what was opened is in `unchanged`.
template <typename Form>
Sealing OpenedRecords::seal(Database& database, Engine& engine, const RecordTest& wanted,
                            const Form& form) const {
  Sealing sealing;
  IdentityIndex known_records = index();
  std::vector<bool> used(opened_.size());
  const FlaggedFields flagged(database.schema);
  SealedForm sealed;
  for (std::uint32_t i = 0; i < database.records.count(); ++i) {
    database.records.fetchAhead(i, sealed.front.old_size);
    if (isRecordEncrypted(database.records[i].bytes())) continue;
    const std::uint64_t identity = stampIdentity(database.records[i].bytes());
    const Opened* known = nullptr;
    bool unchanged = false;
    sealed.too_long = false;
    known_records.forEach(identity, [&](std::uint32_t number) {
      if (used[number]) return false;
      const Opened& candidate = opened_[number];
      const ByteView clear = database.records[i].bytes();
      const ByteView before = candidate.sealed.bytes();
      const bool fits = resealRecordFront(flagged, clear, before,
                                          passwords_[candidate.password]->key, sealed.front);
      unchanged = fits && isWhole(sealed.front, clear, before);
      if (known == nullptr || unchanged) known = &candidate;
      used[number] = unchanged;
      return unchanged;
    });
    if (wanted && !wanted(database.records[i].bytes(), known != nullptr)) continue;
    if (!isStamped(database.records[i].bytes())) {
      // Now, so that it has the same one at every save.
      const ByteView record = database.records[i].bytes();
      Bytes stamped(record.begin(), record.end());
      stampRecord(stamped, newStamp(database, engine));
      if (!database.records.replace(i, stamped)) {
        unseal(database, sealing);
        sealing.too_long = i;
        return sealing;
      }
    }
    sealed.as_before = nullptr;
    form(flagged, database.records[i].bytes(), known, unchanged, sealed, sealing);
    if (sealed.too_long) {
      unseal(database, sealing);
      sealing = {.clear = {}, .too_long = i};
      return sealing;
    }
    Record& record = database.records[i];
    Record to_write = written(record, sealed);
    record.swap(to_write);
    sealing.clear.push_back({i, std::move(to_write)});
    sealing.changed |= sealed.as_before == nullptr;
  }
  wipeBytes(sealed.front.bytes);
  return sealing;
}

Sealing OpenedRecords::sealAsOpened(Database& database, Engine& engine,
                                    const RecordTest& wanted) const {
  if (opened_.empty()) return {};
  const ExpandedKey& main_key = passwords_[mainNumber()]->key;
  return seal(database, engine, wanted,
              [&](const FlaggedFields& flagged, ByteView record, const Opened* known,
                  bool unchanged, SealedForm& into, Sealing&) {
                if (unchanged) {
                  into.as_before = &known->sealed;
                } else if (known != nullptr) {
                  into.too_long = !resealRecordFront(flagged, record, known->sealed.bytes(),
                                                     passwords_[known->password]->key, into.front);
                } else {
                  into.too_long = !encryptRecordFront(flagged, record, main_key, {}, into.front);
                }
              });
}

Sealing OpenedRecords::sealWith(Database& database, Engine& engine, const Password& password) {
  KnownPassword with(password);
  // Whether it fits what it did not open is asked of all records before any of them is judged.
  const FlaggedFields all_flagged(database.schema);
  RecordFront other;
  for (const Opened& opened : opened_) {
    ++with.tried;
    if (decryptRecordFront(all_flagged, opened.sealed.bytes(), with.key, other) ==
        kRecordDecrypted) {
      ++with.fits;
    }
  }
  return seal(database, engine, {},
              [&](const FlaggedFields& flagged, ByteView record, const Opened* known,
                  bool unchanged, SealedForm& into, Sealing& sealing) {
                if (known == nullptr) {
                  into.too_long = !encryptRecordFront(flagged, record, with.key, {}, into.front);
                  return;
                }
                const KnownPassword& opener = *passwords_[known->password];
                const bool same = std::ranges::equal(opener.key.bytes(), with.key.bytes());
                const bool certain = same || isCertain(database, *known, record);
                if (unchanged && (!certain || same || looksLike(database, *known, record, with))) {
                  into.as_before = &known->sealed;
                } else if (same || !certain) {
                  into.too_long = !resealRecordFront(flagged, record, known->sealed.bytes(),
                                                     opener.key, into.front);
                } else {
                  into.too_long = !encryptRecordFront(flagged, record, with.key, {}, into.front);
                }
                if (!certain) ++sealing.kept;
              });
}

bool OpenedRecords::sealOne(const Database& database, ByteView record, const Password& password,
                            const StampSource& new_stamp, Bytes& into) const {
  const FlaggedFields flagged(database.schema);
  RecordFront front;
  const bool resealed = std::ranges::any_of(opened_, [&](const Opened& opened) {
    const ExpandedKey& key = passwords_[opened.password]->key;
    return opened.identity == stampIdentity(record) && opensLike(key, password) &&
           resealRecordFront(flagged, record, opened.sealed.bytes(), key, front);
  });
  if (!resealed) {
    ExpandedKey key;
    MakeKey(password.text(), key);
    if (!encryptRecordFront(flagged, record, key, new_stamp, front)) return false;
  }
  into = std::move(front.bytes);
  const ByteView rest = record.subspan(front.old_size);
  into.insert(into.end(), rest.begin(), rest.end());
  return true;
}

}  // namespace tabelion
