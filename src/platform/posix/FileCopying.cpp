// SPDX-License-Identifier: MIT
// Copying through a temporary file. Nothing here trusts a size or a success it has not seen: what
// was written is read back where the source is to go.
#include "platform/posix/FileCopying.h"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

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
  [[nodiscard]] int Make() {
    int error = EEXIST;
    for (int attempt = 0; attempt < MostAttempts && error == EEXIST; ++attempt) {
      std::uint64_t number = 0;
      if (::getrandom(&number, sizeof number, 0) != sizeof number) return errno;
      mName = ".quillmarsh-" + std::to_string(number) + ".part";
      mFile.Reset(::openat(mFolder, mName.c_str(),
                           O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
      error = mFile ? 0 : errno;
    }
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

// Copies to the source's end, wherever that is by then. Holes of a source that has some stay holes.
int CopyBytes(int from, int to, bool hasHoles, const GivenUp& givenUp, std::int64_t& size) {
  Block block(BlockSize);
  for (size = 0;;) {
    if (*givenUp) return ECANCELED;
    std::size_t got = 0;
    if (const int error = ReadFully(from, block.data(), block.size(), size, got)) return error;
    if (got == 0) break;
    if (!hasHoles || !IsAllZero(block, got))
      if (const int error = WriteBlock(to, block.data(), got, size)) return error;
    size += static_cast<std::int64_t>(got);
  }
  return ::ftruncate(to, size) == 0 ? 0 : errno;
}

// 0 for equal bytes, EIO for others, or what the reading failed with.
int Compare(int source, int copy, const GivenUp& givenUp) {
  // What lies in memory from the writing says nothing about the disk.
  (void)::posix_fadvise(copy, 0, 0, POSIX_FADV_DONTNEED);
  Block first(BlockSize);
  Block second(BlockSize);
  for (std::int64_t position = 0;;) {
    if (*givenUp) return ECANCELED;
    std::size_t gotFirst = 0;
    std::size_t gotSecond = 0;
    if (const int error = ReadFully(source, first.data(), first.size(), position, gotFirst))
      return error;
    if (const int error = ReadFully(copy, second.data(), second.size(), position, gotSecond))
      return error;
    if (gotFirst != gotSecond || std::memcmp(first.data(), second.data(), gotFirst) != 0)
      return EIO;
    if (gotFirst == 0) return 0;
    position += static_cast<std::int64_t>(gotFirst);
  }
}

// Permissions and write time. Some file systems keep less of them or nothing, which is no reason to
// refuse a copy; where not all permissions can be had, read-only is tried alone.
void CopyFacts(const struct stat& source, int copy) {
  const mode_t permissions = source.st_mode & 0777U;
  struct stat made {};
  if (::fchmod(copy, permissions) != 0 && (permissions & S_IWUSR) == 0 && ::fstat(copy, &made) == 0)
    (void)::fchmod(copy, made.st_mode & 0555U);
  const timespec times[2] = {{0, UTIME_OMIT}, source.st_mtim};
  (void)::futimens(copy, times);
}

struct Copying {
  Located source;
  FolderEntry target;
  OpenedFile file;       // the source
  struct stat facts {};  // of the source when it was opened
  bool isCompared = false;
};

// Fills the temporary file and brings it to the disk. Answers a code.
std::uint32_t FillTemporary(const Copying& copying, const TemporaryFile& temporary,
                            const GivenUp& givenUp) {
  const int from = copying.file.fd.Get();
  const bool hasHoles = copying.facts.st_blocks * 512 < copying.facts.st_size;
  std::int64_t size = 0;
  int error = CopyBytes(from, temporary.Fd(), hasHoles, givenUp, size);
  if (error == 0) {
    CopyFacts(copying.facts, temporary.Fd());
    error = ::fsync(temporary.Fd()) == 0 ? 0 : errno;
  }
  if (error == 0 && copying.isCompared) error = Compare(from, temporary.Fd(), givenUp);
  if (error != 0) return SystemErrorFromErrno(error);
  struct stat made {};
  if (::fstat(temporary.Fd(), &made) != 0) return SystemErrorFromErrno(errno);
  if (made.st_size != size) return ERROR_IO_DEVICE;
  if (!copying.isCompared) return ERROR_SUCCESS;
  struct stat now {};
  if (::fstat(from, &now) != 0) return SystemErrorFromErrno(errno);
  return IsUnchanged(now, copying.facts) ? ERROR_SUCCESS : ERROR_SHARING_VIOLATION;
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
                           Copying& copying, TemporaryFile& temporary) {
  FolderEntry from;
  from.folder.Reset(::fcntl(copying.target.folder.Get(), F_DUPFD_CLOEXEC, 0));
  if (!from.folder) return SystemErrorFromErrno(errno);
  from.name = temporary.Name();
  from.entry.facts.stx_mode = S_IFREG;
  for (int attempt = 0; attempt < MostAttempts; ++attempt) {
    if (const std::uint32_t error = CheckTarget(resolver, request, copying)) return error;
    const int error = copying.target.exists ? RenameReplacing(from, copying.target)
                                            : RenameToFreeName(from, copying.target);
    if (error == EEXIST) continue;
    if (error != 0) return SystemErrorFromErrno(error);
    temporary.Keep();
    if (const std::uint32_t code = LookAgain(resolver, request.target, copying.target)) return code;
    return copying.target.exists ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
  }
  return ERROR_SHARING_VIOLATION;
}

std::uint32_t Copy(const PathResolver& resolver, const CopyRequest& request, const GivenUp& givenUp,
                   Copying& copying) {
  const OpenRequest reading{GENERIC_READ, OPEN_EXISTING, 0};
  if (const auto error = OpenFileAt(resolver, request.source, reading, copying.file)) return error;
  if (::fstat(copying.file.fd.Get(), &copying.facts) != 0) return SystemErrorFromErrno(errno);
  if (request.targetError != 0) return request.targetError;
  if (request.target.path.relative.empty())
    return request.replaces ? ERROR_ACCESS_DENIED : request.codeIfExists;
  if (const auto error = OpenEntry(resolver, request.target, copying.target)) return error;
  if (const auto error = CheckTarget(resolver, request, copying)) return error;
  if (request.target.path.endsInBackslash) return ERROR_INVALID_NAME;
  TemporaryFile temporary(copying.target.folder.Get());
  if (const int error = temporary.Make()) {
    const std::uint32_t code = SystemErrorFromErrno(error);
    return code == ERROR_FILE_NOT_FOUND ? ERROR_PATH_NOT_FOUND : code;
  }
  if (const auto error = FillTemporary(copying, temporary, givenUp)) return error;
  if (*givenUp) return ERROR_OPERATION_ABORTED;
  return PutIntoPlace(resolver, request, copying, temporary);
}

// Deletes the source by its name if that still names what was copied, as it was then.
void DeleteSource(const PathResolver& resolver, const CopyRequest& request,
                  const Copying& copying) {
  FolderEntry source;
  if (OpenEntry(resolver, request.source, source) != 0 || !source.exists) return;
  const struct statx& now = source.entry.facts;
  const struct stat& then = copying.facts;
  const bool isTheSame = now.stx_ino == then.st_ino && now.stx_dev_major == major(then.st_dev) &&
                         now.stx_dev_minor == minor(then.st_dev) &&
                         now.stx_size == static_cast<std::uint64_t>(then.st_size) &&
                         SameMoment(now.stx_mtime, then.st_mtim) &&
                         SameMoment(now.stx_ctime, then.st_ctim);
  if (isTheSame) (void)::unlinkat(source.folder.Get(), source.name.c_str(), 0);
}

}  // namespace

std::uint32_t CopyToTarget(const PathResolver& resolver, const CopyRequest& request,
                           const GivenUp& givenUp) {
  Copying copying;
  if (const auto error = Copy(resolver, request, givenUp, copying)) return error;
  (void)SyncFolder(copying.target.folder.Get());
  return ERROR_SUCCESS;
}

std::uint32_t MoveByCopy(const PathResolver& resolver, const CopyRequest& request,
                         const GivenUp& givenUp) {
  Copying copying;
  copying.isCompared = true;
  if (const auto error = Copy(resolver, request, givenUp, copying)) return error;
  // Until the new name is on the disk for sure, the old one stays.
  if (SyncFolder(copying.target.folder.Get()) == 0) DeleteSource(resolver, request, copying);
  return ERROR_SUCCESS;
}

}  // namespace quillmarsh
