// SPDX-License-Identifier: MIT
// The choice of the way, and the program's own way: one block after the other, in sequence.
#include "fsobjects/FileChecksum.h"

#include <libdeflate.h>

#include <vector>

#include "frame/ErrorReporting.h"
#include "frame/ProgramFlags.h"
#include "frame/Pump.h"
#include "fsobjects/ChecksumLibrary.h"
#include "fsobjects/Handles.h"
#include "fsobjects/PrivateClipboard.h"
#include "fsobjects/cBinaryFileStream.h"
#include "fsobjects/modUnicode.h"
#include "pbcrc32/ProgressText.h"

namespace quillmarsh {

namespace {

constexpr std::size_t kBlockBytes = std::size_t{128} * 1024;
constexpr std::uint32_t kFileChanged = 1006;  // the opened file is no longer valid

class SystemFailure {
 public:
  explicit SystemFailure(std::uint32_t code) : mCode(code) {}
  [[nodiscard]] std::uint32_t Code() const { return mCode; }

 private:
  std::uint32_t mCode;
};

[[noreturn]] void RaiseLastError(std::uint32_t otherwise) {
  const std::uint32_t code = TheMachine().GetLastError();
  throw SystemFailure(code != 0 ? code : otherwise);
}

std::int64_t SizeOf(HANDLE file) {
  BY_HANDLE_FILE_INFORMATION information;
  if (!TheMachine().Files().GetFileInformationByHandle(file, information))
    RaiseLastError(ERROR_IO_DEVICE);
  return static_cast<std::int64_t>((std::uint64_t{information.nFileSizeHigh} << 32U) |
                                   information.nFileSizeLow);
}

// False when it was stopped. The stream's own reading goes by positions that miss their place above
// 4 GiB; in sequence the file's own position is always right.
bool ReadWhole(HANDLE file, std::uint32_t& crc) {
  const std::int64_t size = SizeOf(file);
  std::vector<std::byte> block(kBlockBytes);
  pbcrc32::ProgressClock clock;
  std::int64_t position = 0;
  for (;;) {
    std::uint32_t done = 0;
    if (!TheMachine().Files().ReadFile(file, block, done)) RaiseLastError(ERROR_IO_DEVICE);
    crc = libdeflate_crc32(crc, block.data(), done);
    position += done;
    DoEvents_Fast();
    if (gStopCRC) return false;
    // A file that grows as fast as it is read would otherwise never end.
    if (done == 0 || position > size) break;
    if (clock.IsDue())
      PublishCRCProgressText(pbcrc32::ProgressText(position, size, clock.Seconds()));
  }
  if (position != size) throw SystemFailure(kFileChanged);
  return true;
}

}  // namespace

std::int32_t GetFileCRC32(TextView path, bool& errorFlag, std::int32_t& errorNumber,
                          Text& errorText) {
  errorNumber = 0;
  errorText.clear();
  // What an earlier file came to is not to be shown for this one.
  PublishCRCProgressText({});
  return ContainsUnicodeChars(path)
             ? GetFileCRC32_Internal(path, errorFlag, errorNumber, errorText)
             : PB_GetFileCrc32_Checked(path, errorFlag, errorNumber, errorText);
}

std::int32_t PB_GetFileCrc32_Checked(TextView path, bool& errorFlag, std::int32_t& errorNumber,
                                     Text& errorText) {
  errorFlag = false;
  gStopCRC = false;
  try {
    const LibraryChecksum answer = AskLibraryForCRC32(path);
    if (gStopCRC) return kChecksumStopped;
    if (answer.errorNumber == 0) return answer.value;
    errorNumber = answer.errorNumber;
    errorText = answer.errorText;
  } catch (...) {
    TakePendingErrorFromException();
    errorNumber = gPendingError.number;
    errorText = gPendingError.description;
  }
  errorFlag = true;
  return kChecksumFailed;
}

std::int32_t GetFileCRC32_Internal(TextView path, bool& errorFlag, std::int32_t& errorNumber,
                                   Text& errorText) {
  errorFlag = false;
  gStopCRC = false;
  try {
    cBinaryFileStream stream;
    stream.SetFile(path);
    static_cast<void>(stream.OpenFile(GENERIC_READ));
    if (!stream.AccessGranted()) RaiseLastError(ERROR_FILE_NOT_FOUND);
    std::uint32_t crc = 0;
    return ReadWhole(stream.Handle(), crc) ? static_cast<std::int32_t>(crc) : kChecksumStopped;
  } catch (const SystemFailure& failure) {
    if (gStopCRC) return kChecksumStopped;  // a read that was given up
    errorNumber = static_cast<std::int32_t>(failure.Code());
    errorText = GetSystemErrorText(failure.Code());
  } catch (...) {
    TakePendingErrorFromException();
    errorNumber = gPendingError.number;
    errorText = gPendingError.description;
  }
  errorFlag = true;
  return kChecksumFailed;
}

}  // namespace quillmarsh
