// SPDX-License-Identifier: MIT
// What a removal reports while it runs: each file that was removed, where it is now, and each that
// was left, with the reason, in the form of output that was asked for. With text the removed files
// go to standard output and the others to standard error.
#pragma once

#include <chrono>

#include "console/Arguments.h"
#include "console/StandardStreams.h"
#include "removal/RemovalEntry.h"
#include "removal/RemovalPlan.h"
#include "removal/cRemovalRun.h"

namespace quillmarsh {

class RemovalReport {
 public:
  RemovalReport(OutputFormat format, bool isQuiet, StandardOutput& output)
      : mFormat(format), mIsQuiet(isQuiet), mOutput(output) {}

  // Writes what comes before the first file. False where that cannot be written.
  [[nodiscard]] bool Start();
  void Add(const RemovalEntry& entry);
  void End(const cRemovalRun::Outcome& outcome);
  // Instead of a removal what it would do. False when the user stopped it.
  [[nodiscard]] bool WritePlan(const RemovalPlan& plan, bool deletesWithoutBin);

 private:
  void Write(const char* outcome, TextView fileSpec, TextView target, TextView reason);
  void WriteJson(const char* outcome, const std::string& path, const std::string& target,
                 const std::string& reason);

  const OutputFormat mFormat;
  const bool mIsQuiet;
  StandardOutput& mOutput;
  bool mIsFirst = true;
  // What is done is reported soon, even where little of it comes at a time.
  std::chrono::steady_clock::time_point mNextFlush{};
};

}  // namespace quillmarsh
