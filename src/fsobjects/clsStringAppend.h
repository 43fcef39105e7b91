// SPDX-License-Identifier: MIT
// Builds long texts piece by piece. Its capacity is told in whole chunks; the memory behind it
// grows by doubling, so that a text of any length costs time in proportion to its length. Sizes are
// in characters unless a name says bytes. A text above 2,147,483,647 bytes is error 7.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

class clsStringAppend {
 public:
  enum class Compare : std::int32_t { Binary = 0, IgnoreCase = 1 };

  [[nodiscard]] std::int32_t StringByteSize() const;
  [[nodiscard]] std::int32_t Length() const;
  [[nodiscard]] std::int32_t Capacity() const;
  [[nodiscard]] std::int32_t ChunkSize() const;
  // At least one character.
  void SetChunkSize(std::int32_t characters);
  // The text so far. Valid until the next change.
  [[nodiscard]] const Text& CurrentString() const { return mText; }
  // Replaces what was there; an empty text resets.
  void SetInitialString(TextView text);

  // Always true; a failure is reported.
  bool Append(TextView text);
  void AppendByVal(TextView text);
  // `position` counts from 0. Error 9 outside the text.
  void Insert(std::int32_t position, TextView text);
  void InsertByVal(std::int32_t position, TextView text);
  // Error 9 where the piece does not lie wholly in the text.
  void Remove(std::int32_t position, std::int32_t count);
  // The position from 1 of the first find at or behind `start` (all of the text for a start below
  // 1), 0 for none. A find at the last character counts as none.
  [[nodiscard]] std::int32_t Find(TextView text, std::int32_t start, Compare compare) const;
  // Gives back unused chunks but the last.
  void HeapMinimize();
  void Reset();

 private:
  void GrowTo(std::size_t units);

  Text mText;
  std::int64_t mChunkSize = 16384;  // bytes
  std::int64_t mCapacity = 0;       // bytes, as callers are told
};

}  // namespace quillmarsh
