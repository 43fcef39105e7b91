// SPDX-License-Identifier: MIT
// Runs a call that may hang on a thread of its own while the caller waits and asks now and then
// whether to go on waiting. A thread that is given up is left behind with its job; the job must own
// everything that it touches. One caller at a time.
#pragma once

#include <functional>
#include <memory>
#include <thread>

namespace quillmarsh {

class Patience;

class PatientWorker {
 public:
  explicit PatientWorker(std::function<Patience*()> patience) : mPatience(std::move(patience)) {}
  ~PatientWorker();
  PatientWorker(const PatientWorker&) = delete;
  PatientWorker& operator=(const PatientWorker&) = delete;

  // What a job raises is raised here, and what the patience raises too.
  // False when it was given up; the job may still end some day.
  [[nodiscard]] bool Run(std::function<void()> job);
  // Whether a thread of any worker that was given up still runs.
  [[nodiscard]] static bool IsAnyLeftBehind();
  // Asks the patience as well, so that the program stays alive, but waits for the end whatever it
  // says. `stop` is called once when the user asks to stop, for a job that can end early by itself.
  // False when the helper was busy and the job has not been run.
  [[nodiscard]] bool RunToItsEnd(const std::function<void()>& job,
                                 const std::function<void()>& stop = {});

 private:
  enum class GivingUp { Allowed, Never };
  bool RunOnThread(std::function<void()> job, GivingUp givingUp, std::function<void()> stop);
  struct Shared;
  static void Work(const std::shared_ptr<Shared>& shared);
  void LetGo();

  const std::function<Patience*()> mPatience;
  std::shared_ptr<Shared> mShared;  // null until the first job and after one was given up
  std::thread mThread;
};

}  // namespace quillmarsh
