// SPDX-License-Identifier: MIT
// The CRC-32 of one file, the standard one of IEEE 802.3, by the loaded library or, where a path
// has characters that cannot pass through the library's narrow texts, by the program itself. Both
// ways give the same value, let events run meanwhile, and look at gStopCRC at each block.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

// What stands for a value after a stop, and after a failure. Both may also be true values of a
// file: a failure is told by `errorFlag`, a stop by gStopCRC.
inline constexpr std::int32_t kChecksumStopped = -2;
inline constexpr std::int32_t kChecksumFailed = -1;

// Clears gStopCRC first. With `errorFlag` the error number is that of the system and the text its
// text; without it they are 0 and empty. A file that is not, at its end, what it was when it was
// opened is a failure.
[[nodiscard]] std::int32_t GetFileCRC32(TextView path, bool& errorFlag, std::int32_t& errorNumber,
                                        Text& errorText);

// The two ways.
[[nodiscard]] std::int32_t PB_GetFileCrc32_Checked(TextView path, bool& errorFlag,
                                                   std::int32_t& errorNumber, Text& errorText);
[[nodiscard]] std::int32_t GetFileCRC32_Internal(TextView path, bool& errorFlag,
                                                 std::int32_t& errorNumber, Text& errorText);

}  // namespace quillmarsh
