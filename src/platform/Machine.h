// SPDX-License-Identifier: MIT
// The platform as the program sees it: one object for each role, and the error code of the last
// call. Three machines exist: POSIX, Win32 and one simulated in memory. The program uses exactly
// one, which its entry makes and owns.
#pragma once

#include "platform/Access.h"
#include "platform/DiskChange.h"
#include "platform/FileInputOutput.h"
#include "platform/Finding.h"
#include "platform/LocaleAndTime.h"
#include "platform/Modules.h"
#include "platform/Pinning.h"
#include "platform/QueueAndMailbox.h"
#include "platform/Shell.h"
#include "platform/SystemConstants.h"
#include "platform/VersionResources.h"
#include "platform/Volumes.h"

namespace quillmarsh {

// Asked, about every 10 milliseconds and on the thread of the caller, while an operation waits for
// a file system that does not answer. False gives the operation up: it fails with 995.
class Patience {
 public:
  virtual ~Patience() = default;
  virtual bool KeepWaiting() = 0;
  // Whether the user has asked to stop, for work that goes on but can end early.
  [[nodiscard]] virtual bool IsStopAsked() const { return false; }
};

class Machine {
 public:
  virtual ~Machine() = default;

  virtual Finding& Find() = 0;
  virtual FileInputOutput& Files() = 0;
  virtual DiskChange& Disk() = 0;
  virtual Pinning& Pins() = 0;
  virtual Volumes& Drives() = 0;
  virtual Access& Security() = 0;
  virtual Shell& Desktop() = 0;
  virtual VersionResources& Versions() = 0;
  virtual Modules& Process() = 0;
  virtual LocaleAndTime& Locale() = 0;
  virtual QueueAndMailbox& Queue() = 0;

  [[nodiscard]] std::uint32_t GetLastError() const { return mCalls.lastError; }
  void SetLastError(std::uint32_t code) { mCalls.lastError = code; }
  void SetHook(CallHook* hook) { mCalls.hook = hook; }
  // Not owned; without one an operation waits as long as it takes.
  void SetPatience(Patience* patience) { mPatience = patience; }
  [[nodiscard]] Patience* CurrentPatience() const { return mPatience; }

 protected:
  CallState mCalls;

 private:
  Patience* mPatience = nullptr;
};

// The machine in use. Whoever makes a machine sets it first and sets nullptr before it goes.
[[nodiscard]] Machine& TheMachine();
void UseMachine(Machine* machine);

}  // namespace quillmarsh
