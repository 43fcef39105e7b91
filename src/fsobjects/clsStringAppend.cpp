// SPDX-License-Identifier: MIT
// The told capacity and the memory behind it are two things: the first moves by chunks, the second
// doubles.
#include "fsobjects/clsStringAppend.h"

#include <algorithm>

#include "base/CaseMapping.h"
#include "frame/ErrorReporting.h"

namespace quillmarsh {
namespace {

constexpr std::int64_t kMostBytes = 2147483647;
constexpr std::int64_t kBytesPerUnit = sizeof(char16_t);

std::int64_t BytesOf(TextView text) {
  return static_cast<std::int64_t>(text.size()) * kBytesPerUnit;
}

[[noreturn]] void RaiseOutOfRange() {
  throw RuntimeError(runtime_error::SubscriptOutOfRange);
}

std::size_t FindFrom(TextView text, TextView part, std::size_t from,
                     clsStringAppend::Compare compare) {
  if (compare == clsStringAppend::Compare::Binary) return text.find(part, from);
  if (from > text.size()) return TextView::npos;
  const auto begin = text.begin() + static_cast<std::ptrdiff_t>(from);
  const auto found =
      std::search(begin, text.end(), part.begin(), part.end(),
                  [](char16_t a, char16_t b) { return UpperCase(a) == UpperCase(b); });
  if (found == text.end() && !part.empty()) return TextView::npos;
  return static_cast<std::size_t>(found - text.begin());
}

}  // namespace

std::int32_t clsStringAppend::StringByteSize() const {
  return static_cast<std::int32_t>(BytesOf(mText));
}
std::int32_t clsStringAppend::Length() const {
  return static_cast<std::int32_t>(mText.size());
}
std::int32_t clsStringAppend::Capacity() const {
  return static_cast<std::int32_t>(mCapacity / kBytesPerUnit);
}
std::int32_t clsStringAppend::ChunkSize() const {
  return static_cast<std::int32_t>(mChunkSize / kBytesPerUnit);
}

void clsStringAppend::SetChunkSize(std::int32_t characters) {
  // Growing by nothing would never end.
  mChunkSize = std::max(characters, 1) * kBytesPerUnit;
}

void clsStringAppend::GrowTo(std::size_t units) {
  const std::int64_t bytes = static_cast<std::int64_t>(units) * kBytesPerUnit;
  if (bytes <= mCapacity) return;
  if (bytes > kMostBytes) throw RuntimeError(runtime_error::OutOfMemory);
  if (units > mText.capacity()) mText.reserve(std::max(units, mText.capacity() * 2));
  mCapacity += (bytes - mCapacity + mChunkSize - 1) / mChunkSize * mChunkSize;
}

void clsStringAppend::SetInitialString(TextView text) {
  if (text.empty()) return Reset();
  GrowTo(text.size());
  mText.assign(text);
}

bool clsStringAppend::Append(TextView text) {
  Guarded(u"clsStringAppend.Append", [&] {
    GrowTo(mText.size() + text.size());
    mText.append(text);
  });
  return true;
}

void clsStringAppend::AppendByVal(TextView text) {
  Append(text);
}

void clsStringAppend::Insert(std::int32_t position, TextView text) {
  if (position < 0 || position > Length()) RaiseOutOfRange();
  // As many chunks as it takes: room for one only would put a longer text beyond the memory.
  GrowTo(mText.size() + text.size());
  mText.insert(static_cast<std::size_t>(position), text);
}

void clsStringAppend::InsertByVal(std::int32_t position, TextView text) {
  Insert(position, text);
}

void clsStringAppend::Remove(std::int32_t position, std::int32_t count) {
  if (position < 0 || count < 0 || std::int64_t{position} + count > Length()) RaiseOutOfRange();
  mText.erase(static_cast<std::size_t>(position), static_cast<std::size_t>(count));
}

// A find at the last character counts as none: callers look for what parts one entry from the next,
// and at the very end nothing follows that it could part.
std::int32_t clsStringAppend::Find(TextView text, std::int32_t start, Compare compare) const {
  const std::size_t from = static_cast<std::size_t>(std::max(start, 1)) - 1;
  if (mText.empty()) return 0;
  const std::size_t found = FindFrom(mText, text, from, compare);
  if (found == Text::npos || found + 1 >= mText.size()) return 0;
  return static_cast<std::int32_t>(found) + 1;
}

void clsStringAppend::HeapMinimize() {
  const std::int64_t unused = mCapacity - BytesOf(mText);
  if (unused > mChunkSize) mCapacity -= (unused - 1) / mChunkSize * mChunkSize;
  mText.shrink_to_fit();
}

void clsStringAppend::Reset() {
  Text().swap(mText);
  mCapacity = 0;
}

}  // namespace quillmarsh
