// SPDX-License-Identifier: MIT
// Whole numbers that are seen to leave their range.
#pragma once

#include <cstdint>
#include <limits>

namespace quillmarsh {

// Each sets the answer, cut to 64 bits, and tells whether it is not the true one.

[[nodiscard]] constexpr bool AddOverflows(std::int64_t a, std::int64_t b, std::int64_t& sum) {
  sum = static_cast<std::int64_t>(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
  return ((a ^ sum) & (b ^ sum)) < 0;
}

[[nodiscard]] constexpr bool SubtractOverflows(std::int64_t a, std::int64_t b,
                                               std::int64_t& difference) {
  difference =
      static_cast<std::int64_t>(static_cast<std::uint64_t>(a) - static_cast<std::uint64_t>(b));
  return ((a ^ b) & (a ^ difference)) < 0;
}

[[nodiscard]] constexpr bool TimesTenOverflows(std::int64_t a, std::int64_t& product) {
  product = static_cast<std::int64_t>(static_cast<std::uint64_t>(a) * 10U);
  return a > std::numeric_limits<std::int64_t>::max() / 10 ||
         a < std::numeric_limits<std::int64_t>::min() / 10;
}

}  // namespace quillmarsh
