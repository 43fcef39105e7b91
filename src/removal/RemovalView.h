// SPDX-License-Identifier: MIT
// What a removal asks of the window beyond messages and status panels. The console and tests have
// their own.
#pragma once

#include <cstdint>

namespace quillmarsh {

// Answers of the removal guidelines.
inline constexpr std::int32_t kRemovalWarningContinue = 1;
inline constexpr std::int32_t kRemovalWarningCancel = 2;

class RemovalView {
 public:
  virtual ~RemovalView() = default;
  // While files are removed everything is locked but Stop, Esc and close.
  virtual void DisableUIForRemoval() = 0;
  virtual void EnableUIAfterRemoval() = 0;
  // The removal guidelines, modal; one of the two answers above. Closing them by any other way
  // counts as Cancel.
  [[nodiscard]] virtual std::int32_t ShowRemovalWarning() = 0;
};

// Of a program that shows nothing and asks nothing.
class QuietRemovalView final : public RemovalView {
 public:
  void DisableUIForRemoval() override {}
  void EnableUIAfterRemoval() override {}
  std::int32_t ShowRemovalWarning() override { return kRemovalWarningContinue; }
};

// The last answer of the removal guidelines.
extern std::int32_t gRemovalWarningResult;

}  // namespace quillmarsh
