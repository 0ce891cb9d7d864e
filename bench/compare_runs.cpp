// Runs several commands in turns and prints for each the median of its wall times, its peak memory
// and the median of its processor times (its own and the system's for it), one a line:
// LABEL <tab> milliseconds <tab> KiB <tab> milliseconds.
//
//   compare_runs ROUNDS LABEL PREPARE COMMAND [LABEL PREPARE COMMAND …]
//
// PREPARE is run by the shell before each COMMAND and not measured. A COMMAND is split at spaces,
// "'" keeps words together, and a last word ">FILE" is where its output goes.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

struct Entry {
  std::string label;
  std::string prepare;
  std::vector<std::string> words;
  std::string output = "/dev/null";
  std::vector<double> milliseconds;
  std::vector<double> processor_milliseconds;
  long peak_kib = 0;
};

std::vector<std::string> splitWords(const std::string& command) {
  std::vector<std::string> words;
  std::string word;
  bool quoted = false;
  for (const char c : command) {
    if (c == '\'') {
      quoted = !quoted;
    } else if (c == ' ' && !quoted) {
      if (!word.empty()) words.push_back(word);
      word.clear();
    } else {
      word += c;
    }
  }
  if (!word.empty()) words.push_back(word);
  return words;
}

bool runOnce(Entry& entry) {
  if (!entry.prepare.empty() && std::system(entry.prepare.c_str()) != 0) return false;
  std::vector<char*> arguments;
  for (std::string& word : entry.words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  const auto begin = std::chrono::steady_clock::now();
  const pid_t child = fork();
  if (child < 0) return false;
  if (child == 0) {
    const int output = open(entry.output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    if (output < 0 || dup2(output, STDOUT_FILENO) < 0) _exit(127);
    execvp(arguments[0], arguments.data());
    _exit(127);
  }
  int status = 0;
  struct rusage usage;
  if (wait4(child, &status, 0, &usage) != child) return false;
  const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - begin;
  entry.milliseconds.push_back(taken.count());
  const auto millisecondsOf = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
  };
  entry.processor_milliseconds.push_back(millisecondsOf(usage.ru_utime) +
                                         millisecondsOf(usage.ru_stime));
  entry.peak_kib = std::max(entry.peak_kib, usage.ru_maxrss);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

double median(std::vector<double>& times) {
  std::sort(times.begin(), times.end());
  return times[times.size() / 2];
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 5 || (argc - 2) % 3 != 0) {
    std::fprintf(stderr, "usage: compare_runs ROUNDS LABEL PREPARE COMMAND …\n");
    return 2;
  }
  std::vector<Entry> entries;
  for (int i = 2; i < argc; i += 3) {
    Entry entry;
    entry.label = argv[i];
    entry.prepare = argv[i + 1];
    entry.words = splitWords(argv[i + 2]);
    if (!entry.words.empty() && entry.words.back()[0] == '>') {
      entry.output = entry.words.back().substr(1);
      entry.words.pop_back();
    }
    entries.push_back(std::move(entry));
  }
  // One round to warm the caches, which does not count.
  const int rounds = std::atoi(argv[1]);
  for (int round = 0; round <= rounds; ++round) {
    for (Entry& entry : entries) {
      if (!runOnce(entry)) {
        std::fprintf(stderr, "compare_runs: %s failed\n", entry.label.c_str());
        return 1;
      }
      if (round > 0) continue;
      entry.milliseconds.clear();
      entry.processor_milliseconds.clear();
    }
  }
  for (Entry& entry : entries) {
    std::printf("%s\t%.2f\t%ld\t%.2f\n", entry.label.c_str(), median(entry.milliseconds),
                entry.peak_kib, median(entry.processor_milliseconds));
  }
  return 0;
}
