// SPDX-License-Identifier: MIT
// Opening and making the folders of a trash, one step at a time from an open handle.
#include "platform/posix/TrashPlaces.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <utility>

#include "platform/SystemConstants.h"
#include "platform/posix/ErrnoCodes.h"

namespace quillmarsh {
namespace {

constexpr std::string_view SharedName = ".Trash";
constexpr std::string_view OwnPrefix = ".Trash-";

struct OpenedFolder {
  UniqueFd fd;
  bool isMade = false;
};

// Answers an errno.
int OpenOrMake(const PathResolver& resolver, int parent, const std::string& name,
               ChangePermit& permit, OpenedFolder& folder) {
  const int missing = resolver.OpenFolder(parent, name, folder.fd);
  if (missing != ENOENT) return missing;
  const int error = permit.Use([&] { return ::mkdirat(parent, name.c_str(), 0700); });
  if (error != 0 && error != EEXIST) return error;
  folder.isMade = error == 0;
  return resolver.OpenFolder(parent, name, folder.fd);
}

struct Ownership {
  bool isOwn = false;
  bool isSticky = false;
};

Ownership OwnershipOf(int folder) {
  struct stat facts {};
  if (::fstat(folder, &facts) != 0) return {};
  return {facts.st_uid == ::getuid(), (facts.st_mode & S_ISVTX) != 0};
}

// The two folders of a trash.
std::uint32_t OpenInside(const PathResolver& resolver, int folder, ChangePermit& permit,
                         TrashPlace& trash) {
  for (const auto& [name, opened] : {std::pair{"files", &trash.files}, {"info", &trash.info}}) {
    OpenedFolder inside;
    if (const int error = OpenOrMake(resolver, folder, name, permit, inside))
      return SystemErrorFromErrno(error);
    if (!OwnershipOf(inside.fd.Get()).isOwn) return ERROR_ACCESS_DENIED;
    *opened = SharedFd(std::move(inside.fd));
  }
  return ERROR_SUCCESS;
}

// A trash that this user owns. Some file systems make every folder somebody else's; such a one,
// when it was made just now, goes again.
std::uint32_t OpenOwned(const PathResolver& resolver, int parent, const std::string& name,
                        ChangePermit& permit, TrashPlace& trash) {
  OpenedFolder folder;
  if (const int error = OpenOrMake(resolver, parent, name, permit, folder))
    return SystemErrorFromErrno(error);
  if (OwnershipOf(folder.fd.Get()).isOwn)
    return OpenInside(resolver, folder.fd.Get(), permit, trash);
  if (folder.isMade)
    (void)permit.Use([&] { return ::unlinkat(parent, name.c_str(), AT_REMOVEDIR); });
  return ERROR_ACCESS_DENIED;
}

// An administrator with another user's home makes nothing there, where that user could neither
// empty nor fill it.
bool IsMissingInForeign(const PathResolver& resolver, int parent, const std::string& name) {
  UniqueFd folder;
  return resolver.OpenFolder(parent, name, folder) == ENOENT && !OwnershipOf(parent).isOwn;
}

std::uint32_t OpenHome(const PathResolver& resolver, UniqueFd root, const Located& home,
                       ChangePermit& permit, TrashPlace& trash) {
  UniqueFd parent = std::move(root);
  std::string_view rest = home.path.Parent();
  while (!rest.empty()) {
    const std::size_t slash = std::min(rest.find('/'), rest.size());
    OpenedFolder folder;
    const std::string name(rest.substr(0, slash));
    if (IsMissingInForeign(resolver, parent.Get(), name)) return ERROR_ACCESS_DENIED;
    if (const int error = OpenOrMake(resolver, parent.Get(), name, permit, folder))
      return SystemErrorFromErrno(error);
    parent = std::move(folder.fd);
    rest.remove_prefix(std::min(slash + 1, rest.size()));
  }
  const std::string name(home.path.Name());
  if (IsMissingInForeign(resolver, parent.Get(), name)) return ERROR_ACCESS_DENIED;
  return OpenOwned(resolver, parent.Get(), name, permit, trash);
}

bool IsNumber(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

// By its name below the top of its volume.
bool LiesInTrashOfVolume(std::string_view relative) {
  const std::size_t slash = std::min(relative.find('/'), relative.size());
  const std::string_view first = relative.substr(0, slash);
  if (first.starts_with(OwnPrefix)) return IsNumber(first.substr(OwnPrefix.size()));
  return first == SharedName;
}

bool IsOrLiesBelow(std::string_view path, std::string_view folder) {
  return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

}  // namespace

std::uint32_t OpenTrash(const PathResolver& resolver, TrashKind kind, const Located& place,
                        ChangePermit& permit, TrashPlace& trash) {
  UniqueFd root;
  if (const std::uint32_t error = resolver.OpenRoot(*place.drive, root)) return error;
  if (kind == TrashKind::Home) return OpenHome(resolver, std::move(root), place, permit, trash);
  const std::string user = std::to_string(::getuid());
  if (kind == TrashKind::Own)
    return OpenOwned(resolver, root.Get(), std::string(OwnPrefix) + user, permit, trash);
  // Everybody's: only the sticky bit keeps one user's trash from another.
  UniqueFd shared;
  if (const int error = resolver.OpenFolder(root.Get(), SharedName, shared))
    return SystemErrorFromErrno(error);
  if (!OwnershipOf(shared.Get()).isSticky) return ERROR_ACCESS_DENIED;
  return OpenOwned(resolver, shared.Get(), user, permit, trash);
}

bool TouchesTrash(const Located& located, const Located& home) {
  const std::string& path = located.path.relative;
  if (LiesInTrashOfVolume(path)) return true;
  if (home.drive == nullptr || home.drive->letter != located.drive->letter) return false;
  if (home.path.relative.empty()) return true;
  return IsOrLiesBelow(path, home.path.relative) || IsOrLiesBelow(home.path.relative, path);
}

}  // namespace quillmarsh
