// What a power cut may leave of a save. The calls of a real one are written down, and then every
// moment of it is looked at: of what was not flushed by then any part may be on the disk, in any
// order, and the file must be wholly the old or wholly the new one.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <sstream>
#include <vector>

#include "support/temporary_folder.h"

namespace tabelion {
namespace {

constexpr int kRecords = 3000;
constexpr int kNone = -1;

// One step that reaches the disk sooner or later; `durable_at` is the moment (a number of calls)
// from which it certainly has.
struct Step {
  enum Kind { kWrite, kName, kUnname } kind;
  int made_at = 0;
  int durable_at = 0;
  int file = kNone;        // that is written, or gets the name
  std::size_t offset = 0;  // of a write
  std::size_t size = 0;
  std::string name;
};

class Disk {
 public:
  Disk(const std::string& trace, std::string target, std::string folder)
      : target_(std::move(target)), folder_(std::move(folder)) {
    names_now_[target_] = 0;  // file 0 is the old one
    sizes_.push_back(0);
    std::istringstream lines(trace);
    for (std::string line; std::getline(lines, line);) call(line);
  }

  int moments() const { return calls_; }

  // All states of the target that a cut after so many calls may leave, as its file and the parts of
  // it that are there.
  template <class Look>
  void afterCut(int moment, Look look) const {
    std::vector<const Step*> certain;
    std::vector<const Step*> open;
    for (const Step& step : steps_) {
      if (step.made_at > moment) continue;
      (step.durable_at <= moment ? certain : open).push_back(&step);
    }
    ASSERT_LT(open.size(), 18u) << "too many to try all of their parts";
    for (std::size_t kept = 0; kept < std::size_t{1} << open.size(); ++kept) {
      std::map<std::string, int> names{{target_, 0}};
      std::vector<const Step*> writes;
      for (const Step& step : steps_) {
        const auto at = std::find(open.begin(), open.end(), &step);
        const bool there = at != open.end()
                               ? (kept >> (at - open.begin()) & 1) != 0
                               : std::find(certain.begin(), certain.end(), &step) != certain.end();
        if (!there) continue;
        if (step.kind == Step::kWrite) writes.push_back(&step);
        if (step.kind == Step::kName) names[step.name] = step.file;
        if (step.kind == Step::kUnname) names.erase(step.name);
      }
      const auto found = names.find(target_);
      std::size_t bytes = 0;
      for (const Step* write : writes) {
        if (found != names.end() && write->file == found->second) bytes += write->size;
      }
      look(found == names.end() ? kNone : found->second, bytes);
    }
  }

  std::size_t sizeOf(int file) const { return sizes_[static_cast<std::size_t>(file)]; }

 private:
  void call(const std::string& line) {
    ++calls_;
    std::istringstream words(line);
    std::string what;
    words >> what;
    if (what == "rename" || what == "unlink") {
      std::string from;
      std::string to;
      words >> from >> to;
      const auto at = names_now_.find(from);
      if (at == names_now_.end()) return;
      if (what == "rename") add({Step::kName, 0, 0, at->second, 0, 0, to});
      add({Step::kUnname, 0, 0, at->second, 0, 0, from});
      if (what == "rename") names_now_[to] = at->second;
      names_now_.erase(from);
      return;
    }
    int fd = kNone;
    words >> fd;
    if (what == "open") return opened(fd, words);
    if (what == "close") open_.erase(fd);
    const auto at = open_.find(fd);
    if (at == open_.end()) return;
    const int file = at->second;
    int number = 0;
    words >> number;
    if (what == "dup") open_[number] = file;
    if (what == "write" && file >= 0) {
      std::size_t& size = sizes_[static_cast<std::size_t>(file)];
      add({Step::kWrite, 0, 0, file, size, static_cast<std::size_t>(number), {}});
      size += static_cast<std::size_t>(number);
    }
    if (what == "sync") sync(file);
  }

  static constexpr int kFolder = -2;

  void opened(int fd, std::istream& words) {
    std::string path;
    words >> path;
    if (path == folder_) {
      open_[fd] = kFolder;
    } else if (path.starts_with(folder_ + "/")) {
      const auto [at, fresh] = names_now_.emplace(path, static_cast<int>(sizes_.size()));
      if (fresh) {
        add({Step::kName, 0, 0, at->second, 0, 0, path});
        sizes_.push_back(0);
      }
      open_[fd] = at->second;
    }
  }

  // A flushed file has its bytes on the disk, a flushed folder its names.
  void sync(int file) {
    for (Step& step : steps_) {
      const bool concerned = file == kFolder ? step.kind != Step::kWrite
                                             : step.kind == Step::kWrite && step.file == file;
      if (concerned) step.durable_at = std::min(step.durable_at, calls_);
    }
  }

  void add(Step step) {
    step.made_at = calls_;
    step.durable_at = 1 << 30;
    steps_.push_back(std::move(step));
  }

  std::string target_;
  std::string folder_;
  int calls_ = 0;
  std::vector<Step> steps_;
  std::vector<std::size_t> sizes_;        // of files, by number
  std::map<std::string, int> names_now_;  // as the running system sees them
  std::map<int, int> open_;               // descriptors
};

int run(const std::vector<std::string>& arguments, const std::string& trace) {
  const pid_t child = ::fork();
  if (child == 0) {
    ::setenv("LD_PRELOAD", TRACE_SHIM, 1);
    ::setenv("TRACE_FILE", trace.c_str(), 1);
    std::vector<char*> argv{const_cast<char*>(SAVE_ONCE)};
    for (const std::string& one : arguments) argv.push_back(const_cast<char*>(one.c_str()));
    argv.push_back(nullptr);
    ::execv(SAVE_ONCE, argv.data());
    ::_exit(127);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

struct Findings {
  long states = 0;
  long broken = 0;
  bool old_seen = false;
  bool new_seen = false;
  bool new_at_end = true;  // nothing else is left when the save has said that it is done
};

Findings examine(const Disk& disk, std::size_t new_size) {
  Findings findings;
  for (int moment = 0; moment <= disk.moments(); ++moment) {
    disk.afterCut(moment, [&](int file, std::size_t bytes) {
      ++findings.states;
      const bool is_new = file > 0 && bytes == new_size && disk.sizeOf(file) == new_size;
      findings.old_seen |= file == 0;
      findings.new_seen |= is_new;
      findings.broken += file != 0 && !is_new;
      if (moment == disk.moments()) findings.new_at_end &= is_new;
    });
  }
  return findings;
}

TEST(PowerLoss, LeavesTheOldFileOrTheNewOne) {
  const TemporaryFolder work;
  const TemporaryFolder log;
  const std::string file = work / "people.pdb";
  ASSERT_EQ(run({"make", file, std::to_string(kRecords)}, "/dev/null"), 0);
  ASSERT_EQ(run({"change", file, "seed"}, log / "trace"), 0);
  const std::size_t new_size = std::filesystem::file_size(file);
  const std::string trace = log.read("trace");
  const Disk disk(trace, file, work.path());
  const Findings findings = examine(disk, new_size);
  EXPECT_EQ(findings.broken, 0) << trace;
  EXPECT_TRUE(findings.old_seen && findings.new_seen);
  EXPECT_TRUE(findings.new_at_end) << "what was said to be saved is on the disk";
  std::printf("%d calls, %ld states\n", disk.moments(), findings.states);

  // The same calls without any flush leave a file that is neither: the look is sharp enough.
  std::string careless;
  std::istringstream lines(trace);
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with("sync")) careless += line + "\n";
  }
  const Findings without = examine(Disk(careless, file, work.path()), new_size);
  EXPECT_GT(without.broken, 0);
  EXPECT_FALSE(without.new_at_end);
}

}  // namespace
}  // namespace tabelion
