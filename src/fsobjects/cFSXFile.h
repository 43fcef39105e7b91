// SPDX-License-Identifier: MIT
// One file as a cache of facts about a path: each fact is fetched from the disk when first asked
// for and never again; for fresh data make a new object. It holds nothing open. A path must be set
// before use. Members never ask the user and raise nothing for what the disk says: a fact that
// cannot be had is false, 0 or empty. Sizes are in bytes, raw times are local ticks since 1601.
#pragma once

#include <array>
#include <memory>

#include "base/DupeFileUDT.h"
#include "base/NameArena.h"
#include "fsobjects/cFSXFileState.h"
#include "platform/SystemTypes.h"

namespace quillmarsh {

class cFSXDrive;
class cFSXFolder;

class cFSXFile {
 public:
  cFSXFile() = default;

  [[nodiscard]] bool Exists();
  [[nodiscard]] bool InUse();       // cannot be opened for oneself alone
  [[nodiscard]] bool IsShortcut();  // a shell link, where the shell calls it "Shortcut"
  [[nodiscard]] bool IsEXE();
  [[nodiscard]] bool IsLocal();  // on the root of the program's own folder
  [[nodiscard]] bool IsEncrypted();
  [[nodiscard]] const Text& VersionNumber();

  // Setters of attributes, size, times and name change the object; SaveChanges writes to the disk.
  [[nodiscard]] std::uint32_t Attributes();
  void SetAttributes(std::uint32_t attributes);
  [[nodiscard]] bool IsReadOnly();
  void SetIsReadOnly(bool value);
  [[nodiscard]] bool IsHidden();
  void SetIsHidden(bool value);
  [[nodiscard]] bool IsSystem();
  void SetIsSystem(bool value);
  [[nodiscard]] bool IsArchive();
  void SetIsArchive(bool value);
  [[nodiscard]] bool IsTemporary();  // also every file with the extension TMP
  void SetIsTemporary(bool) {}
  [[nodiscard]] bool IsCompressed();
  void SetIsCompressed(bool) {}
  [[nodiscard]] const Text& AttributesString();
  [[nodiscard]] Currency Size();
  void SetSize(Currency size);
  [[nodiscard]] Currency CompressedSize();  // on disk; -1 when not known

  [[nodiscard]] Date LastModifiedDate() { return DateOf(FileTimeKind::LastModified); }
  void SetLastModifiedDate(Date date) { SetDate(FileTimeKind::LastModified, date); }
  [[nodiscard]] Currency LastModifiedDateAsCurr() { return RawOf(FileTimeKind::LastModified); }
  void SetLastModifiedDateAsCurr(Currency raw) { SetRaw(FileTimeKind::LastModified, raw); }
  [[nodiscard]] std::uint32_t LastModifiedDateFTHigh();
  [[nodiscard]] std::uint32_t LastModifiedDateFTLow();
  [[nodiscard]] Date LastAccessedDate() { return DateOf(FileTimeKind::LastAccessed); }
  void SetLastAccessedDate(Date date) { SetDate(FileTimeKind::LastAccessed, date); }
  [[nodiscard]] Currency LastAccessedDateAsCurr() { return RawOf(FileTimeKind::LastAccessed); }
  void SetLastAccessedDateAsCurr(Currency raw) { SetRaw(FileTimeKind::LastAccessed, raw); }
  [[nodiscard]] std::uint32_t LastAccessedDateFTHigh() {
    return WipedHalf(FileTimeKind::LastAccessed);
  }
  [[nodiscard]] std::uint32_t LastAccessedDateFTLow() {
    return WipedHalf(FileTimeKind::LastAccessed);
  }
  [[nodiscard]] Date CreatedDate() { return DateOf(FileTimeKind::Created); }
  void SetCreatedDate(Date date) { SetDate(FileTimeKind::Created, date); }
  [[nodiscard]] Currency CreatedDateAsCurr() { return RawOf(FileTimeKind::Created); }
  void SetCreatedDateAsCurr(Currency raw) { SetRaw(FileTimeKind::Created, raw); }
  [[nodiscard]] std::uint32_t CreatedDateFTHigh() { return WipedHalf(FileTimeKind::Created); }
  [[nodiscard]] std::uint32_t CreatedDateFTLow() { return WipedHalf(FileTimeKind::Created); }

  [[nodiscard]] Text Path();
  // An object that knows facts of one file must not be pointed at another.
  void SetPath(TextView path);
  [[nodiscard]] const Text& OriginalName() const { return mOriginalName; }
  [[nodiscard]] const Text& Name() const { return mName; }
  void SetName(TextView name) { mName = name; }
  [[nodiscard]] bool NameContainsUnicodeChars() const;
  [[nodiscard]] bool PathContainsUnicodeChars();
  [[nodiscard]] const Text& NameWithoutExtension();
  [[nodiscard]] const Text& Extension();  // without the dot
  [[nodiscard]] const Text& ShortPathName();
  [[nodiscard]] const Text& FileTypeDesc();
  [[nodiscard]] const Text& DriveName();
  [[nodiscard]] std::unique_ptr<cFSXDrive> Drive();
  [[nodiscard]] const Text& ParentName();
  [[nodiscard]] std::int32_t ParentFolderIdx();
  [[nodiscard]] Text ParentFolderPath();
  [[nodiscard]] std::unique_ptr<cFSXFolder> ParentFolder();
  [[nodiscard]] bool HasWritePermission();
  [[nodiscard]] bool HasReadPermission();

  [[nodiscard]] std::int32_t FileASCIIPercentage(bool highCharactersToo);
  [[nodiscard]] std::int32_t CRC32();
  [[nodiscard]] const Text& MD5();

  // Copy and move take the folder part of the destination and keep the file's own name there.
  bool CopyFile(TextView destination);
  bool DeleteFile(bool permanently);
  bool MoveFile(TextView destination);
  bool RenameFile(TextView newName);
  // After true the object knows no path any more; likewise after a delete.
  bool SaveChanges();

  // The search's record of this file, with dates in whole seconds; its name goes into `names`.
  [[nodiscard]] quillmarsh::DupeFileUDT DupeFileUDT(NameArena& names);

 private:
  [[nodiscard]] bool GetStateBit(FileFact fact) const;
  void SetStateBit(FileFact fact, bool value);
  void LoadFileInfo();
  bool LoadFromHandle(const Text& longPath);
  void LoadFromSearch(const Text& longPath);
  void NoteFailedSearch(std::uint32_t error);
  void ResetFileObject();
  void NeedFileInfo();
  void SplitName();
  void ChangeAttribute(std::uint32_t mask, bool value);
  template <typename WorkOut>
  bool DiskBoolean(FileFact known, FileFact value, WorkOut&& workOut);
  [[nodiscard]] bool CannotBeOpenedAlone();
  [[nodiscard]] Text ReadVersion();

  [[nodiscard]] Currency RawOf(FileTimeKind kind);
  void SetRaw(FileTimeKind kind, Currency raw);
  [[nodiscard]] Date DateOf(FileTimeKind kind);
  void SetDate(FileTimeKind kind, Date date);
  [[nodiscard]] std::uint32_t WipedHalf(FileTimeKind kind);
  [[nodiscard]] Date RecordDateOf(FileTimeKind kind);
  [[nodiscard]] Date ConvertDateTimeCurrToVBDateTime(Currency raw);

  Currency mSize;
  Currency mCompressedSize;
  std::uint32_t mAttributes = 0;
  std::array<FileTimeFact, 3> mTimes;  // by FileTimeKind
  std::int32_t mCRC32 = 0;
  std::int32_t mParentFolderIdx = -1;
  std::int32_t mFileASCIIPercentage = 0;
  std::int32_t mStateBits = 0;
  Text mName, mOriginalName, mNameWithoutExtension, mExtension, mMD5, mFileTypeDesc, mDriveName;
  Text mParentName, mShortPathName, mAttributesString, mVersionNumber;
  BY_HANDLE_FILE_INFORMATION mFileInfo;
};

}  // namespace quillmarsh
