// SPDX-License-Identifier: MIT
// Pins on POSIX: open files with their folders. Names can change under a pin, so a file is taken
// aside before it is deleted. A pin whose file system stopped answering in the middle of a change
// is left to the thread that waits for it, and is of no use any more.
#pragma once

#include <memory>
#include <set>

#include "platform/posix/HandleTable.h"
#include "platform/posix/PinnedEntry.h"
#include "platform/posix/PosixShell.h"

namespace quillmarsh {

class PosixPinning final : public Pinning {
 public:
  PosixPinning(CallState& state, PosixContext& context, PosixShell& shell)
      : Pinning(state), mContext(context), mShell(shell) {}
  [[nodiscard]] bool HoldsNames() const override { return false; }

 private:
  using SharedPin = std::shared_ptr<PinnedEntry>;

  bool DoLookAt(TextView path, FileState& state) override;
  HANDLE DoPin(TextView path, PinPurpose purpose, TextView asideName, FileState& state) override;
  bool DoLock(HANDLE pin) override;
  bool DoHoldOffWriters(HANDLE pin) override;
  bool DoCheck(HANDLE pin) override;
  bool DoReachAnew(HANDLE pin) override;
  std::uint32_t DoReadAt(HANDLE pin, std::int64_t position, std::span<std::byte> buffer,
                         std::uint32_t& done) override;
  bool DoFlush(HANDLE pin) override;
  bool DoTakeAside(HANDLE pin) override;
  bool DoPutBack(HANDLE pin) override;
  bool DoDelete(HANDLE pin) override;
  bool DoRestore(HANDLE pin) override;
  bool DoMoveTo(HANDLE pin, TextView newPath, PinnedMove way) override;
  bool DoRecycle(HANDLE pin) override;
  bool DoUnpin(HANDLE pin) override;
  Text DoWhereLeft(HANDLE pin) const override;
  bool DoHasBin(TextView path) override;

  // Runs a job that returns a code, on the helper where the file system may not answer.
  template <typename Job>
  bool Ask(HANDLE handle, Job job);
  // The same for a job that changes the disk. A long one always runs on the helper. `answers` is
  // false where another file system that it touches may not answer.
  template <typename Job>
  bool Act(HANDLE handle, bool isLong, bool answers, Job job);
  bool CopyTo(HANDLE handle, const Located& target);

  PosixContext& mContext;
  PosixShell& mShell;
  HandleTable<SharedPin> mPins;
  std::set<HANDLE> mGivenUp;  // whose thread was left behind in the middle of a change
};

}  // namespace quillmarsh
