// What the whole program shares: built once at its start and handed on by reference; a test builds
// its own. Owned by the shell, used by every screen on the one user-interface thread.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/database.h"
#include "interchange/text_encoding.h"
#include "platform/platform.h"
#include "query/format_settings.h"
#include "query/query_settings.h"
#include "services/changes/history.h"
#include "services/preferences.h"
#include "services/session/session.h"

namespace tabelion {

inline constexpr int kStackDepth = 4;
inline constexpr std::uint32_t kNewRecord = 65000;  // record number of one that is not stored yet
inline constexpr char16_t kAllCategories[] = u"All";
inline constexpr char16_t kUnfiled[] = u"Unfiled";  // category of a database that names none

// Results of a dialog, besides those that a dialog defines itself.
inline constexpr int kDialogDone = 1;
inline constexpr int kDialogClosed = 2;
inline constexpr int kDialogAutoClosed = 10;

// The record that a search has found last, by its position in that arrangement of the records.
struct FoundRecord {
  std::uint32_t position = 0;
  std::uint64_t arrangement = 0;
};

// A database and all that belongs to looking at it: nothing about a database is the program's.
// Leaving a level is one function, LeaveLevel.
struct Level {
  Session session;
  // From what the database carries, the preferences and the locale.
  FormatSettings formats;
  TextEncoding encoding = TextEncoding::utf8();
  std::uint32_t current_record = 0;  // data record number, or kNewRecord
  bool new_record = false;
  std::optional<FoundRecord> last_found;
  History history;           // what was done to the database since it was opened
  std::string save_failure;  // why the last save failed: a sentence, UTF-8
};

// Level 0 holds the database that the user opened, deeper ones those opened through a link.
struct DatabaseStack {
  std::array<Level, kStackDepth> levels;
  int current_depth = 0;

  Level& current() { return levels[static_cast<std::size_t>(current_depth)]; }
  const Level& current() const { return levels[static_cast<std::size_t>(current_depth)]; }
};

class Screen;

// A dialog that runs.
struct OpenDialog {
  Dialog* dialog = nullptr;
  Screen* screen = nullptr;
};

// Why every open dialog is being closed, without its user having left it.
enum class Closing {
  kNo,
  kUnattended,   // nothing happened for a while
  kForAnother,   // the user wants another database, from outside the window
  kLeaving,      // the user closes the window, and can be asked
  kSessionEnds,  // now or never, and nobody can be asked
};

// Whether nobody is there to be asked.
inline bool IsAlone(Closing closing) {
  return closing == Closing::kUnattended || closing == Closing::kSessionEnds;
}

// What becomes of changes when a database is closed.
enum class SaveChoice {
  kSave,
  kDiscard,
  kStay,    // also for the Back key and Escape, so that no key that leaves throws anything away
  kNobody,  // closed by itself, unanswered
};

// What to do with a database whose file another program has changed since it was read.
enum class ChangedFileChoice { kOverwrite, kKeepBoth, kCancel };

struct Application {
  // Level 0 holds an empty database afterwards. `platform` must outlive this object.
  explicit Application(Platform& platform);
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;

  // The one that screens work on.
  Level& level() { return stack.current(); }
  const Level& level() const { return stack.current(); }

  Platform& platform;
  Engine engine;
  DatabaseStack stack;
  Preferences preferences;
  std::u16string category = kAllCategories;  // that the chooser shows
  bool record_screen_active = false;         // a screen above the chooser is open
  std::vector<OpenDialog> open_dialogs;      // above the chooser, the top one last
  Closing closing = Closing::kNo;
  // What was typed and could not be stored when nobody was there to be asked, a line each.
  std::vector<std::u16string> not_stored;
  // How a save asks about a file that another program has changed; shows the question in a dialog.
  // Without it, and when nobody can be asked, both are kept.
  std::function<ChangedFileChoice(const std::string& path)> ask_changed_file;
  // Makes the timer of automatic saving follow its period in the preferences; the main window's.
  std::function<void()> restart_auto_save;
};

// The database that screens work on; an empty one when none is open.
Database& CurrentDatabase(Application& app);
bool IsDatabaseOpen(const Application& app);
// The same and its current record, as what changes it takes them.
ChangeTarget CurrentTarget(Application& app);

// Prepares the level's formats and encoding anew; run when the preferences or its database changed.
void PrepareFormats(Application& app);

// What a query over this database takes from the preferences, the locale and the clock.
QuerySettings QuerySettingsOf(const Application& app, const Database& database);

// Leaves the current level as the start of the program makes it: with a fresh, empty database, its
// file released, nothing remembered.
void LeaveLevel(Application& app);

// Shows the hour-glass while it lives.
class WaitCursor {
 public:
  explicit WaitCursor(Application& app) : dialogs_(app.platform.dialogs) {
    dialogs_.setWaitCursor(true);
  }
  ~WaitCursor() { dialogs_.setWaitCursor(false); }
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;

 private:
  Dialogs& dialogs_;
};

}  // namespace tabelion
