// SPDX-License-Identifier: MIT
// Drives on Windows, and the two ways between what a person typed and the canonical form: bytes
// are UTF-8, in which a half of a surrogate pair, which a name may hold here, has three bytes of
// its own.
#pragma once

#include "platform/win32/Win32Calls.h"

namespace quillmarsh {

class Win32Volumes final : public Volumes {
 public:
  explicit Win32Volumes(CallState& calls) : Volumes(calls), mCalls(calls) {}

 private:
  Text DoGetDriveStrings() override;
  std::uint32_t DoGetDriveType(TextView root) override;
  bool DoGetVolumeInformation(TextView root, VolumeInformation& information) override;
  bool DoGetFreeSpace(TextView root, DiskSpace& space) override;
  Text DoGetMountVolume(TextView path) override;
  bool DoSetLabel(TextView root, TextView label) override;
  CanonicalLocation DoLocationFromNative(std::string_view native) override;
  CanonicalLocation DoNewLocationFromNative(std::string_view native) override;
  Text DoTextFromNative(std::string_view native, NativeTextKind kind) const override;
  Text DoShownPath(TextView path) const override;
  std::string DoNativePath(TextView path) const override;
  std::vector<Text> DoPlacesWithoutLetter() const override { return {}; }

  CallState& mCalls;
};

}  // namespace quillmarsh
