// A started copy of the real program, without a display.
#pragma once

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace tabelion {

// Looks again and again; generous, since it only takes this long when something is wrong.
template <class Condition>
bool eventually(Condition condition) {
  using namespace std::chrono;
  const auto deadline = steady_clock::now() + seconds(30);
  while (steady_clock::now() < deadline) {
    if (condition()) return true;
    std::this_thread::sleep_for(milliseconds(5));
  }
  return condition();
}

// A program that is gone when the object goes.
class RunningProgram {
 public:
  // `errors` is the file that takes its standard error.
  RunningProgram(const std::vector<std::string>& words, const std::string& folder,
                 const std::string& errors)
      : pid_(::fork()) {
    if (pid_ != 0) return;
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    std::vector<char*> arguments;
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    const bool ready =
        ::chdir(folder.c_str()) == 0 && std::freopen(errors.c_str(), "w", stderr) != nullptr;
    if (ready) ::execv(arguments[0], arguments.data());
    ::_exit(127);
  }
  RunningProgram(RunningProgram&& other) noexcept : pid_(other.pid_), code_(other.code_) {
    other.pid_ = 0;
  }
  ~RunningProgram() {
    if (pid_ == 0 || ended()) return;
    signal(SIGKILL);
    ::waitpid(pid_, nullptr, 0);
  }

  pid_t pid() const { return pid_; }
  void signal(int number) const { ::kill(pid_, number); }
  bool ended() {
    int status = 0;
    if (!code_ && ::waitpid(pid_, &status, WNOHANG) == pid_) {
      code_ = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }
    return code_.has_value();
  }
  // The exit code, minus the signal that ended it, or none when it does not end.
  std::optional<int> wait() {
    eventually([this] { return ended(); });
    return code_;
  }

 private:
  pid_t pid_;
  std::optional<int> code_;
};

}  // namespace tabelion
