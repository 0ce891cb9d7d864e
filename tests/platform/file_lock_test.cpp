#include "platform/std/file_lock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <filesystem>
#include <new>
#include <vector>

#include "platform/std/process_mark.h"
#include "support/temporary_folder.h"

namespace tabelion {
namespace {

using testing::HasSubstr;

TEST(FileLock, SecondHolderIsToldWhoHasIt) {
  const TemporaryFolder folder;
  const std::string path = folder.write("file", "x");
  std::filesystem::create_symlink("file", folder / "other-name");
  auto lock = lockFile(path, "tabelion");
  ASSERT_TRUE(lock.ok());
  const auto second = lockFile(folder / "other-name", "tabelion-cli");
  ASSERT_FALSE(second.ok());
  EXPECT_EQ(second.error().kind, ErrorKind::kLocked);
  EXPECT_THAT(second.error().text,
              HasSubstr("other-name is open in tabelion (process " + std::to_string(::getpid())));
  *lock = nullptr;
  EXPECT_TRUE(lockFile(path, "tabelion-cli").ok());
  EXPECT_EQ(folder.count(), 2u);  // the file and its link
}

TEST(FileLock, EndsWithItsProcess) {
  const TemporaryFolder folder;
  const std::string path = folder / "file";
  int ready[2];
  ASSERT_EQ(::pipe(ready), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    const auto lock = lockFile(path, "a program");
    (void)!::write(ready[1], lock.ok() ? "y" : "n", 1);
    ::pause();
    ::_exit(0);
  }
  char answer = 0;
  ASSERT_EQ(::read(ready[0], &answer, 1), 1);
  EXPECT_EQ(answer, 'y');
  EXPECT_THAT(lockFile(path, "tabelion").error().text,
              HasSubstr("a program (process " + std::to_string(child)));
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  EXPECT_TRUE(lockFile(path, "tabelion").ok());
  EXPECT_EQ(folder.count(), 0u);
}

TEST(FileLock, NeverHeldTwiceWhileItComesAndGoes) {
  // Processes take and release the lock in a tight loop; each release removes the lock file, which
  // is where a second holder could slip in.
  const TemporaryFolder folder;
  void* const page =
      ::mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(page, MAP_FAILED);
  struct Shared {
    std::atomic<int> inside{0};
    std::atomic<int> collisions{0};
    std::atomic<int> taken{0};
  };
  auto* const shared = new (page) Shared;
  std::vector<pid_t> children;
  for (int i = 0; i < 4; ++i) {
    const pid_t child = ::fork();
    if (child == 0) {
      for (int round = 0; round < 300;) {
        const auto lock = lockFile(folder / "file", "racer");
        if (!lock) continue;
        if (shared->inside.fetch_add(1) != 0) ++shared->collisions;
        ++shared->taken;
        ++round;
        --shared->inside;
      }
      ::_exit(0);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) ::waitpid(child, nullptr, 0);
  EXPECT_EQ(shared->collisions, 0);
  EXPECT_EQ(shared->taken, 1200);
  ::munmap(page, 4096);
}

TEST(FileLock, HeedsALockThatIsOnlyAFile) {
  // What a program leaves where the disk knows no locks.
  const TemporaryFolder folder;
  const std::string path = folder / "file";
  const std::string own = processMark();
  const std::string other_start = own.substr(0, own.rfind('-')) + "-1";
  const auto lockWith = [&](const std::string& mark) {
    folder.write(".file.lock", "tabelion, process 7 on elsewhere\n" + mark + " file\n");
    return lockFile(path, "tabelion-cli");
  };
  for (const std::string& alive : {own, std::string("0badf00d-0001-7-5"), std::string("?")}) {
    const auto lock = lockWith(alive);
    ASSERT_FALSE(lock.ok()) << alive;
    EXPECT_EQ(lock.error().text,
              path +
                  " is open in tabelion (process 7 on elsewhere); close it there "
                  "first. If that program has ended, delete " +
                  folder / ".file.lock");
  }
  EXPECT_TRUE(lockWith(other_start).ok()) << "its number belongs to another process now";
  EXPECT_EQ(folder.count(), 0u);
}

TEST(FileLock, SaysWhatIsInItsPlace) {
  const TemporaryFolder folder;
  std::filesystem::create_directory(folder / ".a.lock");
  folder.write("precious", "text");
  std::filesystem::create_symlink("precious", folder / ".b.lock");
  EXPECT_THAT(lockFile(folder / "a", "tabelion").error().text,
              HasSubstr("/.a.lock is in the way, and is not a file"));
  EXPECT_THAT(lockFile(folder / "b", "tabelion").error().text,
              HasSubstr("/.b.lock is in the way, and is a link"));
  EXPECT_EQ(folder.read("precious"), "text");
}

TEST(FileLock, HoldsForEveryNameOfAFile) {
  const TemporaryFolder folder;
  folder.write("file", "x");
  std::filesystem::create_hard_link(folder / "file", folder / "twin");
  {
    const auto lock = lockFile(folder / "file", "tabelion");
    ASSERT_TRUE(lock.ok());
    EXPECT_EQ(lockFile(folder / "twin", "tabelion-cli").error().kind, ErrorKind::kLocked);
  }
  EXPECT_EQ(folder.count(), 2u);
}

TEST(FileLock, GuardsNothingWhereNothingCanBeSaved) {
  EXPECT_TRUE(lockFile("/proc/self/status", "tabelion").ok());
  EXPECT_FALSE(lockFile("/no/such/folder/file", "tabelion").ok());
}

}  // namespace
}  // namespace tabelion
