// SPDX-License-Identifier: MIT
// Opening, checking, taking aside and putting back.
#include "platform/posix/PinnedEntry.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

#include "platform/posix/ErrnoCodes.h"
#include "platform/posix/FileOpening.h"

namespace quillmarsh {
namespace {

constexpr int ReadOnlyNoWait = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW | O_CLOEXEC;
constexpr std::size_t FirstBytes = 4096;
constexpr int MostRestoredNames = 100;

bool IsSameFile(const struct statx& a, const struct statx& b) {
  return a.stx_ino == b.stx_ino && a.stx_dev_major == b.stx_dev_major &&
         a.stx_dev_minor == b.stx_dev_minor;
}

bool IsSameMoment(const struct statx_timestamp& a, const struct statx_timestamp& b) {
  return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

bool HasSameContents(const struct statx& a, const struct statx& b) {
  return IsSameFile(a, b) && a.stx_size == b.stx_size && IsSameMoment(a.stx_mtime, b.stx_mtime);
}

int FactsOf(int folder, const char* name, int flags, struct statx& facts) {
  return ::statx(folder, name, flags, PinnedFacts, &facts) == 0 ? 0 : errno;
}

int FactsOfFile(const PinnedEntry& pin, struct statx& facts) {
  return FactsOf(pin.file.Get(), "", AT_EMPTY_PATH, facts);
}

// 1006 where the name below the held folder does not lead to the file any more.
std::uint32_t CheckName(const FolderEntry& place, const struct statx& file) {
  struct statx there {};
  const int error = FactsOf(place.folder.Get(), place.name.c_str(), FactsOfEntryItself, there);
  if (error != 0 && error != ENOENT) return SystemErrorFromErrno(error);
  return error == 0 && HasSameContents(there, file) ? ERROR_SUCCESS : ERROR_FILE_INVALID;
}

// Whether the path still leads to the folder that is held.
std::uint32_t CheckFolder(OpenFolders& folders, const PinnedEntry& pin) {
  SharedFd now;
  const std::uint32_t code = folders.OpenParent(pin.located, now);
  if (code == ERROR_PATH_NOT_FOUND) return ERROR_FILE_INVALID;
  if (code != ERROR_SUCCESS) return code;
  if (now.Get() == pin.place.folder.Get()) return ERROR_SUCCESS;
  struct statx held {};
  struct statx there {};
  int error = FactsOf(pin.place.folder.Get(), "", AT_EMPTY_PATH, held);
  if (error == 0) error = FactsOf(now.Get(), "", AT_EMPTY_PATH, there);
  if (error != 0) return SystemErrorFromErrno(error);
  return IsSameFile(held, there) && held.stx_mnt_id == there.stx_mnt_id ? ERROR_SUCCESS
                                                                        : ERROR_FILE_INVALID;
}

// Whoever opens the file for writing from now on waits until the pin ends. 32 where another program
// has done so already. Where the lease cannot be had (another user's file, another file system)
// nothing is known.
std::uint32_t HoldOffWriters(PinnedEntry& pin) {
  // A waiting writer is announced by a signal, and by itself that one would end the program.
  if (::fcntl(pin.file.Get(), F_SETSIG, SIGURG) != 0) return ERROR_SUCCESS;
  pin.hasLease = ::fcntl(pin.file.Get(), F_SETLEASE, F_RDLCK) == 0;
  if (pin.hasLease) return ERROR_SUCCESS;
  return errno == EAGAIN ? ERROR_SHARING_VIOLATION : ERROR_SUCCESS;
}

// Whoever waits has found the file by its name already, and would write to it after its removal.
bool IsAwaited(const PinnedEntry& pin) {
  return pin.hasLease && ::fcntl(pin.file.Get(), F_GETLEASE) != F_RDLCK;
}

std::uint32_t LastLook(OpenFolders& folders, PinnedEntry& pin) {
  if (const std::uint32_t code = HoldOffWriters(pin)) return code;
  return CheckAsPinned(folders, pin);
}

std::string RestoredName(const std::string& name, int attempt) {
  if (attempt == 0) return name;
  const std::string number = attempt == 1 ? std::string() : "-" + std::to_string(attempt);
  return name.substr(0, 200) + ".restored" + number;
}

}  // namespace

int RenameBack(const FolderEntry& from, FolderEntry& to, ChangePermit& permit) {
  const std::string wanted = to.name;
  int error = EEXIST;
  for (int attempt = 0; attempt < MostRestoredNames && error == EEXIST; ++attempt) {
    to.name = RestoredName(wanted, attempt);
    error = RenameToFreeName(from, to, permit);
  }
  return error;
}

namespace {

// Another file took the name between the look and the rename. It goes back, and the pin leads
// nowhere.
std::uint32_t ReturnStranger(PinnedEntry& pin, const FolderEntry& target, ChangePermit& permit) {
  FolderEntry stranger = target;
  if (const int error = LookAtItself(stranger)) return SystemErrorFromErrno(error);
  FolderEntry back = pin.place;
  const int error = RenameBack(stranger, back, permit);
  if (error != 0) return SystemErrorFromErrno(error);
  if (back.name != pin.place.name) pin.left = NativeBeside(pin, back.name);
  return ERROR_FILE_INVALID;
}

}  // namespace

std::uint32_t OpenPinned(OpenFolders& folders, PinnedEntry& pin) {
  if (pin.located.path.relative.empty()) return ERROR_ACCESS_DENIED;
  if (pin.located.path.endsInBackslash) return ERROR_INVALID_NAME;
  if (const std::uint32_t code = OpenPlace(folders, pin.located, pin.place)) return code;
  pin.home = pin.place;
  pin.file.Reset(::openat(pin.home.folder.Get(), pin.home.name.c_str(), ReadOnlyNoWait));
  if (!pin.file) return errno == ELOOP ? ERROR_FILE_INVALID : SystemErrorFromErrno(errno);
  EntryFacts& entry = pin.place.entry;
  if (const int error = FactsOfFile(pin, entry.facts)) return SystemErrorFromErrno(error);
  entry.kind = KindOf(entry.facts);
  pin.place.exists = true;
  if (!S_ISREG(entry.facts.stx_mode) || entry.kind != EntryKind::File) return ERROR_ACCESS_DENIED;
  return ERROR_SUCCESS;
}

std::uint32_t LockPinned(const PinnedEntry& pin) {
  const int kind = pin.purpose == PinPurpose::Remove ? LOCK_EX : LOCK_SH;
  if (::flock(pin.file.Get(), kind | LOCK_NB) == 0) return ERROR_SUCCESS;
  return errno == EWOULDBLOCK ? ERROR_LOCK_VIOLATION : ERROR_SUCCESS;
}

std::uint32_t CheckAsPinned(OpenFolders& folders, PinnedEntry& pin) {
  if (pin.isGone) return ERROR_FILE_INVALID;
  // A program that has the copy to keep open for writing, or mapped, can change it unseen.
  if (pin.purpose == PinPurpose::Keep && !pin.hasLease)
    if (const std::uint32_t code = HoldOffWriters(pin)) return code;
  struct statx now {};
  if (const int error = FactsOfFile(pin, now)) return SystemErrorFromErrno(error);
  const struct statx& then = pin.place.entry.facts;
  if (!HasSameContents(now, then) || !IsSameMoment(now.stx_ctime, then.stx_ctime))
    return ERROR_FILE_INVALID;
  if (const std::uint32_t code = CheckFolder(folders, pin)) return code;
  return CheckName(pin.place, now);
}

std::uint32_t ReachAnew(const PathResolver& resolver, const PinnedEntry& pin) {
  UniqueFd root;
  if (const std::uint32_t code = resolver.OpenRoot(*pin.located.drive, root)) return code;
  UniqueFd folder;
  int error = resolver.OpenFolder(root.Get(), pin.located.path.Parent(), folder);
  if (error != 0) return error == ENOENT ? ERROR_FILE_INVALID : SystemErrorFromErrno(error);
  // A server or a helper program may remember a name that is gone; the list of the folder tells.
  if (!pin.located.drive->kind.hasOwnNumbers && !IsListed(folder.Get(), pin.home.name))
    return ERROR_FILE_INVALID;
  const UniqueFd file(::openat(folder.Get(), pin.home.name.c_str(), ReadOnlyNoWait));
  if (!file)
    return errno == ENOENT || errno == ELOOP ? ERROR_FILE_INVALID : SystemErrorFromErrno(errno);
  struct statx opened {};
  struct statx named {};
  error = FactsOf(file.Get(), "", AT_EMPTY_PATH | AT_STATX_FORCE_SYNC, opened);
  if (error == 0)
    error = FactsOf(folder.Get(), pin.home.name.c_str(), FactsOfEntryItself | AT_STATX_FORCE_SYNC,
                    named);
  if (error != 0) return error == ENOENT ? ERROR_FILE_INVALID : SystemErrorFromErrno(error);
  const struct statx& then = pin.place.entry.facts;
  if (!HasSameContents(opened, then) || !HasSameContents(named, then)) return ERROR_FILE_INVALID;
  std::array<std::byte, FirstBytes> bytes{};
  std::size_t got = 0;
  return SystemErrorFromErrno(ReadFully(file.Get(), bytes.data(), bytes.size(), 0, got));
}

std::uint32_t RenamePinned(OpenFolders& folders, PinnedEntry& pin, const FolderEntry& target,
                           ChangePermit& permit) {
  if (!pin.isAside)
    if (const std::uint32_t code = LastLook(folders, pin)) return code;
  if (const int error = RenameToFreeName(pin.place, target, permit))
    return error == EXDEV ? ERROR_NOT_SAME_DEVICE : SystemErrorFromErrno(error);
  struct statx now {};
  if (const int error = FactsOfFile(pin, now)) return SystemErrorFromErrno(error);
  const std::uint32_t arrived = CheckName(target, now);
  if (arrived == ERROR_FILE_INVALID) return ReturnStranger(pin, target, permit);
  if (arrived != ERROR_SUCCESS) return arrived;
  const bool isUnchanged = HasSameContents(now, pin.place.entry.facts);
  pin.place.folder = target.folder;
  pin.place.name = target.name;
  pin.place.entry.facts = now;
  if (isUnchanged && !IsAwaited(pin)) return ERROR_SUCCESS;
  // It was written to in the last moment, or is about to be.
  const std::uint32_t code = PutPinnedBack(pin, permit);
  return code == ERROR_SUCCESS ? ERROR_FILE_INVALID : code;
}

std::uint32_t TakePinnedAside(OpenFolders& folders, PinnedEntry& pin, ChangePermit& permit) {
  FolderEntry aside = pin.place;
  aside.name = pin.asideName;
  const std::uint32_t code = RenamePinned(folders, pin, aside, permit);
  if (code == ERROR_SUCCESS) pin.isAside = true;
  return code;
}

std::uint32_t PutPinnedBack(PinnedEntry& pin, ChangePermit& permit) {
  FolderEntry back = pin.home;
  const int error = RenameBack(pin.place, back, permit);
  const std::string& now = error != 0 ? pin.place.name : back.name;
  pin.left = now == pin.home.name ? std::string() : NativeBeside(pin, now);
  if (error != 0) return SystemErrorFromErrno(error);
  pin.place.folder = back.folder;
  pin.place.name = back.name;
  pin.isAside = false;
  return ERROR_SUCCESS;
}

std::uint32_t DeletePinned(PinnedEntry& pin, ChangePermit& permit) {
  if (!pin.isAside) return ERROR_FILE_INVALID;
  if (const std::uint32_t code = CheckName(pin.place, pin.place.entry.facts)) return code;
  if (IsAwaited(pin)) return ERROR_SHARING_VIOLATION;
  const int error =
      permit.Use([&] { return ::unlinkat(pin.place.folder.Get(), pin.place.name.c_str(), 0); });
  if (error == 0) {
    pin.isAside = false;
    pin.isGone = true;
  }
  return SystemErrorFromErrno(error);
}

std::string NativeBeside(const PinnedEntry& pin, const std::string& name) {
  return JoinNative(pin.located.drive->mount->point, JoinRelative(pin.located.path.Parent(), name));
}

std::uint32_t WhyNotTakenAway(const FolderEntry& source) {
  const int folder = source.folder.Get();
  if (::faccessat(folder, ".", W_OK | X_OK, AT_EACCESS) != 0) return SystemErrorFromErrno(errno);
  struct stat facts {};
  if (::fstat(folder, &facts) != 0) return SystemErrorFromErrno(errno);
  const uid_t user = ::geteuid();
  const bool mayTake = (facts.st_mode & S_ISVTX) == 0 || user == 0 || facts.st_uid == user ||
                       source.entry.facts.stx_uid == user;
  return mayTake ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

}  // namespace quillmarsh
