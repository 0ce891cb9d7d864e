// Files where "-" is standard input and standard output, and where pipes are files to read.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "cli/kit/streams.h"
#include "platform/files.h"

namespace tabelion {

inline constexpr const char* kPipe = "-";

using Sleep = std::function<void(std::chrono::milliseconds)>;

// Standard input can be asked for as one file only: a second one finds it used up. Everything but
// reading and writing goes to the real files.
class PipedFiles : public Files {
 public:
  PipedFiles(Files& real, Streams& streams) : real_(real), streams_(streams) {}

  // How long lock() waits for another program to give a file back.
  void setPatience(std::chrono::milliseconds patience, Sleep sleep) {
    patience_ = patience;
    sleep_ = std::move(sleep);
  }

  // Why the last read() failed; opening a database tells only that it did.
  const std::optional<Error>& readError() const { return read_error_; }

  Result<FileImage> read(const std::string& path) override;
  Result<std::vector<std::uint8_t>> readPart(const std::string& path, std::uint64_t offset,
                                             std::size_t limit) override;
  Status replace(const std::string& path, std::span<const BytePiece> pieces) override;
  Result<std::unique_ptr<FileLock>> lock(const std::string& path,
                                         const std::string& holder) override;

  Result<std::vector<FolderEntry>> list(const std::string& folder) override {
    return real_.list(folder);
  }
  Result<FileInfo> info(const std::string& path) override;
  Status copy(const std::string& from, const std::string& to, bool overwrite) override {
    return real_.copy(from, to, overwrite);
  }
  Status move(const std::string& from, const std::string& to) override {
    return real_.move(from, to);
  }
  Status remove(const std::string& path) override { return real_.remove(path); }
  Status makeFolder(const std::string& path) override { return real_.makeFolder(path); }
  std::optional<std::string> documentsFolder(Volume volume) override {
    return real_.documentsFolder(volume);
  }

 private:
  Result<FileImage> readInput();
  Result<FileImage> readNamed(const std::string& path);
  // Whether the path is that of a pipe, which is then read.
  bool isPipe(const std::string& path);

  Result<std::unique_ptr<FileLock>> lockPatiently(const std::string& path,
                                                  const std::string& holder);

  Files& real_;
  Streams& streams_;
  std::optional<FileImage> started_;  // input of which only the start was wanted so far
  bool input_used_ = false;
  std::optional<Error> read_error_;
  std::map<std::string, Result<FileImage>> pipes_;
  std::chrono::milliseconds patience_{};
  Sleep sleep_;
};

}  // namespace tabelion
