// SPDX-License-Identifier: MIT
// Comparing and searching texts, with and without regard to case. Pure routines without state.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

// Texts of different length are never equal. With textMode the comparison ignores case; without it
// both are empty, or a binary search of one in the other finds it (which, at equal length, is
// equality).
[[nodiscard]] bool AreStringsEqual(TextView a, TextView b, bool textMode);

// Below 0, 0 or above 0 as a stands before, with or behind b when case is ignored.
[[nodiscard]] int CompareIgnoringCase(TextView a, TextView b);

// Whether the text begins with, or holds anywhere, the part. An empty part is always found.
[[nodiscard]] bool StartsWithIgnoringCase(TextView text, TextView part);
[[nodiscard]] bool ContainsIgnoringCase(TextView text, TextView part);

// Every occurrence of `from` (not empty) replaced by `to`.
[[nodiscard]] Text ReplaceAll(TextView text, TextView from, TextView to);

}  // namespace quillmarsh
