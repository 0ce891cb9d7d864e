#include "services/folders.h"

#include <algorithm>
#include <map>
#include <utility>

#include "engine/ascii.h"
#include "services/file_names.h"
#include "services/message.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

constexpr char kFolderName[] = "/Tabelion";
constexpr char kOldFolderName[] = "/Tabelion3";
constexpr char kNewName[] = "Untitled";

std::optional<std::string> databaseFolder(Files& files, Volume volume) {
  const auto documents = files.documentsFolder(volume);
  if (!documents) return std::nullopt;
  const std::string target = *documents + kFolderName;
  const std::string old = *documents + kOldFolderName;
  // The old folder is made so that there is one to rename: the new name comes into being either
  // way, and never replaces a folder that has it already. Each step may fail.
  (void)files.makeFolder(old);
  (void)files.move(old, target);
  (void)files.remove(old);  // only when empty
  return target;
}

// Hidden files are other programs' business: half a download, what a card reader leaves, a copy
// that is being written.
bool isDatabaseFileName(const std::string& name) {
  if (name.size() < 4 || name.starts_with('.')) return false;
  const std::string extension = name.substr(name.size() - 4);
  return extension == ".pdb" || extension == ".PDB";
}

std::vector<std::string> databaseFileNames(Files& files, const std::string& folder) {
  std::vector<std::string> names;
  const auto entries = files.list(folder);
  if (!entries.ok()) return names;
  for (const FolderEntry& entry : *entries) {
    if (!entry.is_folder && isDatabaseFileName(entry.name)) names.push_back(entry.name);
  }
  return names;
}

DatabaseFile describe(const Application& app, const std::string& path,
                      const DatabaseSummary& summary) {
  const TextEncoding encoding = EncodingOf(app, summary.schema);
  DatabaseFile file;
  file.path = path;
  file.name = encoding.toUtf16(areaText(summary.header.name));
  file.label = file.name;
  file.category = encoding.toUtf16(areaText(summary.schema.category));
  if (file.category.empty()) file.category = kUnfiled;
  return file;
}

// As a person sorts names, upper and lower case together.
bool nameLess(const DatabaseFile& a, const DatabaseFile& b) {
  return std::pair(FoldedName(a.name), a.name) < std::pair(FoldedName(b.name), b.name);
}

// Databases of one name on one volume, in whatever case, get their file's name behind it: "Books
// (Old books.pdb)".
void tellApart(std::vector<DatabaseFile>& files) {
  std::map<std::pair<std::u16string, Volume>, int> counts;
  for (const DatabaseFile& file : files) ++counts[{FoldedName(file.name), file.volume}];
  for (DatabaseFile& file : files) {
    if (counts[{FoldedName(file.name), file.volume}] < 2) continue;
    file.label += u" (" + FromUtf8(FileNameOf(file.path)) + u")";
  }
}

struct DatabaseFolder {
  std::string path;
  Volume volume = Volume::kMain;
};

// Both folders, the main one first; the card's only where there is a card. None without the main
// one.
std::vector<DatabaseFolder> databaseFolders(Application& app) {
  std::vector<DatabaseFolder> folders;
  auto main = GetDatabaseFolder(app);
  if (!main) return folders;
  folders.push_back({*main, Volume::kMain});
  if (auto card = GetCardDatabaseFolder(app)) folders.push_back({*card, Volume::kCard});
  return folders;
}

}  // namespace

std::optional<std::string> GetDatabaseFolder(Application& app) {
  return databaseFolder(app.platform.files, Volume::kMain);
}

std::optional<std::string> GetCardDatabaseFolder(Application& app) {
  return databaseFolder(app.platform.files, Volume::kCard);
}

bool ReadDatabaseSummary(Application& app, const std::string& path, DatabaseSummary& summary) {
  Files& files = app.platform.files;
  if (readHeader(files, path, summary.header, app.engine.last_probed_header) != kProbeAccepted ||
      summary.header.record_count < kSchemaRecords) {
    return false;
  }
  const auto entry = files.readPart(path, kHeaderSize, kRecordListEntrySize);
  if (!entry.ok() || entry->size() < kRecordListEntrySize) return false;
  const auto bytes = files.readPart(path, loadBe32(entry->data()), kDatabaseRecordSize);
  if (!bytes.ok() || bytes->size() < kDatabaseRecordSize) return false;
  return readDatabaseRecord(ByteView(*bytes), summary.schema) != 0;
}

DatabaseList ListDatabases(Application& app, const std::u16string& category) {
  DatabaseList list;
  for (const auto& [folder, volume] : databaseFolders(app)) {
    const auto names = databaseFileNames(app.platform.files, folder);
    if (names.empty()) list.found_files = false;
    for (const std::string& name : names) {
      const std::string path = folder + "/" + name;
      auto summary = std::make_unique<DatabaseSummary>();
      if (!ReadDatabaseSummary(app, path, *summary)) continue;
      DatabaseFile file = describe(app, path, *summary);
      file.volume = volume;
      if (std::find(list.categories.begin(), list.categories.end(), file.category) ==
          list.categories.end()) {
        list.categories.push_back(file.category);
      }
      if (category == kAllCategories || category == file.category) {
        list.files.push_back(std::move(file));
      }
    }
  }
  std::stable_sort(list.files.begin(), list.files.end(), nameLess);
  tellApart(list.files);
  return list;
}

std::optional<std::string> FindDatabaseFile(Application& app, const std::string& path) {
  Files& files = app.platform.files;
  // What is there and cannot be read is for whoever opens it to explain.
  const auto listed = files.info(path);
  if (listed.ok() || listed.error().kind != ErrorKind::kNotFound) return path;
  for (const DatabaseFolder& folder : databaseFolders(app)) {
    std::string there = PathIn(files, folder.path, FileNameOf(path));
    if (files.info(there).ok()) return there;
  }
  return std::nullopt;
}

std::optional<std::string> MakeNewDatabaseName(Application& app) {
  const auto folder = GetDatabaseFolder(app);
  if (!folder) return std::nullopt;
  return NumberedPath(*folder, kNewName, FirstFreeNumber(app.platform.files, *folder, kNewName, 1));
}

int InstallSampleDatabases(Application& app) {
  Files& files = app.platform.files;
  const auto folder = GetDatabaseFolder(app);
  int installed = 0;
  if (!folder) return installed;
  for (const std::string& name : databaseFileNames(files, app.platform.samples_folder)) {
    const Status copied =
        files.copy(app.platform.samples_folder + "/" + name, *folder + "/" + name, false);
    if (!copied.ok()) {
      ShowMessage(app, u"Could Not Initialize Database files", u"Error!", MessageIcon::kError);
      return installed;
    }
    ++installed;
  }
  return installed;
}

}  // namespace tabelion
