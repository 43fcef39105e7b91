// SPDX-License-Identifier: MIT
// The program's text: UTF-16, where one code unit counts as one character. Conversions to and from
// UTF-8 happen at the edges only (console, files of other programs); nothing inside works on UTF-8.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quillmarsh {

using Text = std::u16string;
using TextView = std::u16string_view;

// UTF-8 of a text. A surrogate without its partner becomes U+FFFD.
[[nodiscard]] std::string ToUtf8(TextView text);

// Text of UTF-8. Each byte that is no UTF-8 becomes U+FFFD.
[[nodiscard]] Text FromUtf8(std::string_view bytes);

// The same, but a surrogate without its partner becomes three bytes by the plan of UTF-8, and they
// come back: for names of systems that allow such halves in them.
[[nodiscard]] std::string ToWtf8(TextView text);
[[nodiscard]] Text FromWtf8(std::string_view bytes);

// Decimal text of a whole number, with a leading minus where it is negative, without grouping.
[[nodiscard]] Text DecimalText(std::int64_t number);

// 8-bit text is code page 1252 on every platform. The five codes that the code page leaves open
// become the control characters of the same number, and come back.
[[nodiscard]] Text FromCodePage1252(std::string_view bytes);
// Characters that the code page does not have become '?'.
[[nodiscard]] std::string ToCodePage1252(TextView text);

// Text without its blanks (U+0020) at both ends, or at the end.
[[nodiscard]] TextView TrimBlanks(TextView text);

}  // namespace quillmarsh
