// SPDX-License-Identifier: MIT
// Finding a path's drive and an entry's facts.
#include "platform/posix/PosixContext.h"

#include <cerrno>

#include "platform/posix/ErrnoCodes.h"

namespace quillmarsh {
namespace {

std::uint32_t ReadFacts(OpenFolders& folders, const Located& located, EntryFacts& entry) {
  if (folders.FactsOf(located, entry.facts)) {
    entry.kind = EntryKind::Folder;
    return ERROR_SUCCESS;
  }
  SharedFd parent;
  if (const std::uint32_t error = folders.OpenParent(located, parent)) return error;
  const std::string name(located.path.Name());
  const bool isRoot = name.empty();
  const int flags = isRoot ? AT_EMPTY_PATH : FactsOfEntryItself;
  if (::statx(parent.Get(), name.c_str(), flags, FactsWanted, &entry.facts) != 0)
    return SystemErrorFromErrno(errno);
  entry.kind = isRoot ? EntryKind::Folder : KindOf(entry.facts);
  const bool careful = located.table->mounts.HasAutomounts();
  if (entry.kind == EntryKind::FileLink &&
      folders.Resolver().LinkLeadsToFolder(parent.Get(), name.c_str(), careful))
    entry.kind = EntryKind::FolderLink;
  if (entry.kind == EntryKind::Other && !S_ISREG(entry.facts.stx_mode)) return ERROR_ACCESS_DENIED;
  const bool isFolder = S_ISDIR(entry.facts.stx_mode) || entry.kind == EntryKind::FolderLink;
  return located.path.endsInBackslash && !isFolder ? ERROR_INVALID_NAME : ERROR_SUCCESS;
}

}  // namespace

std::uint32_t PosixContext::Locate(TextView path, Located& located) const {
  if (const std::uint32_t error = ParseDrivePath(path, located.path)) return error;
  // The number of a mount is given again to another one, so an old table is not to be trusted.
  letters->RefreshIfChanged();
  located.table = letters->Current();
  located.drive = located.table->ByLetter(located.path.letter);
  if (located.drive != nullptr) return ERROR_SUCCESS;
  const bool isAway = located.table->remembered.find(located.path.letter) != std::string::npos;
  return isAway ? ERROR_NOT_READY : ERROR_PATH_NOT_FOUND;
}

std::uint32_t PosixContext::LookAt(const Located& located, EntryFacts& entry) {
  if (located.drive->kind.answers) return ReadFacts(*folders, located, entry);
  return Run(false, entry, [located, shared = folders](EntryFacts& found) {
    return ReadFacts(*shared, located, found);
  });
}

}  // namespace quillmarsh
