// SPDX-License-Identifier: MIT
// Reading the whole of a file once, in sequence, in blocks of 256 KiB, and facts that want it: the
// MD5 digest and the share of plain text.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>

#include "base/Text.h"

namespace quillmarsh {

// Hands the file's blocks over one after the other. False, with the last error, when it could not
// be read to its end.
using TakeBlock = std::function<void(std::span<const std::byte>)>;
[[nodiscard]] bool ReadInBlocks(TextView path, const TakeBlock& take);

// 32 lower-case hexadecimal digits; none when the file cannot be read to its end.
[[nodiscard]] std::optional<Text> Md5OfFile(TextView path);

// How many of a hundred bytes are plain text, rounded down: tab, line feed, carriage return and
// 0x20 to 0x7E, and with `highCharactersToo` also 0x80 to 0xFF. An empty file has 0; none when the
// file cannot be read to its end.
[[nodiscard]] std::optional<std::int32_t> PlainTextPercentage(TextView path,
                                                              bool highCharactersToo);

}  // namespace quillmarsh
