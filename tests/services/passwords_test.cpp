// Whatever is typed in whatever order, no enciphered record is lost.
#include <rapidcheck/gtest.h>

#include <deque>

#include "query/record_change.h"
#include "services/open_database.h"
#include "support/enciphered_case.h"

namespace tabelion {
namespace {

// Confirms whatever is said, and answers Yes.
class ObligingDialogs : public FakePhone {
 public:
  MessageAnswer message(const MessageBox& box) override {
    return box.buttons == MessageButtons::kOk ? MessageAnswer::kOk : MessageAnswer::kYes;
  }
};

struct TypedPasswords {
  std::deque<std::string> next;
  EncryptionPasswordPrompt prompt() {
    return [this](Password& typed) {
      if (next.empty()) return false;  // Cancel
      typed.assign(next.front());
      next.pop_front();
      return true;
    };
  }
};

template <typename T>
std::vector<T> someOf(const std::vector<T>& values, std::size_t most) {
  const auto count = *rc::gen::inRange<std::size_t>(0, most + 1);
  return *rc::gen::container<std::vector<T>>(count, rc::gen::elementOf(values));
}

// The record in memory that has this stamp.
std::uint32_t positionOf(const Database& database, ByteView like) {
  for (std::uint32_t i = 0; i < database.records.count(); ++i) {
    if (stampIdentity(database.records[i].bytes()) == stampIdentity(like)) return i;
  }
  ADD_FAILURE() << "a record is gone";
  return 0;
}

class PasswordSession {
 public:
  PasswordSession() : made(makeEncipheredCase(world, kEncryptWholeDatabase, 2)) {
    path = world.store(*made.database);
    for (std::size_t i = 0; i < made.clear.size(); ++i) {
      const ByteView record = made.record(i);
      stored.emplace_back(record.begin(), record.end());
    }
    edited.resize(stored.size());
  }

  void open() {
    std::vector<std::string> all = made.wrong;
    all.insert(all.end(), made.passwords.begin(), made.passwords.end());
    TypedPasswords typed;
    for (const std::string& password : someOf(all, 4)) typed.next.push_back(password);
    ASSERT_EQ(OpenDatabaseFile(app, path, [](const auto&) { return true; }), kOpened);
    DecryptWholeDatabase(app, typed.prompt());
  }
  // Changes the name, which is in clear, or leaves a record as it was after a change; and moves it.
  void edit() {
    Database& database = CurrentDatabase(app);
    const std::size_t record = *rc::gen::inRange<std::size_t>(0, stored.size());
    const std::uint32_t position = positionOf(database, stored[record]);
    const ByteView now = database.records[position].bytes();
    const Bytes before(now.begin(), now.end());
    UnpackedRecord changed = unpackRecord(now);
    changed.slots[0] = Bytes{'n', 'e', 'w', 0};
    Bytes packed;
    ASSERT_TRUE(packRecord(changed, packed));
    ASSERT_TRUE(database.records.replace(position, packed));
    if (*rc::gen::arbitrary<bool>()) {
      ASSERT_TRUE(database.records.replace(position, before));
    } else {
      edited[record] = true;
    }
    database.records.move(position, *rc::gen::inRange<std::uint32_t>(0, database.records.count()));
    setDirty(database);
  }
  void save() {
    ASSERT_EQ(SaveDatabase(app, SaveOccasion::kUser), SaveResult::kSaved);
    const auto after = world.read(path);
    for (const Record& record : after->records) {
      RC_ASSERT(isRecordEncrypted(record.bytes()) || app.level().session.opened.isEmpty());
    }
  }
  // With any password once, with one twice, or with none.
  void close() {
    TypedPasswords typed;
    std::vector<std::string> all = made.wrong;
    all.insert(all.end(), made.passwords.begin(), made.passwords.end());
    const auto one =
        *rc::gen::oneOf(rc::gen::elementOf(all), rc::gen::just(std::string("quite new")));
    for (int times = *rc::gen::inRange(0, 3); times > 0; --times) typed.next.push_back(one);
    const auto choice = *rc::gen::element(SaveChoice::kSave, SaveChoice::kDiscard);
    app.closing =
        *rc::gen::element(Closing::kNo, Closing::kNo, Closing::kUnattended, Closing::kSessionEnds);
    if (app.closing == Closing::kNo && typed.next.size() == 2) closed_with = one;
    RC_ASSERT(CloseDatabase(
        app, AskBeforeSaving::kYes,
        {.password = typed.prompt(), .save = [choice](const auto&) { return choice; }}));
  }
  void check() {
    const auto after = world.read(path);
    ASSERT_EQ(after->records.count(), stored.size());
    for (std::size_t i = 0; i < stored.size(); ++i) {
      const std::uint32_t position = positionOf(*after, stored[i]);
      const ByteView now = after->records[position].bytes();
      const std::string& own = made.passwords[made.password_of[i]];
      const auto truth = secretsUnder(after->schema, stored[i], own);
      if (!edited[i] && closed_with.empty() && isRecordEncrypted(now)) {
        RC_ASSERT(std::ranges::equal(now, stored[i]));
      }
      // Under its own password, or under the one that was given to it on purpose.
      RC_ASSERT(secretsUnder(after->schema, now, own) == truth ||
                (!closed_with.empty() && secretsUnder(after->schema, now, closed_with) == truth));
    }
  }

  PhoneWorld world;
  ObligingDialogs dialogs;
  Platform platform{world.files, world.clock,    world.locale, world.settings,
                    dialogs,     world.instance, "/samples"};
  Application app{platform};
  EncipheredCase made;
  std::string path;
  std::vector<Bytes> stored;
  std::vector<bool> edited;
  std::string closed_with;
};

RC_GTEST_PROP(Passwords, NoOrderOfThemLosesARecord, ()) {
  PasswordSession session;
  session.open();
  for (int steps = *rc::gen::inRange(0, 4); steps > 0; --steps) {
    if (*rc::gen::inRange(0, 4) > 0) {
      session.edit();
    } else {
      session.save();
    }
  }
  session.close();
  session.check();
}

}  // namespace
}  // namespace tabelion
