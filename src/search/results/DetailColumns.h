// SPDX-License-Identifier: MIT
// The columns of the list of a group's files: their headings, and how many there are.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

// One more than have headings: the last is hidden, for the sort.
[[nodiscard]] int GetDupeDetailColCount();
// The heading of a column from 0 to 5. Any other number is told in a message box and has none.
[[nodiscard]] Text GetDupeDetailColLabelFromColNumber(int number);

}  // namespace quillmarsh
