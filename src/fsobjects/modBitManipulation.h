// SPDX-License-Identifier: MIT
// Single bits of a signed 32-bit word by number. Bits 0 to 30 are meant; a number of 32 or more is
// a programming fault that shows a message box and then stands for its remainder by 31.
#pragma once

#include <cstdint>

namespace quillmarsh {

// 2 raised to `bit` as a signed word. Bit 31 has no such word: run-time error 6.
[[nodiscard]] std::int32_t UnusualBitMask(std::int32_t bit);

[[nodiscard]] inline std::int32_t BitMask(std::int32_t bit) {
  return bit >= 0 && bit <= 30 ? std::int32_t{1} << bit : UnusualBitMask(bit);
}

[[nodiscard]] inline std::int32_t SetBitInLong(std::int32_t bit, std::int32_t word) {
  return word | BitMask(bit);
}
[[nodiscard]] inline std::int32_t ClearBitInLong(std::int32_t bit, std::int32_t word) {
  return word & ~BitMask(bit);
}
[[nodiscard]] inline bool IsBitSetInLong(std::int32_t bit, std::int32_t word) {
  return (word & BitMask(bit)) > 0;
}

}  // namespace quillmarsh
