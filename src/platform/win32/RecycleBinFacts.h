// SPDX-License-Identifier: MIT
// Whether the shell would keep a file in its Recycle Bin.
#pragma once

#include <cstdint>

#include "base/Text.h"

namespace quillmarsh::win32 {

// 0, or the code with which a path is refused: it cannot be handed to the shell as it is, is not
// there, or would be deleted for good. The settings of the bin are those of the user.
[[nodiscard]] std::uint32_t WhyNotRecycled(TextView path);

// 0 where the volume of the path has a bin at all, else a code.
[[nodiscard]] std::uint32_t WhyNoBin(TextView path);

}  // namespace quillmarsh::win32
