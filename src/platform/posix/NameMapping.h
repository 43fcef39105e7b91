// SPDX-License-Identifier: MIT
// Names of the disk (any bytes but '/' and NUL) as UTF-16 and back, one to one: UTF-8 is decoded;
// bytes that are no UTF-8 become U+DC80..U+DCFF; the characters that the program's paths cannot
// hold (1 to 31 and " * : < > ? \ |) become U+F000 + c; and what would decode to one of those
// U+F0xx is carried byte by byte. Pure functions.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "base/Text.h"

namespace quillmarsh {

// Writes the text of a name to `out`, which has room for `name.size()` units (a name never has more
// units than bytes), and answers the number of units.
std::size_t MapName(std::string_view name, char16_t* out);

// The same, behind a text.
void AppendMappedName(std::string_view name, Text& text);

// Adds the bytes of one name to `bytes`. False, with `bytes` as they were, for a text that is the
// image of no name: forbidden characters, lone surrogates, and a second spelling of a name that has
// another image.
[[nodiscard]] bool AppendNameBytes(TextView name, std::string& bytes);

// Bytes as a person reads them: control characters as control pictures (U+2400 + c), everything
// else that may break a line and each byte that is no UTF-8 as U+FFFD.
[[nodiscard]] Text ShownText(std::string_view bytes);

}  // namespace quillmarsh
