// SPDX-License-Identifier: MIT
// What a test says of a drive, a folder or a file when it builds a simulated machine. Plain values
// with the defaults of an ordinary Windows system.
#pragma once

#include <cstdint>
#include <optional>

#include "base/Text.h"
#include "platform/SystemConstants.h"

namespace quillmarsh {

struct SimulatedDrive {
  // "C:\" or "\\server\share\"; empty for a volume that is reached through mount points only.
  Text root = {};
  std::uint32_t type = DRIVE_FIXED;
  // Folders of FAT, FAT32 and exFAT are listed in the order in which their entries were made, those
  // of all other file systems by upper-cased name.
  Text fileSystem = u"NTFS";
  Text label = {};
  std::uint32_t serialNumber = 0x5EED0001;
  std::uint32_t maximumComponentLength = 255;
  // None: what the file system usually has, with access lists on NTFS only.
  std::optional<std::uint32_t> flags = {};
  std::uint64_t totalBytes = 1ULL << 40U;
  std::uint64_t freeBytes = 1ULL << 39U;
  bool caseSensitive = false;
  bool readOnly = false;  // the medium is write-protected: changes fail with 19
  bool ready = true;  // false is an empty card reader: the letter is there, all else fails with 21
  bool keepsShortNames = true;
};

// Attributes and UTC times of a new entry. A time of 0 is the machine's clock.
struct SimulatedFacts {
  std::uint32_t attributes = FILE_ATTRIBUTE_ARCHIVE;
  std::int64_t created = 0;
  std::int64_t accessed = 0;
  std::int64_t written = 0;
};

}  // namespace quillmarsh
