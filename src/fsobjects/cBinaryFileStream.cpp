// SPDX-License-Identifier: MIT
// The stream's own conversions between byte counts and pairs of 32-bit words, and its calls.
#include "fsobjects/cBinaryFileStream.h"

#include <algorithm>
#include <vector>

#include "base/RuntimeError.h"
#include "fsobjects/FileTransfers.h"
#include "fsobjects/Handles.h"
#include "fsobjects/modUnicode.h"

namespace quillmarsh {
namespace {

// Not 2 to the power 32. FileSize is therefore too low by the high word, and a position stands for
// a place that is too far by the high word: below 4 GiB both are right. The two belong together;
// mending one alone would have a stream read past the end that it believes in.
constexpr std::int64_t kWordStep = 4294967295;

// Backup semantics, sequential scan and every ordinary attribute.
constexpr std::uint32_t kReadingFlags = 0xA0001A7;
// Backup semantics and the normal attribute.
constexpr std::uint32_t kWritingFlags = 0x2000080;

// A low word below 0 has 1 and the step added, which is exact.
Currency SizeOfWords(std::uint32_t high, std::uint32_t low) {
  return Currency::FromInteger(high) * kWordStep + Currency::FromInteger(low);
}

// The distance that a pointer call makes of the two words of a position.
std::int64_t DistanceOfWords(Currency position) {
  const std::int64_t value = position.ToInteger();
  // Its low word alone would stand for a place just below 4 GiB.
  if (value < 0) throw RuntimeError(runtime_error::InvalidProcedureCall);
  const std::int64_t high = value / kWordStep;
  const std::int64_t low = value % kWordStep;
  return (high << 32) + low;
}

// How much of a buffer a length means: never more than there is, and nothing below 0.
std::int64_t CountWithin(std::size_t bufferSize, std::int32_t length) {
  return std::clamp<std::int64_t>(length, 0, static_cast<std::int64_t>(bufferSize));
}

Currency SizeOfOpenFile(HANDLE file) {
  BY_HANDLE_FILE_INFORMATION information;
  if (!TheMachine().Files().GetFileInformationByHandle(file, information)) return {};
  return SizeOfWords(information.nFileSizeHigh, information.nFileSizeLow);
}

}  // namespace

void cBinaryFileStream::SetFile(TextView path) {
  Close();
  mPosition = {};
  mFileSize = {};
  mAccess = 0;
  mFile = path;
}

HANDLE cBinaryFileStream::OpenFile(std::uint32_t access) {
  Close();
  mAccess = access;
  if (gIsWow64) TheMachine().Process().Wow64DisableWow64FsRedirection();
  const bool reads = access == GENERIC_READ;
  mHandle = TheMachine().Files().CreateFileW(
      ToLongPath(mFile), reads ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ,
      reads ? OPEN_EXISTING : OPEN_ALWAYS, reads ? kReadingFlags : kWritingFlags);
  // After a failure there is nothing to close, and the redirection stays off: every file call of
  // the program switches it off anyway, and the caller's next look must see the same file.
  if (!AccessGranted()) return mHandle;
  mOldRedirection = gIsWow64;
  MoveTo({});
  mFileSize = SizeOfOpenFile(mHandle);
  return mHandle;
}

bool cBinaryFileStream::MoveTo(Currency position) {
  std::int64_t reached = 0;
  return TheMachine().Files().SetFilePointerEx(mHandle, DistanceOfWords(position), reached,
                                               FILE_BEGIN);
}

// The position grows by what was asked for, also when less was read: a caller that counts on its
// position goes on behind a damaged stretch and does not read it for ever.
std::int32_t cBinaryFileStream::ReadFromFile(std::span<std::byte> buffer, std::int32_t length) {
  std::int64_t count = CountWithin(buffer.size(), length);
  const bool reachesEnd = mPosition + Currency::FromInteger(count) >= mFileSize;
  if (reachesEnd) count = (mFileSize - mPosition).ToInteger();
  if (count < 1) return 0;

  const std::span<std::byte> part = buffer.first(static_cast<std::size_t>(count));
  // Of a file that has shrunk since it was opened, the missing bytes read as zero.
  if (reachesEnd) std::ranges::fill(part, std::byte{0});
  std::size_t done = 0;
  // How far a failed read came is in the count; the failure itself is not told.
  if (MoveTo(mPosition)) static_cast<void>(ReadFully(mHandle, part, done));
  mPosition += Currency::FromInteger(count);
  return static_cast<std::int32_t>(done);
}

std::int32_t cBinaryFileStream::ReadStringFromFile(Text& text, std::int32_t length) {
  text.clear();
  // A length that was made up must not cost its memory.
  const std::int64_t left = std::max<std::int64_t>((mFileSize - mPosition).ToInteger(), 0);
  std::vector<std::byte> bytes(static_cast<std::size_t>(std::clamp<std::int64_t>(length, 0, left)));
  const std::int32_t done = ReadFromFile(bytes, length);
  if (done >= 1) text = BytesToStringANSI(bytes, static_cast<std::size_t>(done));
  return done;
}

std::int32_t cBinaryFileStream::WriteToFile(std::span<const std::byte> buffer,
                                            std::int32_t length) {
  const auto count = static_cast<std::size_t>(CountWithin(buffer.size(), length));
  std::size_t done = 0;
  // How far a failed write came is in the count.
  if (MoveTo(mPosition)) static_cast<void>(WriteFully(mHandle, buffer.first(count), done));
  mPosition += Currency::FromInteger(static_cast<std::int64_t>(done));
  return static_cast<std::int32_t>(done);
}

void cBinaryFileStream::SetFileSize(Currency newSize) {
  if (mAccess == GENERIC_READ) return;
  if (MoveTo(newSize)) static_cast<void>(TheMachine().Files().SetEndOfFile(mHandle));
}

void cBinaryFileStream::Close() {
  if (!AccessGranted()) return;
  const LastErrorKeeper keeper;
  TheMachine().Files().CloseHandle(mHandle);
  mHandle = INVALID_HANDLE;
  if (mOldRedirection) TheMachine().Process().Wow64RevertWow64FsRedirection();
  mOldRedirection = false;
}

}  // namespace quillmarsh
