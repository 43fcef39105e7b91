// SPDX-License-Identifier: MIT
// Pins on the simulated machine: a handle that lets others read only, so that names hold while it
// is open. What changes the disk is the machine's own change by path, which no hook sees a second
// time. Internal to this folder.
#pragma once

#include "platform/simulated/SimulatedRoles.h"
#include "platform/simulated/SimulatedSystemRoles.h"

namespace quillmarsh::simulated {

class SimulatedPinning final : public Pinning {
 public:
  SimulatedPinning(CallState& state, World& world)
      : Pinning(state), mWorld(&world), mDisk(mOwnCalls, world), mShell(mOwnCalls, world) {}
  [[nodiscard]] bool HoldsNames() const override { return true; }

 private:
  struct Pinned {
    Text path;  // present
    Text ownPath;
    Text asidePath;
    Node* node = nullptr;
    FileState state;
    bool isDeleted = false;
  };

  bool DoLookAt(TextView path, FileState& state) override;
  HANDLE DoPin(TextView path, PinPurpose purpose, TextView asideName, FileState& state) override;
  bool DoLock(HANDLE pin) override;
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

  // Null, with the last error set, where the pin does not lead to what was pinned.
  Pinned* Checked(HANDLE pin);
  // Runs a change by path that returns whether it succeeded, as if the pin were not open.
  template <typename Step>
  bool WithoutPin(HANDLE pin, Step step);
  bool RenameTo(HANDLE pin, const Text& newPath);

  World* mWorld;
  CallState mOwnCalls;
  SimulatedDiskChange mDisk;
  SimulatedShell mShell;
  std::map<HANDLE, Pinned> mPins;
};

}  // namespace quillmarsh::simulated
