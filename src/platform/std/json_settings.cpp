#include "platform/std/json_settings.h"

#include <fmt/format.h>
#include <sys/stat.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string_view>

#include "platform/std/atomic_replace.h"
#include "platform/std/documents_folder.h"
#include "platform/std/file_lock.h"
#include "platform/std/posix.h"
#include "platform/std/read_file.h"

namespace tabelion {

using nlohmann::json;

struct JsonSettings::Store {
  std::string path;  // empty: there is no place for the file
  std::function<void(const std::string&)> warn;
  json content = json::object();
  struct stat seen {};  // the file's state when `content` was read; all zeros: no file
};

namespace {

constexpr const char* kBinary = "binary";

json binaryValue(std::span<const std::uint8_t> bytes) {
  std::string hex;
  for (const std::uint8_t byte : bytes) hex += fmt::format("{:02x}", byte);
  return json{{kBinary, hex}};
}

std::optional<std::vector<std::uint8_t>> bytesOf(const json& value) {
  if (!value.is_object() || !value.contains(kBinary) || !value[kBinary].is_string()) return {};
  const auto& hex = value[kBinary].get_ref<const std::string&>();
  std::vector<std::uint8_t> bytes(hex.size() / 2);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const char* const digits = hex.data() + 2 * i;
    if (std::from_chars(digits, digits + 2, bytes[i], 16).ptr != digits + 2) return {};
  }
  if (hex.size() % 2 != 0) return {};
  return bytes;
}

json textValue(const std::string& text) {
  try {
    (void)json(text).dump();  // throws for what is not UTF-8
    return text;
  } catch (const json::exception&) {
    return binaryValue({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
  }
}

std::optional<std::string> textOf(const json& value) {
  if (value.is_string()) return value.get<std::string>();
  if (value.is_boolean()) return value.get<bool>() ? "1" : "0";
  if (value.is_number_integer()) return value.dump();
  if (const auto bytes = bytesOf(value)) return std::string(bytes->begin(), bytes->end());
  return std::nullopt;
}

// Whether this is a settings file: an object of objects.
bool isSound(const json& content) {
  if (!content.is_object()) return false;
  for (const json& section : content) {
    if (!section.is_object()) return false;
  }
  return true;
}

bool unchanged(const struct stat& a, const struct stat& b) {
  return sameFile(a, b) && a.st_size == b.st_size && a.st_mtim.tv_sec == b.st_mtim.tv_sec &&
         a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

// A settings file has kilobytes. What a broken one has beyond this is not read.
constexpr std::size_t kLargestFile = std::size_t{16} << 20;
// Sections, their values, and the inside of a binary one. A library that follows a text's nesting
// with its own calls must not be given any depth.
constexpr int kDeepestNesting = 4;

// What is in the file; nothing when that is no settings file.
Result<std::optional<json>> readSettings(const std::string& path) {
  const auto bytes = readFilePart(path, 0, kLargestFile + 1);
  if (!bytes) return bytes.error();
  if (bytes->size() > kLargestFile) return std::optional<json>();
  bool too_deep = false;
  const auto watch = [&](int depth, json::parse_event_t, json&) {
    too_deep |= depth > kDeepestNesting;
    return !too_deep;
  };
  json content = json::parse(bytes->begin(), bytes->end(), watch, /*allow_exceptions=*/false);
  if (too_deep || !isSound(content)) return std::optional<json>();
  return std::optional(std::move(content));
}

const json* find(const json& content, const std::string& key, const std::string& name) {
  const auto section = content.find(key);
  if (section == content.end()) return nullptr;
  const auto value = section->find(name);
  return value == section->end() ? nullptr : &*value;
}

// The settings as they are in the file now; what cannot be read or understood is empty.
template <class Store>
const json& current(Store& store) {
  struct stat now {};
  if (store.path.empty() || ::stat(store.path.c_str(), &now) != 0) now = {};
  if (unchanged(now, store.seen)) return store.content;
  store.seen = now;
  store.content = json::object();
  if (store.path.empty()) return store.content;
  Result<std::optional<json>> read = readSettings(store.path);
  if (read && *read) {
    store.content = std::move(**read);
  } else if (store.warn && (read || read.error().kind != ErrorKind::kNotFound)) {
    store.warn(read ? fmt::format("{} is damaged; its settings are not used, and it is kept under "
                                  "another name when settings are next stored",
                                  store.path)
                    : read.error().text);
  }
  return store.content;
}

// Waits for another program's write, which takes moments.
Result<std::unique_ptr<FileLock>> lockPatiently(const std::string& path) {
  Result<std::unique_ptr<FileLock>> lock = lockFile(path, "the settings");
  for (int tries = 0; !lock && lock.error().kind == ErrorKind::kLocked && tries < 400; ++tries) {
    const timespec five_ms{0, 5'000'000};
    ::nanosleep(&five_ms, nullptr);
    lock = lockFile(path, "the settings");
  }
  return lock;
}

Status setAside(const std::string& path) {
  for (int number = 1; number <= 99; ++number) {
    const std::string name =
        number == 1 ? path + ".damaged" : fmt::format("{}.damaged{}", path, number);
    if (renameNoReplace(path, name)) return Done{};
    if (errno != EEXIST) break;
  }
  return systemError(ErrorKind::kCannotWrite, fmt::format("Could not rename the damaged {}", path),
                     errno);
}

// What a write starts from. A file that is there but cannot be read is never replaced.
Result<json> readForChange(const std::string& path) {
  Result<std::optional<json>> read = readSettings(path);
  if (!read) {
    if (read.error().kind == ErrorKind::kNotFound) return json::object();
    return read.error();
  }
  if (*read) return std::move(**read);
  if (Status aside = setAside(path); !aside) return aside.error();
  return json::object();
}

// Applies `change` to the user's file. One that leaves the content as it was writes nothing.
template <class Change>
Status update(const std::string& path, Change change) {
  if (path.empty()) {
    return makeError(ErrorKind::kCannotWrite,
                     "Could not write the settings: there is no home folder");
  }
  std::error_code error;
  std::filesystem::create_directories(folderOf(path), error);
  if (error) {
    return systemError(ErrorKind::kCannotWrite, fmt::format("Could not write {}", path),
                       error.value());
  }
  const Result<std::unique_ptr<FileLock>> lock = lockPatiently(path);
  if (!lock) return lock.error();
  Result<json> content = readForChange(path);
  if (!content) return content.error();
  json changed = *content;
  change(changed);
  if (changed == *content) return Done{};
  const std::string text = changed.dump(2, ' ', false, json::error_handler_t::replace) + "\n";
  const BytePiece piece(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
  return replaceFile(path, {&piece, 1}, Privacy::kOwnerOnly);
}

std::vector<std::string> systemConfigFolders() {
  const char* const listed = std::getenv("XDG_CONFIG_DIRS");
  std::string_view rest = listed && *listed ? listed : "/etc/xdg";
  std::vector<std::string> folders;
  while (!rest.empty()) {
    const std::size_t colon = std::min(rest.find(':'), rest.size());
    if (rest.starts_with('/')) folders.emplace_back(rest.substr(0, colon));
    rest.remove_prefix(std::min(colon + 1, rest.size()));
  }
  return folders;
}

std::string settingsPath(const std::string& folder) {
  return folder.empty() ? std::string() : folder + "/tabelion/settings.json";
}

bool isBelow(const std::string& key, const std::string& parent) {
  return key.size() > parent.size() && key.starts_with(parent) && key[parent.size()] == '\\';
}

}  // namespace

JsonSettings::JsonSettings(const JsonSettingsOptions& options) : user_(std::make_unique<Store>()) {
  user_->path = settingsPath(options.config_folder.empty() ? userConfigFolder().value_or("")
                                                           : options.config_folder);
  user_->warn = options.warn;
  for (const std::string& folder :
       options.machine_folders.empty() ? systemConfigFolders() : options.machine_folders) {
    Store& store = machine_.emplace_back();
    store.path = settingsPath(folder);
    store.warn = options.warn;
  }
}

JsonSettings::~JsonSettings() = default;

std::optional<std::string> JsonSettings::readText(SettingsRoot root, const std::string& key,
                                                  const std::string& name) {
  if (root == SettingsRoot::kUser) {
    const json* const value = find(current(*user_), key, name);
    return value ? textOf(*value) : std::nullopt;
  }
  for (Store& store : machine_) {
    if (const json* const value = find(current(store), key, name)) return textOf(*value);
  }
  return std::nullopt;
}

Status JsonSettings::writeText(const std::string& key, const std::string& name,
                               const std::string& text) {
  return update(user_->path, [&](json& content) { content[key][name] = textValue(text); });
}

Status JsonSettings::writeTexts(const std::string& key,
                                const std::vector<std::pair<std::string, std::string>>& values) {
  return update(user_->path, [&](json& content) {
    for (const auto& [name, text] : values) content[key][name] = textValue(text);
  });
}

std::optional<std::vector<std::uint8_t>> JsonSettings::readBinary(const std::string& key,
                                                                  const std::string& name) {
  const json* const value = find(current(*user_), key, name);
  return value ? bytesOf(*value) : std::nullopt;
}

Status JsonSettings::writeBinary(const std::string& key, const std::string& name,
                                 const std::vector<std::uint8_t>& bytes) {
  return update(user_->path, [&](json& content) { content[key][name] = binaryValue(bytes); });
}

std::vector<std::string> JsonSettings::subKeys(const std::string& key) {
  std::vector<std::string> names;
  for (const auto& section : current(*user_).items()) {
    if (!isBelow(section.key(), key)) continue;
    const std::size_t start = key.size() + 1;
    std::string name = section.key().substr(start, section.key().find('\\', start) - start);
    if (std::find(names.begin(), names.end(), name) == names.end()) {
      names.push_back(std::move(name));
    }
  }
  return names;
}

Status JsonSettings::deleteKey(const std::string& key) {
  return update(user_->path, [&](json& content) {
    for (auto at = content.begin(); at != content.end();) {
      at = at.key() == key || isBelow(at.key(), key) ? content.erase(at) : std::next(at);
    }
  });
}

}  // namespace tabelion
