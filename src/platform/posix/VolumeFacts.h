// SPDX-License-Identifier: MIT
// What can be told of a drive without entering its file system: numbers and names that stay the
// same as long as the file system is the same.
#pragma once

#include <cstdint>

#include "platform/SystemTypes.h"
#include "platform/posix/DriveLetters.h"

namespace quillmarsh {

// The first eight hexadecimal digits of the UUID, else a hash of the identity.
[[nodiscard]] std::uint32_t SerialNumberOf(const Drive& drive);

// A DRIVE_... number; disks are told from removable ones by their device.
[[nodiscard]] std::uint32_t DriveTypeOf(const Drive& drive);

[[nodiscard]] VolumeInformation VolumeInformationOf(const Drive& drive);

// "\\?\Volume{...}\" made of a mount's file system and folder: equal for two mounts of the same.
[[nodiscard]] Text VolumeNameOf(const Mount& mount);

}  // namespace quillmarsh
