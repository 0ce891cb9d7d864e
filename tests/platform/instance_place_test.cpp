#include "platform/std/instance_place.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "support/temporary_folder.h"

namespace tabelion {
namespace {

namespace fs = std::filesystem;

TEST(InstancePlace, LiesInAFolderOfThisUserAlone) {
  const TemporaryFolder folder;
  const std::string runtime = folder / "runtime";
  const std::string own = folder / "tabelion-" + std::to_string(::geteuid());
  fs::create_directory(runtime);
  fs::permissions(runtime, fs::perms::owner_all);
  ::setenv("TMPDIR", folder.path().c_str(), 1);
  const auto folderWith = [](const std::string& runtime_folder) {
    ::setenv("XDG_RUNTIME_DIR", runtime_folder.c_str(), 1);
    const auto place = findInstancePlace();
    return place ? folderOf(place->socket_path) : "refused: " + place.error().text;
  };
  EXPECT_EQ(folderWith(runtime), runtime);
  EXPECT_FALSE(fs::exists(own));
  const std::string too_long = runtime + "/" + std::string(100, 'x');
  fs::create_directory(too_long);
  fs::permissions(too_long, fs::perms::owner_all);
  for (const std::string& useless : {too_long, std::string("runtime"), folder / "none"}) {
    EXPECT_EQ(folderWith(useless), own) << useless;
  }
  fs::permissions(runtime, fs::perms::all);
  EXPECT_EQ(folderWith(runtime), own) << "others can write there";
  EXPECT_EQ(fs::status(own).permissions(), fs::perms::owner_all);

  fs::permissions(own, fs::perms::group_write, fs::perm_options::add);
  EXPECT_EQ(folderWith(""), "refused: " + own + " is not a folder of this user alone");
  fs::remove(own);
  fs::permissions(runtime, fs::perms::owner_all);
  fs::create_directory_symlink(runtime, own);
  EXPECT_EQ(folderWith(""), "refused: " + own + " is not a folder of this user alone");
  ::unsetenv("TMPDIR");
}

TEST(InstanceLock, IsHeldByOneAndNamesIt) {
  const TemporaryFolder folder;
  auto held = takeInstanceLock(folder / "lock");
  ASSERT_TRUE(held);
  const auto other = takeInstanceLock(folder / "lock");
  ASSERT_FALSE(other);
  EXPECT_EQ(other.error().kind, ErrorKind::kLocked);
  EXPECT_EQ(other.error().text,
            "Tabelion is running already (process " + std::to_string(::getpid()) + ")");
  held->close();
  EXPECT_TRUE(takeInstanceLock(folder / "lock"));
  EXPECT_FALSE(takeInstanceLock(folder / "none/lock"));
}

}  // namespace
}  // namespace tabelion
