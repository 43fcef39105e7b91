// SPDX-License-Identifier: MIT
// Another machine with one role exchanged: a test derives from it, overrides that role, and puts it
// in use for a while. The rest is the other machine's.
#pragma once

#include "platform/Machine.h"

namespace quillmarsh {

class DelegatingMachine : public Machine {
 public:
  explicit DelegatingMachine(Machine& rest) : mRest(rest) { UseMachine(this); }
  ~DelegatingMachine() override { UseMachine(&mRest); }
  DelegatingMachine(const DelegatingMachine&) = delete;
  DelegatingMachine& operator=(const DelegatingMachine&) = delete;

  Finding& Find() override { return mRest.Find(); }
  FileInputOutput& Files() override { return mRest.Files(); }
  DiskChange& Disk() override { return mRest.Disk(); }
  Pinning& Pins() override { return mRest.Pins(); }
  Volumes& Drives() override { return mRest.Drives(); }
  Access& Security() override { return mRest.Security(); }
  Shell& Desktop() override { return mRest.Desktop(); }
  VersionResources& Versions() override { return mRest.Versions(); }
  Modules& Process() override { return mRest.Process(); }
  LocaleAndTime& Locale() override { return mRest.Locale(); }
  QueueAndMailbox& Queue() override { return mRest.Queue(); }

 private:
  Machine& mRest;
};

}  // namespace quillmarsh
