// SPDX-License-Identifier: MIT
// Bounded resolution: by the kernel in chunks, or by one component at a time where the kernel or a
// sandbox refuses that.
#include "platform/posix/PathResolver.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "platform/SystemConstants.h"
#include "platform/posix/ErrnoCodes.h"
#include "platform/posix/NameMapping.h"

namespace quillmarsh {
namespace {

// Longest path text given to the kernel in one piece; its own limit is 4,096 with the final NUL.
constexpr std::size_t LongestChunk = 3000;
constexpr int StartFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;

int OpenBounded(int folder, const char* path, int flags, mode_t mode) {
  open_how how{};
  how.flags = static_cast<std::uint64_t>(static_cast<unsigned>(flags));
  how.mode = (flags & O_CREAT) != 0 ? mode : 0;
  how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS | RESOLVE_NO_XDEV;
  return static_cast<int>(::syscall(SYS_openat2, folder, path, &how, sizeof how));
}

// A kernel before 5.6 does not have the call; a sandbox may refuse it with either code.
bool KernelResolvesBounded() {
  const UniqueFd root(::open("/", StartFlags));
  const UniqueFd again(root ? OpenBounded(root.Get(), ".", StartFlags, 0) : -1);
  return static_cast<bool>(again);
}

// 0 when the entry may be stepped on: no link and no mount of its own, asked without triggering an
// automount. A missing entry is left to the call that follows.
int CheckStep(int folder, const char* name, std::int64_t mountId) {
  struct statx facts {};
  if (::statx(folder, name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC,
              STATX_TYPE | STATX_MNT_ID, &facts) != 0)
    return errno == ENOENT ? 0 : errno;
  if (S_ISLNK(facts.stx_mode)) return ELOOP;
  const bool isRoot = (facts.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
  const bool isTrigger = (facts.stx_attributes & STATX_ATTR_AUTOMOUNT) != 0;
  const bool elsewhere = (facts.stx_mask & STATX_MNT_ID) != 0 && mountId >= 0 &&
                         static_cast<std::int64_t>(facts.stx_mnt_id) != mountId;
  return isRoot || isTrigger || elsewhere ? EXDEV : 0;
}

}  // namespace

std::int64_t MountIdOf(int fd) {
  struct statx facts {};
  if (::statx(fd, "", AT_EMPTY_PATH | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC, STATX_MNT_ID, &facts) ==
          0 &&
      (facts.stx_mask & STATX_MNT_ID) != 0)
    return static_cast<std::int64_t>(facts.stx_mnt_id);
  int error = 0;
  const auto text = ReadWholeFile("/proc/self/fdinfo/" + std::to_string(fd), error);
  const std::size_t place = text ? text->find("mnt_id:") : std::string::npos;
  return place == std::string::npos ? -1 : std::strtoll(text->c_str() + place + 7, nullptr, 10);
}

std::string_view DrivePath::Parent() const {
  const std::size_t slash = relative.rfind('/');
  return std::string_view(relative).substr(0, slash == std::string::npos ? 0 : slash);
}

std::string_view DrivePath::Name() const {
  const std::size_t slash = relative.rfind('/');
  return std::string_view(relative).substr(slash == std::string::npos ? 0 : slash + 1);
}

std::string JoinRelative(std::string_view folder, std::string_view name) {
  std::string path;
  path.reserve(folder.size() + name.size() + 1);
  path += folder;
  if (!folder.empty() && !name.empty()) path += '/';
  path += name;
  return path;
}

TextView WithoutLongPrefix(TextView path) {
  if (path.starts_with(u"\\\\?\\") && !path.starts_with(u"\\\\?\\UNC\\")) path.remove_prefix(4);
  return path;
}

std::uint32_t ParseDrivePath(TextView path, DrivePath& parsed) {
  path = WithoutLongPrefix(path);
  if (path.empty()) return ERROR_PATH_NOT_FOUND;
  if (path.starts_with(u"\\\\")) return ERROR_BAD_NETPATH;
  const char16_t letter =
      path[0] >= u'a' && path[0] <= u'z' ? static_cast<char16_t>(path[0] - u'a' + u'A') : path[0];
  const bool isAbsolute = path.size() >= 3 && path[1] == u':' && path[2] == u'\\';
  if (!isAbsolute || letter < u'A' || letter > u'Z') return ERROR_BAD_PATHNAME;
  parsed.letter = static_cast<char>(letter);
  parsed.relative.clear();
  parsed.relative.reserve(path.size());
  parsed.endsInBackslash = path.ends_with(u'\\');
  path.remove_prefix(3);
  while (!path.empty()) {
    const std::size_t end = path.find(u'\\');
    const TextView name = path.substr(0, end);
    path.remove_prefix(end == TextView::npos ? path.size() : end + 1);
    if (name == u"..") return ERROR_BAD_PATHNAME;
    if (name.empty() || name == u".") continue;
    if (!parsed.relative.empty()) parsed.relative += '/';
    if (!AppendNameBytes(name, parsed.relative)) return ERROR_INVALID_NAME;
  }
  return ERROR_SUCCESS;
}

PathResolver::PathResolver(bool byComponents)
    : mByComponents(byComponents || !KernelResolvesBounded()) {}

std::uint32_t PathResolver::OpenRoot(const Drive& drive, UniqueFd& root) const {
  root.Reset(::open(drive.mount->point.c_str(), StartFlags));
  if (!root) {
    const bool gone = errno == ENOENT || errno == ENOTDIR;
    return gone ? ERROR_NOT_READY : SystemErrorFromErrno(errno);
  }
  if (drive.letter == 'C') return ERROR_SUCCESS;  // "/" does not go away
  const std::int64_t id = MountIdOf(root.Get());
  return id < 0 || id == drive.mount->id ? ERROR_SUCCESS : ERROR_NOT_READY;
}

int PathResolver::OpenFolder(int root, std::string_view relative, UniqueFd& opened) const {
  return Open(root, relative, StartFlags, 0, opened);
}

int PathResolver::Open(int root, std::string_view relative, int flags, mode_t mode,
                       UniqueFd& opened) const {
  UniqueFd start;
  int folder = root;
  while (relative.size() > LongestChunk) {
    const std::size_t slash = relative.rfind('/', LongestChunk);
    if (slash == std::string_view::npos) return ENAMETOOLONG;
    UniqueFd next;
    const int error = OpenChunk(folder, relative.substr(0, slash), StartFlags, 0, next);
    if (error != 0) return error;
    start = std::move(next);
    folder = start.Get();
    relative.remove_prefix(slash + 1);
  }
  return OpenChunk(folder, relative, flags, mode, opened);
}

int PathResolver::OpenChunk(int folder, std::string_view path, int flags, mode_t mode,
                            UniqueFd& opened) const {
  if (mByComponents) return OpenByComponents(folder, path, flags, mode, opened);
  char text[LongestChunk + 1];
  if (path.empty()) path = ".";
  text[path.copy(text, LongestChunk)] = '\0';
  // The kernel asks to try again when the tree was being renamed meanwhile.
  for (int attempt = 0; attempt < 8; ++attempt) {
    // Not even the last component may be a link, which is then told as such.
    const int fd = OpenBounded(folder, text, (flags & ~O_NOFOLLOW) | O_CLOEXEC, mode);
    if (fd >= 0) {
      opened.Reset(fd);
      return 0;
    }
    if (errno != EAGAIN && errno != EINTR) return errno;
  }
  return OpenByComponents(folder, path, flags, mode, opened);
}

int PathResolver::OpenByComponents(int folder, std::string_view path, int flags, mode_t mode,
                                   UniqueFd& opened) const {
  if (path.empty() || path == ".") {
    opened.Reset(::openat(folder, ".", flags | O_CLOEXEC));
    return opened ? 0 : errno;
  }
  const std::int64_t mountId = MountIdOf(folder);
  UniqueFd current;
  while (!path.empty()) {
    const std::size_t slash = path.find('/');
    const std::string name(path.substr(0, slash));
    const bool isLast = slash == std::string_view::npos;
    path.remove_prefix(isLast ? path.size() : slash + 1);
    if (const int error = CheckStep(folder, name.c_str(), mountId)) return error;
    UniqueFd next(::openat(folder, name.c_str(),
                           (isLast ? flags : StartFlags) | O_NOFOLLOW | O_CLOEXEC, mode));
    if (!next) return errno;
    // What was opened may not be what was asked about a moment ago.
    if (MountIdOf(next.Get()) != mountId) return EXDEV;
    current = std::move(next);
    folder = current.Get();
  }
  opened = std::move(current);
  return 0;
}

bool PathResolver::LinkLeadsToFolder(int folder, const char* name, bool carefully) const {
  if (carefully) {
    open_how how{};
    how.flags = StartFlags;
    how.resolve = RESOLVE_NO_XDEV;
    return static_cast<bool>(
        UniqueFd(static_cast<int>(::syscall(SYS_openat2, folder, name, &how, sizeof how))));
  }
  struct statx facts {};
  return ::statx(folder, name, AT_NO_AUTOMOUNT, STATX_TYPE, &facts) == 0 && S_ISDIR(facts.stx_mode);
}

std::uint32_t PathResolver::CodeOfFailure(int root, std::string_view relative, int error) const {
  if (error == ENOENT || error == ENOTDIR) {
    const std::size_t slash = relative.rfind('/');
    const std::string_view parent = relative.substr(0, slash == std::string_view::npos ? 0 : slash);
    UniqueFd folder;
    if (OpenFolder(root, parent, folder) != 0) return ERROR_PATH_NOT_FOUND;
    return error == ENOENT ? ERROR_FILE_NOT_FOUND : ERROR_DIRECTORY;
  }
  return SystemErrorFromErrno(error);
}

}  // namespace quillmarsh
