// SPDX-License-Identifier: MIT
// The file that the command `export` writes: the text report, or one of the forms that other
// programs read. An older file of the name stays until the new one is whole.
#pragma once

#include "console/ConsoleSearch.h"

namespace quillmarsh {

class ExportFile {
 public:
  // False when nothing can be written there, which has been told.
  [[nodiscard]] bool Take(const std::string& native);
  // Done, or the exit code of the command; a failure has been told.
  [[nodiscard]] ExitCode Write(ConsoleSearch& search, OutputFormat format) const;

 private:
  [[nodiscard]] bool IsOneOf(const cSearchResults& results) const;
  Text mPath;  // drive form
};

}  // namespace quillmarsh
