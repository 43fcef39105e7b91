// SPDX-License-Identifier: MIT
// The helper thread for calls on file systems that may not answer.
#include "platform/PatientWorker.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <system_error>
#include <utility>

#include "platform/Machine.h"

namespace quillmarsh {
namespace {

constexpr std::chrono::milliseconds AskInterval{10};
constexpr std::chrono::milliseconds FarewellLimit{200};

std::atomic<int> leftBehind = 0;

}  // namespace

struct PatientWorker::Shared {
  std::mutex mutex;
  std::condition_variable changed;
  std::function<void()> job;
  std::exception_ptr failure;  // out of the last job
  bool busy = false;
  bool done = false;
  bool quit = false;
  bool exited = false;
  bool isLeftBehind = false;
};

PatientWorker::~PatientWorker() {
  LetGo();
}

void PatientWorker::LetGo() {
  if (mShared == nullptr) return;
  const std::shared_ptr<Shared> shared = std::move(mShared);
  std::unique_lock lock(shared->mutex);
  shared->quit = true;
  shared->changed.notify_all();
  // A thread without a job leaves at once.
  const bool free = !shared->busy;
  const bool exited =
      free && shared->changed.wait_for(lock, FarewellLimit, [&] { return shared->exited; });
  if (!exited) {
    shared->isLeftBehind = true;
    ++leftBehind;
  }
  lock.unlock();
  if (exited)
    mThread.join();
  else
    mThread.detach();
}

void PatientWorker::Work(const std::shared_ptr<Shared>& shared) {
  std::unique_lock lock(shared->mutex);
  while (!shared->quit) {
    if (shared->job == nullptr) {
      shared->changed.wait(lock);
      continue;
    }
    std::function<void()> job = std::move(shared->job);
    shared->job = nullptr;
    lock.unlock();
    std::exception_ptr failure;
    try {
      job();
    } catch (...) {
      failure = std::current_exception();
    }
    job = nullptr;  // what the job owns may take its time to go, too
    lock.lock();
    shared->failure = failure;
    shared->busy = false;
    shared->done = true;
    shared->changed.notify_all();
  }
  shared->exited = true;
  if (shared->isLeftBehind) --leftBehind;
  shared->changed.notify_all();
}

bool PatientWorker::IsAnyLeftBehind() {
  return leftBehind > 0;
}

bool PatientWorker::Run(std::function<void()> job) {
  return RunOnThread(std::move(job), GivingUp::Allowed, {});
}

bool PatientWorker::RunToItsEnd(const std::function<void()>& job,
                                const std::function<void()>& stop) {
  return RunOnThread(job, GivingUp::Never, stop);
}

bool PatientWorker::RunOnThread(std::function<void()> job, GivingUp givingUp,
                                std::function<void()> stop) {
  if (mShared == nullptr) {
    auto fresh = std::make_shared<Shared>();
    try {
      mThread = std::thread([fresh] { Work(fresh); });
    } catch (const std::system_error&) {
      job();  // no thread is to be had; then the caller waits without patience
      return true;
    }
    mShared = std::move(fresh);
  }
  const std::shared_ptr<Shared> shared = mShared;
  std::unique_lock lock(shared->mutex);
  // A patience that runs another command in the middle of a wait must not disturb the first job.
  if (shared->busy) return false;
  shared->busy = true;
  shared->done = false;
  shared->failure = nullptr;
  shared->job = std::move(job);
  shared->changed.notify_all();
  std::exception_ptr interruption;
  while (!shared->changed.wait_for(lock, AskInterval, [&] { return shared->done; })) {
    lock.unlock();
    bool keep = true;
    bool isStopAsked = false;
    try {
      Patience* const patience = mPatience ? mPatience() : nullptr;
      keep = patience == nullptr || patience->KeepWaiting();
      isStopAsked = patience != nullptr && patience->IsStopAsked();
    } catch (...) {
      // A job that is waited for may use what the caller owns, so it has to end first.
      interruption = std::current_exception();
      keep = false;
    }
    if (!keep && givingUp == GivingUp::Allowed) {
      LetGo();
      if (interruption) std::rethrow_exception(interruption);
      return false;
    }
    if (isStopAsked && stop) std::exchange(stop, {})();
    lock.lock();
  }
  const std::exception_ptr failure = std::exchange(shared->failure, nullptr);
  lock.unlock();
  if (interruption) std::rethrow_exception(interruption);
  if (failure) std::rethrow_exception(failure);
  return true;
}

}  // namespace quillmarsh
