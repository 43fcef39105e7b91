// SPDX-License-Identifier: MIT
// Whether the user may read, write or list a path, by the system's own check of its security
// descriptor; nothing is opened. In doubt access is granted: a folder that cannot be read after all
// shows as a failed listing.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

// Whether folder objects ask for permissions at all. Without it every folder reads as readable and
// none as writable.
extern bool mCheckFolderPermission;

[[nodiscard]] bool UserHasReadPermission(TextView path);
[[nodiscard]] bool UserHasFolderEnumPermission(TextView path);
[[nodiscard]] bool UserHasWritePermission(TextView path);

// The part of `desired` that is granted.
[[nodiscard]] std::uint32_t GetGrantedAccess(TextView path, std::uint32_t desired);

// Asked once and kept, until whoever puts another machine in place resets it.
[[nodiscard]] bool IsWindowsNT();
void ResetIsWindowsNT();

// The second opinion: really tries to read the folder's first file.
[[nodiscard]] bool FolderCanBeListed(TextView path);

}  // namespace quillmarsh
