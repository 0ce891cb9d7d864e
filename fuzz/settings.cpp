// Any bytes as a settings file: they are read, or kept beside when the first value is stored, and
// what is stored is there.
#include "platform/std/json_settings.h"

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "require.h"

namespace tabelion {
namespace {

namespace fs = std::filesystem;

// In memory where there is such a place: every write is flushed.
class Folder {
 public:
  Folder() {
    std::string name = (fs::exists("/dev/shm") ? "/dev/shm" : fs::temp_directory_path().string()) +
                       "/tabelion-fuzz-XXXXXX";
    require(::mkdtemp(name.data()) != nullptr);
    path = name;
    fs::create_directory(path / "tabelion");
  }
  ~Folder() {
    std::error_code ignored;
    fs::remove_all(path, ignored);
  }
  fs::path path;
};

std::string bytesOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void trySettings(const std::string& input) {
  static const Folder folder;
  const fs::path file = folder.path / "tabelion" / "settings.json";
  const fs::path aside = file.string() + ".damaged";
  fs::remove(aside);
  std::ofstream(file, std::ios::binary) << input;
  bool warned = false;
  JsonSettings settings(
      {folder.path, {folder.path / "none"}, [&](const std::string&) { warned = true; }});
  (void)settings.readText(SettingsRoot::kUser, "K", "a");
  (void)settings.readBinary("K", "a");
  (void)settings.subKeys("K");
  require(bytesOf(file) == input);
  require(settings.writeText("K", "fuzzed", "stored").ok());
  require(settings.readText(SettingsRoot::kUser, "K", "fuzzed") == "stored");
  require(!warned || bytesOf(aside) == input);
  require(settings.deleteKey("K").ok());
}

}  // namespace
}  // namespace tabelion

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tabelion::trySettings({reinterpret_cast<const char*>(data), size});
  return 0;
}
