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

}  // namespace

// While the file is open its number is given to no other one, so that on a file system with numbers
// of its own the name's facts are those of the handle. Elsewhere the handle is asked too, and must
// agree.
std::uint32_t LookAtPinned(const PinnedEntry& pin, const FolderEntry& place, struct statx& facts) {
  int error = FactsOf(place.folder.Get(), place.name.c_str(), FactsOfEntryItself, facts);
  if (error == ENOENT) return ERROR_FILE_INVALID;
  if (error != 0) return SystemErrorFromErrno(error);
  if (!IsSameFile(facts, pin.place.entry.facts)) return ERROR_FILE_INVALID;
  if (pin.located.drive->kind.hasOwnNumbers) return ERROR_SUCCESS;
  struct statx held {};
  error = FactsOfFile(pin, held);
  if (error != 0) return SystemErrorFromErrno(error);
  return HasSameContents(held, facts) ? ERROR_SUCCESS : ERROR_FILE_INVALID;
}

namespace {

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

}  // namespace

std::uint32_t HoldOffWriters(PinnedEntry& pin) {
  if (pin.hasLease) return ERROR_SUCCESS;
  // A waiting writer is announced by a signal, and by itself that one would end the program.
  if (::fcntl(pin.file.Get(), F_SETSIG, SIGURG) != 0) return ERROR_SUCCESS;
  pin.hasLease = ::fcntl(pin.file.Get(), F_SETLEASE, F_RDLCK) == 0;
  if (pin.hasLease) return ERROR_SUCCESS;
  return errno == EAGAIN ? ERROR_SHARING_VIOLATION : ERROR_SUCCESS;
}

namespace {

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
std::uint32_t ReturnStranger(PinnedEntry& pin, const PinnedTarget& target, ChangePermit& permit) {
  FolderEntry stranger = target.place;
  FolderEntry back = pin.place;
  int error = LookAtItself(stranger);
  if (error == 0) error = RenameBack(stranger, back, permit);
  if (error != 0) pin.left = target.native;
  if (error == 0 && back.name != pin.place.name) pin.left = NativeBeside(pin, back.name);
  return error == 0 ? ERROR_FILE_INVALID : SystemErrorFromErrno(error);
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

std::uint32_t CheckAsPinned(OpenFolders& folders, const PinnedEntry& pin) {
  if (pin.isGone) return ERROR_FILE_INVALID;
  struct statx now {};
  if (const std::uint32_t code = LookAtPinned(pin, pin.place, now)) return code;
  const struct statx& then = pin.place.entry.facts;
  if (!HasSameContents(now, then) || !IsSameMoment(now.stx_ctime, then.stx_ctime))
    return ERROR_FILE_INVALID;
  // Below the held folder a copy is as safe as ever; what is removed must be what the path says.
  return pin.purpose == PinPurpose::Remove ? CheckFolder(folders, pin) : ERROR_SUCCESS;
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

std::uint32_t RenamePinned(OpenFolders& folders, PinnedEntry& pin, const PinnedTarget& target,
                           ChangePermit& permit) {
  if (!pin.isAside)
    if (const std::uint32_t code = LastLook(folders, pin)) return code;
  std::uint32_t code = ERROR_SUCCESS;
  struct statx now {};
  if (const int error = RenameToFreeName(pin.place, target.place, permit)) {
    code = error == EXDEV ? ERROR_NOT_SAME_DEVICE : SystemErrorFromErrno(error);
    // A server may have done it and lost the answer.
    if (error == EEXIST || LookAtPinned(pin, target.place, now) != ERROR_SUCCESS) return code;
  } else {
    code = LookAtPinned(pin, target.place, now);
    if (code == ERROR_FILE_INVALID) return ReturnStranger(pin, target, permit);
  }
  const bool isUnchanged =
      code == ERROR_SUCCESS && HasSameContents(now, pin.place.entry.facts) && !IsAwaited(pin);
  pin.place.folder = target.place.folder;
  pin.place.name = target.place.name;
  pin.isAway = true;
  pin.left = target.native;
  if (isUnchanged) {
    pin.place.entry.facts = now;
    return ERROR_SUCCESS;
  }
  // It was written to in the last moment, or is about to be, or nothing is known of it.
  const std::uint32_t codeOfReturn = PutPinnedBack(pin, permit);
  if (codeOfReturn != ERROR_SUCCESS) return codeOfReturn;
  return code == ERROR_SUCCESS ? ERROR_FILE_INVALID : code;
}

std::uint32_t TakePinnedAside(OpenFolders& folders, PinnedEntry& pin, ChangePermit& permit) {
  PinnedTarget aside{pin.home, NativeBeside(pin, pin.asideName)};
  aside.place.name = pin.asideName;
  const std::uint32_t code = RenamePinned(folders, pin, aside, permit);
  if (code == ERROR_SUCCESS) pin.isAside = true;
  return code;
}

std::uint32_t PutPinnedBack(PinnedEntry& pin, ChangePermit& permit) {
  if (!pin.isAway) return ERROR_SUCCESS;
  FolderEntry back = pin.home;
  if (const int error = RenameBack(pin.place, back, permit)) return SystemErrorFromErrno(error);
  pin.left = back.name == pin.home.name ? std::string() : NativeBeside(pin, back.name);
  pin.place.folder = back.folder;
  pin.place.name = back.name;
  pin.isAside = pin.isAway = false;
  return ERROR_SUCCESS;
}

std::uint32_t DeletePinned(PinnedEntry& pin, ChangePermit& permit) {
  if (!pin.isAside) return ERROR_FILE_INVALID;
  struct statx now {};
  if (const std::uint32_t code = LookAtPinned(pin, pin.place, now)) return code;
  if (!HasSameContents(now, pin.place.entry.facts)) return ERROR_FILE_INVALID;
  if (IsAwaited(pin)) return ERROR_SHARING_VIOLATION;
  const int error =
      permit.Use([&] { return ::unlinkat(pin.place.folder.Get(), pin.place.name.c_str(), 0); });
  if (error == 0) {
    pin.isAside = pin.isAway = false;
    pin.isGone = true;
    pin.left.clear();
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
