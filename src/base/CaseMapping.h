// SPDX-License-Identifier: MIT
// Upper case by one fixed table of simple mappings, one code unit to one code unit, the same on
// every platform and in every locale. All comparison of names "ignoring case" goes through it.
#pragma once

#include <array>

#include "base/Text.h"

namespace quillmarsh {

// Entry n is the simple upper-case mapping of U+n (itself where there is none). Built by the
// compiler, so it may be used while other globals are still being made.
extern const std::array<char16_t, 65536> UpperCaseMappings;

// The same as a pointer to its 65,536 entries.
[[nodiscard]] inline const char16_t* UpperCaseTable() {
  return UpperCaseMappings.data();
}

[[nodiscard]] inline char16_t UpperCase(char16_t unit) {
  return UpperCaseTable()[unit];
}
[[nodiscard]] Text UpperCaseText(TextView text);

}  // namespace quillmarsh
