// SPDX-License-Identifier: MIT
// The choice of the way, and the program's own way: one block after the other, in sequence.
#include "fsobjects/FileChecksum.h"

#include <algorithm>
#include <span>
#include <vector>

#include "frame/ErrorReporting.h"
#include "frame/ProgramFlags.h"
#include "frame/Pump.h"
#include "fsobjects/ChecksumLibrary.h"
#include "fsobjects/OpenFileFacts.h"
#include "fsobjects/PrivateClipboard.h"
#include "fsobjects/cBinaryFileStream.h"
#include "fsobjects/modUnicode.h"
#include "pbcrc32/BlockPace.h"
#include "pbcrc32/Crc32.h"
#include "pbcrc32/ProgressText.h"
#include "pbcrc32/pbcrc32.h"

namespace quillmarsh {

namespace {

// A failure with the number and the text that the history gets.
struct ChecksumFailure {
  std::int32_t number;
  Text text;
};

[[noreturn]] void RaiseSystemError(std::uint32_t code) {
  throw ChecksumFailure{static_cast<std::int32_t>(code), GetSystemErrorText(code)};
}
[[noreturn]] void RaiseLastError(std::uint32_t otherwise) {
  const std::uint32_t code = TheMachine().GetLastError();
  RaiseSystemError(code != 0 ? code : otherwise);
}

// Runs one of the two ways, which answers the value or raises what went wrong. After a stop neither
// of them counts.
template <typename Way>
std::int32_t Checked(bool& errorFlag, std::int32_t& errorNumber, Text& errorText, Way&& way) {
  errorFlag = false;
  gStopCRC = false;
  ChecksumFailure failure;
  try {
    const std::int32_t value = way();
    return gStopCRC ? kChecksumStopped : value;
  } catch (const ChecksumFailure& raised) {
    if (gStopCRC) return kChecksumStopped;
    failure = raised;
  } catch (...) {
    TakePendingErrorFromException();
    failure = {gPendingError.number, gPendingError.description};
  }
  errorFlag = true;
  errorNumber = failure.number;
  errorText = failure.text;
  return kChecksumFailed;
}

// The stream's own reading goes by positions that miss their place above 4 GiB; in sequence the
// file's own position is always right.
std::uint32_t ReadWhole(HANDLE file) {
  std::uint32_t crc = 0;
  const auto before = FactsOfOpenFile(file);
  if (!before) RaiseLastError(ERROR_IO_DEVICE);
  const std::int64_t size = before->size;
  // A byte more than a short file has, so that its end shows at once.
  std::vector<std::byte> block(
      static_cast<std::size_t>(std::min<std::int64_t>(size, pbcrc32::BlockBytes - 1)) + 1);
  pbcrc32::BlockPace pace;
  pbcrc32::ProgressClock clock;
  std::int64_t position = 0;
  for (;;) {
    std::uint32_t done = 0;
    const std::size_t length = std::min<std::size_t>(pace.Begin(), block.size());
    if (!TheMachine().Files().ReadFile(file, std::span(block).first(length), done))
      RaiseLastError(ERROR_IO_DEVICE);
    pace.Done();
    crc = Crc32(crc, block.data(), done);
    position += done;
    DoEvents_Fast();
    // A file that grows as fast as it is read would otherwise never end.
    if (gStopCRC || done == 0 || position > size) break;
    if (clock.IsDue())
      PublishCRCProgressText(pbcrc32::ProgressText(position, size, clock.Seconds()));
  }
  if (gStopCRC) return crc;
  // What cannot be told any more is not taken for unchanged.
  if (position != size || FactsOfOpenFile(file) != before) RaiseSystemError(PB_ERROR_FILE_CHANGED);
  return crc;
}

}  // namespace

std::int32_t GetFileCRC32(TextView path, bool& errorFlag, std::int32_t& errorNumber,
                          Text& errorText) {
  errorNumber = 0;
  errorText.clear();
  // What an earlier file came to is not to be shown for this one.
  ClearCRCProgressText();
  return ContainsUnicodeChars(path)
             ? GetFileCRC32_Internal(path, errorFlag, errorNumber, errorText)
             : PB_GetFileCrc32_Checked(path, errorFlag, errorNumber, errorText);
}

std::int32_t PB_GetFileCrc32_Checked(TextView path, bool& errorFlag, std::int32_t& errorNumber,
                                     Text& errorText) {
  return Checked(errorFlag, errorNumber, errorText, [path] {
    const LibraryChecksum answer = AskLibraryForCRC32(path);
    if (answer.errorNumber != 0) throw ChecksumFailure{answer.errorNumber, answer.errorText};
    return answer.value;
  });
}

std::int32_t GetFileCRC32_Internal(TextView path, bool& errorFlag, std::int32_t& errorNumber,
                                   Text& errorText) {
  return Checked(errorFlag, errorNumber, errorText, [path] {
    cBinaryFileStream stream;
    stream.SetFile(path);
    static_cast<void>(stream.OpenFile(GENERIC_READ));
    if (!stream.AccessGranted()) RaiseLastError(ERROR_FILE_NOT_FOUND);
    return static_cast<std::int32_t>(ReadWhole(stream.Handle()));
  });
}

}  // namespace quillmarsh
