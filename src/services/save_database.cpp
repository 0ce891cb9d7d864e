#include "services/save_database.h"

#include <string>
#include <utility>

#include "services/encryption.h"
#include "services/file_names.h"
#include "services/message.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

bool write(Application& app) {
  Database& database = CurrentDatabase(app);
  const bool was_dirty = isDirty(database);
  WaitCursor waiting(app);
  if (app.level().current_record < database.records.count()) {
    database.schema.current_record_index =
        static_cast<std::uint16_t>(app.level().current_record + kSchemaRecords);
  } else if (app.level().current_record != kNewRecord) {
    database.schema.current_record_index = 0;
  }
  if (SaveEnciphered(app, [&] { return saveDatabase(database, app.engine) == 1; })) {
    const auto info = app.platform.files.info(database.path);
    app.level().file_version = info.ok() ? info->version : 0;
    return true;
  }
  if (was_dirty) setDirty(database);
  return false;
}

// What the header of another program's version says stays in its file; ours gets the name that its
// new file has, as far as there is room for it.
bool writeBeside(Application& app) {
  Database& database = CurrentDatabase(app);
  const std::string old_path = database.path;
  const auto old_name = database.header.name;
  const std::string folder = FolderOf(old_path);
  const std::string stem = BaseNameOf(old_path) + " ";
  const int number = FirstFreeNumber(app.platform.files, folder, stem, 2);
  const std::string path = NumberedPath(folder, stem, number);
  auto lock = app.platform.files.lock(path, kLockHolder);
  if (!lock.ok()) return false;
  const std::string ending = " " + std::to_string(number);
  const std::string name = areaText(old_name);
  database.path = path;
  setAreaText(database.header.name,
              std::string(app.level().encoding.cut(name, kNameSize - 1 - ending.size())) + ending);
  if (!write(app)) {
    database.path = old_path;
    database.header.name = old_name;
    return false;
  }
  app.level().lock = std::move(*lock);
  return true;
}

}  // namespace

bool FileWasChanged(Application& app) {
  const auto info = app.platform.files.info(CurrentDatabase(app).path);
  return info.ok() && info->version != app.level().file_version;
}

SaveTarget ChooseSaveTarget(Application& app) {
  if (!FileWasChanged(app)) return SaveTarget::kItsFile;
  const bool alone = app.closing == Closing::kUnattended || app.closing == Closing::kSessionEnds;
  if (alone || !app.ask_changed_file) return SaveTarget::kFileBeside;
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

bool WriteDatabase(Application& app, SaveTarget target) {
  return target == SaveTarget::kFileBeside ? writeBeside(app) : write(app);
}

SaveResult SaveDatabase(Application& app, SaveOccasion occasion) {
  if (occasion == SaveOccasion::kTimer && FileWasChanged(app)) return SaveResult::kPutOff;
  const SaveTarget target = ChooseSaveTarget(app);
  if (target == SaveTarget::kNowhere) return SaveResult::kPutOff;
  return WriteDatabase(app, target) ? SaveResult::kSaved : SaveResult::kFailed;
}

}  // namespace tabelion
