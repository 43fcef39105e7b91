// SPDX-License-Identifier: MIT
// Copies of one file that appear whole or not at all: written under a temporary name beside the
// target, synced, and put into place by a rename. Functions without state; any thread may call
// them.
#pragma once

#include <atomic>
#include <memory>

#include "platform/posix/FolderEntry.h"

namespace quillmarsh {

// Told by whoever gave a running copy up: from then on it puts nothing into place.
using GivenUp = std::shared_ptr<std::atomic<bool>>;

struct CopyRequest {
  Located source;
  Located target;
  std::uint32_t targetError = 0;  // of a target path that leads nowhere; the source's goes first
  bool replaces = false;
  std::uint32_t codeIfExists = 0;  // of a target that may not be replaced
};

// Both answer a code and leave no temporary file.
// The target becomes a copy of the source, which must be a file.
[[nodiscard]] std::uint32_t CopyToTarget(const PathResolver& resolver, const CopyRequest& request,
                                         const GivenUp& givenUp);
// The same, compared with the source byte by byte before it is put into place; then the source is
// deleted, unless it has changed meanwhile or cannot be, which is no failure.
[[nodiscard]] std::uint32_t MoveByCopy(const PathResolver& resolver, const CopyRequest& request,
                                       const GivenUp& givenUp);

}  // namespace quillmarsh
