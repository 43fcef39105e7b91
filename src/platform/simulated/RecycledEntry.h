// SPDX-License-Identifier: MIT
// What the simulated Recycle Bin keeps of an entry. A plain value.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

struct RecycledEntry {
  Text originalPath;  // as it was given
  Text binPath;       // where it lies now, below "$Recycle.Bin" of its volume
};

}  // namespace quillmarsh
