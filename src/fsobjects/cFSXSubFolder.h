// SPDX-License-Identifier: MIT
// A sub-folder that is none: the folder object's members, each with its zero value. Nothing makes
// one; it stands where a folder is asked for and there is nothing to tell. Never touches the disk.
#pragma once

#include <memory>

#include "fsobjects/cFSXDrive.h"
#include "fsobjects/cFSXFolder.h"

namespace quillmarsh {

class cFSXSubFolder {
 public:
  void SetPath(TextView) {}
  [[nodiscard]] Text Path() const { return {}; }
  [[nodiscard]] std::int32_t FolderIdx() const { return 0; }
  [[nodiscard]] std::int32_t Attributes() const { return 0; }
  void SetAttributes(std::int32_t) {}
  [[nodiscard]] bool IsReadOnly() const { return false; }
  void SetIsReadOnly(bool) {}
  [[nodiscard]] bool IsTemporary() const { return false; }
  void SetIsTemporary(bool) {}
  [[nodiscard]] bool IsHidden() const { return false; }
  void SetIsHidden(bool) {}
  [[nodiscard]] bool IsJunction() const { return false; }
  [[nodiscard]] bool IsDirectoryJunction() const { return false; }
  [[nodiscard]] bool IsVolumeMount() const { return false; }
  [[nodiscard]] Text VolumeMountName() const { return {}; }
  [[nodiscard]] bool IsSystem() const { return false; }
  void SetIsSystem(bool) {}
  [[nodiscard]] bool IsReparsePoint() const { return false; }
  [[nodiscard]] Text Name() const { return {}; }
  void SetName(TextView) {}
  [[nodiscard]] bool NameContainsUnicodeChars() const { return false; }
  [[nodiscard]] bool PathContainsUnicodeChars() const { return false; }
  [[nodiscard]] Text ParentName() const { return {}; }
  [[nodiscard]] Text ParentFolderPath() const { return {}; }
  [[nodiscard]] bool IsRootFolder() const { return false; }
  [[nodiscard]] Text DriveName() const { return {}; }
  [[nodiscard]] std::unique_ptr<cFSXDrive> Drive() const { return nullptr; }
  [[nodiscard]] std::int32_t JunctionPointType() const { return 0; }
  [[nodiscard]] std::int32_t EnumerationStatus() const { return 0; }
  void SetEnumerationStatus(std::int32_t) {}
  [[nodiscard]] bool ErrorsDuringEnumeration() const { return false; }
  [[nodiscard]] bool HasWritePermission() const { return false; }
  [[nodiscard]] bool HasReadPermission() const { return false; }
  [[nodiscard]] std::shared_ptr<cFSXSubFolders> SubFoldersAndJunctions() const { return nullptr; }
  [[nodiscard]] std::shared_ptr<cFSXFiles> Files() const { return nullptr; }
  [[nodiscard]] cFSXFolderCounts CountOfAllFSObjects(bool) const { return {}; }
  [[nodiscard]] std::int32_t NumFiles(bool) const { return 0; }
  [[nodiscard]] std::int32_t NumSubFolders(bool) const { return 0; }
  [[nodiscard]] std::int32_t NumJunctionPoints(bool) const { return 0; }
  [[nodiscard]] std::int32_t NumSubFoldersAndJunctions(bool) const { return 0; }
  [[nodiscard]] double Size(bool) const { return 0; }
  [[nodiscard]] bool IsEmpty() const { return false; }
  [[nodiscard]] Text ShortPathName() const { return {}; }
  bool Enumerate(bool) { return false; }
};

}  // namespace quillmarsh
