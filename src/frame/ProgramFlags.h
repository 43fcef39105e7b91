// SPDX-License-Identifier: MIT
// Program-wide flags, and where the program lies. Plain variables: there is one thread of logic,
// and whoever runs inside a pump sets them for the loop underneath to see.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

extern bool gUserAbort;     // the user asked to stop the search or removal
extern bool gStopCRC;       // a running checksum is to give up
extern bool gFSOCancelled;  // a copy, move or delete run was cancelled
extern bool gIsWow64;       // file-system redirection is switched off around file work

// The folder of the program with its final backslash; empty where that cannot be told.
extern Text gAppPath;

}  // namespace quillmarsh
