// SPDX-License-Identifier: MIT
// The unfinished copies that a removal leaves in a folder when it is killed in the middle of one.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

// Deletes the unfinished copies in this folder, not below it, that no program writes any more:
// those that can be locked, since their writer holds a lock for as long as it lives; and where
// there are no locks, those that have not changed for a day. Each goes with a line in the history.
// Whatever cannot be deleted stays without a word. `folder` with a final backslash.
void RemoveStaleParts(TextView folder);

}  // namespace quillmarsh
