// SPDX-License-Identifier: MIT
// What a simulated file holds: given bytes, or a recipe of a seed and a length whose bytes are
// computed where they are read and never stored. The same seed gives the same bytes in every run,
// and of two recipes with one seed the shorter is a beginning of the longer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "base/Text.h"

namespace quillmarsh {

class FileContents {
 public:
  FileContents() = default;
  // Implicit, so that a test can write a literal where contents are asked for.
  FileContents(std::string_view bytes) : mBytes(bytes), mSize(bytes.size()) {}
  FileContents(const std::string& bytes) : FileContents(std::string_view(bytes)) {}
  FileContents(const char* bytes) : FileContents(std::string_view(bytes)) {}

  [[nodiscard]] static FileContents Recipe(std::uint64_t seed, std::uint64_t size);
  // UTF-16 little-endian with its byte order mark.
  [[nodiscard]] static FileContents Utf16(TextView text);

  // The same contents but for one byte: how two long files differ in a single place.
  [[nodiscard]] FileContents ChangedAt(std::uint64_t position) const;

  [[nodiscard]] std::uint64_t Size() const { return mSize; }
  [[nodiscard]] bool IsRecipe() const { return mSeed.has_value(); }
  [[nodiscard]] std::uint64_t Seed() const { return mSeed.value_or(0); }
  [[nodiscard]] const std::string& StoredBytes() const { return mBytes; }
  [[nodiscard]] const std::optional<std::uint64_t>& ChangedPosition() const { return mChanged; }

 private:
  std::string mBytes;
  std::uint64_t mSize = 0;
  std::optional<std::uint64_t> mSeed;
  std::optional<std::uint64_t> mChanged;
};

// Fills `bytes` with what a recipe of this seed has from `offset` on.
void FillFromRecipe(std::uint64_t seed, std::uint64_t offset, std::span<std::byte> bytes);

}  // namespace quillmarsh
