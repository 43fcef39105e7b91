// SPDX-License-Identifier: MIT
// The current search and removal options of the whole program: a plain bag of properties. Exactly
// one lives while the program runs, gDupeSettings. It validates nothing, parses no list, tells
// nobody of a change; lists are opaque text joined by "<:>".
#pragma once

#include <cstdint>
#include <memory>

#include "base/Text.h"

namespace quillmarsh {

enum class RemoveMethod : std::int32_t {
  Delete = 0,             // permanently
  Recycle = 1,            // to the Recycle Bin
  MoveToDupesFolder = 2,  // keeping the original path below it
  MoveToOtherFolder = 3,  // to UserDefinedMoveFolderPath, without the original path
};

class clsDupeSettings {
 public:
  clsDupeSettings();

  [[nodiscard]] const Text& FolderPaths() const { return mFolderPaths; }
  void SetFolderPaths(TextView value) { mFolderPaths = value; }
  [[nodiscard]] const Text& ExcludeFolders() const { return mExcludeFolders; }
  void SetExcludeFolders(TextView value) { mExcludeFolders = value; }
  [[nodiscard]] const Text& IncludeFolders() const { return mIncludeFolders; }
  void SetIncludeFolders(TextView value) { mIncludeFolders = value; }
  [[nodiscard]] const Text& ExcludeFiles() const { return mExcludeFiles; }
  void SetExcludeFiles(TextView value) { mExcludeFiles = value; }
  [[nodiscard]] const Text& IncludeFiles() const { return mIncludeFiles; }
  void SetIncludeFiles(TextView value) { mIncludeFiles = value; }
  [[nodiscard]] const Text& UserDefinedMoveFolderPath() const { return mUserDefinedMoveFolderPath; }
  void SetUserDefinedMoveFolderPath(TextView value) { mUserDefinedMoveFolderPath = value; }

  // Any number is taken; 0 to 3 have a meaning.
  [[nodiscard]] quillmarsh::RemoveMethod RemoveMethod() const { return mRemoveMethod; }
  void SetRemoveMethod(quillmarsh::RemoveMethod value) { mRemoveMethod = value; }
  // Any number is taken; 0 (all) to 4 have a meaning.
  [[nodiscard]] std::int32_t FileType() const { return mFileType; }
  void SetFileType(std::int32_t value) { mFileType = value; }

  [[nodiscard]] bool MainFormLoadedPreviously() const { return GetFlag(0); }
  void SetMainFormLoadedPreviously(bool value) { SetFlag(0, value); }
  [[nodiscard]] bool RemoveWarningShown() const { return GetFlag(1); }
  void SetRemoveWarningShown(bool value) { SetFlag(1, value); }
  [[nodiscard]] bool IncludeSubFolders() const { return GetFlag(2); }
  void SetIncludeSubFolders(bool value) { SetFlag(2, value); }
  [[nodiscard]] bool NamesMatch() const { return GetFlag(3); }
  void SetNamesMatch(bool value) { SetFlag(3, value); }
  [[nodiscard]] bool SizesMatch() const { return GetFlag(4); }
  void SetSizesMatch(bool value) { SetFlag(4, value); }
  // Bits 5 and 6 stand in the other order than the criteria do everywhere else.
  [[nodiscard]] bool LastModTimeStampsMatch() const { return GetFlag(5); }
  void SetLastModTimeStampsMatch(bool value) { SetFlag(5, value); }
  [[nodiscard]] bool CreateTimeStampsMatch() const { return GetFlag(6); }
  void SetCreateTimeStampsMatch(bool value) { SetFlag(6, value); }
  [[nodiscard]] bool ContentsMatch() const { return GetFlag(7); }
  void SetContentsMatch(bool value) { SetFlag(7, value); }
  [[nodiscard]] bool IgnoreZeroByteFiles() const { return GetFlag(8); }
  void SetIgnoreZeroByteFiles(bool value) { SetFlag(8, value); }
  [[nodiscard]] bool IgnoreSystemFiles() const { return GetFlag(9); }
  void SetIgnoreSystemFiles(bool value) { SetFlag(9, value); }
  [[nodiscard]] bool IgnoreHiddenFiles() const { return GetFlag(10); }
  void SetIgnoreHiddenFiles(bool value) { SetFlag(10, value); }
  [[nodiscard]] bool IgnoreTemporaryFiles() const { return GetFlag(11); }
  void SetIgnoreTemporaryFiles(bool value) { SetFlag(11, value); }
  [[nodiscard]] bool IgnoreSystemFolders() const { return GetFlag(12); }
  void SetIgnoreSystemFolders(bool value) { SetFlag(12, value); }
  [[nodiscard]] bool IgnoreHiddenFolders() const { return GetFlag(13); }
  void SetIgnoreHiddenFolders(bool value) { SetFlag(13, value); }
  [[nodiscard]] bool IgnoreTemporaryFolders() const { return GetFlag(14); }
  void SetIgnoreTemporaryFolders(bool value) { SetFlag(14, value); }
  [[nodiscard]] bool IgnoreFilesInWindowsDir() const { return GetFlag(15); }
  void SetIgnoreFilesInWindowsDir(bool value) { SetFlag(15, value); }

 private:
  [[nodiscard]] bool GetFlag(std::int32_t bit) const;
  void SetFlag(std::int32_t bit, bool value);

  Text mFolderPaths;
  Text mExcludeFolders;
  Text mIncludeFolders = u"*";
  Text mExcludeFiles;
  Text mIncludeFiles = u"*";
  Text mUserDefinedMoveFolderPath;
  quillmarsh::RemoveMethod mRemoveMethod = quillmarsh::RemoveMethod::MoveToDupesFolder;
  std::int32_t mFileType = 0;
  std::int32_t mFlags = 0;
};

// The one instance; made and released with the other program-wide objects.
extern std::unique_ptr<clsDupeSettings> gDupeSettings;

// The separator of list texts.
inline constexpr TextView kListSeparator = u"<:>";

}  // namespace quillmarsh
