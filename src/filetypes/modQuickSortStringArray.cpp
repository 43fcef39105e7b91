// SPDX-License-Identifier: MIT
// The library's stable sort, which moves texts and never copies their characters.
#include "filetypes/modQuickSortStringArray.h"

#include <algorithm>

#include "base/TextEquality.h"

namespace quillmarsh {

void QuickSortStringArray(std::vector<Text>& texts) {
  std::ranges::stable_sort(
      texts, [](const Text& a, const Text& b) { return CompareIgnoringCase(a, b) < 0; });
}

}  // namespace quillmarsh
