// SPDX-License-Identifier: MIT
// Marks a long command as running for as long as it lives. There is one such command at a time: a
// second scope is not entered, and its command does nothing.
#pragma once

namespace quillmarsh {

class CommandScope {
 public:
  CommandScope() : mIsEntered(!sIsRunning) {
    sIsRunning = true;
    if (mIsEntered && sListener != nullptr) sListener(true);
  }
  ~CommandScope() {
    if (!mIsEntered) return;
    sIsRunning = false;
    if (sListener != nullptr) sListener(false);
  }
  CommandScope(const CommandScope&) = delete;
  CommandScope& operator=(const CommandScope&) = delete;

  [[nodiscard]] bool IsEntered() const { return mIsEntered; }
  [[nodiscard]] static bool IsRunning() { return sIsRunning; }

  // Told of the beginning and the end of each command; must not raise. None by default.
  using Listener = void (*)(bool isRunning);
  static void SetListener(Listener listener) { sListener = listener; }

 private:
  static inline bool sIsRunning = false;
  static inline Listener sListener = nullptr;
  bool mIsEntered;
};

}  // namespace quillmarsh
