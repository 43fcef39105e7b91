// SPDX-License-Identifier: MIT
// Opening and creating one file or folder by its path in drive form, with the rules of this
// machine: no links, regular files only, a file without an owner write bit is not written to.
// Functions without state; any thread may call them.
#pragma once

#include <span>

#include "platform/posix/ChangePermit.h"
#include "platform/posix/PosixContext.h"

namespace quillmarsh {

// What a helper reads or writes in one go; it needs memory of its own.
inline constexpr std::size_t MostBytesForHelper = std::size_t{8} << 20U;

struct OpenRequest {
  std::uint32_t access = 0;       // GENERIC_..., FILE_APPEND_DATA
  std::uint32_t disposition = 0;  // OPEN_EXISTING and the others
  std::uint32_t flags = 0;        // FILE_FLAG_...
  // Where the opening may be given up: without leave no file is made and none emptied (995).
  std::shared_ptr<ChangePermit> permit = nullptr;
  mode_t mode = 0666;  // of a new file, before the process takes its mask away
};

struct OpenedFile {
  UniqueFd fd;
  struct statx facts {};  // just behind the opening; empty for a new file
  bool existed = false;
};

// Answers a code.
[[nodiscard]] std::uint32_t OpenFileAt(const PathResolver& resolver, const Located& located,
                                       const OpenRequest& request, OpenedFile& opened);

// Makes a new file that is to replace another one: where that is there, it gets its permissions,
// and they are never wider on the way. Answers a code.
[[nodiscard]] std::uint32_t MakeSuccessorAt(const PathResolver& resolver, const Located& located,
                                            const Located& replaced, const OpenRequest& request,
                                            OpenedFile& opened);

// The same below a root of the drive that is open already.
[[nodiscard]] std::uint32_t OpenFileBelow(const PathResolver& resolver, int root,
                                          const Located& located, const OpenRequest& request,
                                          OpenedFile& opened);

// Reads until the buffer is full or the file ends. Answers an errno; `done` counts what was read.
[[nodiscard]] int ReadFully(int fd, std::byte* buffer, std::size_t size, std::int64_t position,
                            std::size_t& done);

// The same for a file of a file system that may not answer: there a helper reads, into memory of
// its own, at most some megabytes at a time. Returns a code.
[[nodiscard]] std::uint32_t ReadOnItsThread(PosixContext& context, bool answers,
                                            const std::shared_ptr<const UniqueFd>& file,
                                            std::int64_t position, std::span<std::byte> buffer,
                                            std::uint32_t& done);

}  // namespace quillmarsh
