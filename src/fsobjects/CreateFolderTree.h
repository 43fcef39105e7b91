// SPDX-License-Identifier: MIT
// Makes a folder together with every folder above it that is missing. What was made before a
// failure stays.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

// `errorNumber` takes the system's number of the first failure, 0 when there was none. Also true
// when the folder was there already.
[[nodiscard]] bool CreateFolderTree(TextView path, std::uint32_t& errorNumber);

}  // namespace quillmarsh
