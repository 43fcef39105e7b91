// SPDX-License-Identifier: MIT
// A file system that stops answering in the middle of a job.
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <future>
#include <thread>

#include "platform/Machine.h"
#include "platform/posix/SystemCallHook.h"

namespace quillmarsh::test {

// A server that dies in a system call, a user who stops the waiting then, and the server back
// again. Knows when the thread that was left behind has come to its end.
class DyingServer : public Patience {
 public:
  using Where = std::function<bool(SystemCall call, int fd, std::string_view name)>;
  explicit DyingServer(Where where)
      : mHook([this, where](auto... what) { return Hang(where, what...); }) {}
  bool KeepWaiting() override { return !mHangs; }
  void ComeBackAndFinish() {
    ASSERT_TRUE(mHangs);
    mBack.set_value();
    mGone.get_future().wait();
  }

 private:
  int Hang(const Where& where, SystemCall call, int fd, std::string_view name) {
    if (mHangs || std::this_thread::get_id() == mMain || !where(call, fd, name)) return 0;
    mHangs = true;
    mGone.set_value_at_thread_exit();
    mBack.get_future().wait();
    return 0;
  }
  const std::thread::id mMain = std::this_thread::get_id();
  std::promise<void> mBack;
  std::promise<void> mGone;
  std::atomic<bool> mHangs{false};
  const SystemCallHook mHook;
};

}  // namespace quillmarsh::test
