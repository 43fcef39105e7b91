// SPDX-License-Identifier: MIT
// One folder: its attributes and kind, and once enumerated its files and sub-folders. Reading a
// directory happens in Enumerate and nowhere else, once for an object; a failure is remembered as a
// status and never shown. Directory junctions are not entered. A path ends with a backslash.
#pragma once

#include <memory>

#include "base/Text.h"
#include "fsobjects/cFSXFiles.h"
#include "fsobjects/cFSXSubFolders.h"
#include "platform/SystemConstants.h"

namespace quillmarsh {

class cFSXDrive;

struct cFSXFolderCounts {
  bool succeeded = false;
  std::int32_t files = 0;
  std::int32_t subFolders = 0;  // plain ones
  std::int32_t junctions = 0;
  double size = 0;  // bytes
  // The folder that could not be read, though one would expect it, and which ended the count; or,
  // of a count that succeeded, the first one whose listing broke off.
  Text failedPath;
};

class cFSXFolder {
 public:
  // Values of EnumerationStatus.
  static constexpr std::int32_t NotEnumerated = -1;
  static constexpr std::int32_t Enumerated = 0;   // also when the user stopped it half way
  static constexpr std::int32_t NotReadable = 1;  // a junction, or no surprise for other reasons
  static constexpr std::int32_t Failed = 2;
  // Values of JunctionPointType; -1 is not yet known.
  static constexpr std::int32_t NoJunctionPoint = 0;
  static constexpr std::int32_t DirectoryJunction = 1;
  static constexpr std::int32_t VolumeMountPoint = 2;

  cFSXFolder() = default;
  cFSXFolder(const cFSXFolder&) = delete;
  cFSXFolder& operator=(const cFSXFolder&) = delete;

  // A new path makes the folder readable again; cached counts stay.
  void SetPath(TextView path);
  [[nodiscard]] Text Path() const;
  [[nodiscard]] std::int32_t FolderIdx() const { return mFolderIdx == -1 ? 0 : mFolderIdx; }
  // -1 when they cannot be read; then every attribute reads as set.
  [[nodiscard]] std::int32_t Attributes();
  void SetAttributes(std::int32_t attributes) { mAttributes = attributes; }
  [[nodiscard]] bool IsReadOnly() { return HasAttributes(FILE_ATTRIBUTE_READONLY); }
  void SetIsReadOnly(bool value) { ChangeAttribute(FILE_ATTRIBUTE_READONLY, value); }
  [[nodiscard]] bool IsTemporary() { return HasAttributes(FILE_ATTRIBUTE_TEMPORARY); }
  void SetIsTemporary(bool) {}
  [[nodiscard]] bool IsHidden() { return HasAttributes(FILE_ATTRIBUTE_HIDDEN); }
  void SetIsHidden(bool value) { ChangeAttribute(FILE_ATTRIBUTE_HIDDEN, value); }
  [[nodiscard]] bool IsJunction() {
    return HasAttributes(FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_DIRECTORY);
  }
  [[nodiscard]] bool IsDirectoryJunction();
  [[nodiscard]] bool IsVolumeMount();
  [[nodiscard]] Text VolumeMountName();
  [[nodiscard]] bool IsSystem() { return HasAttributes(FILE_ATTRIBUTE_SYSTEM); }
  void SetIsSystem(bool value) { ChangeAttribute(FILE_ATTRIBUTE_SYSTEM, value); }
  [[nodiscard]] bool IsReparsePoint() { return HasAttributes(FILE_ATTRIBUTE_REPARSE_POINT); }
  [[nodiscard]] const Text& Name();
  void SetName(TextView name);  // an empty name is ignored
  [[nodiscard]] bool NameContainsUnicodeChars();
  [[nodiscard]] bool PathContainsUnicodeChars() const;
  [[nodiscard]] const Text& ParentName();
  [[nodiscard]] Text ParentFolderPath();
  [[nodiscard]] bool IsRootFolder();
  [[nodiscard]] const Text& DriveName();
  [[nodiscard]] std::unique_ptr<cFSXDrive> Drive();
  [[nodiscard]] const Text& ShortPathName();
  [[nodiscard]] std::int32_t JunctionPointType();
  [[nodiscard]] std::int32_t EnumerationStatus() const { return mEnumerationStatus; }
  void SetEnumerationStatus(std::int32_t status) { mEnumerationStatus = status; }
  [[nodiscard]] bool ErrorsDuringEnumeration() const;
  [[nodiscard]] bool HasWritePermission();
  [[nodiscard]] bool HasReadPermission();

  // Reads the folder. True when it was read, now or before; a failed folder is not tried again.
  bool Enumerate(bool recursive);
  // Read the folder when that was not done yet; no object where there is nothing to hand out.
  [[nodiscard]] std::shared_ptr<cFSXSubFolders> SubFoldersAndJunctions();
  [[nodiscard]] std::shared_ptr<cFSXFiles> Files();
  // The system's error number when the folder could not be opened for reading, 0 for none.
  [[nodiscard]] std::uint32_t EnumerationError() const { return mEnumerationError; }
  // The error number that ended the reading early, so that entries may be missing; 0 for none.
  [[nodiscard]] std::uint32_t ListingError() const { return mListingError; }

  [[nodiscard]] cFSXFolderCounts CountOfAllFSObjects(bool recursive);
  [[nodiscard]] std::int32_t NumFiles(bool recursive);
  [[nodiscard]] std::int32_t NumSubFolders(bool recursive);
  [[nodiscard]] std::int32_t NumJunctionPoints(bool recursive);
  [[nodiscard]] std::int32_t NumSubFoldersAndJunctions(bool recursive);
  [[nodiscard]] double Size(bool recursive);
  [[nodiscard]] bool IsEmpty();

  // Tells that a walk comes to this folder from the one above. Where going in would lead round in a
  // circle the folder becomes NotReadable. Error 28 below the deepest level that a walk may reach.
  void EnterFrom(const cFSXFolder& above);
  [[nodiscard]] bool IsDeepest() const;

 private:
  friend class FolderCounting;  // the work behind the count members

  // The links and mounted volumes through which a walk came here, innermost first.
  struct Trail;

  [[nodiscard]] bool HasAttributes(std::int32_t mask) { return (Attributes() & mask) == mask; }
  void ChangeAttribute(std::int32_t mask, bool value);
  [[nodiscard]] std::int32_t GetJunctionPointType();
  void MakeCollections();
  void ReadEntries(bool recursive);
  [[nodiscard]] bool HasEntries();
  [[nodiscard]] bool LeadsInACircle();

  std::int32_t mAttributes = -1;
  std::int32_t mFolderIdx = -1;
  std::int32_t mParentFolderIdx = -1;
  Text mName, mParentName, mDriveName, mShortPathName, mVolumeMountName;
  bool mIsRootFolder = false, mIsRootFolderKnown = false;
  bool mReadPermissionKnown = false, mHasReadPermission = false;
  bool mWritePermissionKnown = false, mHasWritePermission = false;
  double mSize = 0;         // of the files directly in the folder
  double mTreeSize = -1.0;  // -1 is not known, as for the two counts
  std::int32_t mTreeFileCount = -1;
  std::int32_t mTreeSubFolderCount = -1;
  std::int32_t mEnumerationStatus = NotEnumerated;
  std::int32_t mJunctionPointType = -1;
  std::uint32_t mReparseTag = 0;
  std::uint32_t mEnumerationError = 0;
  std::uint32_t mListingError = 0;
  std::int32_t mLevel = 0;  // folders above in the walk
  std::shared_ptr<const Trail> mTrail;
  std::shared_ptr<cFSXSubFolders> mobjSubFoldersAndJunctions;
  std::shared_ptr<cFSXFiles> mobjFiles;
};

}  // namespace quillmarsh
