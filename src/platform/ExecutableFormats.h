// SPDX-License-Identifier: MIT
// Reads the headers of executable files: of what kind a program is, and where a Windows file keeps
// its version resource. Pure routines over a reader that the caller hands in; whatever the bytes
// say, nothing outside what was read is touched and the number of reads is bounded.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "platform/SystemTypes.h"

namespace quillmarsh {

// Fills all of `bytes` from the file, beginning at `offset`; false when the file is shorter or
// cannot be read.
using ReadBytesAt = std::function<bool(std::uint64_t offset, std::span<std::byte> bytes)>;

// The SCS_... number of a program; none for a library and for what is no executable file. Programs
// of Linux count by their word size; a position-independent one is told from a library by its
// interpreter.
[[nodiscard]] std::optional<std::uint32_t> KindOfExecutable(const ReadBytesAt& read);

// The version resource of a PE file.
struct VersionBlock {
  std::vector<std::byte> bytes;  // empty on failure
  std::uint32_t error = 0;       // 1812 no resources or no PE file, 1813 no version among them
};
[[nodiscard]] VersionBlock ReadVersionBlock(const ReadBytesAt& read);

// The fixed part of a version block; none when the block holds none. The block may have been cut
// behind it.
[[nodiscard]] std::optional<VS_FIXEDFILEINFO> FixedFileInfoOf(std::span<const std::byte> block);

}  // namespace quillmarsh
