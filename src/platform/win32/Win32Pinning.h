// SPDX-License-Identifier: MIT
// Pins on Windows: handles that let others read only, so that no other program writes to the file
// while the pin lives, nor renames or deletes a file to keep. A file to remove shares its deletion,
// since the shell needs that; it is deleted and renamed through its handle, whatever its name may be
// by then.
#pragma once

#include <map>

#include "platform/Pinning.h"
#include "platform/win32/Win32Calls.h"

namespace quillmarsh {

class Win32Pinning final : public Pinning {
 public:
  explicit Win32Pinning(CallState& state);
  ~Win32Pinning() override;
  [[nodiscard]] bool HoldsNames() const override { return true; }
  [[nodiscard]] bool FlushesVolumes() const override { return false; }

 private:
  struct Pinned;

  bool DoLookAt(TextView path, FileState& state) override;
  HANDLE DoPin(TextView path, PinPurpose purpose, TextView asideName, FileState& state) override;
  // The handle's sharing is the lock.
  bool DoLock(HANDLE /*pin*/) override { return true; }
  bool DoCheck(HANDLE pin) override;
  bool DoReachAnew(HANDLE pin) override;
  std::uint32_t DoReadAt(HANDLE pin, std::int64_t position, std::span<std::byte> buffer,
                         std::uint32_t& done) override;
  bool DoFlush(HANDLE pin) override;
  bool DoTakeAside(HANDLE pin) override;
  bool DoPutBack(HANDLE pin) override;
  bool DoDelete(HANDLE pin) override;
  // No copy that stays can go while it is pinned, so nothing is ever to be made again.
  bool DoRestore(HANDLE /*pin*/) override { return Fail(ERROR_NOT_SUPPORTED, false); }
  bool DoMoveTo(HANDLE pin, TextView newPath, PinnedMove way) override;
  bool DoRecycle(HANDLE pin) override;
  bool DoUnpin(HANDLE pin) override;
  Text DoWhereLeft(HANDLE pin) const override;
  bool DoHasBin(TextView path) override;

  Pinned* Find(HANDLE pin);
  bool RenameTo(Pinned& pin, const std::wstring& newPath);
  bool End(std::uint32_t code) { return code == ERROR_SUCCESS || Fail(code, false); }

  CallState& mCalls;
  std::map<HANDLE, std::unique_ptr<Pinned>> mPins;
  std::intptr_t mLastPin = 0;
};

}  // namespace quillmarsh
