// SPDX-License-Identifier: MIT
// The order matters: a change of the owner takes special permissions away, and a read-only file
// takes no extended attributes.
#include "platform/posix/CarriedFacts.h"

#include <fcntl.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cstring>
#include <string>

namespace quillmarsh {
namespace {

constexpr mode_t OrdinaryPermissions = 0777;
constexpr mode_t AllPermissions = 07777;
constexpr std::size_t LargestAttribute = 65536;  // and the longest list of their names

std::string AccessListOf(int file) {
  std::string list(LargestAttribute, '\0');
  const ssize_t size = ::fgetxattr(file, "system.posix_acl_access", list.data(), list.size());
  list.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
  return list;
}

// What the copy's group may do. With an access list the group's permissions in the mode are only
// the most that the list gives to anybody, and say nothing about the group without it; and what was
// meant for one group is not meant for another.
mode_t GroupPermissions(int sourceFile, const struct stat& source, int copy) {
  const mode_t group = source.st_mode & S_IRWXG;
  const std::string list = AccessListOf(sourceFile);
  if (!list.empty() && list != AccessListOf(copy)) return 0;
  struct stat made {};
  const bool isSameGroup = ::fstat(copy, &made) == 0 && made.st_gid == source.st_gid;
  return isSameGroup ? group : group & ((source.st_mode & S_IRWXO) << 3U);
}

void CarryPermissions(int sourceFile, const struct stat& source, int copy, mode_t which) {
  const mode_t permissions =
      (source.st_mode & which & ~S_IRWXG) | GroupPermissions(sourceFile, source, copy);
  struct stat made {};
  if (::fchmod(copy, permissions) != 0 && (permissions & S_IWUSR) == 0 && ::fstat(copy, &made) == 0)
    (void)::fchmod(copy, made.st_mode & 0555U);
}

// Whether both are the source's then.
bool CarryOwner(const struct stat& source, int copy) {
  const bool isGiven = ::fchown(copy, source.st_uid, source.st_gid) == 0 ||
                       ::fchown(copy, static_cast<uid_t>(-1), source.st_gid) == 0;
  struct stat made {};
  return isGiven && ::fstat(copy, &made) == 0 && made.st_uid == source.st_uid &&
         made.st_gid == source.st_gid;
}

void CarryAttributes(int sourceFile, int copy) {
  std::string names(LargestAttribute, '\0');
  const ssize_t length = ::flistxattr(sourceFile, names.data(), names.size());
  if (length <= 0) return;
  names.resize(static_cast<std::size_t>(length));
  std::string value(LargestAttribute, '\0');
  for (const char* name = names.data(); name < names.data() + length;
       name += std::strlen(name) + 1) {
    const ssize_t size = ::fgetxattr(sourceFile, name, value.data(), value.size());
    if (size >= 0) (void)::fsetxattr(copy, name, value.data(), static_cast<std::size_t>(size), 0);
  }
}

}  // namespace

void CarryFactsOfCopy(int sourceFile, const struct stat& source, int copy) {
  CarryPermissions(sourceFile, source, copy, OrdinaryPermissions);
  const timespec times[2] = {{0, UTIME_OMIT}, source.st_mtim};
  (void)::futimens(copy, times);
}

void CarryFactsOfReplaced(int replaced, int file) {
  struct stat facts {};
  if (::fstat(replaced, &facts) != 0) return;
  const bool hasSameOwner = CarryOwner(facts, file);
  CarryAttributes(replaced, file);
  // Special permissions of one user's file mean something else on another's.
  CarryPermissions(replaced, facts, file, hasSameOwner ? AllPermissions : OrdinaryPermissions);
}

void CarryFactsOfMove(int sourceFile, const struct stat& source, int copy) {
  const bool hasSameOwner = CarryOwner(source, copy);
  CarryAttributes(sourceFile, copy);
  // Special permissions of one user's file mean something else on another's.
  CarryPermissions(sourceFile, source, copy, hasSameOwner ? AllPermissions : OrdinaryPermissions);
  (void)::fcntl(copy, F_SETFL, ::fcntl(copy, F_GETFL) | O_NOATIME);
  const timespec times[2] = {source.st_atim, source.st_mtim};
  (void)::futimens(copy, times);
}

}  // namespace quillmarsh
