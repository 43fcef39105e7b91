// SPDX-License-Identifier: MIT
// A name is its length in one unit, followed by its units. It never lies across two blocks; what is
// left at the end of a block where a name does not fit stays unused.
#include "base/NameArena.h"

#include <algorithm>
#include <new>

#include "base/RuntimeError.h"

namespace quillmarsh {
namespace {

constexpr std::size_t LongestName = 0xFFFF;

}  // namespace

NameArena::NameArena(std::uint64_t capacityInUnits)
    : mCapacity(std::min<std::uint64_t>(capacityInUnits, 0xFFFF'FFFFULL)) {}

NameHandle NameArena::Add(TextView name) {
  if (name.empty()) return 0;
  if (name.size() > LongestName) throw RuntimeError(runtime_error::InvalidProcedureCall);
  const std::uint64_t place = PlaceFor(name.size() + 1);
  const std::uint64_t end = place + name.size() + 1;
  if (end > mCapacity) throw RuntimeError(runtime_error::OutOfMemory);
  if (place / BlockUnits >= mBlocks.size()) {
    try {
      mBlocks.push_back(std::make_unique_for_overwrite<char16_t[]>(BlockUnits));
    } catch (const std::bad_alloc&) {
      throw RuntimeError(runtime_error::OutOfMemory);
    }
  }
  const auto handle = static_cast<NameHandle>(place);
  char16_t* const target = UnitAt(handle);
  *target = static_cast<char16_t>(name.size());
  std::copy(name.begin(), name.end(), target + 1);
  mNext = end;
  return handle;
}

TextView NameArena::Get(NameHandle handle) const {
  if (handle == 0 || handle >= mNext) return {};
  const char16_t* const unit = UnitAt(handle);
  const std::size_t length = *unit;
  // Only a handle that was never given out can point beyond its block.
  if (handle % BlockUnits + 1 + length > BlockUnits) return {};
  return {unit + 1, length};
}

void NameArena::Clear() {
  mBlocks.clear();
  mBlocks.shrink_to_fit();
  mNext = 1;
}

char16_t* NameArena::UnitAt(std::uint32_t place) const {
  return mBlocks[place / BlockUnits].get() + place % BlockUnits;
}

std::uint64_t NameArena::PlaceFor(std::size_t units) const {
  const std::uint64_t left = BlockUnits - mNext % BlockUnits;
  return units <= left ? mNext : mNext + left;
}

}  // namespace quillmarsh
