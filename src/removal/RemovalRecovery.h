// SPDX-License-Identifier: MIT
// What a removal leaves that was killed: a file that is still aside, and files that the history
// does not mention. By the journal, both are set right before the same user searches or removes
// again.
#pragma once

namespace quillmarsh {

// Puts files back that are aside, never over something, and completes the history. Does nothing
// while a removal of the user is running.
void RecoverInterruptedRemovals();

}  // namespace quillmarsh
