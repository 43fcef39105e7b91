// SPDX-License-Identifier: MIT
// A Linux machine in the shape that the program knows: drive letters for mounted file systems,
// drive-form paths, attributes and error codes. Owns its roles and its helper threads. A thread
// that hangs in a file system which does not answer is left behind, also when the machine goes;
// nothing here waits for it.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/Machine.h"

namespace quillmarsh {

// The program takes all of this as it stands; tests put other sources in its place.
struct PosixOptions {
  std::string mountInfoFile = "/proc/self/mountinfo";
  std::string uuidFolder = "/dev/disk/by-uuid";
  std::string labelFolder = "/dev/disk/by-label";
  // In place of $XDG_DATA_HOME; empty: no home at all.
  std::optional<std::string> dataHome;
  // To be given to drives besides "/", in this order.
  std::string letters = "DEFGHIJKLMNOPQRSTUVWXYZ";
  // Resolve paths one component at a time, as on a kernel without bounded resolution.
  bool byComponents = false;
  // How much of what was read ahead may wait to be taken up.
  std::size_t bufferedBytes = std::size_t{16} << 20U;
  // Called on the reading thread before a folder is opened, with its path.
  std::function<void(TextView)> beforeFolder;
  // Called before a file is opened ahead of its use, with its path, mostly on a helper thread.
  std::function<void(TextView)> beforeFile;
  // Answers GetQueueStatus; without one no event ever waits.
  std::function<std::uint32_t(std::uint32_t)> queueStatus;
};

class PosixMachine final : public Machine {
 public:
  explicit PosixMachine(const PosixOptions& options = {});
  ~PosixMachine() override;

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
