// SPDX-License-Identifier: MIT
// Renaming between two open folders. A free name is taken without a look beforehand, since the
// rename itself tells when it is not free.
#include "platform/posix/EntryMoving.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/posix/ErrnoCodes.h"

namespace quillmarsh {
namespace {

// Somebody else may make or remove the target between a look and a rename, but not for ever.
constexpr int MostAttempts = 8;

// A move to another name of the same file, where the system's rename would do nothing and say yes.
// Not every file system tells files apart by their numbers, so nothing is removed on that ground
// but the target, which was to be replaced.
std::uint32_t MoveOntoSameFile(const FolderEntry& source, const FolderEntry& target,
                               const Move& move, ChangePermit& permit) {
  struct statx here {};
  struct statx there {};
  if (::statx(source.folder.Get(), "", AT_EMPTY_PATH, STATX_INO, &here) != 0 ||
      ::statx(target.folder.Get(), "", AT_EMPTY_PATH, STATX_INO, &there) != 0)
    return SystemErrorFromErrno(errno);
  const bool inOneFolder = here.stx_ino == there.stx_ino;
  if (inOneFolder && source.name == target.name) return ERROR_SUCCESS;
  // Where the volume folds case, two spellings are one entry, and the folder lists one of them.
  const bool isOtherSpelling = inOneFolder && IsListed(source.folder.Get(), source.name) !=
                                                  IsListed(target.folder.Get(), target.name);
  if (isOtherSpelling) return SystemErrorFromErrno(RenameReplacing(source, target, permit));
  if (!move.Has(MOVEFILE_REPLACE_EXISTING)) return ERROR_ALREADY_EXISTS;
  const Replacement replacement = source.IsFolder() ? Replacement::Folder : Replacement::File;
  if (const std::uint32_t error = WhyNotReplaced(target, replacement)) return error;
  // With a single link the two names lead to one entry in some way that is not to be touched.
  if (source.entry.facts.stx_nlink < 2) return ERROR_SHARING_VIOLATION;
  if (const int error =
          permit.Use([&] { return ::unlinkat(target.folder.Get(), target.name.c_str(), 0); }))
    return SystemErrorFromErrno(error);
  return SystemErrorFromErrno(RenameToFreeName(source, target, permit));
}

// 0, or the code with which the existing target refuses.
std::uint32_t WhyNotMovedOver(const FolderEntry& source, const FolderEntry& target,
                              const Move& move) {
  if (!move.Has(MOVEFILE_REPLACE_EXISTING)) return ERROR_ALREADY_EXISTS;
  if (IsOtherSpelling(move.target, target)) return ERROR_ALREADY_EXISTS;
  return WhyNotReplaced(target, source.IsFolder() ? Replacement::Folder : Replacement::File);
}

// Nested subvolumes lie below one letter, but are volumes of their own when something is moved.
std::uint32_t CodeOfRename(int error) {
  return error == EXDEV ? ERROR_NOT_SAME_DEVICE : SystemErrorFromErrno(error);
}

std::uint32_t RenameEntry(const PathResolver& resolver, const Move& move, const FolderEntry& source,
                          FolderEntry& target, ChangePermit& permit) {
  bool looksFirst = move.Has(MOVEFILE_REPLACE_EXISTING);
  for (int attempt = 0; attempt < MostAttempts; ++attempt) {
    if (looksFirst) {
      if (const std::uint32_t error = LookAgain(resolver, move.target, target)) return error;
      if (target.exists && target.IsSameFileAs(source))
        return MoveOntoSameFile(source, target, move, permit);
      if (target.exists)
        if (const std::uint32_t error = WhyNotMovedOver(source, target, move)) return error;
    }
    const int error = target.exists ? RenameReplacing(source, target, permit)
                                    : RenameToFreeName(source, target, permit);
    if (error != EEXIST) return CodeOfRename(error);
    looksFirst = true;
  }
  return ERROR_SHARING_VIOLATION;
}

// What the move is about, checked as far as it can be before anything is changed. The target is not
// looked at.
std::uint32_t OpenEnds(OpenFolders& folders, const Move& move, FolderEntry& source,
                       FolderEntry& target) {
  if (move.source.path.relative.empty()) return ERROR_ACCESS_DENIED;
  if (const std::uint32_t error = OpenEntry(folders, move.source, source)) return error;
  if (!source.exists) return ERROR_FILE_NOT_FOUND;
  if (move.source.path.endsInBackslash && !source.IsFolder()) return ERROR_INVALID_NAME;
  if (source.entry.kind == EntryKind::Other) return ERROR_ACCESS_DENIED;
  if (move.targetError != 0) return move.targetError;
  if (move.target.path.relative.empty())
    return move.Has(MOVEFILE_REPLACE_EXISTING) ? ERROR_ACCESS_DENIED : ERROR_ALREADY_EXISTS;
  if (move.target.path.endsInBackslash && !source.IsFolder()) return ERROR_INVALID_NAME;
  if (const std::uint32_t error = OpenPlace(folders, move.target, target)) return error;
  const bool isBelowItself = source.entry.kind == EntryKind::Folder && move.LeadsBelowSource();
  return isBelowItself ? ERROR_SHARING_VIOLATION : ERROR_SUCCESS;
}

}  // namespace

std::uint32_t MoveEntry(OpenFolders& folders, const Move& move, ChangePermit& permit,
                        bool& mayBeCopied) {
  FolderEntry source;
  FolderEntry target;
  if (const std::uint32_t error = OpenEnds(folders, move, source, target)) return error;
  mayBeCopied = source.entry.kind == EntryKind::File && move.Has(MOVEFILE_COPY_ALLOWED);
  if (move.source.drive->letter != move.target.drive->letter) return ERROR_NOT_SAME_DEVICE;
  if (const auto error = RenameEntry(folders.Resolver(), move, source, target, permit))
    return error;
  if (const int error = LookFor(target)) return SystemErrorFromErrno(error);
  // What has been renamed stays renamed, also where the folder cannot be written out just now.
  if (move.Has(MOVEFILE_WRITE_THROUGH)) (void)SyncFolder(target.folder.Get());
  return ERROR_SUCCESS;
}

}  // namespace quillmarsh
