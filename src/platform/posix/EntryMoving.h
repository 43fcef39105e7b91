// SPDX-License-Identifier: MIT
// Moving one entry on its own file system, with the rules of this machine: nothing is replaced
// unasked, no read-only file and no folder is replaced at all, and what was moved has been seen at
// its new place. Functions without state; any thread may call them.
#pragma once

#include "platform/DiskChange.h"
#include "platform/posix/FolderEntry.h"

namespace quillmarsh {

struct Move {
  Located source;
  Located target;
  std::uint32_t targetError = 0;  // of a target path that leads nowhere; the source's goes first
  std::uint32_t flags = 0;        // MOVEFILE_...

  [[nodiscard]] bool Has(std::uint32_t flag) const { return (flags & flag) != 0; }
  [[nodiscard]] bool LeadsBelowSource() const {
    return source.path.letter == target.path.letter &&
           target.path.relative.starts_with(source.path.relative + "/");
  }
};

// Answers a code: 17 where the two lie on two file systems, with `mayBeCopied` set for a file that
// the other one is to take as a copy.
[[nodiscard]] std::uint32_t MoveEntry(OpenFolders& folders, const Move& move, ChangePermit& permit,
                                      bool& mayBeCopied);

}  // namespace quillmarsh
