#include "platform/std/keep_attributes.h"

#include <fmt/format.h>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/std/posix.h"

namespace tabelion {
namespace {

constexpr const char* kAccessList = "system.posix_acl_access";

// Extended attributes, access lists among them, as far as the file system and our rights allow.
void copyExtendedAttributes(int from, int to) {
  // A folder's default access list must not add rights that the old file did not give.
  ::fremovexattr(to, kAccessList);
  const ssize_t names_size = ::flistxattr(from, nullptr, 0);
  if (names_size <= 0) return;
  std::string names(static_cast<std::size_t>(names_size), '\0');
  const ssize_t got = ::flistxattr(from, names.data(), names.size());
  if (got <= 0) return;
  names.resize(static_cast<std::size_t>(got));
  std::vector<char> value;
  for (std::size_t at = 0; at < names.size();) {
    const char* const name = names.c_str() + at;
    at += std::string_view(name).size() + 1;
    const ssize_t value_size = ::fgetxattr(from, name, nullptr, 0);
    if (value_size < 0) continue;
    value.resize(static_cast<std::size_t>(value_size));
    const ssize_t value_got = ::fgetxattr(from, name, value.data(), value.size());
    if (value_got >= 0) {
      ::fsetxattr(to, name, value.data(), static_cast<std::size_t>(value_got), 0);
    }
  }
}

struct User {
  std::string name;  // the number where there is no name
  std::optional<std::vector<gid_t>> groups;
};

User lookUp(uid_t id) {
  std::vector<char> texts(16384);
  passwd entry{};
  passwd* found = nullptr;
  if (::getpwuid_r(id, &entry, texts.data(), texts.size(), &found) != 0 || !found) {
    return {std::to_string(id), std::nullopt};
  }
  std::vector<gid_t> groups(64);
  auto count = static_cast<int>(groups.size());
  if (::getgrouplist(entry.pw_name, entry.pw_gid, groups.data(), &count) < 0) {
    groups.resize(static_cast<std::size_t>(std::max(count, 1)));
    count = static_cast<int>(groups.size());
    if (::getgrouplist(entry.pw_name, entry.pw_gid, groups.data(), &count) < 0) count = 0;
  }
  groups.resize(static_cast<std::size_t>(count));
  return {entry.pw_name, std::move(groups)};
}

// Whether everybody may do with a file of `fresh`'s owner and group what they may do with the old
// one, under one mode.
bool keepsRights(int old_fd, const struct stat& old, const struct stat& fresh, const User& owner) {
  if (::fgetxattr(old_fd, kAccessList, nullptr, 0) > 0) return false;  // rights beyond the mode
  if (old.st_mode & (S_ISUID | S_ISGID)) return false;
  const mode_t user = old.st_mode >> 6 & 7;
  const mode_t group = old.st_mode >> 3 & 7;
  const mode_t others = old.st_mode & 7;
  if (old.st_gid != fresh.st_gid && group != others) return false;
  if (old.st_uid == fresh.st_uid) return true;
  mode_t left = group & others;  // to the old owner, of whom it may not be known where they belong
  if (owner.groups) {
    const auto& groups = *owner.groups;
    left = std::find(groups.begin(), groups.end(), fresh.st_gid) != groups.end() ? group : others;
  }
  return (user & ~left) == 0;
}

Error refused(std::string reason) {
  return makeError(ErrorKind::kRefused, std::move(reason));
}

// Done where they need not be kept, too.
Status keepOwner(int old_fd, const struct stat& old, int file) {
  struct stat fresh {};
  if (::fstat(file, &fresh) != 0) return refused(reasonInWords(errno));
  if (old.st_uid == fresh.st_uid && old.st_gid == fresh.st_gid) return Done{};
  if (::fchown(file, old.st_uid, old.st_gid) == 0) return Done{};
  // The group alone can be kept by its members.
  if (::fchown(file, static_cast<uid_t>(-1), old.st_gid) == 0) fresh.st_gid = old.st_gid;
  const User owner = lookUp(old.st_uid);
  if (keepsRights(old_fd, old, fresh, owner)) return Done{};
  if (old.st_uid == fresh.st_uid) {
    return refused(
        "its group cannot be kept, and with another one not everybody would keep their rights");
  }
  return refused(fmt::format(
      "its owner ({}) cannot be kept, and with another one not everybody would keep their rights",
      owner.name));
}

}  // namespace

Status keepAttributes(int old_fd, const struct stat& old, int fresh) {
  if (Status owner = keepOwner(old_fd, old, fresh); !owner.ok()) return owner;
  copyExtendedAttributes(old_fd, fresh);
  // Last, because a new owner takes bits away. A file system that knows no modes refuses, though
  // the new file has what all its files have.
  const mode_t mode = old.st_mode & 07777;
  if (::fchmod(fresh, mode) == 0) return Done{};
  const int error_number = errno;
  struct stat now {};
  if (::fstat(fresh, &now) == 0 && (now.st_mode & 07777) == mode) return Done{};
  return refused(fmt::format("its mode could not be kept: {}", reasonInWords(error_number)));
}

}  // namespace tabelion
