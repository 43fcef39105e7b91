// SPDX-License-Identifier: MIT
// When it is time to pump: a clock is read at each call, the queue is asked only when it is due.
#include "frame/Pump.h"

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

#include "frame/ProgramFlags.h"
#include "frame/Views.h"

namespace quillmarsh {

namespace {

using Clock = std::chrono::steady_clock;

constexpr Clock::duration kShortestInterval = std::chrono::milliseconds(16);
constexpr int kShareOfTime = 4;  // a pump that lasts long may take at most a fifth of the time
// But a window that has much to paint is not left alone for longer than a person would notice.
constexpr Clock::duration kLongestInterval = std::chrono::milliseconds(32);
constexpr std::uint32_t kWorthAPump = QS_KEY | QS_MOUSEBUTTON | QS_PAINT | QS_HOTKEY;  // 165

Clock::time_point nextDue{};
std::function<Clock::time_point()> otherClock;

Clock::time_point Now() {
  return otherClock ? otherClock() : Clock::now();
}

bool isPumping = false;
std::source_location lastPlace;
int stoppableParts = 0;  // one may lie inside another

constexpr Clock::duration kBetweenTwoLooks = std::chrono::milliseconds(5);  // at a helper
constexpr Clock::duration kBetweenTwoWaits = std::chrono::seconds(1);
constexpr Clock::duration kLongestWait = std::chrono::seconds(30);

// Marks the pump as running, also when an event's handler raises.
struct PumpingScope {
  PumpingScope() { isPumping = true; }
  ~PumpingScope() { isPumping = false; }
};

void PumpAt(Clock::time_point start, std::source_location place) {
  lastPlace = place;
  {
    const PumpingScope scope;
    gViews.pump->PumpEvents();
  }
  const Clock::time_point end = Now();
  nextDue = end + std::clamp(kShareOfTime * (end - start), kShortestInterval, kLongestInterval);
}

// Those that are enabled.
std::vector<PumpTimer*>& Timers() {
  static std::vector<PumpTimer*> timers;
  return timers;
}

}  // namespace

// An event may end its own timer or another one.
void ServeTimers(Clock::time_point now) {
  const PumpingScope scope;
  const std::vector<PumpTimer*> timers = Timers();
  for (PumpTimer* const timer : timers) {
    if (std::ranges::find(Timers(), timer) == Timers().end() || now < timer->mNext) continue;
    timer->mNext = now + timer->mInterval;
    timer->mEvent();
  }
}

PumpTimer::PumpTimer(std::chrono::milliseconds interval, std::function<void()> event)
    : mInterval(interval), mEvent(std::move(event)) {}

PumpTimer::~PumpTimer() {
  SetEnabled(false);
}

void PumpTimer::SetEnabled(bool isEnabled) {
  if (isEnabled == mIsEnabled) return;
  mIsEnabled = isEnabled;
  if (isEnabled) {
    mNext = Now() + mInterval;
    Timers().push_back(this);
  } else {
    std::erase(Timers(), this);
  }
}

void SetPumpClock(std::function<Clock::time_point()> clock) {
  otherClock = std::move(clock);
  nextDue = {};
}

void DoEvents_Fast(std::source_location place) {
  if (isPumping) return;
  const Clock::time_point now = Now();
  if (now < nextDue) return;
  nextDue = now + kShortestInterval;
  if (!Timers().empty()) ServeTimers(now);
  if (gViews.pump == nullptr) return;
  if (TheMachine().Queue().GetQueueStatus(kWorthAPump) == 0) return;
  PumpAt(now, place);
}

void DoEvents(std::source_location place) {
  if (isPumping || gViews.pump == nullptr) return;
  PumpAt(Now(), place);
}

std::source_location LastPumpPlace() {
  return lastPlace;
}

void RunWhilePumping(const std::function<void()>& work, const std::function<void()>& meanwhile,
                     const std::function<void()>& onFailureHere) {
  bool isDone = false;
  std::exception_ptr failure;
  std::mutex mutex;
  std::condition_variable done;
  std::thread helper([&] {
    try {
      work();
    } catch (...) {
      failure = std::current_exception();
    }
    const std::lock_guard lock(mutex);
    isDone = true;
    done.notify_one();
  });
  try {
    std::unique_lock lock(mutex);
    while (!done.wait_for(lock, kBetweenTwoLooks, [&] { return isDone; })) {
      lock.unlock();
      DoEvents_Fast();
      if (meanwhile) meanwhile();
      lock.lock();
    }
  } catch (...) {
    if (onFailureHere) onFailureHere();
    helper.join();
    throw;
  }
  helper.join();
  if (failure) std::rethrow_exception(failure);
}

StoppablePart::StoppablePart() {
  ++stoppableParts;
}
StoppablePart::~StoppablePart() {
  --stoppableParts;
}

bool PumpingPatience::IsStopAsked() const {
  return stoppableParts > 0 && gUserAbort;
}

bool PumpingPatience::KeepWaiting() {
  DoEvents_Fast();
  if (stoppableParts > 0) return !gUserAbort;
  // Asked a hundred times a second during a wait, and not at all between two.
  const Clock::time_point now = Now();
  if (now - mLastAsked > kBetweenTwoWaits) mWaitBegan = now;
  mLastAsked = now;
  return now - mWaitBegan < kLongestWait;
}

}  // namespace quillmarsh
