// SPDX-License-Identifier: MIT
// The one place where every operation of the platform passes: a hook may fail a call with a code,
// change the disk between two calls, or keep a journal. Without a hook a call costs one comparison.
// Each role of the seam derives from Role and runs its operations through Run.
#pragma once

#include <cstdint>
#include <optional>

#include "base/Text.h"
#include "platform/Operation.h"

namespace quillmarsh {

class CallHook {
 public:
  virtual ~CallHook() = default;
  // Before the call. A code makes the call fail with it, without its having happened. `subject` is
  // the path that the call names, or empty.
  virtual std::optional<std::uint32_t> Before(Operation operation, TextView subject) = 0;
  // After a call that was let through.
  virtual void After(Operation operation, TextView subject, bool succeeded) = 0;
};

// What all roles of one machine share.
struct CallState {
  std::uint32_t lastError = 0;
  CallHook* hook = nullptr;  // not owned
};

class Role {
 public:
  explicit Role(CallState& state) : mState(&state) {}
  virtual ~Role() = default;
  Role(const Role&) = delete;
  Role& operator=(const Role&) = delete;

 protected:
  // Runs the body, through the hook where there is one. `failure` is what the operation answers
  // when it fails; any other answer counts as success.
  template <typename Result, typename Body>
  Result Run(Operation operation, TextView subject, const Result& failure, Body&& body) {
    if (mState->hook == nullptr) [[likely]]
      return body();
    if (const auto code = mState->hook->Before(operation, subject)) {
      mState->lastError = *code;
      return failure;
    }
    Result result = body();
    const std::uint32_t error = mState->lastError;
    mState->hook->After(operation, subject, !(result == failure));
    mState->lastError = error;
    return result;
  }

  // The same for an operation that answers its code (0 for success) and leaves the last error
  // alone.
  template <typename Body>
  std::uint32_t RunForCode(Operation operation, TextView subject, Body&& body) {
    if (mState->hook == nullptr) [[likely]]
      return body();
    const std::uint32_t kept = mState->lastError;
    const std::optional<std::uint32_t> failure = mState->hook->Before(operation, subject);
    const std::uint32_t code = failure ? *failure : body();
    if (!failure) mState->hook->After(operation, subject, code == 0);
    mState->lastError = kept;
    return code;
  }
  [[nodiscard]] bool HasHook() const { return mState->hook != nullptr; }
  [[nodiscard]] const CallState& State() const { return *mState; }

  void SetLastError(std::uint32_t code) { mState->lastError = code; }
  // For `return Fail(code, false);`.
  template <typename Result>
  Result Fail(std::uint32_t code, Result failure) {
    mState->lastError = code;
    return failure;
  }

 private:
  CallState* mState;
};

}  // namespace quillmarsh
