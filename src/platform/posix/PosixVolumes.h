// SPDX-License-Identifier: MIT
// Drives on POSIX: letters of mounted file systems, and the two ways between native paths and the
// drive form. Asking for the drives, or naming a location, looks whether the mounts have changed;
// between two such questions everything stays as it was.
#pragma once

#include <map>
#include <memory>

#include "platform/Volumes.h"
#include "platform/posix/NativeWalk.h"
#include "platform/posix/PosixContext.h"

namespace quillmarsh {

class PosixVolumes final : public Volumes {
 public:
  PosixVolumes(CallState& state, PosixContext& context);

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
  std::vector<Text> DoPlacesWithoutLetter() const override;

  CanonicalLocation LocationOf(std::string_view native, MissingTail tail);
  // The drive whose root this is; null, with the last error set, when there is none.
  const Drive* DriveOfRoot(TextView root, std::shared_ptr<const DriveTable>& table);

  PosixContext& mContext;
  // Asked once for each folder of a search, so the answers are kept until the mounts change.
  std::shared_ptr<const DriveTable> mKnownTable;
  std::map<char, VolumeInformation> mKnown;
};

}  // namespace quillmarsh
