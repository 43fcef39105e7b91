// SPDX-License-Identifier: MIT
// Sorting an array of text. The time never grows with the square of the count.
#pragma once

#include <vector>

#include "base/Text.h"

namespace quillmarsh {

// Ascending without regard to case; texts that differ in case only keep their order.
void QuickSortStringArray(std::vector<Text>& texts);

}  // namespace quillmarsh
