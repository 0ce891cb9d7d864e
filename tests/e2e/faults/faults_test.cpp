// A save can not lose the file: whatever happens to the saving program at whichever of its system
// calls, the file afterwards is wholly the old one or wholly the new one, and the result says
// which.
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <functional>
#include <sstream>

#include "support/temporary_folder.h"

namespace tabelion {
namespace {

constexpr int kRecords = 3000;
constexpr int kSaved = 0;
constexpr int kNotSaved = 1;
constexpr int kWarned = 3;  // the new file is there, its folder not surely on the disk
constexpr int kKilled = -1;

using Prepare = std::function<void()>;

// Runs the saving program; its exit code, or kKilled. `prepare` runs in the child.
int saveOnce(const std::vector<std::string>& arguments, const Prepare& prepare = {}) {
  const pid_t child = ::fork();
  if (child == 0) {
    (void)!std::freopen("/dev/null", "w", stderr);
    std::vector<char*> argv{const_cast<char*>(SAVE_ONCE)};
    for (const std::string& argument : arguments) {
      argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);
    if (prepare) prepare();
    ::execv(SAVE_ONCE, argv.data());
    ::_exit(127);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  if (WIFEXITED(status)) return WEXITSTATUS(status);
  EXPECT_EQ(WTERMSIG(status), SIGKILL);
  return kKilled;
}

struct Fault {
  std::string mode;
  int error_number = 0;
  bool has_locks = true;  // the disk
};

class SaveFaults : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(saveOnce({"make", work / "people.pdb", std::to_string(kRecords)}), kSaved);
    old_bytes = work.read("people.pdb");
    ASSERT_EQ(saveOnce({"change", work / "people.pdb", "seed"}), kSaved);
    new_bytes = work.read("people.pdb");
    ASSERT_NE(old_bytes, new_bytes);
  }

  // A save with call `at` spoiled. Its exit code.
  int spoiledSave(const Fault& fault, int at) {
    work.write("people.pdb", old_bytes);
    log.write("calls", "");
    return saveOnce({"change", work / "people.pdb", "seed"}, [&] {
      ::setenv("LD_PRELOAD", FAULT_SHIM, 1);
      if (!fault.has_locks) ::setenv("NO_FLOCK", "1", 1);
      ::setenv("FAULT_MODE", fault.mode.c_str(), 1);
      ::setenv("FAULT_ERRNO", std::to_string(fault.error_number).c_str(), 1);
      ::setenv("FAULT_AT", std::to_string(at).c_str(), 1);
      ::setenv("FAULT_LOG", (log / "calls").c_str(), 1);
    });
  }

  // The calls of the last save, in order.
  std::vector<std::string> calls() {
    std::istringstream lines(log.read("calls"));
    std::vector<std::string> names;
    for (std::string line; std::getline(lines, line);) names.push_back(line);
    return names;
  }

  // The file is one of the two, and the one that the exit code says.
  void expectWholeFile(int exit_code) {
    const std::string bytes = work.read("people.pdb");
    ASSERT_TRUE(bytes == old_bytes || bytes == new_bytes) << bytes.size() << " bytes";
    if (exit_code != kKilled) {
      ASSERT_TRUE(exit_code == kSaved || exit_code == kNotSaved || exit_code == kWarned)
          << exit_code;
      EXPECT_EQ(bytes == old_bytes, exit_code == kNotSaved);
    }
  }

  // Nothing that lies beside the file looks like a database to a list of databases.
  void expectOnlyHiddenSiblings() {
    for (const auto& entry : std::filesystem::directory_iterator(work.path())) {
      const std::string name = entry.path().filename();
      EXPECT_TRUE(name == "people.pdb" || (name[0] == '.' && entry.path().extension() != ".pdb"))
          << name;
    }
  }

  // Spoils call 1, 2, … until a save gets through without meeting its number.
  void sweep(const Fault& fault) {
    int killed = 0;
    int failed = 0;
    int not_flushed = 0;
    int at = 1;
    for (;; ++at) {
      SCOPED_TRACE(fault.mode + " at call " + std::to_string(at));
      const int exit_code = spoiledSave(fault, at);
      killed += exit_code == kKilled;
      failed += exit_code == kNotSaved;
      not_flushed += exit_code == kWarned;
      expectWholeFile(exit_code);
      expectOnlyHiddenSiblings();
      const std::string log_text = log.read("calls");
      const bool met = log_text.find('!') != std::string::npos;
      if (fault.mode == "fail") {
        // Bytes that may not be on the disk must not take the file's place.
        const std::size_t flush = log_text.find("fsync !");
        EXPECT_EQ(log_text.find("rename", flush), std::string::npos);
      }
      // The next save works, and leaves nothing of the broken one behind.
      EXPECT_EQ(saveOnce({"change", work / "people.pdb", "seed"}), kSaved);
      EXPECT_EQ(work.read("people.pdb"), new_bytes);
      EXPECT_EQ(work.count(), 1u);
      if (HasFailure() || !met) break;
    }
    RecordProperty(fault.mode + "_calls", at - 1);
    EXPECT_EQ(killed, fault.mode == "kill" ? at - 1 : 0);
    const bool must_fail = fault.mode == "fail" || fault.mode == "rest";
    EXPECT_TRUE(must_fail ? failed > at / 4 : failed == 0) << failed;
    // The folder's opening and its flush come after the rename; a failure of either is said.
    EXPECT_TRUE(must_fail ? not_flushed >= 2 : not_flushed == 0) << not_flushed;
    std::printf("%s: %d calls, %d killed, %d failed\n", fault.mode.c_str(), at - 1, killed, failed);
  }

  TemporaryFolder work;
  TemporaryFolder log;
  std::string old_bytes;
  std::string new_bytes;
};

TEST_F(SaveFaults, KilledAtEveryCall) {
  sweep({"kill"});
  sweep({"kill", 0, false});
}

TEST_F(SaveFaults, EveryCallFails) {
  sweep({"fail", EIO});
  sweep({"fail", ENOSPC});
}

TEST_F(SaveFaults, EverythingFailsFromSomeCallOn) {
  sweep({"rest", EIO});
}

TEST_F(SaveFaults, ShortAndInterruptedCallsChangeNothing) {
  sweep({"short"});
  sweep({"interrupt"});
}

// Three programs change one file on a disk without locks, each trying again while another has it.
TEST(DiskWithoutLocks, NoUpdateIsLost) {
  constexpr int kPrograms = 3;
  constexpr int kRounds = 60;
  const TemporaryFolder work;
  work.write("a.json", R"({"name": "A", "fields": [{"name": "Name", "type": "text"}]})");
  ::setenv("XDG_CONFIG_HOME", work.path().c_str(), 1);
  const std::string cli = TABELION_CLI;
  const std::string file = work / "a.pdb";
  ASSERT_EQ(std::system((cli + " create " + file + " --schema " + work / "a.json").c_str()), 0);
  std::vector<pid_t> programs;
  for (int program = 0; program < kPrograms; ++program) {
    const pid_t child = ::fork();
    if (child == 0) {
      ::setenv("LD_PRELOAD", FAULT_SHIM, 1);
      ::setenv("NO_FLOCK", "1", 1);
      for (int round = 0; round < kRounds;) {
        const std::string name = std::to_string(program) + "-" + std::to_string(round);
        // Some are killed in the middle, whenever that is; what they did is not counted.
        if (round % 10 == 9) {
          const std::string killed = "timeout -s KILL 0.00" + std::to_string(round % 7 + 2) + " ";
          (void)!std::system((killed + cli + " add " + file + " Name=killed 2> /dev/null").c_str());
        }
        const int status =
            std::system((cli + " add " + file + " Name=" + name + " 2> /dev/null").c_str());
        if (WEXITSTATUS(status) == 0)
          ++round;
        else if (WEXITSTATUS(status) != 6)
          ::_exit(1);
      }
      ::_exit(0);
    }
    programs.push_back(child);
  }
  for (const pid_t program : programs) {
    int status = 0;
    ::waitpid(program, &status, 0);
    EXPECT_EQ(status, 0);
  }
  ASSERT_EQ(std::system(
                (cli + " check " + file + " && " + cli + " list " + file + " > " + work / "listed")
                    .c_str()),
            0);
  const std::string listed = work.read("listed");
  for (int program = 0; program < kPrograms; ++program) {
    for (int round = 0; round < kRounds; ++round) {
      const std::string name = std::to_string(program) + "-" + std::to_string(round);
      EXPECT_NE(listed.find(name), std::string::npos) << name;
    }
  }
}

TEST_F(SaveFaults, BytesAreFlushedBeforeTheNewFileTakesItsPlace) {
  ASSERT_EQ(spoiledSave({"fail"}, 0), kSaved);
  // What a power cut leaves cannot be tried here; the order of the calls can be seen.
  std::string order;
  for (const std::string& call : calls()) {
    if (call == "writev" || call == "fsync" || call == "rename") order += call[0];
  }
  // Several writes, a flush, the rename, a flush of the folder.
  EXPECT_TRUE(order.ends_with("wwfrf")) << order;
}

TEST_F(SaveFaults, FileSizeLimitLeavesTheOldFile) {
  for (std::size_t limit = 0; limit <= new_bytes.size(); limit += new_bytes.size() / 24 + 1) {
    work.write("people.pdb", old_bytes);
    const int exit_code = saveOnce({"change", work / "people.pdb", "seed"}, [&] {
      ::signal(SIGXFSZ, SIG_IGN);
      const rlimit most{limit, limit};
      ::setrlimit(RLIMIT_FSIZE, &most);
    });
    EXPECT_EQ(exit_code, kNotSaved) << limit;
    expectWholeFile(exit_code);
    EXPECT_EQ(work.count(), 1u);
  }
}

TEST_F(SaveFaults, FullDiskLeavesTheOldFile) {
  const std::size_t disk_size = 2 * new_bytes.size() + 128 * 1024;
  const std::string options = "size=" + std::to_string(disk_size);
  if (::mount("tmpfs", work.path().c_str(), "tmpfs", 0, options.c_str()) != 0) {
    GTEST_SKIP() << "a small file system can only be mounted by root";
  }
  // From no room at all to room enough.
  int failed = 0;
  for (std::size_t room = 0;; room += 8 * 1024) {
    work.write("people.pdb", old_bytes);
    work.write("ballast", std::string(disk_size, 'x'));  // fills the disk
    const auto ballast = std::filesystem::file_size(work / "ballast");
    std::filesystem::resize_file(work / "ballast", ballast > room ? ballast - room : 0);
    const int exit_code = saveOnce({"change", work / "people.pdb", "seed"});
    expectWholeFile(exit_code);
    EXPECT_EQ(work.count(), 2u);
    failed += exit_code == kNotSaved;
    if (exit_code == kSaved || HasFailure() || room > disk_size) break;
  }
  EXPECT_GT(failed, 3);
  EXPECT_EQ(work.read("people.pdb"), new_bytes);
  ::umount(work.path().c_str());
}

}  // namespace
}  // namespace tabelion
