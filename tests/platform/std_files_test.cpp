#include "platform/std/std_files.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <filesystem>

#include "platform/std/posix.h"
#include "platform/std/process_mark.h"
#include "support/temporary_folder.h"

namespace tabelion {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

BytePiece pieceOf(const std::string& text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

Status replaceWith(StdFiles& files, const std::string& path, const std::string& text) {
  const BytePiece piece = pieceOf(text);
  return files.replace(path, {&piece, 1});
}

std::string textOf(const FileImage& image) {
  return {reinterpret_cast<const char*>(image.bytes.get()), image.size};
}

mode_t modeOf(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

class FilesTest : public testing::Test {
 protected:
  TemporaryFolder folder;
  StdFiles files;
};

// Root may write everything; what is about rights runs as another user in a child process.
template <class Action>
bool holdsWithoutRights(Action action) {
  const pid_t child = ::fork();
  if (child == 0) {
    if (::getuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) ::_exit(2);
    ::_exit(action() ? 0 : 1);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

TEST_F(FilesTest, ReadGivesEveryByteAtEverySize) {
  for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{(2 << 20) - 1},
                                 std::size_t{2 << 20}, std::size_t{(5 << 20) + 4097}}) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 31 + (i >> 12));
    const std::string path = folder.write("file", bytes);
    const auto whole = files.read(path);
    ASSERT_TRUE(whole.ok());
    EXPECT_TRUE(textOf(*whole) == bytes) << size;
    EXPECT_EQ(files.readStart(path, 78)->size(), std::min<std::size_t>(size, 78));
  }
}

TEST_F(FilesTest, ReadRefusesWhatIsNoFile) {
  EXPECT_EQ(files.read(folder / "none").error().kind, ErrorKind::kNotFound);
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  // Costs no room: a file of holes.
  ASSERT_EQ(::truncate(folder.write("huge", "").c_str(), (off_t{4} << 30) + 1), 0);
  for (const std::string& path :
       {folder.path(), folder / "pipe", folder / "huge", std::string("/dev/zero")}) {
    const auto result = files.read(path);
    ASSERT_FALSE(result.ok()) << path;
    EXPECT_EQ(result.error().kind, ErrorKind::kCannotOpen);
    EXPECT_THAT(result.error().text, HasSubstr(path));
  }
}

TEST_F(FilesTest, ReplaceJoinsManyPieces) {
  // More pieces than one system call takes; some touch in memory and some are empty.
  std::string all;
  for (int i = 0; i < 9000; ++i) all += std::to_string(i) + ";";
  std::vector<BytePiece> pieces;
  std::string expected;
  for (std::size_t i = 0; i + 10 < all.size(); i += 10) {
    const bool gap = i % 30 == 0;
    pieces.push_back(pieceOf(all).subspan(i, gap ? 7 : 10));
    pieces.push_back({});
    expected += all.substr(i, gap ? 7 : 10);
  }
  const std::string path = folder.write("file", "old");
  ASSERT_TRUE(files.replace(path, pieces).ok());
  EXPECT_EQ(folder.read("file"), expected);
  EXPECT_EQ(folder.count(), 1u);
}

TEST_F(FilesTest, ReplaceKeepsModeOwnerAndAttributes) {
  const std::string path = folder.write("file", "old");
  const bool has_attributes = ::setxattr(path.c_str(), "user.note", "mine", 4, 0) == 0;
  if (::getuid() == 0) {
    ASSERT_EQ(::chown(path.c_str(), 1234, 4321), 0);
  }
  ASSERT_EQ(::chmod(path.c_str(), 04640), 0);
  ASSERT_TRUE(replaceWith(files, path, "new").ok());
  EXPECT_EQ(folder.read("file"), "new");
  struct stat status {};
  ASSERT_EQ(::stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 04640u);
  if (::getuid() == 0) {
    EXPECT_EQ(status.st_uid, 1234u);
    EXPECT_EQ(status.st_gid, 4321u);
  }
  char value[8] = {};
  if (has_attributes) {
    EXPECT_EQ(::getxattr(path.c_str(), "user.note", value, sizeof value), 4);
  }
}

TEST_F(FilesTest, NewFileFollowsTheMask) {
  const mode_t mask = ::umask(027);
  ASSERT_TRUE(replaceWith(files, folder / "new", "text").ok());
  ::umask(mask);
  EXPECT_EQ(modeOf(folder / "new"), 0640u);
}

TEST_F(FilesTest, ReplaceWritesThroughLinks) {
  fs::create_directory(folder / "real");
  folder.write("real/file", "old");
  fs::create_symlink("real/file", folder / "first");
  fs::create_symlink(folder / "first", folder / "second");
  fs::create_symlink("real/later", folder / "dangling");
  ASSERT_TRUE(replaceWith(files, folder / "second", "new").ok());
  ASSERT_TRUE(replaceWith(files, folder / "dangling", "made").ok());
  EXPECT_TRUE(fs::is_symlink(folder / "first") && fs::is_symlink(folder / "second"));
  EXPECT_EQ(folder.read("real/file"), "new");
  EXPECT_EQ(folder.read("real/later"), "made");
  fs::create_symlink("loop", folder / "loop");
  EXPECT_FALSE(replaceWith(files, folder / "loop", "x").ok());
}

TEST_F(FilesTest, ReplaceRefusesWhatIsNoFile) {
  for (const std::string& path : {folder.path(), std::string("/dev/null"), folder / "no/file"}) {
    const Status result = replaceWith(files, path, "new");
    ASSERT_FALSE(result.ok()) << path;
    EXPECT_EQ(result.error().kind, ErrorKind::kRefused);
  }
  struct stat status {};
  ASSERT_EQ(::stat("/dev/null", &status), 0);
  EXPECT_TRUE(S_ISCHR(status.st_mode));
}

TEST_F(FilesTest, ReplaceSaysWhatIsProtected) {
  // The folder would let it be replaced; the file itself says no.
  const std::string path = folder.write("file", "old");
  const auto fails = [&](const std::string& reason) {
    return holdsWithoutRights([&] {
      const Status result = replaceWith(files, path, "new");
      return !result.ok() && result.error().kind == ErrorKind::kRefused &&
             result.error().text == "Could not write " + path + ": " + reason;
    });
  };
  ASSERT_EQ(::chmod(folder.path().c_str(), 0777), 0);
  ASSERT_EQ(::chmod(path.c_str(), 0444), 0);
  EXPECT_TRUE(fails("the file is read-only"));
  ASSERT_EQ(::chmod(path.c_str(), 0666), 0);
  ASSERT_EQ(::chmod(folder.path().c_str(), 0555), 0);
  EXPECT_TRUE(fails("its folder is read-only, and saving needs room beside it"));
  EXPECT_EQ(folder.read("file"), "old");
  EXPECT_EQ(folder.count(), 1u);
}

TEST_F(FilesTest, ReplaceKeepsOwnerAndGroupOrTheirRights) {
  if (::getuid() != 0) GTEST_SKIP() << "only root can give files away";
  const std::string path = folder.write("file", "old");
  ASSERT_EQ(::chmod(folder.path().c_str(), 0777), 0);
  const auto saves = [&](uid_t owner, gid_t group, mode_t mode) {
    return ::chown(path.c_str(), owner, group) == 0 && ::chmod(path.c_str(), mode) == 0 &&
           holdsWithoutRights([&] { return replaceWith(files, path, "new").ok(); });
  };
  // Ours (65534) are others to the file; who its owner's groups are is not known.
  EXPECT_TRUE(saves(0, 0, 0666)) << "everybody may do everything, before and after";
  EXPECT_TRUE(saves(1234, 65534, 0664) == false) << "its owner could only read it then";
  EXPECT_TRUE(saves(0, 65534, 0666));
  EXPECT_TRUE(saves(65534, 0, 0644)) << "the group may do no more than others";
  EXPECT_FALSE(saves(65534, 0, 0640)) << "its group could not read it any more";
  EXPECT_FALSE(saves(0, 65534, 0660)) << "root is in no group of ours";
  EXPECT_EQ(modeOf(path), 0660u);
  ASSERT_EQ(::chown(path.c_str(), 0, 65534), 0);
  EXPECT_TRUE(holdsWithoutRights([&] {
    return replaceWith(files, path, "x").error().text ==
           "Could not write " + path +
               ": its owner (root) cannot be kept, and with another one not everybody would keep "
               "their rights";
  }));
  EXPECT_EQ(folder.count(), 1u);
}

TEST_F(FilesTest, ReplaceClearsWhatAKilledWriterLeft) {
  const std::string path = folder.write("file", "old");
  const std::string own = processMark();
  const std::string ended = own.substr(0, own.rfind('-')) + "-1";
  folder.write(".file.saving-" + ended + ".1", "half of someth");
  // Being written here or elsewhere, or not ours at all.
  folder.write(".file.saving-" + own + ".1", "being wri");
  folder.write(".file.saving-0badf00d-0001-7-5.1", "being wri");
  folder.write(".file.saving-by-hand", "x");
  folder.write(".file2.saving-" + ended + ".1", "of another file");
  ASSERT_TRUE(replaceWith(files, path, "new").ok());
  EXPECT_EQ(folder.read("file"), "new");
  EXPECT_EQ(folder.count(), 5u);
}

TEST_F(FilesTest, ReplaceKeepsHardLinksOrSaysThatItCannot) {
  const std::string path = folder.write("file", "old");
  fs::create_hard_link(path, folder / "twin");
  ASSERT_TRUE(replaceWith(files, path, "new").ok());
  EXPECT_EQ(folder.read("twin"), "new");
  EXPECT_EQ(fs::hard_link_count(path), 2u);
  fs::create_directory(folder / "sub");
  fs::create_hard_link(path, folder / "sub/file");
  const Status result = replaceWith(files, path, "newer");
  ASSERT_FALSE(result.ok());
  EXPECT_THAT(result.error().text, HasSubstr("another folder (1 of its 3 hard links)"));
  EXPECT_EQ(folder.read("file") + folder.read("twin") + folder.read("sub/file"), "newnewnew");
  EXPECT_EQ(folder.count(), 3u);
}

TEST_F(FilesTest, LongNamesKeepApartSiblings) {
  const std::string one = folder / (std::string(254, 'n') + "1");
  const std::string two = folder / (std::string(254, 'n') + "2");
  ASSERT_TRUE(replaceWith(files, one, "one").ok());
  ASSERT_TRUE(replaceWith(files, two, "two").ok());
  const auto lock_one = files.lock(one, "test");
  const auto lock_two = files.lock(two, "test");
  EXPECT_TRUE(lock_one.ok() && lock_two.ok());
  EXPECT_NE(siblingPath(one, "lock"), siblingPath(two, "lock"));
  EXPECT_EQ(textOf(*files.read(one)), "one");
}

TEST_F(FilesTest, ListIsSortedAndKnowsFolders) {
  folder.write("b.pdb", "1");
  fs::create_directory(folder / "c");
  fs::create_directory_symlink("c", folder / "a");
  const auto entries = files.list(folder.path());
  ASSERT_TRUE(entries.ok());
  std::string shown;
  for (const FolderEntry& entry : *entries) shown += entry.name + (entry.is_folder ? "/ " : " ");
  EXPECT_EQ(shown, "a/ b.pdb c/ ");
  EXPECT_EQ(files.list(folder / "none").error().kind, ErrorKind::kNotFound);
}

TEST_F(FilesTest, CopyAndMoveOverwriteOnlyWhenTold) {
  const std::string from = folder.write("from", "text");
  ASSERT_EQ(::chmod(from.c_str(), 0444), 0);
  const std::string there = folder.write("there", "precious");
  EXPECT_FALSE(files.copy(from, there, false).ok());
  EXPECT_FALSE(files.move(from, there).ok());
  fs::create_symlink(there, folder / "link");
  fs::create_symlink("elsewhere", folder / "dangling");
  EXPECT_FALSE(files.copy(from, folder / "link", true).ok());
  EXPECT_FALSE(files.copy(from, folder / "dangling", false).ok());
  EXPECT_FALSE(fs::exists(folder / "elsewhere"));
  EXPECT_EQ(folder.read("there"), "precious");
  ASSERT_TRUE(files.copy(from, folder / "copy", false).ok());
  EXPECT_TRUE(modeOf(folder / "copy") & 0200);
  ASSERT_TRUE(files.copy(from, there, true).ok());
  EXPECT_EQ(folder.read("there"), "text");
  ASSERT_TRUE(files.move(from, folder / "moved").ok());
  EXPECT_FALSE(fs::exists(from));
  EXPECT_EQ(files.move(from, folder / "x").error().kind, ErrorKind::kNotFound);
  EXPECT_EQ(files.info(folder / "moved")->size, 4u);
  ASSERT_TRUE(files.makeFolder(folder / "p/q/r").ok());
  EXPECT_TRUE(files.makeFolder(folder / "p/q").ok());
  EXPECT_FALSE(files.makeFolder(folder / "copy").ok());
  EXPECT_FALSE(files.remove(folder / "p").ok());  // not empty
  EXPECT_TRUE(files.remove(folder / "p/q/r").ok());
}

TEST_F(FilesTest, MoveAcrossFileSystemsKeepsModeAndTimes) {
  struct stat here {};
  struct stat memory {};
  if (::stat("/dev/shm", &memory) != 0 || ::stat(folder.path().c_str(), &here) != 0 ||
      memory.st_dev == here.st_dev || ::access("/dev/shm", W_OK) != 0) {
    GTEST_SKIP() << "needs a second file system at /dev/shm";
  }
  const std::string from = folder.write("file", "text");
  const std::string target = "/dev/shm/" + fs::path(folder.path()).filename().string();
  ASSERT_EQ(::chmod(from.c_str(), 0604), 0);
  const timespec times[2] = {{1000000000, 0}, {1000000000, 0}};
  ASSERT_EQ(::utimensat(AT_FDCWD, from.c_str(), times, 0), 0);
  ASSERT_TRUE(files.move(from, target).ok());
  EXPECT_EQ(files.info(target)->modified, 1000000000);
  EXPECT_EQ(modeOf(target), 0604u);
  EXPECT_EQ(textOf(*files.read(target)), "text");
  EXPECT_EQ(folder.count(), 0u);
  fs::remove(target);
}

TEST_F(FilesTest, DocumentsFolderFollowsTheDesktop) {
  const std::string old_home = ::getenv("HOME") ? ::getenv("HOME") : "/";
  ::setenv("HOME", folder.path().c_str(), 1);
  ::setenv("XDG_CONFIG_HOME", (folder / "config").c_str(), 1);
  EXPECT_EQ(files.documentsFolder(Volume::kMain), folder / "Documents");
  fs::create_directory(folder / "config");
  folder.write(
      "config/user-dirs.dirs",
      "# folders\nXDG_MUSIC_DIR=\"$HOME/m\"\nXDG_DOCUMENTS_DIR=\"$HOME/My \\\"Papers\\\"\"\n");
  EXPECT_EQ(files.documentsFolder(Volume::kMain), folder / "My \"Papers\"");
  folder.write("config/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"$HOME/\"\n");  // means: none
  EXPECT_EQ(files.documentsFolder(Volume::kMain), folder / "Documents");
  ::setenv("HOME", old_home.c_str(), 1);
  ::unsetenv("XDG_CONFIG_HOME");
  StdFiles chosen({"/some/where/", "/card"});
  EXPECT_EQ(chosen.documentsFolder(Volume::kMain), "/some/where");
  EXPECT_EQ(chosen.documentsFolder(Volume::kCard), "/card");
}

}  // namespace
}  // namespace tabelion
