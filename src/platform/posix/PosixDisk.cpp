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

// How long a removal may take from lifting the read-only bit to taking the name away.
constexpr std::chrono::seconds RememberLiftedFor{5};
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
  // Finding out where a link leads takes its time, and what takes its name meanwhile may be a file.
  const int error = permit.Use([&] {
    FolderEntry now = place;
    if (flags == 0 && (LookAtItself(now) != 0 || !now.IsSameFileAs(place))) {
      errno = EBUSY;
      return -1;
    }
    return ::unlinkat(place.folder.Get(), place.name.c_str(), flags);
  });
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
  mLiftedAt = std::chrono::steady_clock::now();
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
  return RunOnTarget({located, located.drive->kind.answers, false,
                      [located, operation](OpenFolders& folders, ChangePermit& permit) {
                        return operation(folders, located, permit);
                      }});
}

std::uint32_t PosixDisk::RunOnTarget(TargetChange change) {
  if (std::chrono::steady_clock::now() - mLiftedAt >= RememberLiftedFor) mLifted.reset();
  const bool answers = change.answers;
  const bool isLong = change.isLong;
  bool isDoneWith = false;
  const std::uint32_t error = WithPermit([&](const std::shared_ptr<ChangePermit>& permit) {
    auto job = [folders = mContext.folders, change = std::move(change), permit,
                lifted = mLifted](bool& done) {
      const OtherNames others(*folders, change.target, lifted);
      const std::uint32_t code =
          SparingDescriptors(*folders, [&] { return change.operation(*folders, *permit); });
      // What was told to go another way takes nothing away yet.
      done = code != ERROR_NOT_SAME_DEVICE && others.HoldFile();
      if (done) others.Protect(*permit);
      return code;
    };
    return isLong ? mContext.RunLong(answers, isDoneWith, permit, std::move(job))
                  : mContext.Run(answers, isDoneWith, std::move(job));
  });
  if (isDoneWith) mLifted.reset();
  return error;
}

bool PosixDisk::DoMoveFile(TextView existing, TextView newPath, std::uint32_t flags) {
  if ((flags & ~KnownMoveFlags) != 0) return Fail(ERROR_INVALID_PARAMETER, false);
  Move move;
  move.flags = flags;
  if (const auto error = mContext.Locate(existing, move.source)) return Fail(error, false);
  move.targetError = mContext.Locate(newPath, move.target);
  const auto mayBeCopied = std::make_shared<bool>(false);
  const std::uint32_t error =
      RunOnTarget({move.target, BothAnswer(move.source, move.target), false,
                   [move, mayBeCopied](OpenFolders& folders, ChangePermit& permit) {
                     return MoveEntry(folders, move, permit, *mayBeCopied);
                   }});
  // What was given up may still write there.
  if (error != ERROR_NOT_SAME_DEVICE || !*mayBeCopied) return error == 0 || Fail(error, false);
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
  const std::uint32_t error =
      RunOnTarget({request.target, BothAnswer(request.source, request.target), true,
                   [request, operation](OpenFolders& folders, ChangePermit& permit) {
                     return operation(folders, request, permit);
                   }});
  return error == 0 || Fail(error, false);
}

}  // namespace quillmarsh
