// SPDX-License-Identifier: MIT
// Deleting, moving, copying and changing entries on a real disk, always by the handle of the folder
// that holds the entry. What was given up changes nothing any more, whenever its thread goes on.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <utility>

#include "platform/posix/EntryMoving.h"
#include "platform/posix/ErrnoCodes.h"
#include "platform/posix/PosixRoles.h"

namespace quillmarsh {
namespace {

constexpr std::uint32_t KnownMoveFlags =
    MOVEFILE_REPLACE_EXISTING | MOVEFILE_COPY_ALLOWED | MOVEFILE_WRITE_THROUGH;

std::uint32_t DeleteEntry(OpenFolders& folders, const Located& located, ChangePermit& permit) {
  FolderEntry place;
  if (const std::uint32_t error = OpenEntry(folders, located, place)) return error;
  if (!place.exists) return ERROR_FILE_NOT_FOUND;
  if (located.path.endsInBackslash && !place.IsFolder()) return ERROR_INVALID_NAME;
  // The system would delete a read-only file; here it is to be kept, like a folder or a device.
  if (const std::uint32_t error = WhyNotReplaced(place, Replacement::File)) return error;
  return SystemErrorFromErrno(
      permit.Use([&] { return ::unlinkat(place.folder.Get(), place.name.c_str(), 0); }));
}

std::uint32_t MakeFolder(OpenFolders& folders, const Located& located, ChangePermit& permit) {
  FolderEntry place;
  if (const std::uint32_t error = OpenPlace(folders, located, place)) return error;
  return SystemErrorFromErrno(
      permit.Use([&] { return ::mkdirat(place.folder.Get(), place.name.c_str(), 0777); }));
}

std::uint32_t RemoveFolder(OpenFolders& folders, const Located& located, ChangePermit& permit) {
  FolderEntry place;
  if (const std::uint32_t error = OpenEntry(folders, located, place)) return error;
  if (!place.exists) return ERROR_FILE_NOT_FOUND;
  if (!place.IsFolder()) return ERROR_DIRECTORY;
  if (place.entry.kind == EntryKind::MountRoot) return ERROR_ACCESS_DENIED;
  const int flags = place.entry.kind == EntryKind::Folder ? AT_REMOVEDIR : 0;
  const int error =
      permit.Use([&] { return ::unlinkat(place.folder.Get(), place.name.c_str(), flags); });
  return error == EEXIST ? ERROR_DIR_NOT_EMPTY : SystemErrorFromErrno(error);
}

bool BothAnswer(const Located& source, const Located& target) {
  const bool isNowhere = target.drive == nullptr;
  return source.drive->kind.answers && (isNowhere || target.drive->kind.answers);
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

bool PosixDisk::DoRemoveDirectory(TextView path) {
  Located located;
  std::uint32_t error = mContext.Locate(path, located);
  if (error == 0 && located.path.relative.empty()) error = ERROR_ACCESS_DENIED;
  if (error == 0) error = RunChange(located, RemoveFolder);
  return error == 0 || Fail(error, false);
}

bool PosixDisk::DoSetAttributes(TextView path, std::uint32_t attributes) {
  mLifted.reset();
  Located located;
  if (const std::uint32_t error = mContext.Locate(path, located)) return Fail(error, false);
  if (located.path.relative.empty()) return true;
  const bool readOnly = (attributes & FILE_ATTRIBUTE_READONLY) != 0;
  const std::uint32_t error = WithPermit([&](const std::shared_ptr<ChangePermit>& permit) {
    return mContext.Run(
        located.drive->kind.answers, mLifted,
        [folders = mContext.folders, located, readOnly, permit](std::optional<LiftedBit>& lifted) {
          return SetReadOnlyBit(*folders, located, readOnly, *permit, lifted);
        });
  });
  return error == 0 || Fail(error, false);
}

std::uint32_t PosixDisk::RunChange(const Located& located, EntryOperation* operation) {
  char nothing = 0;
  return WithPermit([&](const std::shared_ptr<ChangePermit>& permit) {
    return mContext.Run(located.drive->kind.answers, nothing,
                        [folders = mContext.folders, located, permit, operation,
                         lifted = std::exchange(mLifted, std::nullopt)](char&) {
                          const OtherNames others(*folders, located, lifted);
                          const std::uint32_t error = operation(*folders, located, *permit);
                          others.Protect(*permit);
                          return error;
                        });
  });
}

bool PosixDisk::DoMoveFile(TextView existing, TextView newPath, std::uint32_t flags) {
  const std::optional<LiftedBit> lifted = std::exchange(mLifted, std::nullopt);
  if ((flags & ~KnownMoveFlags) != 0) return Fail(ERROR_INVALID_PARAMETER, false);
  const auto move = std::make_shared<Move>();
  move->flags = flags;
  if (const auto error = mContext.Locate(existing, move->source)) return Fail(error, false);
  move->targetError = mContext.Locate(newPath, move->target);
  bool mayBeCopied = false;
  const bool answers = BothAnswer(move->source, move->target);
  const std::uint32_t error = WithPermit([&](const std::shared_ptr<ChangePermit>& permit) {
    return mContext.Run(answers, mayBeCopied,
                        [folders = mContext.folders, move, permit, lifted](bool& copied) {
                          const OtherNames others(*folders, move->target, lifted);
                          const std::uint32_t code = MoveEntry(*folders, *move, *permit, copied);
                          const bool goesOn = code == ERROR_NOT_SAME_DEVICE && copied;
                          if (!goesOn) others.Protect(*permit);
                          return code;
                        });
  });
  if (error != ERROR_NOT_SAME_DEVICE || !mayBeCopied) return error == 0 || Fail(error, false);
  const CopyRequest request{move->source, move->target, 0, move->Has(MOVEFILE_REPLACE_EXISTING),
                            ERROR_ALREADY_EXISTS};
  return RunCopy(request, lifted, MoveByCopy);
}

bool PosixDisk::DoCopyFile(TextView existing, TextView newPath, bool failIfExists) {
  const std::optional<LiftedBit> lifted = std::exchange(mLifted, std::nullopt);
  CopyRequest request;
  request.replaces = !failIfExists;
  request.codeIfExists = ERROR_FILE_EXISTS;
  if (const auto error = mContext.Locate(existing, request.source)) return Fail(error, false);
  request.targetError = mContext.Locate(newPath, request.target);
  return RunCopy(request, lifted, CopyToTarget);
}

bool PosixDisk::RunCopy(const CopyRequest& request, const std::optional<LiftedBit>& lifted,
                        CopyOperation* operation) {
  const bool answers = BothAnswer(request.source, request.target);
  char nothing = 0;
  const std::uint32_t error = WithPermit([&](const std::shared_ptr<ChangePermit>& permit) {
    return mContext.RunLong(
        answers, nothing, [folders = mContext.folders, request, lifted, permit, operation](char&) {
          const OtherNames others(*folders, request.target, lifted);
          const std::uint32_t code = operation(*folders, request, *permit);
          others.Protect(*permit);
          return code;
        });
  });
  return error == 0 || Fail(error, false);
}

}  // namespace quillmarsh
