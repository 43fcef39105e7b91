// SPDX-License-Identifier: MIT
// The commands of the History menu. Each shows what came of it in a message box. What the log still
// holds in memory is left alone: it goes to the file, or to a new one, with the next flush.
#pragma once

namespace quillmarsh {

// Opens the history in the system's viewer of plain text, which is not waited for.
void ViewHistory();

// Deletes the history and the journal of removals for good. None being there counts as success.
void ClearHistory();

}  // namespace quillmarsh
