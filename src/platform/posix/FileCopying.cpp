// SPDX-License-Identifier: MIT
// Copying through a temporary file. Nothing here trusts a size or a success it has not seen: what
// was written is read back where the source is to go.
#include "platform/posix/FileCopying.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

#include "base/OwnFiles.h"
#include "platform/posix/CarriedFacts.h"
#include "platform/posix/ErrnoCodes.h"
#include "platform/posix/FileOpening.h"

namespace quillmarsh {
namespace {

constexpr std::size_t BlockSize = std::size_t{1} << 20U;
// Somebody else may make or remove the target between a look and a rename, but not for ever.
constexpr int MostAttempts = 8;

using Block = std::vector<std::byte>;

bool SameMoment(const struct statx_timestamp& a, const struct timespec& b) {
  return a.tv_sec == b.tv_sec && a.tv_nsec == static_cast<std::uint32_t>(b.tv_nsec);
}

bool IsUnchanged(const struct stat& a, const struct stat& b) {
  return a.st_size == b.st_size && a.st_mtim.tv_sec == b.st_mtim.tv_sec &&
         a.st_mtim.tv_nsec == b.st_mtim.tv_nsec && a.st_ctim.tv_sec == b.st_ctim.tv_sec &&
         a.st_ctim.tv_nsec == b.st_ctim.tv_nsec;
}

// A file under a name of its own in a folder, which goes at the end unless it was renamed.
class TemporaryFile {
 public:
  explicit TemporaryFile(int folder) : mFolder(folder) {}
  ~TemporaryFile() {
    if (mFile) ::unlinkat(mFolder, mName.c_str(), 0);
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  // An errno.
  [[nodiscard]] int Make(ChangePermit& permit) {
    int error = EEXIST;
    for (int attempt = 0; attempt < MostAttempts && error == EEXIST; ++attempt) {
      std::uint64_t number = 0;
      if (::getrandom(&number, sizeof number, 0) != sizeof number) return errno;
      mName = ToUtf8(OwnFileName(OwnFile::Part, number));
      error = permit.Use([&] {
        mFile.Reset(::openat(mFolder, mName.c_str(),
                             O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
        return mFile ? 0 : -1;
      });
    }
    // By its lock a later run sees that the file is still being written.
    if (error == 0) (void)::flock(mFile.Get(), LOCK_EX | LOCK_NB);
    return error;
  }
  [[nodiscard]] int Fd() const { return mFile.Get(); }
  [[nodiscard]] const std::string& Name() const { return mName; }
  void Keep() { mFile.Reset(); }

 private:
  const int mFolder;
  std::string mName;
  UniqueFd mFile;
};

int WriteBlock(int fd, const std::byte* bytes, std::size_t size, std::int64_t position) {
  for (std::size_t done = 0; done < size;) {
    const ssize_t put =
        ::pwrite(fd, bytes + done, size - done, position + static_cast<std::int64_t>(done));
    if (put < 0 && errno == EINTR) continue;
    if (put <= 0) return put < 0 ? errno : ENOSPC;
    done += static_cast<std::size_t>(put);
  }
  return 0;
}

bool IsAllZero(const Block& block, std::size_t size) {
  return std::all_of(block.begin(), block.begin() + static_cast<std::ptrdiff_t>(size),
                     [](std::byte byte) { return byte == std::byte{0}; });
}

struct Copying {
  FolderEntry target;
  OpenedFile opened;  // the source, where it is not pinned
  int source = -1;
  struct stat facts {};  // of the source when it was opened
  bool sourceGoes = false;
  struct stat made {};  // the copy
  bool isPlaced = false;
};

std::size_t PartOf(const Block& block, std::int64_t rest) {
  return static_cast<std::size_t>(std::min(static_cast<std::int64_t>(block.size()), rest));
}

// Copies what the source held when it was opened, or less where it has become shorter: a source
// that grows as fast as it is copied has no end. Holes of a source that has some stay holes.
int CopyBytes(const Copying& copying, int to, const ChangePermit& permit, std::int64_t& size) {
  const std::int64_t most = copying.facts.st_size;
  const bool hasHoles = copying.facts.st_blocks * 512 < most;
  Block block(BlockSize);
  for (size = 0; size < most;) {
    if (permit.IsToStop()) return ECANCELED;
    const std::size_t wanted = PartOf(block, most - size);
    std::size_t got = 0;
    if (const int error = ReadFully(copying.source, block.data(), wanted, size, got)) return error;
    if (got == 0) break;
    if (!hasHoles || !IsAllZero(block, got))
      if (const int error = WriteBlock(to, block.data(), got, size)) return error;
    size += static_cast<std::int64_t>(got);
  }
  return ::ftruncate(to, size) == 0 ? 0 : errno;
}

// 32 where the source is not what was opened any more.
std::uint32_t CheckUnchanged(const Copying& copying) {
  struct stat now {};
  if (::fstat(copying.source, &now) != 0) return SystemErrorFromErrno(errno);
  return IsUnchanged(now, copying.facts) ? ERROR_SUCCESS : ERROR_SHARING_VIOLATION;
}

// 32 where bytes lie behind the size of the source though it has not grown. Such a size is told
// wrongly, as for files that are made when they are read, and the copy would lack their end.
std::uint32_t CheckEnd(const Copying& copying) {
  std::byte next{};
  std::size_t got = 0;
  const int source = copying.source;
  if (const int error = ReadFully(source, &next, 1, copying.facts.st_size, got))
    return SystemErrorFromErrno(error);
  if (got == 0) return ERROR_SUCCESS;
  struct stat now {};
  if (::fstat(source, &now) != 0) return SystemErrorFromErrno(errno);
  return now.st_size > copying.facts.st_size ? ERROR_SUCCESS : ERROR_SHARING_VIOLATION;
}

// Whether source and copy have the same first `size` bytes. Answers a code: for other bytes 32
// where the source has changed, and only else 1117, since then a disk has failed.
std::uint32_t Compare(const Copying& copying, int copy, const ChangePermit& permit,
                      std::int64_t size) {
  // What lies in memory from the writing says nothing about the disk.
  (void)::posix_fadvise(copy, 0, 0, POSIX_FADV_DONTNEED);
  Block first(BlockSize);
  Block second(BlockSize);
  for (std::int64_t position = 0; position < size;) {
    if (permit.IsToStop()) return ERROR_OPERATION_ABORTED;
    const std::size_t wanted = PartOf(first, size - position);
    std::size_t gotFirst = 0;
    std::size_t gotSecond = 0;
    const int source = copying.source;
    if (const int error = ReadFully(source, first.data(), wanted, position, gotFirst))
      return SystemErrorFromErrno(error);
    if (const int error = ReadFully(copy, second.data(), wanted, position, gotSecond))
      return SystemErrorFromErrno(error);
    // Both may also break off early; what comes then shows in the next round.
    const std::size_t both = std::min(gotFirst, gotSecond);
    if (both == 0 || std::memcmp(first.data(), second.data(), both) != 0) {
      const std::uint32_t code = CheckUnchanged(copying);
      return code != ERROR_SUCCESS ? code : ERROR_IO_DEVICE;
    }
    position += static_cast<std::int64_t>(both);
  }
  return ERROR_SUCCESS;
}

// Fills the temporary file and brings it to the disk. Answers a code.
std::uint32_t FillTemporary(Copying& copying, const TemporaryFile& temporary,
                            const ChangePermit& permit) {
  std::int64_t size = 0;
  if (const int error = CopyBytes(copying, temporary.Fd(), permit, size))
    return SystemErrorFromErrno(error);
  if (const std::uint32_t code = CheckEnd(copying)) return code;
  // Told before the long way of writing out and comparing what would not be taken.
  if (copying.sourceGoes)
    if (const std::uint32_t code = CheckUnchanged(copying)) return code;
  if (copying.sourceGoes)
    CarryFactsOfMove(copying.source, copying.facts, temporary.Fd());
  else
    CarryFactsOfCopy(copying.source, copying.facts, temporary.Fd());
  if (::fsync(temporary.Fd()) != 0) return SystemErrorFromErrno(errno);
  if (copying.sourceGoes)
    if (const std::uint32_t code = Compare(copying, temporary.Fd(), permit, size)) return code;
  if (::fstat(temporary.Fd(), &copying.made) != 0) return SystemErrorFromErrno(errno);
  if (copying.made.st_size != size) return ERROR_IO_DEVICE;
  // Up to here a stop leaves everything as it was.
  if (permit.IsToStop()) return ERROR_OPERATION_ABORTED;
  return copying.sourceGoes ? CheckUnchanged(copying) : ERROR_SUCCESS;
}

// Whether the target is free or may be replaced. Looks anew.
std::uint32_t CheckTarget(const PathResolver& resolver, const CopyRequest& request,
                          Copying& copying) {
  FolderEntry& target = copying.target;
  if (const std::uint32_t error = LookAgain(resolver, request.target, target)) return error;
  if (!target.exists) return ERROR_SUCCESS;
  if (!request.replaces) return request.codeIfExists;
  const struct statx& there = target.entry.facts;
  const bool isSource = there.stx_ino == copying.facts.st_ino &&
                        there.stx_dev_major == major(copying.facts.st_dev) &&
                        there.stx_dev_minor == minor(copying.facts.st_dev);
  if (const auto error = WhyNotReplaced(target, Replacement::File)) return error;
  if (isSource) return ERROR_SHARING_VIOLATION;
  return IsOtherSpelling(request.target, target) ? request.codeIfExists : ERROR_SUCCESS;
}

std::uint32_t PutIntoPlace(const PathResolver& resolver, const CopyRequest& request,
                           ChangePermit& permit, Copying& copying, TemporaryFile& temporary) {
  FolderEntry from;
  from.folder = copying.target.folder;
  from.name = temporary.Name();
  from.entry.facts.stx_mode = S_IFREG;
  for (int attempt = 0; attempt < MostAttempts; ++attempt) {
    if (const std::uint32_t error = CheckTarget(resolver, request, copying)) return error;
    const int error = copying.target.exists ? RenameReplacing(from, copying.target, permit)
                                            : RenameToFreeName(from, copying.target, permit);
    if (error == EEXIST) continue;
    if (error != 0) return SystemErrorFromErrno(error);
    temporary.Keep();
    copying.isPlaced = true;
    if (const std::uint32_t code = LookAgain(resolver, request.target, copying.target)) return code;
    return copying.target.exists ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
  }
  return ERROR_SHARING_VIOLATION;
}

std::uint32_t Copy(OpenFolders& folders, const CopyRequest& request, ChangePermit& permit,
                   Copying& copying) {
  const OpenRequest reading{GENERIC_READ, OPEN_EXISTING, 0};
  const PathResolver& resolver = folders.Resolver();
  if (request.pin == nullptr)
    if (const auto error = OpenFileAt(resolver, request.source, reading, copying.opened))
      return error;
  copying.source = request.pin != nullptr ? request.pin->file.Get() : copying.opened.fd.Get();
  if (::fstat(copying.source, &copying.facts) != 0) return SystemErrorFromErrno(errno);
  if (request.targetError != 0) return request.targetError;
  if (request.target.path.relative.empty())
    return request.replaces ? ERROR_ACCESS_DENIED : request.codeIfExists;
  if (const auto error = OpenEntry(folders, request.target, copying.target)) return error;
  if (const auto error = CheckTarget(resolver, request, copying)) return error;
  if (request.target.path.endsInBackslash) return ERROR_INVALID_NAME;
  TemporaryFile temporary(copying.target.folder.Get());
  if (const int error = temporary.Make(permit)) {
    const std::uint32_t code = SystemErrorFromErrno(error);
    return code == ERROR_FILE_NOT_FOUND ? ERROR_PATH_NOT_FOUND : code;
  }
  if (const auto error = FillTemporary(copying, temporary, permit)) return error;
  return PutIntoPlace(resolver, request, permit, copying, temporary);
}

// Deletes the source by its name if that still names what was copied, as it was then.
void DeleteSource(OpenFolders& folders, const CopyRequest& request, ChangePermit& permit,
                  const Copying& copying) {
  FolderEntry source;
  if (OpenEntry(folders, request.source, source) != 0 || !source.exists) return;
  const struct statx& now = source.entry.facts;
  const struct stat& then = copying.facts;
  const bool isTheSame = now.stx_ino == then.st_ino && now.stx_dev_major == major(then.st_dev) &&
                         now.stx_dev_minor == minor(then.st_dev) &&
                         now.stx_size == static_cast<std::uint64_t>(then.st_size) &&
                         SameMoment(now.stx_mtime, then.st_mtim) &&
                         SameMoment(now.stx_ctime, then.st_ctim);
  if (isTheSame)
    (void)permit.Use([&] { return ::unlinkat(source.folder.Get(), source.name.c_str(), 0); });
}

// Removes the copy that was made here, and nothing else. False where it is still there.
bool TakeCopyBack(const Copying& copying, ChangePermit& permit) {
  FolderEntry copy = copying.target;
  const bool isIt = LookAtItself(copy) == 0 && copy.entry.facts.stx_ino == copying.made.st_ino &&
                    copy.entry.facts.stx_dev_major == major(copying.made.st_dev) &&
                    copy.entry.facts.stx_dev_minor == minor(copying.made.st_dev);
  return !isIt ||
         permit.Use([&] { return ::unlinkat(copy.folder.Get(), copy.name.c_str(), 0); }) == 0;
}

// Until the new name is on the disk for sure, and with it every folder on the way, the old one
// stays.
std::uint32_t SyncTarget(const Copying& copying) {
  const int folder = copying.target.folder.Get();
  int error = SyncFolder(folder);
  if (error == 0) error = SyncFileSystem(folder);
  return SystemErrorFromErrno(error);
}

}  // namespace

std::uint32_t CopyToTarget(OpenFolders& folders, const CopyRequest& request, ChangePermit& permit) {
  Copying copying;
  if (const auto error = Copy(folders, request, permit, copying)) return error;
  (void)SyncFolder(copying.target.folder.Get());
  return ERROR_SUCCESS;
}

std::uint32_t MoveByCopy(OpenFolders& folders, const CopyRequest& request, ChangePermit& permit) {
  Copying copying;
  copying.sourceGoes = true;
  if (const auto error = Copy(folders, request, permit, copying)) return error;
  if (SyncTarget(copying) == ERROR_SUCCESS) DeleteSource(folders, request, permit, copying);
  return permit.IsWithdrawn() ? ERROR_OPERATION_ABORTED : ERROR_SUCCESS;
}

std::uint32_t MovePinnedByCopy(OpenFolders& folders, const CopyRequest& request,
                               ChangePermit& permit) {
  PinnedEntry& pin = *request.pin;
  if (const std::uint32_t code = WhyNotTakenAway(pin.place)) return code;
  Copying copying;
  copying.sourceGoes = true;
  std::uint32_t code = Copy(folders, request, permit, copying);
  if (code == ERROR_SUCCESS) code = SyncTarget(copying);
  if (code == ERROR_SUCCESS && !pin.isAside) code = TakePinnedAside(folders, pin, permit);
  if (code == ERROR_SUCCESS) code = DeletePinned(pin, permit);
  if (code == ERROR_SUCCESS || !copying.isPlaced) return code;
  if (!permit.IsWithdrawn()) (void)PutPinnedBack(pin, permit);
  // The copy stays where the original may be gone.
  struct stat original {};
  const bool hasName = ::fstat(copying.source, &original) == 0 && original.st_nlink > 0;
  if (!hasName || !TakeCopyBack(copying, permit))
    pin.left = JoinNative(request.target.drive->mount->point, request.target.path.relative);
  return code;
}

std::uint32_t RestorePinned(PinnedEntry& pin, ChangePermit& permit) {
  Copying copying;
  copying.sourceGoes = true;
  copying.source = pin.file.Get();
  copying.target = pin.home;
  if (::fstat(copying.source, &copying.facts) != 0) return SystemErrorFromErrno(errno);
  TemporaryFile temporary(pin.home.folder.Get());
  if (const int error = temporary.Make(permit)) return SystemErrorFromErrno(error);
  if (const std::uint32_t code = FillTemporary(copying, temporary, permit)) return code;
  FolderEntry from = pin.home;
  from.name = temporary.Name();
  from.entry.facts.stx_mode = S_IFREG;
  if (const int error = RenameBack(from, copying.target, permit))
    return SystemErrorFromErrno(error);
  temporary.Keep();
  if (copying.target.name != pin.home.name) pin.left = NativeBeside(pin, copying.target.name);
  (void)SyncFolder(pin.home.folder.Get());
  return ERROR_SUCCESS;
}

}  // namespace quillmarsh
