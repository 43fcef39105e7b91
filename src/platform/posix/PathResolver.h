// SPDX-License-Identifier: MIT
// The way from a path in drive form to an open handle below the drive's root. Never follows a link,
// never crosses into another mount, never hands the kernel a path that is too long for it, and so
// reaches entries at any depth and cannot be led elsewhere by a folder that is swapped for a link.
// Holds no state that changes: any thread may use it.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "base/Text.h"
#include "platform/posix/DriveLetters.h"
#include "platform/posix/UniqueFd.h"

namespace quillmarsh {

// A path in drive form, taken apart.
struct DrivePath {
  char letter = 0;
  std::string relative;  // native bytes with slashes, no slash at either end; empty: the root
  bool endsInBackslash = false;

  // The folder that holds the entry, and the entry's name; both empty for the root.
  [[nodiscard]] std::string_view Parent() const;
  [[nodiscard]] std::string_view Name() const;
};

// A path with its drive. The drive lives as long as the table.
struct Located {
  std::shared_ptr<const DriveTable> table;
  const Drive* drive = nullptr;
  DrivePath path;
};

// A leading "\\?\" is dropped, empty components and "." are skipped. 0, or: 3 an empty path, 53 a
// network path, 161 a relative path or one with "..", 123 a name that no entry can have.
[[nodiscard]] std::uint32_t ParseDrivePath(TextView path, DrivePath& parsed);

// The path without a leading "\\?\".
[[nodiscard]] TextView WithoutLongPrefix(TextView path);

// Joins a folder's relative path and a name.
[[nodiscard]] std::string JoinRelative(std::string_view folder, std::string_view name);

class PathResolver {
 public:
  // `byComponents` goes without the kernel's own bounded resolution even where there is one.
  explicit PathResolver(bool byComponents);

  // Opens the drive's root as a place to start from. 0, or 21 when the mount that the letter stands
  // for is no longer there, or another code. Never kept for long: an open root keeps a person from
  // unmounting the drive.
  [[nodiscard]] std::uint32_t OpenRoot(const Drive& drive, UniqueFd& root) const;

  // Opens what lies at `relative` below the root with the flags (and, where it creates, the mode)
  // of openat. Answers an errno, 0 for success; ELOOP for a link, EXDEV for another mount.
  [[nodiscard]] int Open(int root, std::string_view relative, int flags, mode_t mode,
                         UniqueFd& opened) const;

  // A folder as a place to start from.
  [[nodiscard]] int OpenFolder(int root, std::string_view relative, UniqueFd& opened) const;

  // Whether a link leads to a folder. With `carefully` a link that leaves its mount is not
  // followed, since it might trigger an automount, and the answer is no.
  [[nodiscard]] bool LinkLeadsToFolder(int folder, const char* name, bool carefully) const;

  // The code for a failed Open: tells a missing entry (2) from a missing folder above it (3), and
  // what is no folder itself (267) from something above that is none (3).
  [[nodiscard]] std::uint32_t CodeOfFailure(int root, std::string_view relative, int error) const;

 private:
  [[nodiscard]] int OpenChunk(int folder, std::string_view path, int flags, mode_t mode,
                              UniqueFd& opened) const;
  [[nodiscard]] int OpenByComponents(int folder, std::string_view path, int flags, mode_t mode,
                                     UniqueFd& opened) const;
  bool mByComponents;
};

// The id of the mount that an open handle lies on, as the mount list tells it; -1 when the system
// does not say.
[[nodiscard]] std::int64_t MountIdOf(int fd);

}  // namespace quillmarsh
