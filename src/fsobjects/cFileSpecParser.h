// SPDX-License-Identifier: MIT
// Splits a path into its parts by its text alone. Keeps nothing between calls and never touches the
// disk.
#pragma once

#include <memory>

#include "base/Text.h"

namespace quillmarsh {

class cFileSpecParser {
 public:
  // Behind the last dot, if no backslash stands behind that dot.
  [[nodiscard]] Text GetExtension(TextView path) const;
  // Behind the last backslash.
  [[nodiscard]] Text GetFileName(TextView path) const;
  // The file name before its last dot; empty for a name without one.
  [[nodiscard]] Text GetFileNameWithoutExtension(TextView path) const;
  // Up to and including the last backslash; a bare name comes back as it is.
  [[nodiscard]] Text GetFolderPath(TextView path) const;
  [[nodiscard]] Text GetPathWithoutRoot(TextView path) const;
  [[nodiscard]] Text GetPathWithoutUNCRoot(TextView path) const;
  // "\\server\share\", empty for any other path.
  [[nodiscard]] Text GetUNCRoot(TextView path) const;
  // "C:\" or "\\server\share\", the case as typed; empty where there is none. A letter alone and a
  // letter with a colon count as a drive.
  [[nodiscard]] Text GetRoot(TextView path) const;
  [[nodiscard]] bool IsUNC(TextView path) const;
};

// The program's one parser, made at start and released at the end.
extern std::unique_ptr<cFileSpecParser> gFileSpecParser;

}  // namespace quillmarsh
