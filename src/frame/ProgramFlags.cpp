// SPDX-License-Identifier: MIT
// The flags all begin cleared.
#include "frame/ProgramFlags.h"

namespace quillmarsh {

bool gUserAbort = false;
bool gStopCRC = false;
bool gFSOCancelled = false;
bool gIsWow64 = false;
Text gAppPath;

}  // namespace quillmarsh
