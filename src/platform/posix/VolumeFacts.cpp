// SPDX-License-Identifier: MIT
// Serial numbers, kinds and names of volumes.
#include "platform/posix/VolumeFacts.h"

#include <unistd.h>

#include <array>
#include <cstdio>
#include <string>

#include "platform/SystemConstants.h"
#include "platform/TextOperations.h"
#include "platform/posix/NameMapping.h"

namespace quillmarsh {
namespace {

std::uint32_t HashOf(std::string_view text) {
  return static_cast<std::uint32_t>(HashData(std::as_bytes(std::span(text.data(), text.size()))));
}

int HexValue(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
  return digit >= 'A' && digit <= 'F' ? digit - 'A' + 10 : -1;
}

bool SystemFileSaysOne(const std::string& path) {
  int error = 0;
  const auto text = ReadWholeFile(path, error);
  return text && text->starts_with('1');
}

}  // namespace

std::uint32_t SerialNumberOf(const Drive& drive) {
  std::uint32_t serial = 0;
  int digits = 0;
  for (const char c : drive.uuid) {
    if (digits == 8) break;
    if (const int value = HexValue(c); value >= 0) {
      serial = (serial << 4U) | static_cast<std::uint32_t>(value);
      ++digits;
    }
  }
  return digits == 8 ? serial : HashOf(drive.identity);
}

std::uint32_t DriveTypeOf(const Drive& drive) {
  const std::uint32_t type = drive.kind.driveType;
  if (type == DRIVE_CDROM && !drive.mount->source.starts_with("/dev/sr")) return DRIVE_FIXED;
  if (type != DRIVE_FIXED) return type;
  // The whole disk says whether it is removable; a partition lies one folder below it.
  const std::string device = "/sys/dev/block/" + drive.mount->device;
  const bool removable =
      SystemFileSaysOne(device + "/removable") || SystemFileSaysOne(device + "/../removable");
  return removable ? DRIVE_REMOVABLE : DRIVE_FIXED;
}

VolumeInformation VolumeInformationOf(const Drive& drive) {
  VolumeInformation information;
  information.label = ShownText(drive.label);
  information.serialNumber = SerialNumberOf(drive);
  information.maximumComponentLength = 255;
  // No access lists: the rights of an entry are its mode, and opening it is the only sure check.
  information.fileSystemFlags = FS_CASE_IS_PRESERVED | FS_UNICODE_STORED_ON_DISK;
  if (!drive.kind.foldsCase) information.fileSystemFlags |= FS_CASE_SENSITIVE;
  if (drive.mount->readOnly) information.fileSystemFlags |= FS_READ_ONLY_VOLUME;
  information.fileSystemName = ShownText(drive.mount->type);
  return information;
}

Text VolumeNameOf(const Mount& mount) {
  const std::string key = mount.device + " " + mount.source + " " + mount.root;
  const std::uint32_t a = HashOf("a" + key);
  const std::uint32_t b = HashOf("b" + key);
  const std::uint32_t c = HashOf("c" + key);
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "\\\\?\\Volume{%08x-%04x-%04x-%04x-%08x%04x}\\", a,
                b >> 16U, b & 0xFFFFU, c >> 16U, HashOf("d" + key), c & 0xFFFFU);
  return FromUtf8(text.data());
}

}  // namespace quillmarsh
