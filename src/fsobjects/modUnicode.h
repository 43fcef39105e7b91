// SPDX-License-Identifier: MIT
// The form of a path that a system call takes, and the few text encodings of the program's files.
// Pure but for GetEncodingOfFile. A path is never normalised: ".." and slashes stay as they are.
#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "base/Text.h"

namespace quillmarsh {

// The shortest limit of the system's file and folder calls, in characters.
inline constexpr std::size_t kLongPathLimit = 248;

enum class TextEncoding : std::int32_t { None = 0, Utf8 = 1, Utf16LittleEndian = 2 };

// A path above the limit with the prefix that lifts it; any other unchanged. Every call of the
// system that names a path gets it in this form, and no text that is shown or kept has it.
[[nodiscard]] Text ToLongPath(TextView path);
// The way back. A path of at most 248 characters keeps its prefix.
[[nodiscard]] Text FromLongPath(TextView path);
// At least two characters, of which the first two are backslashes.
[[nodiscard]] bool IsUNCPath(TextView path);

// Whether a character above U+00FF is in it, so that it cannot pass through 8-bit interfaces.
[[nodiscard]] bool ContainsUnicodeChars(TextView text);

// The part before the first NUL.
[[nodiscard]] Text TrimAtNull(TextView buffer);
// The zero-terminated text at a pointer; empty for none.
[[nodiscard]] Text GetStringFromPointer(const char16_t* pointer);

// The mark at the head of a file. Fewer than four bytes have none; big-endian is not known.
[[nodiscard]] TextEncoding DetectBOM(std::span<const std::byte> bytes);
// By the first three bytes; None for a file that is shorter or cannot be opened.
[[nodiscard]] TextEncoding GetEncodingOfFile(TextView path);

// The first `count` bytes (at most all) through the 8-bit code page.
[[nodiscard]] Text BytesToStringANSI(std::span<const std::byte> bytes, std::size_t count);
[[nodiscard]] std::string StringToUTF8(TextView text);
// Not a general decoder; see there.
[[nodiscard]] Text UTF8BytesToString(std::span<const std::byte> bytes);
// One character of one, two or three bytes.
[[nodiscard]] char16_t DecodeUTF8Sequence(std::span<const std::byte> bytes);

}  // namespace quillmarsh
