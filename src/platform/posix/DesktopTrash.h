// SPDX-License-Identifier: MIT
// Sends one entry to the desktop's trash so that a file manager can restore it. Whatever fails, the
// entry is then where it was, and no note without an entry stays. Functions without state; any
// thread may call them.
#pragma once

#include "platform/posix/PinnedEntry.h"

namespace quillmarsh {

struct TrashRequest {
  Located source;
  Located home;  // the home trash, which need not exist; without a drive where there is none
  PinnedEntry* pin = nullptr;  // the source, where it is held already
};

// Tries the home trash for what lies on its drive, the trashes at the top of the source's volume,
// and for a file that none of them can take a compared copy in the home trash. 0 when the entry has
// been seen in the trash and is gone from its place. Else a code: 2 and 3 for what is missing, 5
// for what may not be taken away, 161 for what is a trash, lies in one or holds one, or why the
// last of the trashes could not take it.
[[nodiscard]] std::uint32_t SendToTrash(OpenFolders& folders, const TrashRequest& request,
                                        ChangePermit& permit);

}  // namespace quillmarsh
