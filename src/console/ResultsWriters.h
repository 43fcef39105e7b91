// SPDX-License-Identifier: MIT
// The groups of a search on standard output, in one of four forms. Written group by group, so that
// a million groups need no memory; a stop between two groups ends the output there.
#pragma once

#include "console/Arguments.h"
#include "console/StandardStreams.h"
#include "search/results/cSearchResults.h"

namespace quillmarsh {

struct WriteOptions {
  OutputFormat format = OutputFormat::Text;
  bool withSummary = true;  // text only
};

// False when the user stopped it; what was written is then not whole.
[[nodiscard]] bool WriteResults(const cSearchResults& results, std::int32_t filesSearched,
                                const WriteOptions& options, StandardOutput& output);

}  // namespace quillmarsh
