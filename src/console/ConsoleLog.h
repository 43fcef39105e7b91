// SPDX-License-Identifier: MIT
// The log as the console program keeps it: the history, and beside it what could not be read told
// on standard error as it comes and counted for the exit code.
#pragma once

#include "removal/history/cLog.h"

namespace quillmarsh {

class ConsoleLog final : public cLog {
 public:
  void Add(std::int32_t kind, TextView spareText, TextView fileSpec, TextView targetPath,
           std::int32_t errorNumber, TextView errorText, TextView customText,
           bool& result) override;

  // Told once. It is no error of a search; a removal that nobody has a record of is not done well.
  void TellOfLostBatch() override;

  [[nodiscard]] std::int64_t ErrorCount() const { return mErrorCount; }
  [[nodiscard]] bool IsHistoryLost() const { return mIsHistoryLost; }

 private:
  std::int64_t mErrorCount = 0;
  bool mIsHistoryLost = false;
};

}  // namespace quillmarsh
