#include "services/file_management.h"

#include <algorithm>

#include "services/file_names.h"
#include "services/message.h"
#include "services/open_database.h"
#include "services/screen_text.h"
#include "services/setting_table.h"

namespace tabelion {
namespace {

constexpr char kFormMarker[] = "_TBF.PDB";
constexpr char kPackageExtension[] = ".TBP";

bool exists(Files& files, const std::string& path) {
  return files.info(path).ok();
}

bool isDatabase(Files& files, const std::string& path) {
  FileHeader header;
  FileHeader probed;  // not by the user's choice, so not the one that the program remembers
  return readHeader(files, path, header, probed) == kProbeAccepted;
}

void sayNoFolder(Application& app) {
  ShowMessage(app, u"Unable to get documents path.", u"Database Info", MessageIcon::kExclamation);
}

std::optional<std::string> folderOn(Application& app, Volume volume) {
  return volume == Volume::kMain ? GetDatabaseFolder(app) : GetCardDatabaseFolder(app);
}

bool isPackage(const FolderEntry& entry) {
  const std::size_t dot = entry.name.rfind('.');
  return !entry.is_folder && dot != std::string::npos &&
         EqualIgnoringCase(entry.name.substr(dot), kPackageExtension);
}

// Whether the package has been dealt with, so that it can go.
bool takeIn(Application& app, const std::string& package, const std::string& folder) {
  Files& files = app.platform.files;
  const std::string name = BaseNameOf(package);
  const Answer wanted =
      Ask(app,
          u"\"" + FromUtf8(name) +
              u"\" has been received via Infrared or Bluetooth.\t\t\t\tWould you like to copy it "
              u"into your Tabelion Folder?",
          u"Copy?");
  if (wanted != Answer::kYes) return wanted == Answer::kNo;
  const std::string target = PathIn(files, folder, name + ".pdb");
  const auto lock = files.lock(target, kLockHolder);
  if (!lock.ok()) {
    ShowError(app, lock.error(), u"Copy?");
    return false;
  }
  const bool replace = exists(files, target);
  if (replace) {
    const Answer answer = Ask(
        app, u"The file alredy exist in Tabelion Folder. Do you want to replace It?", u"Replace?");
    if (answer != Answer::kYes) return answer == Answer::kNo;
  }
  WaitCursor waiting(app);
  const Status copied = files.copy(package, target, replace);
  if (!copied.ok()) ShowError(app, copied.error(), u"Copy?");
  return copied.ok();
}

}  // namespace

bool DeleteDatabase(Application& app, const DatabaseFile& file) {
  if (Ask(app, file.label, u"Delete?") != Answer::kYes) return false;
  if (!GetDatabaseFolder(app)) {
    sayNoFolder(app);
    return false;
  }
  // Released after the file is gone, the lock also clears away one that a killed program left.
  const auto lock = app.platform.files.lock(file.path, kLockHolder);
  if (!lock.ok()) {
    ShowError(app, lock.error(), u"Delete Database");
    return false;
  }
  if (!app.platform.files.remove(file.path).ok()) {
    ShowMessage(app, u"Unable to delete database.", u"Delete Database", MessageIcon::kExclamation);
  }
  return true;
}

void CollectReceivedFiles(Application& app) {
  Files& files = app.platform.files;
  const auto folder = GetDatabaseFolder(app);
  const auto documents = files.documentsFolder(Volume::kMain);
  if (!folder || !documents) return;
  const auto entries = files.list(*documents);
  if (!entries.ok()) return;
  for (const FolderEntry& entry : *entries) {
    const std::string package = *documents + "/" + entry.name;
    if (!isPackage(entry) || !isDatabase(files, package)) continue;
    // One that was wanted and could not be copied is the only one there is: it stays, and is
    // offered again.
    if (takeIn(app, package, *folder)) (void)files.remove(package);
    if (app.closing != Closing::kNo) return;
  }
}

std::optional<Volume> OtherVolume(Application& app, const DatabaseFile& file) {
  if (file.volume == Volume::kCard) return Volume::kMain;
  if (!GetCardDatabaseFolder(app)) return std::nullopt;
  return Volume::kCard;
}

std::optional<CalendarTime> GetFileDate(Application& app, const std::string& path, FileDate which) {
  const auto info = app.platform.files.info(path);
  if (!info.ok()) return std::nullopt;
  return app.platform.clock.localTimeOf(which == FileDate::kCreated ? info->created
                                                                    : info->modified);
}

namespace {

// A database on its way to the other volume's folder.
struct Transfer {
  Application& app;
  std::string folder;  // that it goes to
  Volume volume;
  const CopyQuestion& ask;
  std::u16string title;  // of messages
};

enum class Outcome { kComplete, kOtherKept, kFailed };

bool haveSameBytes(Files& files, const std::string& a, const std::string& b) {
  const auto info_a = files.info(a);
  const auto info_b = files.info(b);
  if (!info_a.ok() || !info_b.ok() || info_a->size != info_b->size) return false;
  const auto bytes_a = files.read(a);
  const auto bytes_b = files.read(b);
  if (!bytes_a.ok() || !bytes_b.ok() || bytes_a->size != bytes_b->size) return false;
  return std::equal(bytes_a->span().begin(), bytes_a->span().end(), bytes_b->span().begin());
}

std::optional<std::uint32_t> modificationDate(Files& files, const std::string& path, bool form) {
  FileHeader header;
  FileHeader probed;
  const int result =
      form ? readFormHeader(files, path, header) : readHeader(files, path, header, probed);
  return result == kProbeAccepted ? std::optional(header.modification_date) : std::nullopt;
}

CopyChoice choose(const Transfer& transfer, const std::string& target, bool form) {
  const int silent =
      ReadNumberSetting(transfer.app.platform.settings, Setting::kSyncOverwrite).value_or(0);
  return silent == 1 ? CopyChoice::kSync : transfer.ask(target, form);
}

// True when the newer of the two is the one that is copied. Where that cannot be told, the one that
// is there stays, since it would be lost.
bool syncReplaces(const Transfer& transfer, const std::string& source, const std::string& target,
                  bool form) {
  Files& files = transfer.app.platform.files;
  const auto ours = modificationDate(files, source, form);
  const auto theirs = modificationDate(files, target, form);
  const bool replaces = ours && theirs && *ours > *theirs;
  const std::u16string here =
      transfer.volume == Volume::kMain ? u"in the main folder" : u"on the card";
  std::u16string text = u"\"" + FromUtf8(FileNameOf(target)) + u"\" " + here;
  if (replaces) {
    text += u" was older and has been replaced.";
  } else if (ours && theirs && *ours < *theirs) {
    text += u" is newer and was kept.";
  } else {
    text += u" was kept, since neither is newer.";
  }
  ShowMessage(transfer.app, text, transfer.title, MessageIcon::kInformation);
  return replaces;
}

Outcome copyOver(const Transfer& transfer, const std::string& source, bool form) {
  Files& files = transfer.app.platform.files;
  const std::string target = PathIn(files, transfer.folder, FileNameOf(source));
  const auto lock = files.lock(target, kLockHolder);
  if (!lock.ok()) {
    ShowError(transfer.app, lock.error(), transfer.title);
    return Outcome::kFailed;
  }
  const bool replace = exists(files, target);
  if (replace) {
    if (haveSameBytes(files, source, target)) return Outcome::kComplete;
    const CopyChoice choice = choose(transfer, target, form);
    if (choice == CopyChoice::kIgnore ||
        (choice == CopyChoice::kSync && !syncReplaces(transfer, source, target, form))) {
      return Outcome::kOtherKept;
    }
  }
  WaitCursor waiting(transfer.app);
  const Status copied = files.copy(source, target, replace);
  if (copied.ok()) return Outcome::kComplete;
  ShowError(transfer.app, copied.error(), transfer.title);
  return Outcome::kFailed;
}

// The form layout that is stored with a database; none when there is none.
std::optional<std::string> formFileOf(Files& files, const std::string& path) {
  std::string form = PathIn(files, FolderOf(path), BaseNameOf(path) + kFormMarker);
  FileHeader header;
  if (readFormHeader(files, form, header) != kProbeAccepted) return std::nullopt;
  return form;
}

void removeMoved(const Transfer& transfer, const std::string& path) {
  if (const Status removed = transfer.app.platform.files.remove(path); !removed.ok()) {
    ShowError(transfer.app, removed.error(), transfer.title);
  }
}

std::optional<Transfer> prepare(Application& app, const DatabaseFile& file, Volume to,
                                const CopyQuestion& ask, const std::u16string& title) {
  const auto folder = folderOn(app, to);
  if (!folder) {
    sayNoFolder(app);
    return std::nullopt;
  }
  if (FolderOf(file.path) == *folder) return std::nullopt;
  return Transfer{app, *folder, to, ask, title};
}

}  // namespace

bool CopyDatabase(Application& app, const DatabaseFile& file, Volume to, const CopyQuestion& ask) {
  const auto transfer = prepare(app, file, to, ask, u"Copy Database");
  if (!transfer || copyOver(*transfer, file.path, false) != Outcome::kComplete) return false;
  if (const auto form = formFileOf(app.platform.files, file.path)) copyOver(*transfer, *form, true);
  return true;
}

bool MoveDatabase(Application& app, const DatabaseFile& file, Volume to, const CopyQuestion& ask) {
  const auto transfer = prepare(app, file, to, ask, u"Move Database");
  if (!transfer) return false;
  const auto lock = app.platform.files.lock(file.path, kLockHolder);
  if (!lock.ok()) {
    ShowError(app, lock.error(), transfer->title);
    return false;
  }
  if (copyOver(*transfer, file.path, false) != Outcome::kComplete) return false;
  const auto form = formFileOf(app.platform.files, file.path);
  const Outcome form_outcome = form ? copyOver(*transfer, *form, true) : Outcome::kComplete;
  if (form_outcome == Outcome::kFailed) return true;  // the two stay together where they were
  removeMoved(*transfer, file.path);
  if (form && form_outcome == Outcome::kComplete) removeMoved(*transfer, *form);
  return true;
}

}  // namespace tabelion
