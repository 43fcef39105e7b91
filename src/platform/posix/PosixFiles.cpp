// SPDX-License-Identifier: MIT
// File handles and questions about one path.
#include "platform/posix/PosixFiles.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "platform/ExecutableFormats.h"
#include "platform/posix/ErrnoCodes.h"
#include "platform/posix/FileOpening.h"
#include "platform/posix/VolumeFacts.h"

namespace quillmarsh {
namespace {

constexpr std::size_t MostBytes = std::numeric_limits<std::uint32_t>::max();

int WriteFully(int fd, const std::byte* bytes, std::size_t size, std::int64_t position,
               bool appends, std::size_t& done) {
  for (done = 0; done < size;) {
    const std::size_t rest = size - done;
    const ssize_t put =
        appends ? ::write(fd, bytes + done, rest)
                : ::pwrite(fd, bytes + done, rest, position + static_cast<std::int64_t>(done));
    if (put < 0 && errno == EINTR) continue;
    if (put < 0) return errno;
    if (put == 0) return ENOSPC;
    done += static_cast<std::size_t>(put);
  }
  return 0;
}

timespec TimeSpecOf(const FILETIME* moment) {
  return moment != nullptr ? TimeOf(*moment) : timespec{0, UTIME_OMIT};
}

}  // namespace

PosixFiles::PosixFiles(CallState& state, PosixContext& context, FilePrefetcher::Settings settings)
    : FileInputOutput(state), mContext(context), mPrefetcher(std::move(settings)) {}

void PosixFiles::DoReadAhead(TextView path) {
  Located located;
  if (mContext.Locate(path, located) == ERROR_SUCCESS) mPrefetcher.Hint(path, std::move(located));
}

std::uint32_t PosixFiles::Open(TextView path, const OpenRequest& request, OpenFile& file,
                               Located& located, bool& existed) {
  const bool onlyReads = request.access == GENERIC_READ && request.disposition == OPEN_EXISTING;
  std::uint32_t error = ERROR_SUCCESS;
  if (onlyReads) file.ahead = mPrefetcher.Take(path, located, error);
  if (error == ERROR_SUCCESS && located.drive == nullptr) error = mContext.Locate(path, located);
  if (error != ERROR_SUCCESS) return error;
  file.answers = located.drive->kind.answers;
  if (file.ahead != nullptr) {
    file.fd = std::make_shared<UniqueFd>(std::move(file.ahead->fd));
    file.facts = file.ahead->facts;
    existed = true;
    return ERROR_SUCCESS;
  }
  OpenedFile opened;
  const auto open = [resolver = mContext.resolver, located, request](OpenedFile& result) {
    return OpenFileAt(*resolver, located, request, result);
  };
  // What was given up is not to make or to empty a file later.
  const EndOfPermit end(request.permit);
  error = mContext.Run(file.answers, opened, open);
  if (error == ERROR_TOO_MANY_OPEN_FILES) {
    // Some of them only wait to be taken up.
    mPrefetcher.DropHints();
    mContext.folders->LetGo();
    error = mContext.Run(file.answers, opened, open);
  }
  file.fd = std::make_shared<UniqueFd>(std::move(opened.fd));
  if (onlyReads) file.facts = opened.facts;
  existed = opened.existed;
  return error;
}

HANDLE PosixFiles::DoCreateFile(TextView path, std::uint32_t access, std::uint32_t /*share*/,
                                std::uint32_t disposition, std::uint32_t flags) {
  auto file = std::make_unique<OpenFile>();
  Located located;
  bool existed = false;
  OpenRequest request{access, disposition, flags};
  if (disposition != OPEN_EXISTING) request.permit = std::make_shared<ChangePermit>();
  if (const auto error = Open(path, request, *file, located, existed))
    return Fail(error, INVALID_HANDLE);
  const bool isRead = file->ahead != nullptr && file->ahead->isWhole;
  if ((flags & FILE_FLAG_SEQUENTIAL_SCAN) != 0 && !isRead)
    (void)::posix_fadvise(file->fd->Get(), 0, 0, POSIX_FADV_SEQUENTIAL);
  const bool reports = disposition == CREATE_ALWAYS || disposition == OPEN_ALWAYS;
  SetLastError(reports && existed ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
  return Add(std::move(file), request, located);
}

HANDLE PosixFiles::Add(std::unique_ptr<OpenFile> file, const OpenRequest& request,
                       const Located& located) {
  file->name = located.path.Name();
  file->reads = (request.access & GENERIC_READ) != 0;
  file->writes = (request.access & (GENERIC_WRITE | FILE_APPEND_DATA)) != 0;
  file->appends = file->writes && (request.access & GENERIC_WRITE) == 0;
  file->volumeSerial = SerialNumberOf(*located.drive);
  return mFiles.Add(std::move(file));
}

HANDLE PosixFiles::DoCreateSuccessor(TextView path, TextView replaced) {
  Located located;
  Located old;
  OpenRequest request{GENERIC_WRITE, CREATE_NEW, 0};
  request.permit = std::make_shared<ChangePermit>();
  std::uint32_t error = mContext.Locate(path, located);
  if (error == 0) error = mContext.Locate(replaced, old);
  if (error != 0) return Fail(error, INVALID_HANDLE);
  auto file = std::make_unique<OpenFile>();
  file->answers = located.drive->kind.answers && old.drive->kind.answers;
  OpenedFile opened;
  const EndOfPermit end(request.permit);
  error = mContext.Run(file->answers, opened,
                       [folders = mContext.folders, located, old, request](OpenedFile& made) {
                         return SparingDescriptors(*folders, [&] {
                           return MakeSuccessorAt(folders->Resolver(), located, old, request, made);
                         });
                       });
  if (error != 0) return Fail(error, INVALID_HANDLE);
  file->fd = std::make_shared<UniqueFd>(std::move(opened.fd));
  SetLastError(ERROR_SUCCESS);
  return Add(std::move(file), request, located);
}

bool PosixFiles::DoGetInformation(HANDLE handle, BY_HANDLE_FILE_INFORMATION& information) {
  OpenFile* const file = mFiles.Find(handle);
  if (file == nullptr) return Fail(ERROR_INVALID_HANDLE, false);
  struct statx facts {};
  if (file->facts) {
    facts = *file->facts;
    if (file->fd->Get() >= 0) file->facts.reset();
  } else {
    const std::uint32_t error =
        mContext.Run(file->answers, facts, [fd = file->fd](struct statx& found) {
          const int failed = ::statx(fd->Get(), "", AT_EMPTY_PATH, FactsWanted, &found);
          return failed != 0 ? SystemErrorFromErrno(errno) : ERROR_SUCCESS;
        });
    if (error != 0) return Fail(error, false);
  }
  WIN32_FIND_DATAW entry;
  FillFindData(facts, KindOf(facts), file->name, entry);
  information.dwFileAttributes = entry.dwFileAttributes;
  information.ftCreationTime = entry.ftCreationTime;
  information.ftLastAccessTime = entry.ftLastAccessTime;
  information.ftLastWriteTime = entry.ftLastWriteTime;
  information.nFileSizeHigh = entry.nFileSizeHigh;
  information.nFileSizeLow = entry.nFileSizeLow;
  information.dwVolumeSerialNumber = file->volumeSerial;
  information.nNumberOfLinks = facts.stx_nlink;
  information.nFileIndexHigh = static_cast<std::uint32_t>(facts.stx_ino >> 32U);
  information.nFileIndexLow = static_cast<std::uint32_t>(facts.stx_ino);
  return true;
}

std::uint32_t PosixFiles::ReadBytes(const OpenFile& file, std::int64_t position,
                                    std::span<std::byte> buffer, std::uint32_t& done) {
  if (!file.reads) return ERROR_ACCESS_DENIED;
  std::size_t count = 0;
  if (file.ahead != nullptr && position >= 0) {
    const std::size_t begin = std::min(static_cast<std::size_t>(position), file.ahead->headBytes);
    count = std::min(buffer.size(), file.ahead->headBytes - begin);
    if (count > 0) std::memcpy(buffer.data(), file.ahead->head.get() + begin, count);
    if (file.ahead->isWhole || count == buffer.size()) {
      done = static_cast<std::uint32_t>(count);
      return ERROR_SUCCESS;
    }
  }
  const std::size_t fromHead = count;
  buffer = buffer.subspan(fromHead);
  position += static_cast<std::int64_t>(fromHead);
  std::uint32_t got = 0;
  if (const std::uint32_t error =
          ReadOnItsThread(mContext, file.answers, file.fd, position, buffer, got))
    return error;
  done = static_cast<std::uint32_t>(fromHead) + got;
  return ERROR_SUCCESS;
}

bool PosixFiles::DoRead(HANDLE handle, std::span<std::byte> buffer, std::uint32_t& done) {
  done = 0;
  OpenFile* const file = mFiles.Find(handle);
  if (file == nullptr) return Fail(ERROR_INVALID_HANDLE, false);
  if (const std::uint32_t error = ReadBytes(*file, file->position, buffer, done))
    return Fail(error, false);
  file->position += done;
  return true;
}

std::uint32_t PosixFiles::DoReadAt(HANDLE handle, std::int64_t position,
                                   std::span<std::byte> buffer, std::uint32_t& done) {
  done = 0;
  const OpenFile* const file = mFiles.Find(handle);
  return file == nullptr ? ERROR_INVALID_HANDLE : ReadBytes(*file, position, buffer, done);
}

bool PosixFiles::DoMayReadOnTwoThreads(HANDLE handle) {
  const OpenFile* const file = mFiles.Find(handle);
  return file != nullptr && file->answers;
}

bool PosixFiles::DoWrite(HANDLE handle, std::span<const std::byte> bytes, std::uint32_t& done) {
  done = 0;
  OpenFile* const file = mFiles.Find(handle);
  if (file == nullptr) return Fail(ERROR_INVALID_HANDLE, false);
  if (!file->writes) return Fail(ERROR_ACCESS_DENIED, false);
  bytes = bytes.first(std::min(bytes.size(), file->answers ? MostBytes : MostBytesForHelper));
  std::size_t count = 0;
  std::uint32_t error = 0;
  if (file->answers) {
    error = SystemErrorFromErrno(WriteFully(file->fd->Get(), bytes.data(), bytes.size(),
                                            file->position, file->appends, count));
  } else {
    error = mContext.Run(false, count,
                         [fd = file->fd, own = std::vector<std::byte>(bytes.begin(), bytes.end()),
                          position = file->position, appends = file->appends](std::size_t& put) {
                           return SystemErrorFromErrno(WriteFully(fd->Get(), own.data(), own.size(),
                                                                  position, appends, put));
                         });
  }
  file->position += static_cast<std::int64_t>(count);
  done = static_cast<std::uint32_t>(count);
  return error == 0 || Fail(error, false);
}

bool PosixFiles::SizeOf(const OpenFile& file, std::int64_t& size) {
  if (file.fd->Get() < 0) {
    size = static_cast<std::int64_t>(file.ahead->facts.stx_size);
    return true;
  }
  const std::uint32_t error = mContext.Run(file.answers, size, [fd = file.fd](std::int64_t& bytes) {
    struct stat facts {};
    const int failed = ::fstat(fd->Get(), &facts);
    bytes = facts.st_size;
    return failed != 0 ? SystemErrorFromErrno(errno) : ERROR_SUCCESS;
  });
  return error == 0 || Fail(error, false);
}

bool PosixFiles::DoSetPointer(HANDLE handle, std::int64_t distance, std::int64_t& newPosition,
                              std::uint32_t method) {
  OpenFile* const file = mFiles.Find(handle);
  if (file == nullptr) return Fail(ERROR_INVALID_HANDLE, false);
  std::int64_t from = 0;
  if (method == FILE_CURRENT)
    from = file->position;
  else if (method == FILE_END && !SizeOf(*file, from))
    return false;
  std::int64_t position = 0;
  if (method > FILE_END || __builtin_add_overflow(from, distance, &position))
    return Fail(ERROR_INVALID_PARAMETER, false);
  if (position < 0) return Fail(ERROR_NEGATIVE_SEEK, false);
  file->position = position;
  newPosition = position;
  return true;
}

bool PosixFiles::DoSetEnd(HANDLE handle) {
  const OpenFile* const file = mFiles.Find(handle);
  if (file == nullptr) return Fail(ERROR_INVALID_HANDLE, false);
  if (!file->writes || file->appends) return Fail(ERROR_ACCESS_DENIED, false);
  char nothing = 0;
  const std::uint32_t error =
      mContext.Run(file->answers, nothing, [fd = file->fd, size = file->position](char&) {
        return ::ftruncate(fd->Get(), size) == 0 ? ERROR_SUCCESS : SystemErrorFromErrno(errno);
      });
  return error == 0 || Fail(error, false);
}

// No volume here lets a creation time be set.
bool PosixFiles::DoSetTimes(HANDLE handle, const FILETIME* /*created*/, const FILETIME* accessed,
                            const FILETIME* written) {
  const OpenFile* const file = mFiles.Find(handle);
  if (file == nullptr) return Fail(ERROR_INVALID_HANDLE, false);
  if (!file->writes) return Fail(ERROR_ACCESS_DENIED, false);
  const std::array<timespec, 2> times = {TimeSpecOf(accessed), TimeSpecOf(written)};
  char nothing = 0;
  const std::uint32_t error = mContext.Run(file->answers, nothing, [fd = file->fd, times](char&) {
    return ::futimens(fd->Get(), times.data()) == 0 ? ERROR_SUCCESS : SystemErrorFromErrno(errno);
  });
  return error == 0 || Fail(error, false);
}

bool PosixFiles::DoFlush(HANDLE handle) {
  const OpenFile* const file = mFiles.Find(handle);
  if (file == nullptr) return Fail(ERROR_INVALID_HANDLE, false);
  // However long a sync takes on a local disk, it ends; elsewhere the helper waits for it.
  char nothing = 0;
  const std::uint32_t error = mContext.Run(file->answers, nothing, [fd = file->fd](char&) {
    return ::fsync(fd->Get()) == 0 ? ERROR_SUCCESS : SystemErrorFromErrno(errno);
  });
  return error == 0 || Fail(error, false);
}

bool PosixFiles::DoLock(HANDLE handle) {
  const OpenFile* const file = mFiles.Find(handle);
  if (file == nullptr) return Fail(ERROR_INVALID_HANDLE, false);
  char nothing = 0;
  const std::uint32_t error = mContext.Run(file->answers, nothing, [fd = file->fd](char&) {
    if (::flock(fd->Get(), LOCK_EX | LOCK_NB) == 0) return ERROR_SUCCESS;
    return errno == EWOULDBLOCK ? ERROR_LOCK_VIOLATION : SystemErrorFromErrno(errno);
  });
  return error == 0 || Fail(error, false);
}

bool PosixFiles::DoClose(HANDLE handle) {
  std::unique_ptr<OpenFile> file = mFiles.Remove(handle);
  if (file == nullptr) return Fail(ERROR_INVALID_HANDLE, false);
  if (file->answers) return true;
  // Closing writes back what a network file system still holds, and may wait for it too.
  char nothing = 0;
  const std::uint32_t error = mContext.Run(false, nothing, [fd = std::move(file->fd)](char&) {
    fd->Reset();
    return ERROR_SUCCESS;
  });
  return error == 0 || Fail(error, false);
}

bool PosixFiles::Look(TextView path, EntryFacts& entry) {
  Located located;
  std::uint32_t error = mContext.Locate(path, located);
  if (error == 0) error = mContext.LookAt(located, entry);
  return error == 0 || Fail(error, false);
}

std::uint32_t PosixFiles::DoGetAttributes(TextView path) {
  Located located;
  EntryFacts entry;
  std::uint32_t error = mContext.Locate(path, located);
  if (error == 0) error = mContext.LookAt(located, entry);
  if (error != 0) return Fail(error, INVALID_FILE_ATTRIBUTES);
  return AttributesOf(entry.facts, entry.kind, located.path.Name());
}

std::uint32_t PosixFiles::DoGetCompressedSize(TextView path, std::uint32_t& high) {
  EntryFacts entry;
  if (!Look(path, entry)) return 0xFFFFFFFF;
  const bool isFile = entry.kind == EntryKind::File;
  const std::uint64_t bytes = isFile ? entry.facts.stx_blocks * 512 : 0;  // its unit, always
  high = static_cast<std::uint32_t>(bytes >> 32U);
  SetLastError(ERROR_SUCCESS);
  return static_cast<std::uint32_t>(bytes);
}

Text PosixFiles::DoGetShortPath(TextView path) {
  EntryFacts entry;
  return Look(path, entry) ? Text(path) : Text();
}

std::optional<std::uint32_t> PosixFiles::DoGetBinaryType(TextView path) {
  Located located;
  std::optional<std::uint32_t> kind;
  if (const std::uint32_t error = mContext.Locate(path, located)) return Fail(error, kind);
  const std::uint32_t error = mContext.Run(
      located.drive->kind.answers, kind,
      [resolver = mContext.resolver, located](std::optional<std::uint32_t>& found) {
        OpenedFile file;
        if (const auto code =
                OpenFileAt(*resolver, located, {GENERIC_READ, OPEN_EXISTING, 0}, file))
          return code;
        found = KindOfExecutable([&](std::uint64_t offset, std::span<std::byte> bytes) {
          std::size_t done = 0;
          return offset <= std::numeric_limits<std::int64_t>::max() &&
                 ReadFully(file.fd.Get(), bytes.data(), bytes.size(),
                           static_cast<std::int64_t>(offset), done) == 0 &&
                 done == bytes.size();
        });
        return found ? ERROR_SUCCESS : ERROR_BAD_EXE_FORMAT;
      });
  return error == 0 ? kind : Fail(error, std::optional<std::uint32_t>());
}

}  // namespace quillmarsh
