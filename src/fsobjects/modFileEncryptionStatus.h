// SPDX-License-Identifier: MIT
// A file's encryption status as the system tells it.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

// FILE_IS_ENCRYPTED (1) or another status of the system; -1 when it tells none.
[[nodiscard]] std::int32_t GetFileEncryptionStatus(TextView path);

}  // namespace quillmarsh
