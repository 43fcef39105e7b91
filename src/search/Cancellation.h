// SPDX-License-Identifier: MIT
// What a stopped search says of itself. Called once by each loop that sees the stop flag, so that
// one stop can leave several entries in the log.
#pragma once

#include "search/SearchView.h"

namespace quillmarsh {

void ReportSearchCancelled(SearchView& view);

}  // namespace quillmarsh
