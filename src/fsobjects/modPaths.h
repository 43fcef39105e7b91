// SPDX-License-Identifier: MIT
// Paths as texts: their final backslash, the folder above, the last component, and the wrappers
// around the program's parser. Pure but for GetShortPath, which asks the disk. No path is
// normalised, and nothing here looks whether it exists.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

// An empty text stays empty.
[[nodiscard]] Text AddBackslash(TextView path);
[[nodiscard]] Text RemoveBackslash(TextView path);

// The folder above a path, with its final backslash; empty for a root (a drive, or a server with a
// share) and for a path that is neither of a drive nor of a server.
[[nodiscard]] Text GetParentFolderPathOf(TextView path);
[[nodiscard]] bool IsRootPath(TextView path);
// The last component; empty for the root of a drive and where there is no backslash.
[[nodiscard]] Text GetLastFolderName(TextView path);

struct NameParts {
  Text base;       // before the last dot, the whole name without one
  Text extension;  // behind the last dot, without it
};
[[nodiscard]] NameParts SplitNameAndExtension(TextView name);

// The 8.3 form, or the path unchanged where there is none.
[[nodiscard]] Text GetShortPath(TextView path);

// The folder path of a key in gFolderPathsList; empty without a list, for -1 and for a key that is
// not in it.
[[nodiscard]] Text GetFolderPathByIdx(std::int32_t key);

// The members of gFileSpecParser as plain routines.
[[nodiscard]] Text GetExtensionNameOf(TextView path);
[[nodiscard]] Text GetFileNameOf(TextView path);
[[nodiscard]] Text GetFolderPartOf(TextView path);
[[nodiscard]] Text GetDriveRootOf(TextView path);

}  // namespace quillmarsh
