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

  // The search goes on; that its record is lost is told once and is no error of the search.
  void TellOfLostBatch() override;

  [[nodiscard]] std::int64_t ErrorCount() const { return mErrorCount; }

 private:
  std::int64_t mErrorCount = 0;
  bool mIsLossTold = false;
};

}  // namespace quillmarsh
