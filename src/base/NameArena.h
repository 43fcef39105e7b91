// SPDX-License-Identifier: MIT
// Owns the names of a search's records, packed one behind the other, and hands out 32-bit handles,
// so that a record of 40 bytes can hold a text. Names are only added at the end; the names of
// refused records are given back by compacting everything behind a mark. Handle 0 is the empty
// text.
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

  // Adds a name of at most 65,535 units (error 5 if longer, and while compacting). A full arena,
  // and memory that runs out, raise error 7 and leave the arena as it was.
  [[nodiscard]] NameHandle Add(TextView name);
  // Valid until the arena is cleared or compacted below this handle.
  [[nodiscard]] TextView Get(NameHandle handle) const;

  // Gives back names. `Mark` is the place of the next name; `BeginCompaction` goes back to a mark;
  // then `Keep` is called for each handle behind it that is to live, in ascending order, and
  // answers its new handle; `EndCompaction` drops the rest. Handles before the mark stay as they
  // are.
  [[nodiscard]] std::uint32_t Mark() const;
  void BeginCompaction(std::uint32_t mark);
  [[nodiscard]] NameHandle Keep(NameHandle handle);
  void EndCompaction();

  void Clear();
  // Bytes of memory that the arena holds.
  [[nodiscard]] std::uint64_t BytesHeld() const;

 private:
  static constexpr std::uint32_t BlockUnits = 1U << 18;  // 512 KiB a block

  [[nodiscard]] char16_t* UnitAt(std::uint32_t place) const;
  [[nodiscard]] std::uint64_t PlaceFor(std::size_t units) const;

  std::uint64_t mCapacity;
  std::uint64_t mNext = 1;     // the place of the next name; 0 is the empty text
  std::uint64_t mReadEnd = 1;  // names lie before it; beyond mNext only while compacting
  bool mCompacting = false;
  std::vector<std::unique_ptr<char16_t[]>> mBlocks;
};

}  // namespace quillmarsh
