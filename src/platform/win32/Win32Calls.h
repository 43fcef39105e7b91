// SPDX-License-Identifier: MIT
// How an operation of the seam becomes a call of the system: texts in the system's characters, and
// the machine's last error given to the thread before the call and taken back behind it. Includes
// the system's headers, behind ours: those define the names of our constants as macros.
#pragma once

#include <string>

#include "platform/Machine.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

namespace quillmarsh::win32 {

static_assert(sizeof(wchar_t) == sizeof(char16_t));

[[nodiscard]] inline std::wstring Wide(TextView text) {
  return {text.begin(), text.end()};
}
[[nodiscard]] inline Text Narrow(std::wstring_view text) {
  return {text.begin(), text.end()};
}
// In place, for what the system has just written.
[[nodiscard]] inline TextView View(const wchar_t* text) {
  return {reinterpret_cast<const char16_t*>(text), std::char_traits<wchar_t>::length(text)};
}

// The very name that a path says. The system takes blanks and points from the end of a name, and
// some names for devices, unless the path begins with "\\?\"; a file that was listed as "a." would
// then stand for "a". So that prefix is put before each absolute path that has no part which it
// would make mean something else: "/", "." or "..".
[[nodiscard]] std::wstring ExactPath(TextView path);
// The way back, for an answer of the system: without the prefix, where the form without it exists.
[[nodiscard]] Text PlainPath(std::wstring_view path);

// Whether two names are one on a volume that ignores case. Asked of what a search has found: that
// may have matched a short name, or the name without the points and blanks at its end.
[[nodiscard]] bool AreOneName(std::wstring_view one, std::wstring_view other);

// A path on its way into a call. What holds a NUL would be another path there, and what does not
// begin at a root would be taken from wherever the program was started.
class PathArgument {
 public:
  PathArgument(TextView path) : mPath(ExactPath(path)) {}
  // 0, or the code with which the path is not handed to the system.
  [[nodiscard]] std::uint32_t Refusal() const;
  [[nodiscard]] const wchar_t* Get() const { return mPath.c_str(); }

 private:
  std::wstring mPath;
};

// What the call answers; the last error goes in and comes out.
template <typename Call>
auto Forward(CallState& calls, Call&& call) {
  ::SetLastError(calls.lastError);
  auto answer = call();
  calls.lastError = ::GetLastError();
  return answer;
}
// The same for a call on a path: `failure`, with its code, where the path is refused.
template <typename Failure, typename Call>
Failure ForwardPath(CallState& calls, TextView path, Failure failure, Call&& call) {
  const PathArgument argument(path);
  if (const std::uint32_t code = argument.Refusal()) {
    calls.lastError = code;
    return failure;
  }
  return Forward(calls, [&]() -> Failure { return call(argument.Get()); });
}

[[nodiscard]] inline quillmarsh::FILETIME FromSystem(const ::FILETIME& time) {
  return {time.dwLowDateTime, time.dwHighDateTime};
}
[[nodiscard]] inline ::FILETIME ToSystem(const quillmarsh::FILETIME& time) {
  return {time.dwLowDateTime, time.dwHighDateTime};
}
[[nodiscard]] inline quillmarsh::HANDLE FromSystem(::HANDLE handle) {
  return static_cast<quillmarsh::HANDLE>(reinterpret_cast<std::intptr_t>(handle));
}
[[nodiscard]] inline ::HANDLE ToSystem(quillmarsh::HANDLE handle) {
  return reinterpret_cast<::HANDLE>(static_cast<std::intptr_t>(handle));
}

// A handle of the system that is closed at its end.
class OwnedHandle {
 public:
  explicit OwnedHandle(::HANDLE handle) : mHandle(handle) {}
  ~OwnedHandle() { Close(); }
  OwnedHandle(const OwnedHandle&) = delete;
  OwnedHandle& operator=(const OwnedHandle&) = delete;
  [[nodiscard]] bool IsValid() const {
    return mHandle != nullptr && FromSystem(mHandle) != INVALID_HANDLE;
  }
  [[nodiscard]] ::HANDLE Get() const { return mHandle; }
  void Close() {
    if (IsValid()) ::CloseHandle(mHandle);
    mHandle = nullptr;
  }

 private:
  ::HANDLE mHandle;
};

}  // namespace quillmarsh::win32
