// SPDX-License-Identifier: MIT
// One file that is held open together with its folder, from the look at it to its removal. Every
// change is made by the name below that folder, and only after a look that the name still leads to
// the held file; what was taken is looked at again, and put back where it is another file. Names
// are never taken over. Functions without state; any thread may call them, one at a time for a pin.
#pragma once

#include "platform/Pinning.h"
#include "platform/posix/FolderEntry.h"

namespace quillmarsh {

inline constexpr unsigned PinnedFacts = FactsWanted | STATX_MNT_ID;

struct PinnedEntry {
  Located located;  // the path that was pinned
  PinPurpose purpose = PinPurpose::Keep;
  FolderEntry home;  // the folder and the name of that path
  std::string asideName;
  FolderEntry place;  // the present folder and name, and the facts as they must still be
  UniqueFd file;
  bool isAside = false;
  bool isGone = false;   // moved away or deleted
  std::string leftName;  // in the home folder, where something had to be left under another name
};

// Each returns a code, 0 for success.
[[nodiscard]] std::uint32_t OpenPinned(OpenFolders& folders, PinnedEntry& pin);
[[nodiscard]] std::uint32_t LockPinned(const PinnedEntry& pin);
// 1006 where the file or what its path leads to is not what was pinned.
[[nodiscard]] std::uint32_t CheckAsPinned(OpenFolders& folders, const PinnedEntry& pin);
[[nodiscard]] std::uint32_t ReachAnew(const PathResolver& resolver, const PinnedEntry& pin);

[[nodiscard]] std::uint32_t TakePinnedAside(OpenFolders& folders, PinnedEntry& pin,
                                            ChangePermit& permit);
[[nodiscard]] std::uint32_t PutPinnedBack(PinnedEntry& pin, ChangePermit& permit);
// Of a file that was taken aside.
[[nodiscard]] std::uint32_t DeletePinned(PinnedEntry& pin, ChangePermit& permit);
// Renames to a free name in a folder of the same file system: EXDEV gives 17. `target` names a
// folder that is open.
[[nodiscard]] std::uint32_t RenamePinned(OpenFolders& folders, PinnedEntry& pin,
                                         const FolderEntry& target, ChangePermit& permit);

// 0, or the code with which the entry's folder lets nothing go. Asked before a copy is made that
// would be in vain.
[[nodiscard]] std::uint32_t WhyNotTakenAway(const FolderEntry& source);

}  // namespace quillmarsh
