// SPDX-License-Identifier: MIT
// What the shell shows in its Recycle Bin.
#pragma once

#include <optional>
#include <string>

#include "base/Text.h"

namespace quillmarsh {

// The bytes of a file that was deleted at this path; none when the bin shows no such file.
[[nodiscard]] std::optional<std::string> BytesInBin(const Text& path);
// Takes everything for good out of the bin that was deleted in this very folder.
void EmptyBinOf(const Text& folder);

}  // namespace quillmarsh
