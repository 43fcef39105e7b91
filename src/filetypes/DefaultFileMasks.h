// SPDX-License-Identifier: MIT
// The masks that the common file types have until somebody changes them: 2,837 in ten lists. A list
// is given as one text joined by the separator, or by "," where that is empty; its order and its
// repeats are part of the data.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

// By the number of the common file type, 0 to 9; empty outside.
[[nodiscard]] Text DefaultFileMasksOf(std::int32_t number, TextView separator);

// "Temporary Files" has no routine of its own: its one mask is "*.tmp".
[[nodiscard]] Text GetDefaultImageFileMasks(TextView separator);
[[nodiscard]] Text GetDefaultAudioFileMasks(TextView separator);
[[nodiscard]] Text GetDefaultVideoFileMasks(TextView separator);
[[nodiscard]] Text GetDefaultEmailFileMasks(TextView separator);
[[nodiscard]] Text GetDefaultDocumentFileMasks(TextView separator);
[[nodiscard]] Text GetDefaultExecutableFileMasks(TextView separator);
[[nodiscard]] Text GetDefaultWebFileMasks(TextView separator);
[[nodiscard]] Text GetDefaultFinancialFileMasks(TextView separator);
[[nodiscard]] Text GetDefaultAppDataFileMasks(TextView separator);

}  // namespace quillmarsh
