// SPDX-License-Identifier: MIT
// Writing bytes to standard output, with failures noticed: a full disk or a reader that has gone is
// told once, and nothing is written after it.
#pragma once

#include <string>
#include <string_view>

#include "console/ByteOutput.h"

namespace quillmarsh {

class StandardOutput final : public ByteOutput {
 public:
  // What is still to be written when a stop comes: a list that is not whole is of no use, but a
  // report of what was done is, as long as somebody reads it.
  enum class AfterStop { Drop, Finish };

  // Standard output is not buffered a second time behind this.
  explicit StandardOutput(AfterStop afterStop);
  void Write(std::string_view bytes) override;
  // Hands everything over. False when any write failed; the first failure has been told.
  [[nodiscard]] bool Finish();
  // Hands over what is there so far.
  void Flush();
  // Whether writing has not failed yet and would not fail now, as far as that can be asked: of a
  // device that is full, and of a disk without room. The failure is reported.
  [[nodiscard]] bool CanBeWritten();
  [[nodiscard]] bool HasFailed() const override { return mHasFailed; }

 private:
  static constexpr std::size_t kBufferBytes = 1U << 16;
  const AfterStop mAfterStop;
  std::string mBuffer;
  bool mHasFailed = false;
};

// One line on standard error, behind the program's name. A standing line of progress is erased.
void PrintError(std::string_view message);

// Writes the line of progress over the one that stands there; an empty one erases it.
void PrintProgressLine(std::string_view line);

// What was typed, as a person may read it: without control characters, and as UTF-8.
[[nodiscard]] std::string ShownArgument(std::string_view argument);

}  // namespace quillmarsh
