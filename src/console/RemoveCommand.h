// SPDX-License-Identifier: MIT
// The command `remove`: searches, lets a rule select, and takes the selected files away, or lists
// them. It refuses what would leave a group without a copy unless that was allowed.
#pragma once

#include "console/Arguments.h"
#include "console/ProgramObjects.h"

namespace quillmarsh {

[[nodiscard]] ExitCode RunRemove(RemoveArguments arguments, ProgramObjects& objects);

}  // namespace quillmarsh
