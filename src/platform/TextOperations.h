// SPDX-License-Identifier: MIT
// Pure text operations of the platform, written once and portably, the same on every machine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "base/Text.h"

namespace quillmarsh {

// Whether the whole of `text` matches one of the masks in `masks`, which ';' separates and whose
// leading blanks do not count. '*' and '?' only; case is ignored; "*.*" alone matches everything;
// an empty mask matches nothing.
[[nodiscard]] bool PathMatchSpecW(TextView text, TextView masks);

// The root of a path: "Q:\", "Q:", "\\server\share", "\\?\Q:\", "\\?\UNC\server\share"; empty on
// failure.
[[nodiscard]] Text PathStripToRootW(TextView path);

// "532 bytes", "1.30 KB", "0.99 MB": base 1024, three digits, cut and not rounded.
// `decimalSeparator` stands where the point does.
[[nodiscard]] Text StrFormatByteSizeW(std::int64_t bytes, TextView decimalSeparator = u".");

// A 32-bit hash of bytes that is never 0 and never -1 (read as signed).
[[nodiscard]] std::int32_t HashData(std::span<const std::byte> bytes);

}  // namespace quillmarsh
