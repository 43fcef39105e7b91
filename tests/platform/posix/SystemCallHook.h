// SPDX-License-Identifier: MIT
// Steps in just before some system calls of the test program, also on helper threads: to let
// something happen at that moment, or to fail the call in its place. Stands in for servers that
// die.
#pragma once

#include <functional>
#include <string_view>

namespace quillmarsh::test {

enum class SystemCall { Statx, Linkat, Unlinkat, Renameat, Renameat2, Mkdirat, Chmod, Fsync };

// The call is not made and succeeds, as on file systems that do not do what they are told.
inline constexpr int PretendDone = -1;

// One at a time. No thread may be inside `before` when this ends.
class SystemCallHook {
 public:
  // Gets the folder, or the file of an fsync, and the first name. Answers the errno that the call
  // fails with, 0 for the call to be made, or PretendDone.
  using Before = std::function<int(SystemCall call, int fd, std::string_view name)>;
  explicit SystemCallHook(Before before);
  ~SystemCallHook();
  SystemCallHook(const SystemCallHook&) = delete;
  SystemCallHook& operator=(const SystemCallHook&) = delete;

 private:
  const Before mBefore;
};

}  // namespace quillmarsh::test
