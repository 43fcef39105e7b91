// SPDX-License-Identifier: MIT
// When it is time to pump: a clock is read at each call, the queue is asked only when it is due.
#include "frame/Pump.h"

#include <algorithm>
#include <chrono>

#include "frame/ProgramFlags.h"
#include "frame/Views.h"

namespace quillmarsh {

namespace {

using Clock = std::chrono::steady_clock;

constexpr Clock::duration kShortestInterval = std::chrono::milliseconds(16);
constexpr int kShareOfTime = 4;  // a pump that lasts long may take at most a fifth of the time
constexpr std::uint32_t kWorthAPump = QS_KEY | QS_MOUSEBUTTON | QS_PAINT | QS_HOTKEY;  // 165

Clock::time_point nextDue{};
bool isPumping = false;

// Marks the pump as running, also when an event's handler raises.
struct PumpingScope {
  PumpingScope() { isPumping = true; }
  ~PumpingScope() { isPumping = false; }
};

void PumpAt(Clock::time_point start) {
  {
    const PumpingScope scope;
    gViews.pump->PumpEvents();
  }
  const Clock::time_point end = Clock::now();
  nextDue = end + std::max(kShortestInterval, kShareOfTime * (end - start));
}

}  // namespace

void DoEvents_Fast() {
  if (isPumping || gViews.pump == nullptr) return;
  const Clock::time_point now = Clock::now();
  if (now < nextDue) return;
  nextDue = now + kShortestInterval;
  if (TheMachine().Queue().GetQueueStatus(kWorthAPump) == 0) return;
  PumpAt(now);
}

void DoEvents() {
  if (isPumping || gViews.pump == nullptr) return;
  PumpAt(Clock::now());
}

bool PumpingPatience::KeepWaiting() {
  DoEvents_Fast();
  return !gUserAbort;
}

}  // namespace quillmarsh
