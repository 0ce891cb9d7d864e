#include "services/open_database.h"

#include <new>

#include "security/access_rights.h"
#include "security/wipe_stack.h"
#include "services/folders.h"
#include "services/message.h"
#include "services/recent_files.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

// Whether the file is one of this system's. A file of an older format asks until the user
// gives up on it.
// Compat: answering Yes only brings the question back (OpenDatabase.LegacyFilesAskUntilNo).
int probe(Application& app, const std::string& path) {
  for (;;) {
    const auto kind = FileKindOf(app.engine, path);
    if (kind.ok() && *kind == FileKind::kDatabase) return kOpened;
    if (!kind.ok() || *kind == FileKind::kSomethingElse) {
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

bool readIntoLevel(Application& app, const std::string& path) {
  WaitCursor waiting(app);
  Level& level = app.level();
  level.current_record = 0;
  level.history.Clear();
  if (ReadFile(level.session, app.engine, path) != 1) return false;
  PrepareFormats(app);
  return true;
}

}  // namespace

int OpenDatabaseFile(Application& app, const std::string& path,
                     const AccessPasswordPrompt& ask_password) {
  if (const int probed = probe(app, path); probed != kOpened) return probed;
  const Status locked = LockFile(app.level().session, app.engine, path, kLockHolder);
  if (!locked.ok()) {
    ShowError(app, locked.error(), u"Open Database");
    return kOpenRefused;
  }
  // The rights come first: nothing of a database that may not be opened reaches the screen. A
  // schema that cannot be read is left to the open itself, which says what is wrong.
  auto summary = std::make_unique<DatabaseSummary>();
  const bool readable = ReadDatabaseSummary(app, path, *summary);
  // A password is typed in the encoding of the database that it is for.
  if (readable) app.level().encoding = EncodingOf(app, summary->schema);
  if ((readable && !mayOpen(app, summary->schema, ask_password)) || !readIntoLevel(app, path)) {
    LeaveLevel(app);
    return kOpenRefused;
  }
  if (LooksCorrupt(CurrentDatabase(app).schema)) {
    ShowMessage(app, u"This database appears to be corrupt.", u"Open Database",
                MessageIcon::kError);
    LeaveLevel(app);
    return kOpenRefused;
  }
  RememberRecentFile(app, path);
  return kOpened;
}

namespace {

constexpr char16_t kSaveQuestion[] = u"Save changes to this database?";

SaveChoice whatBecomesOfChanges(Application& app, AskBeforeSaving ask,
                                const ClosingQuestions& questions) {
  if (ask == AskBeforeSaving::kNo || app.preferences.auto_save_on_close || !questions.save ||
      IsAlone(app.closing)) {
    return SaveChoice::kSave;
  }
  return questions.save(kSaveQuestion);
}

// Whether a database that could not be written may be closed now.
bool saveElsewhere(Application& app, const ClosingQuestions& questions) {
  for (;;) {
    const std::vector<std::string> folders = OtherFolders(app);
    if (app.closing == Closing::kSessionEnds || !questions.failed_save) {
      return RescueDatabase(app, folders);
    }
    const FailedSaveAnswer answer = questions.failed_save(CurrentDatabase(app).path, folders);
    if (answer.choice == FailedSaveChoice::kStay) {
      if (app.closing == Closing::kSessionEnds) continue;
      return false;
    }
    if (answer.choice == FailedSaveChoice::kGiveUp) return true;
    if (WriteCopy(app, answer.folder)) return true;
  }
}

// Whether the database may be closed now: saved, not to be saved, or given up by the user.
bool saveBeforeClosing(Application& app, AskBeforeSaving ask, const ClosingQuestions& questions) {
  Session& session = app.level().session;
  SaveTarget target = SaveTarget::kItsFile;
  if (isDirty(*session.database)) {
    // Only a word of the user's gives up what was changed; nobody's silence does not.
    const SaveChoice choice = whatBecomesOfChanges(app, ask, questions);
    if (choice == SaveChoice::kStay) return false;
    if (choice == SaveChoice::kDiscard) {
      // What was saved in clear on the way is not left so.
      if (!session.clear_in_file || !readIntoLevel(app, session.database->path)) return true;
      session.clear_in_file = true;
    } else {
      target = ChooseSaveTarget(app);
      if (target == SaveTarget::kNowhere) return false;
    }
  } else if (FileWasChanged(app)) {
    return true;  // what was only looked at need not go over what another program has written
  }
  Sealing sealing;
  if (!EncryptWholeDatabase(app, questions.password, sealing)) return false;
  const bool writes = isDirty(*session.database) || sealing.changed;
  if (!writes || WriteDatabase(app, target, RecordsAre::kAsTheyGoIntoTheFile) ||
      saveElsewhere(app, questions))
    return true;
  UndoSealing(session, sealing);
  return false;
}

}  // namespace

bool CloseDatabase(Application& app, AskBeforeSaving ask, const ClosingQuestions& questions) {
  if (IsDatabaseOpen(app) && !saveBeforeClosing(app, ask, questions)) return false;
  closeDatabase(CurrentDatabase(app));
  LeaveLevel(app);
  wipeStack();
  return true;
}

void CloseAllDatabases(Application& app, const ClosingQuestions& questions) {
  while (IsDatabaseOpen(app)) {
    if (!CloseDatabase(app, AskBeforeSaving::kNo, questions)) {
      if (app.closing != Closing::kSessionEnds) continue;  // another attempt
      LeaveLevel(app);                                     // there is no time left for one
    }
    if (app.stack.current_depth > 0) --app.stack.current_depth;
  }
}

void EndWithoutMemory(Application& app) {
  app.open_dialogs.clear();
  app.closing = Closing::kSessionEnds;
  bool all_kept = true;
  while (IsDatabaseOpen(app)) {
    bool kept = !isDirty(CurrentDatabase(app));
    try {
      Sealing sealing;
      kept = kept ||
             (EncryptWholeDatabase(app, {}, sealing) && RescueDatabase(app, OtherFolders(app)));
    } catch (const std::bad_alloc&) {
    }
    all_kept &= kept;
    closeDatabase(CurrentDatabase(app));
    LeaveLevel(app);
    if (app.stack.current_depth > 0) --app.stack.current_depth;
  }
  app.closing = Closing::kNo;
  ShowMessage(app,
              std::u16string(u"There is not enough memory to go on, so Tabelion ends. The files "
                             u"hold what was saved last.") +
                  (all_kept ? u"" : u" What was changed since could not be kept."),
              u"Tabelion", MessageIcon::kError);
  NameRescuedDatabases(app);
}

}  // namespace tabelion
