// SPDX-License-Identifier: MIT
// How much of a file is read at once: a whole block, and less of it on a disk that is slow, so that
// whoever reads comes back to the pump often enough. Also used by the program where it computes a
// checksum without the module.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>

namespace pbcrc32 {

// Large enough that a call costs nothing beside it, small enough that the bytes are still near the
// processor when the checksum takes them up; reading ahead of the disk is the system's business.
constexpr std::uint32_t BlockBytes = 128 * 1024;

class BlockPace {
 public:
  using Clock = std::chrono::steady_clock;

  // Bytes to read next; the clock runs from here to Done.
  [[nodiscard]] std::uint32_t Begin() {
    mBegin = Clock::now();
    return mLength;
  }
  void Done() {
    const bool isSlow = Clock::now() - mBegin > LongestRead;
    mLength = isSlow ? std::max(mLength / 2, SmallestBytes) : std::min(mLength * 2, BlockBytes);
  }

 private:
  static constexpr std::uint32_t SmallestBytes = 16 * 1024;
  static constexpr std::chrono::milliseconds LongestRead{20};

  std::uint32_t mLength = BlockBytes;
  Clock::time_point mBegin;
};

}  // namespace pbcrc32
