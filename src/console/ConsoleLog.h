// SPDX-License-Identifier: MIT
// The log as the console program keeps it: errors of the search are told on standard error as they
// come and counted for the exit code; everything else is of no concern there.
#pragma once

#include "removal/history/cLog.h"

namespace quillmarsh {

class ConsoleLog final : public cLog {
 public:
  void Add(std::int32_t kind, TextView spareText, TextView fileSpec, TextView targetPath,
           std::int32_t errorNumber, TextView errorText, TextView customText,
           bool& result) override;
  void AppendInMemoryStringToLogFile() override {}
  void ResetInMemoryLog() override {}

  [[nodiscard]] std::int64_t ErrorCount() const { return mErrorCount; }

 private:
  std::int64_t mErrorCount = 0;
};

}  // namespace quillmarsh
