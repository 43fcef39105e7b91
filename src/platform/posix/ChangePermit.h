// SPDX-License-Identifier: MIT
// The leave to change the disk, shared by a job and by the caller that may give the job up. The job
// uses it for one system call at a time, the caller withdraws it once and for all. A job that was
// given up changes nothing any more; only a system call that was under way just then ends as it
// will, because nobody can call it back. Any thread may use it.
#pragma once

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <memory>
#include <utility>

namespace quillmarsh {

class ChangePermit {
 public:
  ChangePermit() = default;
  ChangePermit(const ChangePermit&) = delete;
  ChangePermit& operator=(const ChangePermit&) = delete;

  // Makes one system call, which answers 0 or sets errno. Answers an errno: ECANCELED without
  // having made the call where the permit was withdrawn.
  template <typename SystemCall>
  [[nodiscard]] int Use(const SystemCall& call) {
    State state = State::Free;
    if (!mState.compare_exchange_strong(state, State::InUse)) return ECANCELED;
    const int error = call() == 0 ? 0 : errno;
    state = State::InUse;
    mState.compare_exchange_strong(state, State::Free);  // fails where it was withdrawn meanwhile
    return error;
  }

  // False when a system call is under way, so that its change may still come to pass.
  bool Withdraw() { return mState.exchange(State::Withdrawn) != State::InUse; }
  [[nodiscard]] bool IsWithdrawn() const { return mState == State::Withdrawn; }
  // Asks a job that only prepares a change to end. It may still clean up.
  void AskToStop() { mIsToStop = true; }
  // For long work that only prepares a change.
  [[nodiscard]] bool IsToStop() const { return mIsToStop || IsWithdrawn(); }

 private:
  enum class State { Free, InUse, Withdrawn };
  std::atomic<State> mState{State::Free};
  std::atomic<bool> mIsToStop{false};
};

// Withdraws a permit at its own end, also when something is raised: whoever stops waiting for a
// job, however that happens, has given it up. A job that has ended needs no permit any more.
class EndOfPermit {
 public:
  explicit EndOfPermit(std::shared_ptr<ChangePermit> permit) : mPermit(std::move(permit)) {}
  ~EndOfPermit() {
    if (mPermit != nullptr) mPermit->Withdraw();
  }
  EndOfPermit(const EndOfPermit&) = delete;
  EndOfPermit& operator=(const EndOfPermit&) = delete;

 private:
  const std::shared_ptr<ChangePermit> mPermit;
};

// `run` runs one job with a permit of its own and answers a code; the permit ends when the job is
// given up, before anybody hears of the 995.
template <typename Runner>
[[nodiscard]] std::uint32_t WithPermit(const Runner& run) {
  const auto permit = std::make_shared<ChangePermit>();
  const EndOfPermit end(permit);
  return run(permit);
}

}  // namespace quillmarsh
