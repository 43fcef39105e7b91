// SPDX-License-Identifier: MIT
// Reads and writes one file of any size by position. Owns the handle from OpenFile on; it closes
// when another name is set and when the stream goes, never before. Positions and sizes are whole
// byte counts; in files above 4 GiB they do not fit one another (see the source), so content is
// read there in sequence by other means. Failures show in counts and AccessGranted; a size beyond
// the currency's limit raises run-time error 6.
#pragma once

#include <span>

#include "base/Currency.h"
#include "platform/SystemTypes.h"

namespace quillmarsh {

class cBinaryFileStream {
 public:
  cBinaryFileStream() = default;
  ~cBinaryFileStream() { Close(); }
  cBinaryFileStream(const cBinaryFileStream&) = delete;
  cBinaryFileStream& operator=(const cBinaryFileStream&) = delete;

  [[nodiscard]] const Text& File() const { return mFile; }
  // Closes any open file and begins anew at position 0.
  void SetFile(TextView path);

  // GENERIC_READ opens an existing file for reading; any other access opens for reading and
  // writing and makes a missing file. Others may only read meanwhile. INVALID_HANDLE on failure.
  // Leaves the position where it is.
  HANDLE OpenFile(std::uint32_t access);
  [[nodiscard]] bool AccessGranted() const { return mHandle != INVALID_HANDLE; }
  [[nodiscard]] HANDLE Handle() const { return mHandle; }
  // As it was when the file was opened.
  [[nodiscard]] Currency FileSize() const { return mFileSize; }
  // Whether the position is at the end or behind it.
  [[nodiscard]] bool IsEOF() const { return mPosition >= mFileSize; }

  // Reads at most `length` bytes, and never more than the buffer holds or the file has left, to the
  // start of the buffer. The count that was read.
  std::int32_t ReadFromFile(std::span<std::byte> buffer, std::int32_t length);
  // The same as text of the 8-bit code page; empty when nothing was read.
  std::int32_t ReadStringFromFile(Text& text, std::int32_t length);
  // Writes `length` bytes, and never more than the buffer holds. The count that was written.
  std::int32_t WriteToFile(std::span<const std::byte> buffer, std::int32_t length);
  // Cuts or extends the file; FileSize and the position stay. Does nothing to a file that was
  // opened for reading. Error 5 for a negative size.
  void SetFileSize(Currency newSize);

 private:
  bool MoveTo(Currency position);
  void Close();

  Currency mPosition;  // of the next byte to read or write
  Text mFile;
  HANDLE mHandle = INVALID_HANDLE;
  Currency mFileSize;
  std::uint32_t mAccess = 0;
  bool mOldRedirection = false;  // closing switches the redirection on again
};

}  // namespace quillmarsh
