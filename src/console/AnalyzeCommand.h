// SPDX-License-Identifier: MIT
// The command `analyze`: what is known of one file or folder on standard output, as the window
// shows it.
#pragma once

#include "console/Arguments.h"
#include "console/ProgramObjects.h"

namespace quillmarsh {

[[nodiscard]] ExitCode RunAnalyze(const AnalyzeArguments& arguments, const ProgramObjects& objects);

}  // namespace quillmarsh
