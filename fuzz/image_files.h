// The least that the engine needs to open one image: a file at any path, nothing else.
#pragma once

#include <algorithm>

#include "engine/bytes.h"
#include "platform/clock.h"
#include "platform/files.h"

namespace tabelion {

class FixedClock : public Clock {
 public:
  CalendarTime utc() override { return {.year = 2020}; }
  CalendarTime local() override { return {.year = 2020}; }
  CalendarTime localTimeOf(std::int64_t) override { return {.year = 2020}; }
};

class ImageFiles : public Files {
 public:
  explicit ImageFiles(ByteView image) : image_(image) {}

  Result<FileImage> read(const std::string&) override {
    // A copy of exact size, so that a read past its end is seen.
    std::shared_ptr<std::uint8_t[]> bytes(new std::uint8_t[image_.size()]);
    std::copy(image_.begin(), image_.end(), bytes.get());
    return FileImage{bytes, image_.size()};
  }
  Result<std::vector<std::uint8_t>> readPart(const std::string&, std::uint64_t offset,
                                             std::size_t limit) override {
    const ByteView rest = image_.subspan(std::min<std::size_t>(offset, image_.size()));
    const ByteView part = rest.first(std::min(limit, rest.size()));
    return std::vector<std::uint8_t>(part.begin(), part.end());
  }
  Status replace(const std::string&, std::span<const BytePiece>) override { return none(); }
  Result<std::unique_ptr<FileLock>> lock(const std::string&, const std::string&) override {
    return none();
  }
  Result<std::vector<FolderEntry>> list(const std::string&) override { return none(); }
  Result<FileInfo> info(const std::string&) override { return none(); }
  Status copy(const std::string&, const std::string&, bool) override { return none(); }
  Status move(const std::string&, const std::string&) override { return none(); }
  Status remove(const std::string&) override { return none(); }
  Status makeFolder(const std::string&) override { return none(); }
  std::optional<std::string> documentsFolder(Volume) override { return std::nullopt; }

 private:
  static Error none() { return makeError(ErrorKind::kRefused, "only one image here"); }
  ByteView image_;
};

}  // namespace tabelion
