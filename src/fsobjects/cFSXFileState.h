// SPDX-License-Identifier: MIT
// The state of a file object: which facts are known, and the values of those that are a Boolean.
// Bits of one 32-bit word, since there are hundreds of thousands of these objects.
#pragma once

#include "base/Currency.h"
#include "base/Date.h"

namespace quillmarsh {

enum class FileFact : std::int32_t {
  // Values.
  Exists = 0,
  HasReadPermission = 1,
  HasWritePermission = 2,
  InUse = 3,
  IsEXE = 4,
  IsLocal = 5,
  IsEncrypted = 6,
  IsShortcut = 7,
  // What is known.
  ReadPermissionKnown = 8,
  WritePermissionKnown = 9,
  SizeKnown = 10,
  CompressedSizeKnown = 11,
  AttributesKnown = 12,
  AttributesStringKnown = 13,
  LastModifiedRawKnown = 14,
  LastModifiedDateKnown = 15,
  LastAccessedRawKnown = 16,
  LastAccessedDateKnown = 17,
  CreatedRawKnown = 18,
  CreatedDateKnown = 19,
  InUseKnown = 20,
  IsEXEKnown = 21,
  IsLocalKnown = 22,
  IsEncryptedKnown = 23,
  IsShortcutKnown = 24,
  FileInfoRead = 25,  // the facts of one successful read of the disk are there
  CRC32Known = 26,
  MD5Known = 27,
  ASCIIPercentageKnown = 28,
  VersionNumberKnown = 29,
};

enum class FileTimeKind : std::uint8_t { LastModified = 0, Created = 1, LastAccessed = 2 };

// One of a file's three times: the raw local ticks, and the date, which a setter may make differ.
struct FileTimeFact {
  Currency asCurr;
  Date date;
};

}  // namespace quillmarsh
