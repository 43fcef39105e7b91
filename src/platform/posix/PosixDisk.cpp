// SPDX-License-Identifier: MIT
// Deleting, moving, copying and making folders on a real disk, always by the handle of the folder
// that holds the entry. What was given up changes nothing any more, whenever its thread goes on.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>

#include "platform/posix/ErrnoCodes.h"
#include "platform/posix/FileCopying.h"
#include "platform/posix/FolderEntry.h"
#include "platform/posix/PosixRoles.h"

namespace quillmarsh {
namespace {

constexpr std::uint32_t KnownMoveFlags =
    MOVEFILE_REPLACE_EXISTING | MOVEFILE_COPY_ALLOWED | MOVEFILE_WRITE_THROUGH;
// Somebody else may make or remove the target between a look and a rename, but not for ever.
constexpr int MostAttempts = 8;

struct Move {
  Located source;
  Located target;
  std::uint32_t targetError = 0;  // of a target path that leads nowhere; the source's goes first
  std::uint32_t flags = 0;

  [[nodiscard]] bool Has(std::uint32_t flag) const { return (flags & flag) != 0; }
  [[nodiscard]] bool LeadsBelowSource() const {
    return source.path.letter == target.path.letter &&
           target.path.relative.starts_with(source.path.relative + "/");
  }
};

std::uint32_t DeleteEntry(const PathResolver& resolver, const Located& located,
                          ChangePermit& permit) {
  FolderEntry place;
  if (const std::uint32_t error = OpenEntry(resolver, located, place)) return error;
  if (!place.exists) return ERROR_FILE_NOT_FOUND;
  if (located.path.endsInBackslash && !place.IsFolder()) return ERROR_INVALID_NAME;
  // The system would delete a read-only file; here it is to be kept, like a folder or a device.
  if (const std::uint32_t error = WhyNotReplaced(place, Replacement::File)) return error;
  return SystemErrorFromErrno(
      permit.Use([&] { return ::unlinkat(place.folder.Get(), place.name.c_str(), 0); }));
}

std::uint32_t MakeFolder(const PathResolver& resolver, const Located& located,
                         ChangePermit& permit) {
  UniqueFd parent;
  if (const std::uint32_t error = OpenParent(resolver, located, parent)) return error;
  const std::string name(located.path.Name());
  return SystemErrorFromErrno(
      permit.Use([&] { return ::mkdirat(parent.Get(), name.c_str(), 0777); }));
}

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
  for (int attempt = 0; attempt < MostAttempts; ++attempt) {
    if (const std::uint32_t error = LookAgain(resolver, move.target, target)) return error;
    if (target.exists && target.IsSameFileAs(source))
      return MoveOntoSameFile(source, target, move, permit);
    if (target.exists)
      if (const std::uint32_t error = WhyNotMovedOver(source, target, move)) return error;
    const int error = target.exists ? RenameReplacing(source, target, permit)
                                    : RenameToFreeName(source, target, permit);
    if (error != EEXIST) return CodeOfRename(error);
  }
  return ERROR_SHARING_VIOLATION;
}

// What the move is about, checked as far as it can be before anything is changed.
std::uint32_t OpenEnds(const PathResolver& resolver, const Move& move, FolderEntry& source,
                       FolderEntry& target) {
  if (move.source.path.relative.empty()) return ERROR_ACCESS_DENIED;
  if (const std::uint32_t error = OpenEntry(resolver, move.source, source)) return error;
  if (!source.exists) return ERROR_FILE_NOT_FOUND;
  if (move.source.path.endsInBackslash && !source.IsFolder()) return ERROR_INVALID_NAME;
  if (source.entry.kind == EntryKind::Other) return ERROR_ACCESS_DENIED;
  if (move.targetError != 0) return move.targetError;
  if (move.target.path.relative.empty())
    return move.Has(MOVEFILE_REPLACE_EXISTING) ? ERROR_ACCESS_DENIED : ERROR_ALREADY_EXISTS;
  if (move.target.path.endsInBackslash && !source.IsFolder()) return ERROR_INVALID_NAME;
  if (const std::uint32_t error = OpenEntry(resolver, move.target, target)) return error;
  const bool isBelowItself = source.entry.kind == EntryKind::Folder && move.LeadsBelowSource();
  return isBelowItself ? ERROR_SHARING_VIOLATION : ERROR_SUCCESS;
}

// Answers 17 with `mayBeCopied` set for a file that another volume is to take as a copy.
std::uint32_t MoveEntry(const PathResolver& resolver, const Move& move, ChangePermit& permit,
                        bool& mayBeCopied) {
  FolderEntry source;
  FolderEntry target;
  if (const std::uint32_t error = OpenEnds(resolver, move, source, target)) return error;
  mayBeCopied = source.entry.kind == EntryKind::File && move.Has(MOVEFILE_COPY_ALLOWED);
  if (move.source.drive->letter != move.target.drive->letter) return ERROR_NOT_SAME_DEVICE;
  if (const std::uint32_t error = RenameEntry(resolver, move, source, target, permit)) return error;
  if (const std::uint32_t error = LookAgain(resolver, move.target, target)) return error;
  if (!target.exists) return ERROR_FILE_NOT_FOUND;
  // What has been renamed stays renamed, also where the folder cannot be written out just now.
  if (move.Has(MOVEFILE_WRITE_THROUGH)) (void)SyncFolder(target.folder.Get());
  return ERROR_SUCCESS;
}

bool BothAnswer(const Located& source, const Located& target) {
  const bool isNowhere = target.drive == nullptr;
  return source.drive->kind.answers && (isNowhere || target.drive->kind.answers);
}

// `run` runs one job with a permit of its own and answers a code; the permit ends when the job is
// given up.
template <typename Runner>
std::uint32_t WithPermit(const Runner& run) {
  const auto permit = std::make_shared<ChangePermit>();
  const std::uint32_t error = run(permit);
  // Before anybody hears of the 995.
  if (error == ERROR_OPERATION_ABORTED) permit->Withdraw();
  return error;
}

}  // namespace

bool PosixDisk::DoDeleteFile(TextView path) {
  Located located;
  std::uint32_t error = mContext.Locate(path, located);
  if (error == 0 && located.path.relative.empty()) error = ERROR_ACCESS_DENIED;
  if (error == 0) error = RunChange(located, DeleteEntry);
  return error == 0 || Fail(error, false);
}

bool PosixDisk::DoCreateDirectory(TextView path) {
  Located located;
  std::uint32_t error = mContext.Locate(path, located);
  if (error == 0 && located.path.relative.empty()) error = ERROR_ALREADY_EXISTS;
  if (error == 0) error = RunChange(located, MakeFolder);
  return error == 0 || Fail(error == ERROR_FILE_NOT_FOUND ? ERROR_PATH_NOT_FOUND : error, false);
}

bool PosixDisk::DoRemoveDirectory(TextView /*path*/) {
  return Fail(ERROR_NOT_SUPPORTED, false);
}

bool PosixDisk::DoSetAttributes(TextView /*path*/, std::uint32_t /*attributes*/) {
  return Fail(ERROR_NOT_SUPPORTED, false);
}

std::uint32_t PosixDisk::RunChange(const Located& located, EntryOperation* operation) {
  char nothing = 0;
  return WithPermit([&](const std::shared_ptr<ChangePermit>& permit) {
    return mContext.Run(located.drive->kind.answers, nothing,
                        [resolver = mContext.resolver, located, permit, operation](char&) {
                          return operation(*resolver, located, *permit);
                        });
  });
}

bool PosixDisk::DoMoveFile(TextView existing, TextView newPath, std::uint32_t flags) {
  if ((flags & ~KnownMoveFlags) != 0) return Fail(ERROR_INVALID_PARAMETER, false);
  Move move;
  move.flags = flags;
  if (const auto error = mContext.Locate(existing, move.source)) return Fail(error, false);
  move.targetError = mContext.Locate(newPath, move.target);
  bool mayBeCopied = false;
  const bool answers = BothAnswer(move.source, move.target);
  const std::uint32_t error = WithPermit([&](const std::shared_ptr<ChangePermit>& permit) {
    return mContext.Run(answers, mayBeCopied,
                        [resolver = mContext.resolver, move, permit](bool& copied) {
                          return MoveEntry(*resolver, move, *permit, copied);
                        });
  });
  if (error != ERROR_NOT_SAME_DEVICE || !mayBeCopied) return error == 0 || Fail(error, false);
  const CopyRequest request{move.source, move.target, 0, move.Has(MOVEFILE_REPLACE_EXISTING),
                            ERROR_ALREADY_EXISTS};
  return RunCopy(request, MoveByCopy);
}

bool PosixDisk::DoCopyFile(TextView existing, TextView newPath, bool failIfExists) {
  CopyRequest request;
  request.replaces = !failIfExists;
  request.codeIfExists = ERROR_FILE_EXISTS;
  if (const auto error = mContext.Locate(existing, request.source)) return Fail(error, false);
  request.targetError = mContext.Locate(newPath, request.target);
  return RunCopy(request, CopyToTarget);
}

bool PosixDisk::RunCopy(const CopyRequest& request, CopyOperation* operation) {
  const bool answers = BothAnswer(request.source, request.target);
  char nothing = 0;
  const std::uint32_t error = WithPermit([&](const std::shared_ptr<ChangePermit>& permit) {
    return mContext.RunLong(answers, nothing,
                            [resolver = mContext.resolver, request, permit, operation](char&) {
                              return operation(*resolver, request, *permit);
                            });
  });
  return error == 0 || Fail(error, false);
}

}  // namespace quillmarsh
