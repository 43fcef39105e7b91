// SPDX-License-Identifier: MIT
// Owns the names of a search's records, packed one behind the other, and hands out 32-bit handles,
// so that a record of 40 bytes can hold a text. Names are only added, and go all at once. Handle 0
// is the empty text.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "base/Text.h"

namespace quillmarsh {

using NameHandle = std::uint32_t;

class NameArena {
 public:
  // `capacityInUnits` is the number of 16-bit units after which the arena is full; the default is
  // all that a handle can address (8 GiB).
  explicit NameArena(std::uint64_t capacityInUnits = 0xFFFF'FFFFULL);

  // Adds a name of at most 65,535 units (error 5 if longer). A full arena, and memory that runs
  // out, raise error 7 and leave the arena as it was.
  [[nodiscard]] NameHandle Add(TextView name);
  // Valid until the arena is cleared. A handle that was never given out reads nothing outside.
  [[nodiscard]] TextView Get(NameHandle handle) const;

  void Clear();

 private:
  static constexpr std::uint32_t BlockUnits = 1U << 18;  // 512 KiB a block

  [[nodiscard]] char16_t* UnitAt(std::uint32_t place) const;
  [[nodiscard]] std::uint64_t PlaceFor(std::size_t units) const;

  std::uint64_t mCapacity;
  std::uint64_t mNext = 1;  // the place of the next name; 0 is the empty text
  std::vector<std::unique_ptr<char16_t[]>> mBlocks;
};

}  // namespace quillmarsh
