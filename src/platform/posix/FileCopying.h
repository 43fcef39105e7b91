// SPDX-License-Identifier: MIT
// Copies of one file that appear whole or not at all: written under a temporary name beside the
// target, synced, and put into place by a rename. Functions without state; any thread may call
// them.
#pragma once

#include "platform/posix/PinnedEntry.h"

namespace quillmarsh {

struct CopyRequest {
  Located source;
  Located target;
  std::uint32_t targetError = 0;  // of a target path that leads nowhere; the source's goes first
  bool replaces = false;
  std::uint32_t codeIfExists = 0;  // of a target that may not be replaced
  PinnedEntry* pin = nullptr;      // the source, where it is held already
};

// Both answer a code and leave no temporary file. Without a permit nothing is put into place and no
// source deleted (995).
// The target becomes a copy of the source, which must be a file, with the size that it has at the
// beginning, however fast it grows.
[[nodiscard]] std::uint32_t CopyToTarget(OpenFolders& folders, const CopyRequest& request,
                                         ChangePermit& permit);
// The same, compared with the source byte by byte before it is put into place, and 32 where the
// source has changed meanwhile; then the source is deleted, unless it has changed by then or cannot
// be, which is no failure.
[[nodiscard]] std::uint32_t MoveByCopy(OpenFolders& folders, const CopyRequest& request,
                                       ChangePermit& permit);
// The same for a pinned source, which must be gone at the end: where it cannot be removed, the copy
// is taken back and the reason returned.
[[nodiscard]] std::uint32_t MovePinnedByCopy(OpenFolders& folders, const CopyRequest& request,
                                             ChangePermit& permit);
// Makes a deleted file again at its old place, out of its pin.
[[nodiscard]] std::uint32_t RestorePinned(PinnedEntry& pin, ChangePermit& permit);

}  // namespace quillmarsh
