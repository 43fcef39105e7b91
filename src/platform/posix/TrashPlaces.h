// SPDX-License-Identifier: MIT
// Where the desktop's trash lies, by the public rules: one in the user's data folder, and one for
// the user at the top of each other volume. What is missing is made, never through a link, and
// never taken from somebody else. Functions without state; any thread may call them.
#pragma once

#include "platform/posix/ChangePermit.h"
#include "platform/posix/OpenFolders.h"

namespace quillmarsh {

enum class TrashKind {
  Home,    // $XDG_DATA_HOME/Trash
  Shared,  // .Trash/<user number> at the top of a volume, where an administrator has made .Trash
  Own,     // .Trash-<user number> at the top of a volume
};

struct TrashPlace {
  SharedFd files;
  SharedFd info;
};

// Opens a trash, and makes it where it is missing. `place` is the home trash itself, or anything on
// the volume. Answers a code when it cannot be had.
[[nodiscard]] std::uint32_t OpenTrash(const PathResolver& resolver, TrashKind kind,
                                      const Located& place, ChangePermit& permit,
                                      TrashPlace& trash);

// Whether a path is a trash, lies in one, or holds the home trash. `home` may have no drive.
[[nodiscard]] bool TouchesTrash(const Located& located, const Located& home);

}  // namespace quillmarsh
