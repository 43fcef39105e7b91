// SPDX-License-Identifier: MIT
// From the search file types to the common file types that they stand for.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

// -1 for 0 (all file types) and outside 1 to 4.
[[nodiscard]] std::int32_t CFTEnumFromSFTEnum(std::int32_t number);
// The two names of a type may differ ("Document Files"). Empty where there is no such type.
[[nodiscard]] Text CFTNameFromSFTName(TextView name);

}  // namespace quillmarsh
