// SPDX-License-Identifier: MIT
// Marks a long command as running for as long as it lives. There is one such command at a time: a
// second scope is not entered, and its command does nothing.
#pragma once

namespace quillmarsh {

class CommandScope {
 public:
  CommandScope() : mIsEntered(!sIsRunning) { sIsRunning = true; }
  ~CommandScope() {
    if (mIsEntered) sIsRunning = false;
  }
  CommandScope(const CommandScope&) = delete;
  CommandScope& operator=(const CommandScope&) = delete;

  [[nodiscard]] bool IsEntered() const { return mIsEntered; }
  [[nodiscard]] static bool IsRunning() { return sIsRunning; }

 private:
  static inline bool sIsRunning = false;
  bool mIsEntered;
};

}  // namespace quillmarsh
