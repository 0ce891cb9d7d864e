// The enciphered records of a database that passwords have opened.
//
// A wrong password opens one record in 256, and what it makes of it is noise. So a record that is
// opened keeps, beside its clear form, what it is in the file and by which password it was opened.
// Whatever was typed, a record that nobody changed becomes what it was in the file again; only
// enciphering it under another password on purpose makes other bytes of it. Whether a record was
// changed is seen by its bytes, so one whose change was taken back counts as unchanged.
//
// A record is found again by its stamp, so it may be moved, changed, removed and brought back
// meanwhile. The database must not be read anew while records of it are known here: forget() first.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "engine/database.h"
#include "security/cipher.h"
#include "security/identity_index.h"
#include "security/password.h"
#include "security/record_encryption.h"

namespace tabelion {

// Beside the results of DecryptRecord: the checksum fits, but the values do not look like any.
inline constexpr int kDoubtfulPassword = 2;

// What a password did.
struct PasswordAttempt {
  std::uint32_t opened = 0;
  std::uint32_t closed = 0;  // enciphered records that it does not open; they stay as they are
  // It passes the checks of what it opened, but these few values do not look like any. The records
  // are in clear; the same password once more is believed.
  bool doubtful = false;
  bool isComplete() const { return closed == 0 && !doubtful; }
};

// Records that were enciphered to be written.
struct Sealing {
  // Those that stood there in clear, and where.
  std::vector<std::pair<std::uint32_t, Record>> clear;
  // The number of a record (from 0) that would become too long; nothing has changed then.
  std::uint32_t too_long = kNoPosition;
  std::uint32_t kept = 0;  // were not opened for certain, and keep the password that they had
  bool changed = false;    // the file does not hold all of them like this already
};

class OpenedRecords {
 public:
  // Opens every enciphered record that the password fits. One that another password opened, which
  // failed on others, is tried again: what its values look like and how many records each of the
  // two opens decides. In mode 2 nothing happens unless `forced`; the records then keep a mark that
  // they were deciphered with the whole database.
  PasswordAttempt open(Database& database, const Password& password, bool forced = false);
  // Closes records again of which it is not certain that they were opened by the right password:
  // when nobody knows more passwords, and, with higher demands, before what is open is written in
  // clear.
  enum class Before { kLooking, kWritingInClear };
  void closeUncertain(Database& database, Before before);

  // For one record that stays where it is, and is handed on as a copy: kRecordDecrypted,
  // kWrongPassword, kHeaderUnreadable, or kDoubtfulPassword with the record as it was. Whoever
  // believes the password all the same says so.
  enum class Trust { kDoubts, kBelieves };
  int openOne(const Database& database, Bytes& record, const Password& password,
              Trust trust = Trust::kDoubts);

  bool isEmpty() const { return opened_.empty(); }
  bool knows(const Password& password) const;  // whether it, or one with the same key, opened any
  // The password that opened all of them; none when there were several.
  const Password* onlyPassword() const;
  bool openedAll(const Password& password) const;  // or one with the same key
  // The one that opened most.
  const Password* mainPassword() const;
  // The one that opened this record, in whatever state it is now; else the main one.
  const Password* passwordFor(ByteView record) const;

  // Enciphers every record in clear, or those of them that are `wanted` (with whether it is known
  // here), each under the password that opened it, new ones under the main one: for whatever
  // happens without a person's purpose. Does nothing while no record is known.
  using RecordTest = std::function<bool(ByteView record, bool known)>;
  Sealing sealAsOpened(Database& database, Engine& engine, const RecordTest& wanted = {}) const;
  // All of them under this password, on purpose. Those that were not opened for certain stay what
  // they were: enciphering noise would destroy what it was made of.
  Sealing sealWith(Database& database, Engine& engine, const Password& password);
  // One record under a password: with its old bytes, as far as nobody changed it and the password
  // is the one that opened it. False when it would be too long.
  [[nodiscard]] bool sealOne(const Database& database, ByteView record, const Password& password,
                             const StampSource& new_stamp, Bytes& into) const;

  // At the end, or before the database is read anew.
  void forget();

 private:
  struct KnownPassword {
    explicit KnownPassword(const Password& typed) : password(typed) {
      MakeKey(password.text(), key);
    }
    Password password;
    ExpandedKey key;
    double check = 0;  // bits that the database's check block speaks for it
    std::uint32_t tried = 0;
    std::uint32_t fits = 0;
    bool doubted = false;
    bool believed = false;  // typed again all the same
    bool failed() const { return fits < tried; }
    // The odds, as a power of 2, that a record of the database has it, by the others that it fits.
    double share() const;
  };
  struct Opened {
    Record sealed;
    std::uint64_t identity = 0;
    std::uint32_t password = 0;
  };
  std::uint32_t know(const Database& database, const Password& password);
  void tryAgain(Database& database, std::uint32_t number);
  IdentityIndex index() const;
  std::uint32_t mainNumber() const;
  template <typename Form>
  Sealing seal(Database& database, Engine& engine, const RecordTest& wanted,
               const Form& form) const;
  bool looksRight(const Database& database, const Opened& opened, ByteView clear) const;
  bool isCertain(const Database& database, const Opened& opened, ByteView clear) const;
  double evidence(const Database& database, const Opened& opened, ByteView clear) const;
  bool looksLike(const Database& database, const Opened& opened, ByteView clear,
                 const KnownPassword& other) const;

  std::vector<std::unique_ptr<KnownPassword>> passwords_;
  std::vector<Opened> opened_;
};

// Puts the records that were enciphered back into clear.
void unseal(Database& database, Sealing& sealing);

}  // namespace tabelion
