// SPDX-License-Identifier: MIT
// The command `search`: names the locations as the machine knows them, runs the search and writes
// what it found.
#pragma once

#include "console/Arguments.h"
#include "console/ProgramObjects.h"

namespace quillmarsh {

[[nodiscard]] ExitCode RunSearch(const SearchArguments& arguments, ProgramObjects& objects);

}  // namespace quillmarsh
