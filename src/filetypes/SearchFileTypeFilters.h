// SPDX-License-Identifier: MIT
// What the choice of a search file type does to the filters of a search. The search itself knows no
// file types: it reads the filters of gDupeSettings and nothing else.
#pragma once

#include <cstdint>

#include "base/Text.h"

namespace quillmarsh {

// The masks of a search file type as one list text; empty for 0 (all files), and with a message box
// outside 0 to 4. Where gCommonFileTypes lacks the type, that is raised.
[[nodiscard]] Text MasksOfSearchFileType(std::int32_t number);

// Overwrites all four filters, the exclusions too, and asks nobody: IncludeFiles becomes the masks
// of the search file type, the other three become empty. For 0 (all files), and with a message box
// outside 0 to 4, IncludeFiles becomes empty too. Where gCommonFileTypes lacks the type, that is
// reported and no filter changes.
void PopulateIncludeExcludeFiltersBasedOnSearchFileType(std::int32_t number);

}  // namespace quillmarsh
