// SPDX-License-Identifier: MIT
// Writing bytes to standard output, with failures noticed: a full disk or a reader that has gone is
// told once, and nothing is written after it.
#pragma once

#include <string>
#include <string_view>

namespace quillmarsh {

class StandardOutput {
 public:
  void Write(std::string_view bytes);
  // Hands everything over. False when any write failed; the first failure has been told.
  [[nodiscard]] bool Finish();
  [[nodiscard]] bool HasFailed() const { return mHasFailed; }

 private:
  void Flush();

  static constexpr std::size_t kBufferBytes = 1U << 16;
  std::string mBuffer;
  bool mHasFailed = false;
};

// One line on standard error, behind the program's name.
void PrintError(std::string_view message);

}  // namespace quillmarsh
