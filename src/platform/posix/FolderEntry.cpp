// SPDX-License-Identifier: MIT
// Renaming without replacing: by the kernel, else by a second link, else onto an entry that was
// made exclusively to keep the name.
#include "platform/posix/FolderEntry.h"

#include <dirent.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "platform/posix/ErrnoCodes.h"

namespace quillmarsh {
namespace {

UniqueFd OpenToRead(int folder) {
  return UniqueFd(::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

// The error codes of a file system that has no hard links, or has none for this file.
bool CannotLink(int error) {
  return error == EPERM || error == EOPNOTSUPP || error == ENOSYS || error == EMLINK ||
         error == EACCES || error == EINVAL;
}

int ReserveName(const FolderEntry& target, bool isFolder, ChangePermit& permit,
                UniqueFd& reserved) {
  const int folder = target.folder.Get();
  const char* const name = target.name.c_str();
  const int error = permit.Use([&] {
    if (isFolder) return ::mkdirat(folder, name, 0700);
    reserved.Reset(
        ::openat(folder, name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    return reserved ? 0 : -1;
  });
  if (error == 0 && isFolder)
    reserved.Reset(::openat(folder, name, O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  return error;
}

}  // namespace

bool FolderEntry::IsFolder() const {
  return entry.kind == EntryKind::Folder || entry.kind == EntryKind::FolderLink ||
         entry.kind == EntryKind::MountRoot;
}

bool FolderEntry::IsReadOnly() const {
  return entry.kind == EntryKind::File && (entry.facts.stx_mode & S_IWUSR) == 0;
}

bool FolderEntry::IsSameFileAs(const FolderEntry& other) const {
  const struct statx& a = entry.facts;
  const struct statx& b = other.entry.facts;
  return a.stx_ino == b.stx_ino && a.stx_dev_major == b.stx_dev_major &&
         a.stx_dev_minor == b.stx_dev_minor;
}

std::uint32_t WhyNotReplaced(const FolderEntry& place, Replacement replacement) {
  const bool isLoose = !place.IsFolder() && place.entry.kind != EntryKind::Other;
  const bool mayGo = replacement == Replacement::File && isLoose && !place.IsReadOnly();
  return mayGo ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

std::uint32_t OpenPlace(OpenFolders& folders, const Located& located, FolderEntry& place) {
  place.name = located.path.Name();
  return folders.OpenParent(located, place.folder);
}

std::uint32_t OpenEntry(OpenFolders& folders, const Located& located, FolderEntry& place) {
  if (const std::uint32_t error = OpenPlace(folders, located, place)) return error;
  return LookAgain(folders.Resolver(), located, place);
}

int LookAtItself(FolderEntry& place) {
  return ::statx(place.folder.Get(), place.name.c_str(), FactsOfEntryItself, FactsWanted,
                 &place.entry.facts) == 0
             ? 0
             : errno;
}

int LookFor(const FolderEntry& place) {
  struct statx facts {};
  const int folder = place.folder.Get();
  return ::statx(folder, place.name.c_str(), FactsOfEntryItself, STATX_TYPE, &facts) == 0 ? 0
                                                                                          : errno;
}

std::uint32_t LookAgain(const PathResolver& resolver, const Located& located, FolderEntry& place) {
  struct statx& facts = place.entry.facts;
  const int folder = place.folder.Get();
  if (::statx(folder, place.name.c_str(), FactsOfEntryItself, FactsWanted, &facts) != 0) {
    place.exists = false;
    return errno == ENOENT ? ERROR_SUCCESS : SystemErrorFromErrno(errno);
  }
  place.exists = true;
  place.entry.kind = KindOf(facts);
  const bool carefully = located.table->mounts.HasAutomounts();
  if (place.entry.kind == EntryKind::FileLink &&
      resolver.LinkLeadsToFolder(folder, place.name.c_str(), carefully))
    place.entry.kind = EntryKind::FolderLink;
  return ERROR_SUCCESS;
}

int RenameByLink(const FolderEntry& source, const FolderEntry& target, ChangePermit& permit) {
  const int from = source.folder.Get();
  const int to = target.folder.Get();
  FolderEntry before = source;
  if (const int error = LookAtItself(before)) return error;
  if (const int error = permit.Use(
          [&] { return ::linkat(from, source.name.c_str(), to, target.name.c_str(), 0); }))
    return error;
  // Somebody may have saved another file under the source's name, which is not to go. Both looks
  // are at that name, since some file systems number the names of one file differently.
  FolderEntry now = source;
  if (const int gone = LookAtItself(now)) return gone == ENOENT ? 0 : gone;
  const int error = now.IsSameFileAs(before)
                        ? permit.Use([&] { return ::unlinkat(from, source.name.c_str(), 0); })
                        : EBUSY;
  if (error == 0) return 0;
  // A server may have done it and lost the answer. The second link goes only while the first one is
  // there for sure.
  const int look = LookFor(source);
  if (look != 0) return look == ENOENT ? 0 : look;
  (void)permit.Use([&] { return ::unlinkat(to, target.name.c_str(), 0); });
  return error;
}

// An empty entry, made exclusively, keeps the name until the rename replaces it.
int RenameOntoReservedName(const FolderEntry& source, const FolderEntry& target,
                           ChangePermit& permit) {
  const bool isFolder = S_ISDIR(source.entry.facts.stx_mode);
  UniqueFd reserved;  // held open, so that its number is not given to another entry
  if (const int error = ReserveName(target, isFolder, permit, reserved)) return error;
  const int error = RenameReplacing(source, target, permit);
  if (error == 0) return 0;
  const int folder = target.folder.Get();
  const char* const name = target.name.c_str();
  struct stat own {};
  struct stat there {};
  const int lookAtTarget = ::fstatat(folder, name, &there, AT_SYMLINK_NOFOLLOW) == 0 ? 0 : errno;
  const bool isReserved = lookAtTarget == 0 && reserved && ::fstat(reserved.Get(), &own) == 0 &&
                          own.st_ino == there.st_ino && own.st_dev == there.st_dev;
  // A server may have done it and lost the answer: only the entry made here goes again, while it is
  // empty.
  if (isReserved) {
    if (isFolder || own.st_size == 0)
      (void)permit.Use([&] { return ::unlinkat(folder, name, isFolder ? AT_REMOVEDIR : 0); });
    return error;
  }
  const int lookAtSource = LookFor(source);
  if (lookAtSource != ENOENT) return lookAtSource == 0 ? error : lookAtSource;
  return lookAtTarget;  // done only where the target is seen
}

int RenameToFreeName(const FolderEntry& source, const FolderEntry& target, ChangePermit& permit) {
  const int error = permit.Use([&] {
    return ::renameat2(source.folder.Get(), source.name.c_str(), target.folder.Get(),
                       target.name.c_str(), RENAME_NOREPLACE);
  });
  if (error != EINVAL && error != ENOSYS && error != EOPNOTSUPP) return error;
  if (!S_ISDIR(source.entry.facts.stx_mode)) {
    const int errorOfLink = RenameByLink(source, target, permit);
    if (!CannotLink(errorOfLink)) return errorOfLink;
  }
  return RenameOntoReservedName(source, target, permit);
}

int RenameReplacing(const FolderEntry& source, const FolderEntry& target, ChangePermit& permit) {
  return permit.Use([&] {
    return ::renameat(source.folder.Get(), source.name.c_str(), target.folder.Get(),
                      target.name.c_str());
  });
}

bool IsListed(int folder, const std::string& name) {
  UniqueFd readable = OpenToRead(folder);
  const std::unique_ptr<DIR, int (*)(DIR*)> listing(
      readable ? ::fdopendir(readable.Get()) : nullptr, &::closedir);
  if (listing) (void)readable.Release();
  while (const dirent* const entry = listing ? ::readdir(listing.get()) : nullptr)
    if (name == entry->d_name) return true;
  return false;
}

bool IsOtherSpelling(const Located& located, const FolderEntry& place) {
  // What other systems and helper programs serve may fold case without saying so.
  bool mayFold = located.drive->kind.foldsCase || !located.drive->kind.answers;
  if (!mayFold) {
    const UniqueFd readable = OpenToRead(place.folder.Get());
    int flags = 0;
    mayFold = readable && ::ioctl(readable.Get(), FS_IOC_GETFLAGS, &flags) == 0 &&
              (flags & FS_CASEFOLD_FL) != 0;
  }
  return mayFold && !IsListed(place.folder.Get(), place.name);
}

int SyncFileSystem(int folder) {
  const UniqueFd readable = OpenToRead(folder);
  if (!readable) return errno == EACCES ? 0 : errno;
  return ::syncfs(readable.Get()) == 0 ? 0 : errno;
}

int SyncFolder(int folder) {
  const UniqueFd readable = OpenToRead(folder);
  if (!readable) return errno == EACCES ? 0 : errno;
  if (::fsync(readable.Get()) == 0) return 0;
  return errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP || errno == EROFS ? 0 : errno;
}

}  // namespace quillmarsh
