// SPDX-License-Identifier: MIT
// One drive root or share. Reads volume and space data when its name is set and keeps them until
// Refresh; a drive that cannot be read is not present and has no space. Owns nothing on the disk.
#pragma once

#include <memory>

#include "base/Text.h"

namespace quillmarsh {

class cFSXFolder;

class cFSXDrive {
 public:
  // The drive of the current folder.
  cFSXDrive();

  // With a final backslash. Setting a drive's path cuts it to the drive, in capitals.
  [[nodiscard]] const Text& Name() const { return mName; }
  void SetName(TextView name);
  // A drive letter that the system lists, also without a medium; a share that answered.
  [[nodiscard]] bool Exists() const;
  [[nodiscard]] const Text& Label() const { return mLabel; }
  // An empty text removes the label.
  void SetLabel(TextView label);
  [[nodiscard]] double AvailableSpace() const { return mAvailableSpace; }  // bytes, to this user
  [[nodiscard]] double FreeSpace() const { return mFreeSpace; }            // bytes
  [[nodiscard]] double TotalSpace() const { return mTotalSpace; }          // bytes
  // A DRIVE_... number, and its English name; asked anew at each call.
  [[nodiscard]] std::int32_t DriveType() const;
  [[nodiscard]] Text DriveTypeEx() const;
  [[nodiscard]] const Text& FileSystem() const { return mFileSystem; }
  // Whether all bits of `flag` are set.
  [[nodiscard]] bool FileSystemFlag(std::int32_t flag) const;
  [[nodiscard]] std::int32_t FileSystemFlags() const { return mFileSystemFlags; }
  [[nodiscard]] std::int32_t MaxFilenameLength() const { return mMaxFilenameLength; }
  [[nodiscard]] bool Present() const { return mPresent; }
  [[nodiscard]] bool IsReady() const { return mIsReady; }
  // Signed decimal.
  [[nodiscard]] Text SerialNumber() const;
  // "1A2B-3C4D", empty for 0.
  [[nodiscard]] Text SerialNumberEx() const;
  // No object when the root does not exist.
  [[nodiscard]] std::unique_ptr<cFSXFolder> RootFolder() const;
  void Refresh();

 private:
  void UpdateFreeSpace();
  void UpdateVolumeInfo();
  void ForgetVolume();

  Text mName;
  bool mPresent = false;
  bool mIsReady = false;
  double mAvailableSpace = 0;
  double mFreeSpace = 0;
  double mTotalSpace = 0;
  Text mLabel;
  std::int32_t mSerialNumber = 0;
  std::int32_t mMaxFilenameLength = 0;
  std::int32_t mFileSystemFlags = 0;
  Text mFileSystem;
};

}  // namespace quillmarsh
