// SPDX-License-Identifier: MIT
// Drives and volumes, and how paths look outside the program: a location as a person names it, a
// path as a person reads it, and its real bytes. Roots end in a backslash ("C:\").
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/CallHook.h"
#include "platform/SystemConstants.h"
#include "platform/SystemTypes.h"

namespace quillmarsh {

// What became of a location that a person named.
struct CanonicalLocation {
  Text path;  // drive form without final backslash except for a root; empty on failure
  std::uint32_t error = 0;  // the system error number of the failure
};

// What a text that a person typed stands for, besides a path that exists.
enum class NativeTextKind {
  Mask,          // a mask of file names; '*' and '?' keep their meaning
  PathFragment,  // any part of a path
};

class Volumes : public Role {
 public:
  using Role::Role;

  // Roots such as "C:\", one behind the other, each ended by a NUL (without the final extra one);
  // empty on failure.
  [[nodiscard]] Text GetLogicalDriveStringsW() {
    return Run(Operation::GetLogicalDriveStringsW, {}, Text(), [&] { return DoGetDriveStrings(); });
  }
  // A DRIVE_... number.
  [[nodiscard]] std::uint32_t GetDriveTypeW(TextView root) {
    return Run(Operation::GetDriveTypeW, root, DRIVE_NO_ROOT_DIR,
               [&] { return DoGetDriveType(root); });
  }
  [[nodiscard]] bool GetVolumeInformationW(TextView root, VolumeInformation& information) {
    return Run(Operation::GetVolumeInformationW, root, false,
               [&] { return DoGetVolumeInformation(root, information); });
  }
  [[nodiscard]] bool GetDiskFreeSpaceExW(TextView root, DiskSpace& space) {
    return Run(Operation::GetDiskFreeSpaceExW, root, false,
               [&] { return DoGetFreeSpace(root, space); });
  }
  // "\\?\Volume{...}\" of a mount point given with its final backslash; empty on failure.
  [[nodiscard]] Text GetVolumeNameForVolumeMountPointW(TextView path) {
    return Run(Operation::GetVolumeNameForVolumeMountPointW, path, Text(),
               [&] { return DoGetMountVolume(path); });
  }
  // An empty label removes the label.
  [[nodiscard]] bool SetVolumeLabelW(TextView root, TextView label) {
    return Run(Operation::SetVolumeLabelW, root, false, [&] { return DoSetLabel(root, label); });
  }

  // The one canonical drive form of a path that a person typed or passed as native bytes. It must
  // exist; links are resolved; two names of one folder give one answer.
  [[nodiscard]] CanonicalLocation LocationFromNative(std::string_view native) {
    return DoLocationFromNative(native);
  }
  // The same for what is to be made: parts at its end may be missing.
  [[nodiscard]] CanonicalLocation NewLocationFromNative(std::string_view native) {
    return DoNewLocationFromNative(native);
  }
  // A mask or a piece of a path, given as native bytes, in the letters in which the program knows
  // names.
  [[nodiscard]] Text TextFromNative(std::string_view native, NativeTextKind kind) const {
    return DoTextFromNative(native, kind);
  }
  // A drive-form path, or a bare name, as a person reads it. No control character is left in it.
  [[nodiscard]] Text ShownPath(TextView path) const { return DoShownPath(path); }
  // The path's real bytes, for formats that other programs read.
  [[nodiscard]] std::string NativePath(TextView path) const { return DoNativePath(path); }
  // Shown names of places that hold files but could not be given a drive letter.
  [[nodiscard]] std::vector<Text> PlacesWithoutLetter() const { return DoPlacesWithoutLetter(); }

 private:
  virtual Text DoGetDriveStrings() = 0;
  virtual std::uint32_t DoGetDriveType(TextView root) = 0;
  virtual bool DoGetVolumeInformation(TextView root, VolumeInformation& information) = 0;
  virtual bool DoGetFreeSpace(TextView root, DiskSpace& space) = 0;
  virtual Text DoGetMountVolume(TextView path) = 0;
  virtual bool DoSetLabel(TextView root, TextView label) = 0;
  virtual CanonicalLocation DoLocationFromNative(std::string_view native) = 0;
  virtual CanonicalLocation DoNewLocationFromNative(std::string_view native) = 0;
  virtual Text DoTextFromNative(std::string_view native, NativeTextKind) const {
    return FromUtf8(native);
  }
  virtual Text DoShownPath(TextView path) const = 0;
  virtual std::string DoNativePath(TextView path) const = 0;
  virtual std::vector<Text> DoPlacesWithoutLetter() const = 0;
};

}  // namespace quillmarsh
