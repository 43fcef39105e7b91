// SPDX-License-Identifier: MIT
// Changing the disk on Windows: the system's own calls, but for copies of contents.
#pragma once

#include "platform/win32/Win32Calls.h"

namespace quillmarsh {

class Win32Disk final : public DiskChange {
 public:
  explicit Win32Disk(CallState& calls) : DiskChange(calls), mCalls(calls) {}

 private:
  bool DoDeleteFile(TextView path) override;
  bool DoMoveFile(TextView existing, TextView newPath, std::uint32_t flags) override;
  bool DoCopyFile(TextView existing, TextView newPath, bool failIfExists) override;
  bool DoCreateDirectory(TextView path) override;
  bool DoRemoveDirectory(TextView path) override;
  bool DoSetAttributes(TextView path, std::uint32_t attributes) override;

  CallState& mCalls;
};

}  // namespace quillmarsh
