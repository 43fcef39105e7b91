// SPDX-License-Identifier: MIT
// The program's own definitions of these functions come before those of the system's library.
#include "platform/posix/SystemCallHook.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <utility>

namespace quillmarsh::test {
namespace {

std::atomic<const SystemCallHook::Before*> current{nullptr};

template <typename... Arguments>
int Call(SystemCall call, int fd, const char* name, long number, Arguments... arguments) {
  if (const SystemCallHook::Before* const before = current.load())
    if (const int error = (*before)(call, fd, name)) {
      if (error == PretendDone) return 0;
      errno = error;
      return -1;
    }
  return static_cast<int>(::syscall(number, arguments...));
}

}  // namespace

SystemCallHook::SystemCallHook(Before before) : mBefore(std::move(before)) {
  current = &mBefore;
}

SystemCallHook::~SystemCallHook() {
  current = nullptr;
}

}  // namespace quillmarsh::test

using quillmarsh::test::Call;
using quillmarsh::test::SystemCall;

extern "C" {

int statx(int folder, const char* name, int flags, unsigned mask, struct statx* facts) noexcept {
  return Call(SystemCall::Statx, folder, name, SYS_statx, folder, name, flags, mask, facts);
}

int linkat(int from, const char* name, int to, const char* newName, int flags) noexcept {
  return Call(SystemCall::Linkat, from, name, SYS_linkat, from, name, to, newName, flags);
}

int unlinkat(int folder, const char* name, int flags) noexcept {
  return Call(SystemCall::Unlinkat, folder, name, SYS_unlinkat, folder, name, flags);
}

int renameat(int from, const char* name, int to, const char* newName) noexcept {
  return Call(SystemCall::Renameat, from, name, SYS_renameat2, from, name, to, newName, 0);
}

int renameat2(int from, const char* name, int to, const char* newName, unsigned flags) noexcept {
  return Call(SystemCall::Renameat2, from, name, SYS_renameat2, from, name, to, newName, flags);
}

int mkdirat(int folder, const char* name, mode_t mode) noexcept {
  return Call(SystemCall::Mkdirat, folder, name, SYS_mkdirat, folder, name, mode);
}

int chmod(const char* name, mode_t mode) noexcept {
  return Call(SystemCall::Chmod, AT_FDCWD, name, SYS_chmod, name, mode);
}

int fsync(int file) {
  return Call(SystemCall::Fsync, file, "", SYS_fsync, file);
}

}  // extern "C"
