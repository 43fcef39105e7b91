// SPDX-License-Identifier: MIT
// Small routines that the removal, the log and the lists of results share.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

// The text between two quotation marks; marks inside it stay as they are.
[[nodiscard]] Text EncloseInQuotes(TextView text);

}  // namespace quillmarsh
