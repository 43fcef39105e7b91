// SPDX-License-Identifier: MIT
// The views of the console program. It asks nothing: a message goes to standard error and is
// answered with the careful button. The stop is Ctrl+C (or a termination signal), seen whenever a
// long loop pumps; a second one ends the program at once.
#pragma once

#include <chrono>
#include <cstdint>

#include "frame/Views.h"
#include "platform/Machine.h"

namespace quillmarsh {

class ConsoleMessages final : public MessageView {
 public:
  MessageBoxResult Show(const MessageBoxRequest& request) override;
  [[nodiscard]] std::int64_t Count() const { return mCount; }

 private:
  std::int64_t mCount = 0;
};

// Takes the signals over for as long as it lives.
class ConsolePump final : public PumpView {
 public:
  explicit ConsolePump(Machine& machine);
  ~ConsolePump() override;
  // Sets the stop flags once a signal has come, and again at each call.
  void PumpEvents() override;
  [[nodiscard]] static bool IsStopRequested();

  // While it lives a second signal does not end the program: files are being changed, and what was
  // done is still to be written down. A third one does.
  class FinishingTouch {
   public:
    FinishingTouch();
    ~FinishingTouch();
    FinishingTouch(const FinishingTouch&) = delete;
    FinishingTouch& operator=(const FinishingTouch&) = delete;
  };

 private:
  Machine& mMachine;
};

// One line on standard error that is written over a few times a second.
class ConsoleProgress final : public StatusView {
 public:
  explicit ConsoleProgress(bool isTerminal) : mIsTerminal(isTerminal) {}
  // Leaves no line behind on a terminal; elsewhere a last one with what it came to.
  ~ConsoleProgress() override;

  void SetPanel(TextView key, TextView text) override;
  void SetPanelToolTip(TextView key, TextView text) override;
  void ShowProgress(int) override {}
  void SetProgress(int) override {}
  void HideProgress() override {}

 private:
  void ShowIfDue();
  void Show();

  bool mIsTerminal;
  Text mMessage;
  Text mDetail;
  Text mFiles;
  std::chrono::steady_clock::time_point mNextDue{};
};

}  // namespace quillmarsh
