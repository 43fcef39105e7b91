// SPDX-License-Identifier: MIT
// The bytes of recipes: each group of eight is one mixed counter, so any place can be computed
// without what stands before it.
#include "platform/simulated/FileContents.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <stdexcept>

namespace quillmarsh {

namespace {

std::uint64_t Mixed(std::uint64_t value) {
  value += 0x9E3779B97F4A7C15ULL;
  value = (value ^ (value >> 30U)) * 0xBF58476D1CE4E5B9ULL;
  value = (value ^ (value >> 27U)) * 0x94D049BB133111EBULL;
  return value ^ (value >> 31U);
}

std::array<std::byte, 8> GroupOf(std::uint64_t seed, std::uint64_t group) {
  const std::uint64_t value = Mixed(Mixed(seed) + group);
  std::array<std::byte, 8> bytes;
  for (std::size_t i = 0; i < bytes.size(); ++i)
    bytes[i] = static_cast<std::byte>((value >> (8 * i)) & 0xFFU);
  return bytes;
}

}  // namespace

FileContents FileContents::Recipe(std::uint64_t seed, std::uint64_t size) {
  FileContents contents;
  contents.mSeed = seed;
  contents.mSize = size;
  return contents;
}

FileContents FileContents::Utf16(TextView text) {
  std::string bytes = "\xFF\xFE";
  for (const char16_t unit : text) {
    bytes.push_back(static_cast<char>(unit & 0xFFU));
    bytes.push_back(static_cast<char>(unit >> 8U));
  }
  return FileContents(bytes);
}

FileContents FileContents::ChangedAt(std::uint64_t position) const {
  if (position >= mSize) throw std::logic_error("the changed byte lies behind the end of the file");
  FileContents changed = *this;
  if (mSeed)
    changed.mChanged = position;
  else
    changed.mBytes[position] = static_cast<char>(~changed.mBytes[position]);
  return changed;
}

void FillFromRecipe(std::uint64_t seed, std::uint64_t offset, std::span<std::byte> bytes) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    const std::uint64_t place = offset + done;
    const auto group = GroupOf(seed, place / 8);
    const std::size_t skipped = place % 8;
    const std::size_t count = std::min(group.size() - skipped, bytes.size() - done);
    std::memcpy(bytes.data() + done, group.data() + skipped, count);
    done += count;
  }
}

}  // namespace quillmarsh
