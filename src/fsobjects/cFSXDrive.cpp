// SPDX-License-Identifier: MIT
// Space and volume are read together at a refresh; whatever could not be read is forgotten, so that
// no drive shows the facts of the drive that the object stood for before.
#include "fsobjects/cFSXDrive.h"

#include "base/CaseMapping.h"
#include "frame/ErrorReporting.h"
#include "fsobjects/cFSXFileSystemObject.h"
#include "fsobjects/cFSXFolder.h"
#include "fsobjects/modUnicode.h"
#include "platform/Machine.h"

namespace quillmarsh {
namespace {

constexpr TextView kDriveTypes[] = {
    u"Unknown", u"No Root Directory", u"Removable", u"Fixed", u"Remote", u"CD-ROM", u"RAM Disk"};

bool APIDriveExists(char16_t letter) {
  const Text drives = TheMachine().Drives().GetLogicalDriveStringsW();
  return UpperCaseText(drives).find(UpperCase(letter)) != Text::npos;
}

}  // namespace

cFSXDrive::cFSXDrive() : mName(TheMachine().Process().GetCurrentDirectoryW().substr(0, 3)) {
  Refresh();
}

void cFSXDrive::SetName(TextView name) {
  mName = name.find(u':') == 1 ? UpperCaseText(name.substr(0, 2)) : Text(name);
  if (!mName.ends_with(u'\\')) mName += u'\\';
  Refresh();
}

bool cFSXDrive::Exists() const {
  const bool drive = mName.size() >= 2 && mName[1] == u':';
  return drive ? APIDriveExists(mName[0]) : mPresent;
}

void cFSXDrive::SetLabel(TextView label) {
  if (TheMachine().Drives().SetVolumeLabelW(ToLongPath(mName), label)) UpdateVolumeInfo();
}

std::int32_t cFSXDrive::DriveType() const {
  return static_cast<std::int32_t>(TheMachine().Drives().GetDriveTypeW(ToLongPath(mName)));
}

Text cFSXDrive::DriveTypeEx() const {
  const auto type = static_cast<std::size_t>(DriveType());
  return Text(kDriveTypes[type < std::size(kDriveTypes) ? type : 0]);
}

bool cFSXDrive::FileSystemFlag(std::int32_t flag) const {
  return (mFileSystemFlags & flag) == flag;
}

Text cFSXDrive::SerialNumber() const {
  return DecimalText(mSerialNumber);
}

Text cFSXDrive::SerialNumberEx() const {
  if (mSerialNumber == 0) return {};
  const auto bits = static_cast<std::uint32_t>(mSerialNumber);
  Text text;
  for (unsigned shift = 32; shift != 0; shift -= 4) {
    if (shift == 16) text += u'-';
    text += u"0123456789ABCDEF"[(bits >> (shift - 4)) & 0xFU];
  }
  return text;
}

std::unique_ptr<cFSXFolder> cFSXDrive::RootFolder() const {
  std::unique_ptr<cFSXFolder> folder;
  Guarded(u"cFSXDrive.RootFolder", [&] { folder = cFSXFileSystemObject().GetFolder(mName); });
  return folder;
}

void cFSXDrive::Refresh() {
  UpdateFreeSpace();
  if (mPresent) {
    UpdateVolumeInfo();
  } else {
    ForgetVolume();
  }
}

// Every object begins with the drive of the current folder, whose volume is not this one's.
void cFSXDrive::ForgetVolume() {
  mPresent = mIsReady = false;
  mLabel.clear();
  mFileSystem.clear();
  mSerialNumber = mMaxFilenameLength = mFileSystemFlags = 0;
}

void cFSXDrive::UpdateFreeSpace() {
  Guarded(u"cFSXDrive.UpdateFreeSpace", [&] {
    mAvailableSpace = mFreeSpace = mTotalSpace = 0;
    mPresent = false;
    DiskSpace space;
    if (!TheMachine().Drives().GetDiskFreeSpaceExW(ToLongPath(mName), space)) return;
    mAvailableSpace = static_cast<double>(space.freeBytesAvailableToCaller);
    mFreeSpace = static_cast<double>(space.totalNumberOfFreeBytes);
    mTotalSpace = static_cast<double>(space.totalNumberOfBytes);
    mPresent = true;
  });
}

void cFSXDrive::UpdateVolumeInfo() {
  Guarded(u"cFSXDrive.UpdateVolumeInfo", [&] {
    ForgetVolume();
    VolumeInformation volume;
    if (!TheMachine().Drives().GetVolumeInformationW(ToLongPath(mName), volume)) return;
    mPresent = mIsReady = true;
    mLabel = TrimAtNull(volume.label);
    mFileSystem = TrimAtNull(volume.fileSystemName);
    mSerialNumber = static_cast<std::int32_t>(volume.serialNumber);
    mMaxFilenameLength = static_cast<std::int32_t>(volume.maximumComponentLength);
    mFileSystemFlags = static_cast<std::int32_t>(volume.fileSystemFlags);
  });
}

}  // namespace quillmarsh
