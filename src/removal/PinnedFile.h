// SPDX-License-Identifier: MIT
// Owns one pin: a file that is held open, with the state in which it was found. Gives it back at
// its end without changing the last error. Can be moved, not copied.
#pragma once

#include <utility>

#include "fsobjects/Handles.h"
#include "fsobjects/modUnicode.h"
#include "platform/Pinning.h"

namespace quillmarsh {

class PinnedFile {
 public:
  PinnedFile() = default;
  // Where the file cannot be pinned, the last error says why.
  PinnedFile(TextView path, PinPurpose purpose, TextView asideName = {})
      : mPin(TheMachine().Pins().Pin(ToLongPath(path), purpose, asideName, mState)) {}
  PinnedFile(PinnedFile&& other) noexcept
      : mState(other.mState), mPin(std::exchange(other.mPin, INVALID_HANDLE)) {}
  PinnedFile& operator=(PinnedFile&& other) noexcept {
    if (this == &other) return *this;
    Release();
    mState = other.mState;
    mPin = std::exchange(other.mPin, INVALID_HANDLE);
    return *this;
  }
  ~PinnedFile() { Release(); }

  [[nodiscard]] bool IsHeld() const { return mPin != INVALID_HANDLE; }
  [[nodiscard]] HANDLE Get() const { return mPin; }
  // As it was when the file was pinned.
  [[nodiscard]] const FileState& State() const { return mState; }

 private:
  void Release() {
    if (!IsHeld()) return;
    const LastErrorKeeper keeper;
    TheMachine().Pins().Unpin(std::exchange(mPin, INVALID_HANDLE));
  }

  FileState mState;
  HANDLE mPin = INVALID_HANDLE;
};

}  // namespace quillmarsh
