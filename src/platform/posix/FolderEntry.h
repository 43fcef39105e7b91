// SPDX-License-Identifier: MIT
// One name in a folder that is held open, and what lies under it: where an entry is deleted, put or
// replaced. Functions without state; any thread may call them.
#pragma once

#include "platform/posix/ChangePermit.h"
#include "platform/posix/PosixContext.h"

namespace quillmarsh {

struct FolderEntry {
  SharedFd folder;   // a place to start from, not readable
  std::string name;  // never empty
  bool exists = false;
  EntryFacts entry;  // of the entry itself, also of a link; only where it exists

  // Folders, links to folders and roots of mounts.
  [[nodiscard]] bool IsFolder() const;
  [[nodiscard]] bool IsReadOnly() const;
  [[nodiscard]] bool IsSameFileAs(const FolderEntry& other) const;
};

// Opens the folder and looks at the entry. A missing entry is no failure, a missing folder is 3.
// The drive's root is no entry of a folder; callers turn it away before.
[[nodiscard]] std::uint32_t OpenEntry(OpenFolders& folders, const Located& located,
                                      FolderEntry& place);
// The same without a look at the entry.
[[nodiscard]] std::uint32_t OpenPlace(OpenFolders& folders, const Located& located,
                                      FolderEntry& place);
// Looks again at what lies there now. Answers a code.
[[nodiscard]] std::uint32_t LookAgain(const PathResolver& resolver, const Located& located,
                                      FolderEntry& place);
// The errno of a look. ENOENT alone says that nothing is there: a server that fails to answer says
// nothing.
[[nodiscard]] int LookFor(const FolderEntry& place);

// Looks at the entry itself, whatever it is, and at nothing behind it. Answers an errno.
[[nodiscard]] int LookAtItself(FolderEntry& place);

// What an entry gives way to.
enum class Replacement { File, Folder };
// 0, or the code with which what lies there refuses to be deleted or replaced: a read-only file, a
// folder, a device and whatever a folder would replace stay. It must exist.
[[nodiscard]] std::uint32_t WhyNotReplaced(const FolderEntry& place, Replacement replacement);

// Each answers an errno and leaves both names as they were when it fails. Two exceptions, in which
// nothing is lost: what was given up in the middle (ECANCELED), or cannot be seen to be done or
// not, may leave the source under both names, or an empty entry under the target's. Gives the
// source the target's name unless that is taken (EEXIST), also where the file system itself knows
// no such rename.
[[nodiscard]] int RenameToFreeName(const FolderEntry& source, const FolderEntry& target,
                                   ChangePermit& permit);
// The two ways where it knows none: by a second link (no folders, and not every file system has
// links), and onto an empty entry that is made exclusively to hold the name.
[[nodiscard]] int RenameByLink(const FolderEntry& source, const FolderEntry& target,
                               ChangePermit& permit);
[[nodiscard]] int RenameOntoReservedName(const FolderEntry& source, const FolderEntry& target,
                                         ChangePermit& permit);
[[nodiscard]] int RenameReplacing(const FolderEntry& source, const FolderEntry& target,
                                  ChangePermit& permit);

// Whether the folder lists the name, spelled exactly so. False when it cannot be read.
[[nodiscard]] bool IsListed(int folder, const std::string& name);
// Whether what was found under the name bears another spelling, as on a volume that folds case: it
// is another file than the one that was meant, and is not to be replaced.
[[nodiscard]] bool IsOtherSpelling(const Located& located, const FolderEntry& place);

// Writes a folder's entries to the disk. A file system that cannot do so for folders, and a folder
// that one may not read, count as done. Answers an errno.
[[nodiscard]] int SyncFolder(int folder);
// Writes all of the folder's file system to the disk, the folders above that were made just now
// among it. A folder that one may not read counts as done. Answers an errno.
[[nodiscard]] int SyncFileSystem(int folder);

}  // namespace quillmarsh
