// SPDX-License-Identifier: MIT
// The message pump of the one thread of logic, and the timers that run by it. Long loops call
// DoEvents_Fast at each step; it costs next to nothing unless it is time, and it pumps only when
// something waits that is worth it.
#pragma once

#include <chrono>
#include <functional>
#include <source_location>

#include "platform/Machine.h"

namespace quillmarsh {

// Serves the timers that are due. Pumps when at least 16 milliseconds have passed since the last
// pump ended, or four times the length of that pump if that is longer, and GetQueueStatus tells of
// a key, a button, a paint or a hot key. A call inside a pump does nothing. `place` is the
// caller's.
void DoEvents_Fast(std::source_location place = std::source_location::current());

// Pumps now, whatever the time.
void DoEvents(std::source_location place = std::source_location::current());

// Who called the pump that runs or ran last.
[[nodiscard]] std::source_location LastPumpPlace();

// Runs `work` on a helper thread, and here pumps and calls `meanwhile` until it has ended. What
// either of them, or an event's handler, raises comes out of it, but never before the work has
// ended: it may use what is the caller's. `onFailureHere` then asks the work to end early.
void RunWhilePumping(const std::function<void()>& work, const std::function<void()>& meanwhile = {},
                     const std::function<void()>& onFailureHere = {});

// Runs its event every so often while it is enabled, from the pump of a long loop and never beside
// one. It begins disabled.
class PumpTimer {
 public:
  PumpTimer(std::chrono::milliseconds interval, std::function<void()> event);
  ~PumpTimer();
  PumpTimer(const PumpTimer&) = delete;
  PumpTimer& operator=(const PumpTimer&) = delete;

  // The first event comes one interval later.
  void SetEnabled(bool isEnabled);
  [[nodiscard]] bool Enabled() const { return mIsEnabled; }

 private:
  friend void ServeTimers(std::chrono::steady_clock::time_point now);

  const std::chrono::milliseconds mInterval;
  const std::function<void()> mEvent;
  bool mIsEnabled = false;
  std::chrono::steady_clock::time_point mNext;
};

// The clock that the pump and its timers go by; an empty function gives the steady clock back.
void SetPumpClock(std::function<std::chrono::steady_clock::time_point()> clock);

// Marks what the user's stop ends. Outside, gUserAbort may still stand from a stop that is over.
class StoppablePart {
 public:
  StoppablePart();
  ~StoppablePart();
  StoppablePart(const StoppablePart&) = delete;
  StoppablePart& operator=(const StoppablePart&) = delete;
};

// Keeps the program alive while a file system does not answer. In a stoppable part an operation is
// given up when the user asks to stop, elsewhere (options, history) after half a minute.
class PumpingPatience final : public Patience {
 public:
  bool KeepWaiting() override;
  [[nodiscard]] bool IsStopAsked() const override;

 private:
  std::chrono::steady_clock::time_point mWaitBegan;
  std::chrono::steady_clock::time_point mLastAsked;
};

}  // namespace quillmarsh
