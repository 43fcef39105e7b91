// SPDX-License-Identifier: MIT
// Opening with checks on what was really opened.
#include "platform/posix/FileOpening.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <vector>

#include "platform/posix/CarriedFacts.h"
#include "platform/posix/ErrnoCodes.h"

namespace quillmarsh {
namespace {

constexpr std::size_t MostBytes = std::numeric_limits<std::uint32_t>::max();

bool Writes(const OpenRequest& request) {
  return (request.access & (GENERIC_WRITE | FILE_APPEND_DATA)) != 0;
}

int OpenFlags(const OpenRequest& request) {
  const bool reads = (request.access & GENERIC_READ) != 0;
  // Without any access only facts are asked. Nothing may wait: not for the other end of a FIFO, not
  // for a device.
  const int mode = Writes(request) ? (reads ? O_RDWR : O_WRONLY) : O_RDONLY;
  const bool appends = (request.access & (GENERIC_WRITE | FILE_APPEND_DATA)) == FILE_APPEND_DATA;
  return mode | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW | O_CLOEXEC | (appends ? O_APPEND : 0);
}

// One system call that changes something. Answers an errno.
template <typename SystemCall>
int Change(const OpenRequest& request, const SystemCall& call) {
  if (request.permit != nullptr) return request.permit->Use(call);
  return call() == 0 ? 0 : errno;
}

// What was opened must be what may be opened. The mode is that of the open file itself.
std::uint32_t CheckOpened(const OpenRequest& request, bool endsInBackslash, OpenedFile& opened) {
  struct statx& facts = opened.facts;
  if (::statx(opened.fd.Get(), "", AT_EMPTY_PATH, FactsWanted, &facts) != 0)
    return SystemErrorFromErrno(errno);
  if (S_ISDIR(facts.stx_mode))
    return (request.flags & FILE_FLAG_BACKUP_SEMANTICS) != 0 ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
  if (!S_ISREG(facts.stx_mode)) return ERROR_ACCESS_DENIED;
  if (endsInBackslash) return ERROR_INVALID_NAME;
  // The system would let the owner and the administrator pass; a read-only file is to be kept.
  const bool isReadOnly = (facts.stx_mode & S_IWUSR) == 0;
  const bool changes = Writes(request) || request.disposition == CREATE_ALWAYS;
  return isReadOnly && changes ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
}

std::uint32_t OpenExisting(const PathResolver& resolver, int root, const Located& located,
                           const OpenRequest& request, OpenedFile& opened) {
  const std::string& relative = located.path.relative;
  const bool empties = request.disposition == CREATE_ALWAYS;
  int flags = OpenFlags(request);
  // Emptying wants a writable handle whatever was asked for.
  if (empties && !Writes(request)) flags = (flags & ~O_ACCMODE) | O_RDWR;
  int error = resolver.Open(root, relative, flags, 0, opened.fd);
  const bool mayBeFolder = (request.flags & FILE_FLAG_BACKUP_SEMANTICS) != 0;
  if (error == EISDIR && mayBeFolder && !empties)
    error = resolver.Open(root, relative, O_RDONLY | O_DIRECTORY | O_NONBLOCK, 0, opened.fd);
  if (error != 0) return resolver.CodeOfFailure(root, relative, error);
  if (const std::uint32_t code = CheckOpened(request, located.path.endsInBackslash, opened)) {
    opened.fd.Reset();
    return code;
  }
  if (empties) {
    const int failed = Change(request, [&] { return ::ftruncate(opened.fd.Get(), 0); });
    if (failed != 0) {
      opened.fd.Reset();
      return SystemErrorFromErrno(failed);
    }
  }
  opened.existed = true;
  return ERROR_SUCCESS;
}

std::uint32_t CreateNew(const PathResolver& resolver, int root, const Located& located,
                        const OpenRequest& request, OpenedFile& opened) {
  if (located.path.endsInBackslash) return ERROR_INVALID_NAME;
  // The folder first, which may take its time; making the file is then one system call.
  UniqueFd folder;
  int error = resolver.OpenFolder(root, located.path.Parent(), folder);
  if (error == 0) {
    const std::string name(located.path.Name());
    error = Change(request, [&] {
      opened.fd.Reset(::openat(folder.Get(), name.c_str(), OpenFlags(request) | O_CREAT | O_EXCL,
                               request.mode));
      return opened.fd ? 0 : -1;
    });
  }
  if (error == EEXIST) return ERROR_FILE_EXISTS;
  return error == ENOENT ? ERROR_PATH_NOT_FOUND : SystemErrorFromErrno(error);
}

}  // namespace

std::uint32_t OpenFileAt(const PathResolver& resolver, const Located& located,
                         const OpenRequest& request, OpenedFile& opened) {
  UniqueFd root;
  if (const std::uint32_t error = resolver.OpenRoot(*located.drive, root)) return error;
  return OpenFileBelow(resolver, root.Get(), located, request, opened);
}

std::uint32_t MakeSuccessorAt(const PathResolver& resolver, const Located& located,
                              const Located& replaced, const OpenRequest& request,
                              OpenedFile& opened) {
  OpenedFile old;
  const OpenRequest writing{GENERIC_WRITE, OPEN_EXISTING, 0};
  const std::uint32_t missing = OpenFileAt(resolver, replaced, writing, old);
  if (missing == ERROR_FILE_NOT_FOUND) return OpenFileAt(resolver, located, request, opened);
  if (missing != ERROR_SUCCESS) return missing;
  OpenRequest making = request;
  making.mode = 0600;
  if (const auto error = OpenFileAt(resolver, located, making, opened)) return error;
  CarryFactsOfReplaced(old.fd.Get(), opened.fd.Get());
  return ERROR_SUCCESS;
}

std::uint32_t OpenFileBelow(const PathResolver& resolver, int root, const Located& located,
                            const OpenRequest& request, OpenedFile& opened) {
  switch (request.disposition) {
    case OPEN_EXISTING:
      return OpenExisting(resolver, root, located, request, opened);
    case CREATE_NEW:
      return CreateNew(resolver, root, located, request, opened);
    case CREATE_ALWAYS:
    case OPEN_ALWAYS:
      break;
    default:
      return ERROR_INVALID_PARAMETER;
  }
  // Somebody else may make or remove the file between the two steps, but not for ever.
  for (int attempt = 0; attempt < 8; ++attempt) {
    const std::uint32_t existing = OpenExisting(resolver, root, located, request, opened);
    if (existing != ERROR_FILE_NOT_FOUND) return existing;
    const std::uint32_t created = CreateNew(resolver, root, located, request, opened);
    if (created != ERROR_FILE_EXISTS) return created;
  }
  return ERROR_SHARING_VIOLATION;
}

int ReadFully(int fd, std::byte* buffer, std::size_t size, std::int64_t position,
              std::size_t& done) {
  for (done = 0; done < size;) {
    const ssize_t got =
        ::pread(fd, buffer + done, size - done, position + static_cast<std::int64_t>(done));
    if (got == 0) break;
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return done > 0 ? 0 : errno;  // the next read meets the failure again
    done += static_cast<std::size_t>(got);
  }
  return 0;
}

std::uint32_t ReadOnItsThread(PosixContext& context, bool answers,
                              const std::shared_ptr<const UniqueFd>& file, std::int64_t position,
                              std::span<std::byte> buffer, std::uint32_t& done) {
  std::size_t count = 0;
  if (answers) {
    const std::size_t size = std::min(buffer.size(), MostBytes);
    const int error = ReadFully(file->Get(), buffer.data(), size, position, count);
    if (error != 0) return SystemErrorFromErrno(error);
  } else {
    // A read that is given up goes on into memory of its own.
    std::vector<std::byte> bytes;
    const std::size_t size = std::min(buffer.size(), MostBytesForHelper);
    const std::uint32_t code =
        context.Run(false, bytes, [file, size, position](std::vector<std::byte>& result) {
          std::size_t got = 0;
          result.resize(size);
          const int failed = ReadFully(file->Get(), result.data(), size, position, got);
          result.resize(got);
          return SystemErrorFromErrno(failed);
        });
    if (code != ERROR_SUCCESS) return code;
    count = bytes.size();
    if (count > 0) std::memcpy(buffer.data(), bytes.data(), count);
  }
  done = static_cast<std::uint32_t>(count);
  return ERROR_SUCCESS;
}

}  // namespace quillmarsh
