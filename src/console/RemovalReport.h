// SPDX-License-Identifier: MIT
// What a removal tells while it runs: each file that went, where to, and each that was left, with
// the reason, in the form of output that was asked for. With text the removed files go to standard
// output and the others to standard error. It counts what was left.
#pragma once

#include <chrono>

#include "console/Arguments.h"
#include "console/StandardStreams.h"
#include "removal/RemovalEntry.h"
#include "removal/cRemovalRun.h"

namespace quillmarsh {

class RemovalReport {
 public:
  RemovalReport(OutputFormat format, bool isQuiet, StandardOutput& output)
      : mFormat(format), mIsQuiet(isQuiet), mOutput(output) {}

  // Each with paths in drive form. What was left alone is written to the history here; of all else
  // the removal has done so.
  void Add(const RemovalEntry& entry);
  void LeftAlone(TextView fileSpec, TextView reason);
  void End(const cRemovalRun::Outcome& outcome);

 private:
  void Begin();
  void Write(const char* outcome, TextView fileSpec, TextView target, TextView reason);
  void WriteJson(const char* outcome, const std::string& path, const std::string& target,
                 const std::string& reason);

  const OutputFormat mFormat;
  const bool mIsQuiet;
  StandardOutput& mOutput;
  bool mHasBegun = false;
  bool mIsFirst = true;
  // What is done is told soon, also where little of it comes at a time.
  std::chrono::steady_clock::time_point mNextFlush{};
  Text mLastLeft;  // already told; the entry of its failure follows
};

}  // namespace quillmarsh
