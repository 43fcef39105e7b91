// SPDX-License-Identifier: MIT
// The five search file types, to which a search can be limited: 0 all, 1 audio, 2 document, 3
// image, 4 video. The numbers are those of clsDupeSettings.FileType.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

// 0 for a name that it does not know, which means all file types; deliberately without a warning.
// Names are compared with regard to case.
[[nodiscard]] std::int32_t SFTEnumFromName(TextView name);
// Empty outside 0 to 4, with a message box.
[[nodiscard]] Text SFTNameFromEnum(std::int32_t number);

}  // namespace quillmarsh
