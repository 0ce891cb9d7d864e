#include "services/save_database.h"

#include <string>
#include <utility>

#include "services/file_names.h"
#include "services/folders.h"
#include "services/message.h"
#include "services/screen_text.h"
#include "services/setting_table.h"

namespace tabelion {
namespace {

bool write(Application& app, RecordsAre records) {
  Level& level = app.level();
  Database& database = CurrentDatabase(app);
  WaitCursor waiting(app);
  if (level.current_record < database.records.count()) {
    database.schema.current_record_index =
        static_cast<std::uint16_t>(level.current_record + kSchemaRecords);
  } else if (level.current_record != kNewRecord) {
    database.schema.current_record_index = 0;
  }
  const auto write_file = records == RecordsAre::kAsOpened ? WriteFile : WriteSealed;
  const Status written = write_file(level.session, app.engine);
  level.save_failure = written.ok() ? "" : written.error().text;
  return written.ok();
}

// Goes on with another file.
bool writeTo(Application& app, const std::string& path, RecordsAre records) {
  Session& session = app.level().session;
  auto lock = app.platform.files.lock(path, kLockHolder);
  if (!lock.ok()) {
    app.level().save_failure = lock.error().text;
    return false;
  }
  const std::string old_path = std::exchange(session.database->path, path);
  if (!write(app, records)) {
    session.database->path = old_path;
    return false;
  }
  session.lock = std::move(*lock);
  return true;
}

// What the header of another program's version says stays in its file; ours gets the name that its
// new file has, as far as there is room for it.
bool writeBeside(Application& app, RecordsAre records) {
  Database& database = CurrentDatabase(app);
  const auto old_name = database.header.name;
  const std::string folder = FolderOf(database.path);
  const std::string stem = BaseNameOf(database.path) + " ";
  const int number = FirstFreeNumber(app.platform.files, folder, stem, 2);
  const std::string ending = " " + std::to_string(number);
  const std::string name = areaText(old_name);
  setAreaText(database.header.name,
              std::string(app.level().encoding.cut(name, kNameSize - 1 - ending.size())) + ending);
  if (writeTo(app, NumberedPath(folder, stem, number), records)) return true;
  database.header.name = old_name;
  return false;
}

}  // namespace

std::u16string SaveFailureText(const Application& app) {
  const std::string& reason = app.level().save_failure;
  const std::u16string text = u"ERROR:File could not be saved";
  return reason.empty() ? text : text + u"\n" + FromUtf8(reason);
}

bool FileWasChanged(Application& app) {
  return FileWasChanged(app.level().session, app.platform.files);
}

SaveTarget ChooseSaveTarget(Application& app) {
  if (!FileWasChanged(app)) return SaveTarget::kItsFile;
  if (IsAlone(app.closing) || !app.ask_changed_file) return SaveTarget::kFileBeside;
  switch (app.ask_changed_file(CurrentDatabase(app).path)) {
    case ChangedFileChoice::kOverwrite:
      return SaveTarget::kItsFile;
    case ChangedFileChoice::kKeepBoth:
      return SaveTarget::kFileBeside;
    case ChangedFileChoice::kCancel:
      break;
  }
  return SaveTarget::kNowhere;
}

bool WriteDatabase(Application& app, SaveTarget target, RecordsAre records) {
  return target == SaveTarget::kFileBeside ? writeBeside(app, records) : write(app, records);
}

std::vector<std::string> OtherFolders(Application& app) {
  Files& files = app.platform.files;
  const std::string own = FolderOf(CurrentDatabase(app).path);
  std::vector<std::string> folders;
  for (const auto& folder : {GetDatabaseFolder(app), files.documentsFolder(Volume::kMain),
                             GetCardDatabaseFolder(app), files.stateFolder()}) {
    if (folder && *folder != own) folders.push_back(*folder);
  }
  return folders;
}

bool WriteCopy(Application& app, const std::string& folder) {
  Files& files = app.platform.files;
  if (!files.makeFolder(folder).ok()) return false;
  const std::string path = CurrentDatabase(app).path;
  const std::string stem = BaseNameOf(path) + " ";
  std::string copy = PathIn(files, folder, FileNameOf(path));
  if (files.info(copy).ok()) {
    copy = NumberedPath(folder, stem, FirstFreeNumber(files, folder, stem, 2));
  }
  return writeTo(app, copy, RecordsAre::kAsTheyGoIntoTheFile);
}

bool RescueDatabase(Application& app, const std::vector<std::string>& folders) {
  const std::string path = CurrentDatabase(app).path;
  for (const std::string& folder : folders) {
    if (!WriteCopy(app, folder)) continue;
    Settings& settings = app.platform.settings;
    unsigned number = 0;
    while (!ReadSetting(settings, Setting::kRescuedFile, number).value_or("").empty()) ++number;
    WriteSetting(settings, Setting::kRescuedFile, path, number);
    WriteSetting(settings, Setting::kRescuedCopy, CurrentDatabase(app).path, number);
    return true;
  }
  return false;
}

void NameRescuedDatabases(Application& app) {
  Settings& settings = app.platform.settings;
  for (unsigned number = 0;; ++number) {
    const std::string path = ReadSetting(settings, Setting::kRescuedFile, number).value_or("");
    if (path.empty()) return;
    const std::string copy = ReadSetting(settings, Setting::kRescuedCopy, number).value_or("");
    WriteSetting(settings, Setting::kRescuedFile, "", number);
    WriteSetting(settings, Setting::kRescuedCopy, "", number);
    ShowMessage(app,
                u"When the program had to end, \"" + FromUtf8(path) +
                    u"\" could not be saved. It is, with what was changed, in \"" + FromUtf8(copy) +
                    u"\".",
                u"Update", MessageIcon::kExclamation);
  }
}

SaveResult SaveDatabase(Application& app, SaveOccasion occasion) {
  if (occasion == SaveOccasion::kTimer && FileWasChanged(app)) return SaveResult::kPutOff;
  const SaveTarget target = ChooseSaveTarget(app);
  if (target == SaveTarget::kNowhere) return SaveResult::kPutOff;
  return WriteDatabase(app, target, RecordsAre::kAsOpened) ? SaveResult::kSaved
                                                           : SaveResult::kFailed;
}

}  // namespace tabelion
