// SPDX-License-Identifier: MIT
// What is marked for removal, over all records and by group. Reads the results and changes nothing;
// lists, console and removal ask here whether a group would be left without a copy.
#pragma once

#include "search/results/cSearchResults.h"

namespace quillmarsh {

struct MarkedTotal {
  std::int32_t count = 0;
  Currency size;  // bytes; a total that does not fit stays at the largest number
};

// Over all records, also those that a removal has taken out of their groups since, whose marks
// stay.
[[nodiscard]] MarkedTotal GetTotalMarkedCountAndSize(const cSearchResults& results);

// The panel of selected files: "Selected:1,234 (5.67 MB)", or "Selected:0".
void ShowSelectedCountAndSizeInStatusBar(const MarkedTotal& total);

// False for an index (from 1) without a record.
[[nodiscard]] bool IsMarked(const cSearchResults& results, std::int32_t index);

// Every file that the group still has is marked, so that removing the marked ones leaves no copy.
// False for a group without files.
[[nodiscard]] bool IsWhollyMarked(const cSearchResults& results, std::int32_t group);
[[nodiscard]] std::int32_t WhollyMarkedGroupCount(const cSearchResults& results);

}  // namespace quillmarsh
