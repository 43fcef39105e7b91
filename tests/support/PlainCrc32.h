// SPDX-License-Identifier: MIT
// The standard CRC-32 in its plainest form, one table step a byte: the oracle of the checksum
// tests. And texts that are made to come to a wished value.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace quillmarsh {

inline const std::array<std::uint32_t, 256>& PlainCrc32Table() {
  static const auto table = [] {
    std::array<std::uint32_t, 256> entries{};
    for (std::uint32_t n = 0; n < 256; ++n) {
      entries[n] = n;
      for (int bit = 0; bit < 8; ++bit)
        entries[n] = (entries[n] >> 1U) ^ ((entries[n] & 1U) != 0 ? 0xEDB88320U : 0U);
    }
    return entries;
  }();
  return table;
}

[[nodiscard]] inline std::uint32_t PlainCrc32(std::string_view bytes) {
  std::uint32_t state = 0xFFFFFFFFU;
  for (const char byte : bytes)
    state = (state >> 8U) ^ PlainCrc32Table()[(state ^ static_cast<unsigned char>(byte)) & 0xFFU];
  return ~state;
}

// The text with four bytes behind it that bring its checksum to `wished`: the table is walked
// backwards from the wished end, and the bytes are what leads there from where the text stands.
[[nodiscard]] inline std::string WithCrc32(std::string text, std::uint32_t wished) {
  std::uint32_t state = ~wished;
  for (int step = 0; step < 4; ++step) {
    std::uint32_t index = 0;
    while (PlainCrc32Table()[index] >> 24U != state >> 24U) ++index;
    state = ((state ^ PlainCrc32Table()[index]) << 8U) | index;
  }
  state ^= ~PlainCrc32(text);
  for (int step = 0; step < 4; ++step) text += static_cast<char>((state >> (8U * step)) & 0xFFU);
  return text;
}

}  // namespace quillmarsh
