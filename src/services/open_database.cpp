#include "services/open_database.h"

#include "security/access_rights.h"
#include "services/folders.h"
#include "services/message.h"
#include "services/recent_files.h"

namespace tabelion {
namespace {

// Whether the file is one of this system's. A file of an older format asks until the user
// gives up on it.
// Compat: answering Yes only brings the question back (OpenDatabase.LegacyFilesAskUntilNo).
int probe(Application& app, const std::string& path) {
  FileHeader header;
  Files& files = app.platform.files;
  while (readHeader(files, path, header, app.engine.last_probed_header) != kProbeAccepted) {
    if (readLegacyHeader(files, path, header, app.engine.last_probed_header) != kProbeAccepted) {
      ShowMessage(app, u"ERROR: File selected is not a Tabelion Database!", u"Update",
                  MessageIcon::kExclamation);
      return kNotADatabase;
    }
    if (Ask(app,
            u"This database file is not in the current Tabelion database format.  Would you like "
            u"to updated the database to the latest format? (Y/N)",
            u"QUESTION") != Answer::kYes) {
      return kOpenRefused;
    }
    ShowMessage(app, u"This is a pending item.", u"OpenDatabaseFile", MessageIcon::kInformation);
  }
  return kOpened;
}

bool mayOpen(Application& app, const DatabaseRecord& schema, const AccessPasswordPrompt& prompt) {
  switch (OpenCode(schema)) {
    case kOpenFreely:
      return true;
    case kOpenWithPassword:
      return prompt(areaText(schema.access_password));
    default:
      ShowMessage(app, u"Action Not Allowed for this Database!", u"ACCESS DENIED",
                  MessageIcon::kExclamation);
      return false;
  }
}

bool readIntoSlot(Application& app, const std::string& path) {
  WaitCursor waiting(app);
  Level& level = app.level();
  level.database->path = path;
  level.current_record = 0;
  if (openDatabase(*level.database, app.engine) != 1) return false;
  PrepareFormats(app);
  return true;
}

}  // namespace

int OpenDatabaseFile(Application& app, const std::string& path,
                     const AccessPasswordPrompt& ask_password) {
  if (const int probed = probe(app, path); probed != kOpened) return probed;
  Level& level = app.level();
  auto lock = app.platform.files.lock(path, kLockHolder);
  if (!lock.ok()) {
    ShowError(app, lock.error(), u"Open Database");
    return kOpenRefused;
  }
  level.lock = std::move(*lock);
  // Before anything is read, so that a change meanwhile is noticed too.
  if (const auto info = app.platform.files.info(path); info.ok())
    level.file_version = info->version;
  // The rights come first: nothing of a database that may not be opened reaches the screen. A
  // schema that cannot be read is left to the open itself, which says what is wrong.
  auto summary = std::make_unique<DatabaseSummary>();
  const bool readable = ReadDatabaseSummary(app, path, *summary);
  if (readable && !mayOpen(app, summary->schema, ask_password)) {
    LeaveLevel(app);
    return kOpenRefused;
  }
  if (!readIntoSlot(app, path)) {
    LeaveLevel(app);
    return kOpenRefused;
  }
  level.open = true;
  RememberRecentFile(app, path);
  return kOpened;
}

namespace {

// Whether the database may be closed now: saved, not to be saved, or given up by the user.
bool saveBeforeClosing(Application& app, AskBeforeSaving ask,
                       const EncryptionPasswordPrompt& prompt) {
  Database& database = CurrentDatabase(app);
  // What was only deciphered to be looked at need not go over what another program has written.
  if (!isDirty(database) && FileWasChanged(app)) return true;
  SaveTarget target = SaveTarget::kItsFile;
  if (isDirty(database)) {
    // Only a No gives up what was changed; nobody's silence does not.
    if (ask == AskBeforeSaving::kYes && !app.preferences.auto_save_on_close &&
        Ask(app, u"Save changes to this database?", u"QUESTION") == Answer::kNo) {
      return true;
    }
    target = ChooseSaveTarget(app);
    if (target == SaveTarget::kNowhere) return false;
  }
  if (!EncryptWholeDatabase(app, prompt)) return false;
  if (!isDirty(database)) return true;
  if (WriteDatabase(app, target) ||
      Ask(app, u"ERROR:File could not be saved\nClose without saving the changes?", u"Update",
          MessageIcon::kError) == Answer::kYes) {
    return true;
  }
  if (prompt) DecryptWholeDatabase(app, prompt);  // what was enciphered for closing
  return false;
}

}  // namespace

bool CloseDatabase(Application& app, AskBeforeSaving ask, const EncryptionPasswordPrompt& prompt) {
  if (IsDatabaseOpen(app) && !saveBeforeClosing(app, ask, prompt)) return false;
  closeDatabase(CurrentDatabase(app));
  LeaveLevel(app);
  return true;
}

void CloseAllDatabases(Application& app, const EncryptionPasswordPrompt& prompt) {
  while (IsDatabaseOpen(app)) {
    if (!CloseDatabase(app, AskBeforeSaving::kNo, prompt)) {
      if (app.closing != Closing::kSessionEnds) continue;  // another attempt
      LeaveLevel(app);                                     // there is no time left for one
    }
    if (app.stack.current_depth > 0) --app.stack.current_depth;
  }
}

}  // namespace tabelion
