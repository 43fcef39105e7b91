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
  bool isAway = false;    // from `home`, by a rename that can be taken back
  bool hasLease = false;  // other programs wait before they open it for writing
  bool isGone = false;   // moved away or deleted
  std::string left;      // native path of what had to be left under another name or as a copy
};

// Each returns a code, 0 for success.
[[nodiscard]] std::uint32_t OpenPinned(OpenFolders& folders, PinnedEntry& pin);
[[nodiscard]] std::uint32_t LockPinned(const PinnedEntry& pin);
// 1006 where the file or what its path leads to is not what was pinned.
[[nodiscard]] std::uint32_t CheckAsPinned(OpenFolders& folders, const PinnedEntry& pin);
// Whoever opens the file for writing from now on waits until the pin ends. 32 where another program
// has it open for writing, or mapped. Where the lease cannot be had (another user's file, another
// file system) nothing is known.
[[nodiscard]] std::uint32_t HoldOffWriters(PinnedEntry& pin);
[[nodiscard]] std::uint32_t ReachAnew(const PathResolver& resolver, const PinnedEntry& pin);

[[nodiscard]] std::uint32_t TakePinnedAside(OpenFolders& folders, PinnedEntry& pin,
                                            ChangePermit& permit);
// Does nothing for a file that is where it belongs.
[[nodiscard]] std::uint32_t PutPinnedBack(PinnedEntry& pin, ChangePermit& permit);
// Of a file that was taken aside. 32 where another program waits to open it for writing.
[[nodiscard]] std::uint32_t DeletePinned(PinnedEntry& pin, ChangePermit& permit);
// Where a pinned file is renamed to: a free name in an open folder, and its native path.
struct PinnedTarget {
  FolderEntry place;
  std::string native;
};
// EXDEV gives 17. After a failure the file is where it was, or `left` says where it is.
[[nodiscard]] std::uint32_t RenamePinned(OpenFolders& folders, PinnedEntry& pin,
                                         const PinnedTarget& target, ChangePermit& permit);

// Gives what is at `from` the first free name of those that it may have in the folder of `to`: that
// of `to`, then the same with ".restored" behind it. Returns an errno, and the name in `to`.
[[nodiscard]] int RenameBack(const FolderEntry& from, FolderEntry& to, ChangePermit& permit);
// The file's facts by its name at `place`; 1006 where that does not lead to the held file.
[[nodiscard]] std::uint32_t LookAtPinned(const PinnedEntry& pin, const FolderEntry& place,
                                         struct statx& facts);
// The native path of a name in the folder of the pinned path.
[[nodiscard]] std::string NativeBeside(const PinnedEntry& pin, const std::string& name);

// 0, or the code with which the entry's folder lets nothing go. Asked before a copy is made that
// would be in vain.
[[nodiscard]] std::uint32_t WhyNotTakenAway(const FolderEntry& source);

}  // namespace quillmarsh
