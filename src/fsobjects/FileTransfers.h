// SPDX-License-Identifier: MIT
// Whole reads and writes over an open file. One call of the platform may move less than it was
// asked for (a file system that may not answer is served in pieces); callers of these never see
// that.
#pragma once

#include <span>

#include "platform/Machine.h"

namespace quillmarsh {

// Reads from the file's position until the buffer is full or the file ends. `done` bytes are in the
// buffer also when the answer is false.
[[nodiscard]] bool ReadFully(HANDLE file, std::span<std::byte> buffer, std::size_t& done);

// Writes everything at the file's position. `done` bytes were written also when the answer is
// false.
[[nodiscard]] bool WriteFully(HANDLE file, std::span<const std::byte> bytes, std::size_t& done);

}  // namespace quillmarsh
