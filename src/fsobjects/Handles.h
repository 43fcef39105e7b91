// SPDX-License-Identifier: MIT
// Owners of what the platform hands out: a search, an open file, and file-system redirection that
// is switched off for the time of a scope. Each gives back what it holds on every way out. None of
// them changes the last error of the call that came before.
#pragma once

#include <utility>

#include "frame/ProgramFlags.h"
#include "platform/Machine.h"

namespace quillmarsh {

// Keeps the last error as it is while something is closed.
class LastErrorKeeper {
 public:
  LastErrorKeeper() : mError(TheMachine().GetLastError()) {}
  ~LastErrorKeeper() { TheMachine().SetLastError(mError); }
  LastErrorKeeper(const LastErrorKeeper&) = delete;
  LastErrorKeeper& operator=(const LastErrorKeeper&) = delete;

 private:
  std::uint32_t mError;
};

// What FindHandle and FileHandle have in common; `Close` gives the handle back.
template <void (*Close)(HANDLE)>
class OwnedHandle {
 public:
  explicit OwnedHandle(HANDLE handle) : mHandle(handle) {}
  ~OwnedHandle() {
    if (!IsValid()) return;
    const LastErrorKeeper keeper;
    Close(mHandle);
  }
  OwnedHandle(const OwnedHandle&) = delete;
  OwnedHandle& operator=(const OwnedHandle&) = delete;

  [[nodiscard]] bool IsValid() const { return mHandle != INVALID_HANDLE; }
  [[nodiscard]] HANDLE Get() const { return mHandle; }
  // The caller closes it now.
  [[nodiscard]] HANDLE Release() { return std::exchange(mHandle, INVALID_HANDLE); }

 private:
  HANDLE mHandle;
};

inline void CloseFind(HANDLE handle) {
  TheMachine().Find().FindClose(handle);
}
inline void CloseFile(HANDLE handle) {
  TheMachine().Files().CloseHandle(handle);
}
using FindHandle = OwnedHandle<CloseFind>;
using FileHandle = OwnedHandle<CloseFile>;

// Acts only in a 32-bit process on a 64-bit system (gIsWow64). Scopes may lie inside one another.
class RedirectionOff {
 public:
  RedirectionOff() : mOff(gIsWow64) {
    if (mOff) TheMachine().Process().Wow64DisableWow64FsRedirection();
  }
  ~RedirectionOff() {
    if (!mOff) return;
    const LastErrorKeeper keeper;
    TheMachine().Process().Wow64RevertWow64FsRedirection();
  }
  RedirectionOff(const RedirectionOff&) = delete;
  RedirectionOff& operator=(const RedirectionOff&) = delete;

 private:
  bool mOff;
};

}  // namespace quillmarsh
