// SPDX-License-Identifier: MIT
// Facts that want the whole of a file's contents: its MD5 digest and its share of plain text. The
// file is read once, in sequence, in blocks of 256 KiB.
#pragma once

#include <optional>

#include "base/Text.h"

namespace quillmarsh {

// 32 lower-case hexadecimal digits; none when the file cannot be read to its end.
[[nodiscard]] std::optional<Text> Md5OfFile(TextView path);

// How many of a hundred bytes are plain text, rounded down: tab, line feed, carriage return and
// 0x20 to 0x7E, and with `highCharactersToo` also 0x80 to 0xFF. An empty file has 0; none when the
// file cannot be read to its end.
[[nodiscard]] std::optional<std::int32_t> PlainTextPercentage(TextView path,
                                                              bool highCharactersToo);

}  // namespace quillmarsh
