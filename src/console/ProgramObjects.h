// SPDX-License-Identifier: MIT
// The program-wide objects of the console program, made in one place and released together, in the
// reverse order. While one lives, the machine, the views and the g... objects are set.
#pragma once

#include <memory>

#include "console/ConsoleLog.h"
#include "console/ConsoleViews.h"
#include "frame/Pump.h"

namespace quillmarsh {

class ProgramObjects {
 public:
  explicit ProgramObjects(Machine& machine);
  ~ProgramObjects();
  ProgramObjects(const ProgramObjects&) = delete;
  ProgramObjects& operator=(const ProgramObjects&) = delete;

  // False when the program cannot work, which has been told: a part of it is missing.
  [[nodiscard]] bool IsUsable() const { return mIsUsable; }
  // What could not be read, and what else went wrong and was told, so far.
  [[nodiscard]] std::int64_t ErrorCount() const { return mLog->ErrorCount() + mMessages.Count(); }
  [[nodiscard]] bool IsHistoryLost() const { return mLog->IsHistoryLost(); }
  // Shows progress from now on, until EndProgress.
  void BeginProgress(bool isTerminal);
  void EndProgress();

 private:
  bool mIsUsable = false;
  ConsoleMessages mMessages;
  ConsolePump mPump;
  PumpingPatience mPatience;
  ConsoleLog* mLog = nullptr;  // gLog
  std::unique_ptr<ConsoleProgress> mProgress;
};

}  // namespace quillmarsh
