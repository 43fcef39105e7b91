// SPDX-License-Identifier: MIT
// The command `history`: the record of all searches and removals on standard output, or its end.
#pragma once

#include "console/Arguments.h"

namespace quillmarsh {

[[nodiscard]] ExitCode RunHistory(const HistoryArguments& arguments);

}  // namespace quillmarsh
