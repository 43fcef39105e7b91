// SPDX-License-Identifier: MIT
// A Windows machine: the system's own calls in their wide forms. Paths mean exactly what they say,
// and copies are whole or not there; nothing else is added to the calls.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "platform/Machine.h"

namespace quillmarsh {

// What is not asked of the system.
struct Win32Options {
  std::function<std::uint32_t(std::uint32_t)> queueStatus;  // answers GetQueueStatus
  std::optional<Text> localData;                            // the folder CSIDL_LOCAL_APPDATA
};

class Win32Machine final : public Machine {
 public:
  explicit Win32Machine(const Win32Options& options = {});
  ~Win32Machine() override;

  Finding& Find() override;
  FileInputOutput& Files() override;
  DiskChange& Disk() override;
  Pinning& Pins() override;
  Volumes& Drives() override;
  Access& Security() override;
  Shell& Desktop() override;
  VersionResources& Versions() override;
  Modules& Process() override;
  LocaleAndTime& Locale() override;
  QueueAndMailbox& Queue() override;

 private:
  struct Roles;
  std::unique_ptr<Roles> mRoles;
};

}  // namespace quillmarsh
