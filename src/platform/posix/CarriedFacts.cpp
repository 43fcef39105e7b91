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

void CarryPermissions(const struct stat& source, int copy, mode_t which) {
  const mode_t permissions = source.st_mode & which;
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

void CarryFactsOfCopy(const struct stat& source, int copy) {
  CarryPermissions(source, copy, OrdinaryPermissions);
  const timespec times[2] = {{0, UTIME_OMIT}, source.st_mtim};
  (void)::futimens(copy, times);
}

void CarryFactsOfMove(int sourceFile, const struct stat& source, int copy) {
  const bool hasSameOwner = CarryOwner(source, copy);
  CarryAttributes(sourceFile, copy);
  // Special permissions of one user's file mean something else on another's.
  CarryPermissions(source, copy, hasSameOwner ? AllPermissions : OrdinaryPermissions);
  (void)::fcntl(copy, F_SETFL, ::fcntl(copy, F_GETFL) | O_NOATIME);
  const timespec times[2] = {source.st_atim, source.st_mtim};
  (void)::futimens(copy, times);
}

}  // namespace quillmarsh
