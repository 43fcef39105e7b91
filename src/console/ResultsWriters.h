// SPDX-License-Identifier: MIT
// The groups of a search in one of four forms. Written group by group, so that a million groups
// need no memory; a stop between two groups ends the output there.
#pragma once

#include "console/Arguments.h"
#include "console/ByteOutput.h"
#include "search/results/cSearchResults.h"

namespace quillmarsh {

struct WriteOptions {
  OutputFormat format = OutputFormat::Plain;
  bool withSummary = true;  // text only
  // Of a selection: text has a box before each file, and null only the selected files. The other
  // forms always tell of each file whether it is marked.
  bool showsMarks = false;
};

// False when the user stopped it; what was written is then not whole.
[[nodiscard]] bool WriteResults(const cSearchResults& results, std::int32_t filesSearched,
                                const WriteOptions& options, ByteOutput& output);

}  // namespace quillmarsh
