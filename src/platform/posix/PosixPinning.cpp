// SPDX-License-Identifier: MIT
// Handles for pinned entries, and the thread on which each operation runs.
#include "platform/posix/PosixPinning.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/posix/DesktopTrash.h"
#include "platform/posix/ErrnoCodes.h"
#include "platform/posix/FileCopying.h"
#include "platform/posix/FileOpening.h"
#include "platform/posix/NameMapping.h"

namespace quillmarsh {
namespace {

FileState StateOf(const struct statx& facts, const Drive& drive) {
  FileState state;
  state.volume = (std::uint64_t{facts.stx_dev_major} << 32U) | facts.stx_dev_minor;
  state.number = facts.stx_ino;
  state.mount = facts.stx_mnt_id;
  state.size = facts.stx_size;
  WIN32_FIND_DATAW times;
  FillFindData(facts, KindOf(facts), {}, times);
  state.created = times.ftCreationTime;
  state.written = times.ftLastWriteTime;
  state.changed = FileTimeOf(facts.stx_ctime.tv_sec, facts.stx_ctime.tv_nsec);
  state.links = facts.stx_nlink;
  state.hasTrustedNumbers = drive.kind.hasOwnNumbers;
  state.isVolatile = drive.kind.driveType == DRIVE_RAMDISK;
  state.isFolder = S_ISDIR(facts.stx_mode);
  return state;
}

}  // namespace

template <typename Job>
bool PosixPinning::Ask(HANDLE handle, Job job) {
  const SharedPin* const found = mPins.Find(handle);
  if (found == nullptr) return Fail(ERROR_INVALID_HANDLE, false);
  if (mGivenUp.contains(handle)) return Fail(ERROR_OPERATION_ABORTED, false);
  char nothing = 0;
  const std::uint32_t code = mContext.Run((*found)->located.drive->kind.answers, nothing,
                                          [pin = *found, job](char&) { return job(*pin); });
  return code == ERROR_SUCCESS || Fail(code, false);
}

template <typename Job>
bool PosixPinning::Act(HANDLE handle, bool isLong, bool answers, Job job) {
  const SharedPin* const found = mPins.Find(handle);
  if (found == nullptr) return Fail(ERROR_INVALID_HANDLE, false);
  if (mGivenUp.contains(handle)) return Fail(ERROR_OPERATION_ABORTED, false);
  answers = answers && (*found)->located.drive->kind.answers;
  const std::uint32_t code = WithPermit([&](const std::shared_ptr<ChangePermit>& permit) {
    const auto run = [pin = *found, folders = mContext.folders, permit, job](char&) {
      return job(*folders, *pin, *permit);
    };
    char nothing = 0;
    return isLong ? mContext.RunLong(answers, nothing, permit, run)
                  : mContext.Run(answers, nothing, run);
  });
  // From now on the pin belongs to the thread that was left behind.
  if (code == ERROR_OPERATION_ABORTED && !answers) mGivenUp.insert(handle);
  return code == ERROR_SUCCESS || Fail(code, false);
}

bool PosixPinning::DoLookAt(TextView path, FileState& state) {
  Located located;
  EntryFacts entry;
  std::uint32_t code = mContext.Locate(path, located);
  if (code == ERROR_SUCCESS) code = mContext.LookAt(located, entry);
  if (code != ERROR_SUCCESS) return Fail(code, false);
  state = StateOf(entry.facts, *located.drive);
  state.isFolder = entry.kind != EntryKind::File && entry.kind != EntryKind::FileLink;
  return true;
}

HANDLE PosixPinning::DoPin(TextView path, PinPurpose purpose, TextView asideName,
                           FileState& state) {
  const auto pin = std::make_shared<PinnedEntry>();
  pin->purpose = purpose;
  std::uint32_t code = mContext.Locate(path, pin->located);
  if (code == ERROR_SUCCESS && !AppendNameBytes(asideName, pin->asideName))
    code = ERROR_INVALID_NAME;
  char nothing = 0;
  if (code == ERROR_SUCCESS)
    code = mContext.Run(
        pin->located.drive->kind.answers, nothing, [pin, folders = mContext.folders](char&) {
          return SparingDescriptors(*folders, [&] { return OpenPinned(*folders, *pin); });
        });
  if (code != ERROR_SUCCESS) return Fail(code, INVALID_HANDLE);
  state = StateOf(pin->place.entry.facts, *pin->located.drive);
  return mPins.Add(std::make_unique<SharedPin>(pin));
}

bool PosixPinning::DoLock(HANDLE handle) {
  return Ask(handle, [](PinnedEntry& pin) { return LockPinned(pin); });
}

bool PosixPinning::DoHoldOffWriters(HANDLE handle) {
  return Ask(handle, [](PinnedEntry& pin) { return quillmarsh::HoldOffWriters(pin); });
}

bool PosixPinning::DoCheck(HANDLE handle) {
  return Ask(handle, [folders = mContext.folders](PinnedEntry& pin) {
    return CheckAsPinned(*folders, pin);
  });
}

bool PosixPinning::DoReachAnew(HANDLE handle) {
  return Ask(handle, [resolver = mContext.resolver](PinnedEntry& pin) {
    return ReachAnew(*resolver, pin);
  });
}

std::uint32_t PosixPinning::DoReadAt(HANDLE handle, std::int64_t position,
                                     std::span<std::byte> buffer, std::uint32_t& done) {
  done = 0;
  const SharedPin* const found = mPins.Find(handle);
  if (found == nullptr) return ERROR_INVALID_HANDLE;
  const SharedPin pin = *found;
  return ReadOnItsThread(mContext, pin->located.drive->kind.answers,
                         std::shared_ptr<const UniqueFd>(pin, &pin->file), position, buffer, done);
}

bool PosixPinning::DoFlush(HANDLE handle) {
  return Act(handle, true, true, [](OpenFolders&, PinnedEntry& pin, ChangePermit&) {
    const int file = pin.file.Get();
    return ::syncfs(file) == 0 || ::fsync(file) == 0 ? ERROR_SUCCESS : SystemErrorFromErrno(errno);
  });
}

bool PosixPinning::DoTakeAside(HANDLE handle) {
  return Act(handle, false, true, TakePinnedAside);
}

bool PosixPinning::DoPutBack(HANDLE handle) {
  return Act(handle, false, true, [](OpenFolders&, PinnedEntry& pin, ChangePermit& permit) {
    return PutPinnedBack(pin, permit);
  });
}

bool PosixPinning::DoDelete(HANDLE handle) {
  return Act(handle, false, true, [](OpenFolders&, PinnedEntry& pin, ChangePermit& permit) {
    return DeletePinned(pin, permit);
  });
}

bool PosixPinning::DoRestore(HANDLE handle) {
  return Act(handle, true, true, [](OpenFolders&, PinnedEntry& pin, ChangePermit&) {
    ChangePermit own;  // a stop does not end this one
    return RestorePinned(pin, own);
  });
}

bool PosixPinning::DoMoveTo(HANDLE handle, TextView newPath, PinnedMove way) {
  Located target;
  if (const std::uint32_t code = mContext.Locate(newPath, target)) return Fail(code, false);
  if (target.path.relative.empty()) return Fail(ERROR_ALREADY_EXISTS, false);
  if (target.path.endsInBackslash) return Fail(ERROR_INVALID_NAME, false);
  if (way == PinnedMove::CopyIfNeeded) return CopyTo(handle, target);
  return Act(handle, false, target.drive->kind.answers,
             [target](OpenFolders& folders, PinnedEntry& pin, ChangePermit& permit) {
               if (pin.located.drive->letter != target.drive->letter) return ERROR_NOT_SAME_DEVICE;
               PinnedTarget to;
               to.native = JoinNative(target.drive->mount->point, target.path.relative);
               if (const auto code = OpenPlace(folders, target, to.place)) return code;
               const std::uint32_t code = RenamePinned(folders, pin, to, permit);
               pin.isGone = code == ERROR_SUCCESS;
               return code;
             });
}

bool PosixPinning::CopyTo(HANDLE handle, const Located& target) {
  return Act(handle, true, target.drive->kind.answers,
             [target](OpenFolders& folders, PinnedEntry& pin, ChangePermit& permit) {
               CopyRequest request;
               request.source = pin.located;
               request.target = target;
               request.codeIfExists = ERROR_ALREADY_EXISTS;
               request.pin = &pin;
               return SparingDescriptors(
                   folders, [&] { return MovePinnedByCopy(folders, request, permit); });
             });
}

bool PosixPinning::DoRecycle(HANDLE handle) {
  mContext.letters->RefreshIfChanged();
  std::uint32_t code = ERROR_SUCCESS;
  const Located home = mShell.HomeTrash(code);
  if (code == ERROR_OPERATION_ABORTED) return Fail(code, false);
  return Act(handle, true, home.drive == nullptr || home.drive->kind.answers,
             [home](OpenFolders& folders, PinnedEntry& pin, ChangePermit& permit) {
               const TrashRequest request{pin.located, home, &pin};
               const std::uint32_t sent = SparingDescriptors(
                   folders, [&] { return SendToTrash(folders, request, permit); });
               pin.isGone = sent == ERROR_SUCCESS;
               return sent;
             });
}

bool PosixPinning::DoUnpin(HANDLE handle) {
  std::unique_ptr<SharedPin> pin = mPins.Remove(handle);
  if (mGivenUp.erase(handle) > 0) return true;
  if (pin == nullptr) return Fail(ERROR_INVALID_HANDLE, false);
  if ((*pin)->located.drive->kind.answers) return true;
  // Closing may have to wait for the file system as well.
  char nothing = 0;
  const std::uint32_t code = mContext.Run(false, nothing, [shared = std::move(*pin)](char&) {
    shared->file.Reset();
    return ERROR_SUCCESS;
  });
  return code == ERROR_SUCCESS || Fail(code, false);
}

Text PosixPinning::DoWhereLeft(HANDLE handle) const {
  const SharedPin* const found = mPins.Find(handle);
  if (found == nullptr) return {};
  const PinnedEntry& pin = **found;
  // The thread that was left behind may still change all but the two names.
  const std::string left = mGivenUp.contains(handle) ? NativeBeside(pin, pin.asideName) : pin.left;
  const auto form = left.empty() ? std::nullopt : pin.located.table->DriveForm(left);
  return form ? *form : Text();
}

// The home trash takes what comes from any volume, as a copy.
bool PosixPinning::DoHasBin(TextView path) {
  std::uint32_t code = ERROR_SUCCESS;
  const Located home = mShell.HomeTrash(code);
  EntryFacts trash;
  if (home.drive != nullptr) code = mContext.LookAt(home, trash);
  const bool canBeMade = code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND;
  if (home.drive != nullptr && (canBeMade || trash.kind == EntryKind::Folder)) return true;
  Located located;
  code = mContext.Locate(path, located);
  char nothing = 0;
  if (code == ERROR_SUCCESS)
    code = mContext.Run(
        located.drive->kind.answers, nothing, [located, resolver = mContext.resolver](char&) {
          UniqueFd root;
          if (const auto error = resolver->OpenRoot(*located.drive, root)) return error;
          const std::string own = ".Trash-" + std::to_string(::getuid());
          const bool isThere = ::faccessat(root.Get(), ".", W_OK, AT_EACCESS) == 0 ||
                               ::faccessat(root.Get(), own.c_str(), F_OK, 0) == 0 ||
                               ::faccessat(root.Get(), ".Trash", F_OK, 0) == 0;
          return isThere ? ERROR_SUCCESS : ERROR_NOT_SUPPORTED;
        });
  return code == ERROR_SUCCESS || Fail(code, false);
}

}  // namespace quillmarsh
