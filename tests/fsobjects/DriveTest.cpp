// SPDX-License-Identifier: MIT
// Drive objects: how a name becomes a root, and what is known of a drive that is not ready.
#include "FsObjectsFixture.h"
#include "fsobjects/cFSXDrive.h"
#include "fsobjects/cFSXFolder.h"

namespace quillmarsh {
namespace {

class Drive : public FsObjectsFixture {
 protected:
  cFSXDrive drive;
  cFSXDrive& Named(TextView name) {
    drive.SetName(name);
    return drive;
  }
};

TEST_F(Drive, NameOfADriveIsCutToItsRootInCapitals) {
  EXPECT_EQ(drive.Name(), u"C:\\") << "that of the current folder";
  EXPECT_EQ(Named(u"c:").Name(), u"C:\\");
  EXPECT_EQ(Named(u"c:\\some\\path").Name(), u"C:\\");
  EXPECT_EQ(Named(u"c").Name(), u"c\\") << "a bare letter only gets a backslash";
  EXPECT_EQ(Named(u"\\\\Srv\\Share").Name(), u"\\\\Srv\\Share\\");
}

TEST_F(Drive, TellsVolumeAndSpace) {
  machine.AddDrive({.root = u"D:\\",
                    .type = DRIVE_REMOVABLE,
                    .fileSystem = u"FAT32",
                    .label = u"STICK",
                    .serialNumber = 0x001A2B3C,
                    .totalBytes = 9000,
                    .freeBytes = 4000});
  Named(u"d:");
  EXPECT_TRUE(drive.Exists());
  EXPECT_TRUE(drive.Present());
  EXPECT_TRUE(drive.IsReady());
  EXPECT_EQ(drive.TotalSpace(), 9000.0);
  EXPECT_EQ(drive.FreeSpace(), 4000.0);
  EXPECT_EQ(drive.Label(), u"STICK");
  EXPECT_EQ(drive.FileSystem(), u"FAT32");
  EXPECT_EQ(drive.DriveTypeEx(), u"Removable");
  EXPECT_EQ(drive.SerialNumberEx(), u"001A-2B3C");
  EXPECT_EQ(drive.SerialNumber(), u"1715004");
  EXPECT_TRUE(drive.FileSystemFlag(static_cast<std::int32_t>(FS_CASE_IS_PRESERVED)));
  EXPECT_FALSE(
      drive.FileSystemFlag(static_cast<std::int32_t>(FS_PERSISTENT_ACLS | FS_CASE_IS_PRESERVED)));
  drive.SetLabel(u"NEW");
  EXPECT_EQ(drive.Label(), u"NEW");
  machine.SetFreeBytes(u"D:\\", 1);
  EXPECT_EQ(drive.FreeSpace(), 4000.0) << "until a refresh";
  drive.Refresh();
  EXPECT_EQ(drive.FreeSpace(), 1.0);
}

TEST_F(Drive, EmptyCardReaderExistsButIsNotPresent) {
  machine.AddDrive({.root = u"E:\\", .type = DRIVE_REMOVABLE, .ready = false});
  Named(u"E:");
  EXPECT_TRUE(drive.Exists());
  EXPECT_FALSE(drive.Present());
  EXPECT_FALSE(drive.IsReady());
  EXPECT_EQ(drive.TotalSpace(), 0.0);
  EXPECT_EQ(drive.FileSystem(), u"");
  EXPECT_FALSE(Named(u"Q:").Exists());
  EXPECT_EQ(drive.DriveTypeEx(), u"No Root Directory");
  EXPECT_EQ(drive.RootFolder(), nullptr);
  EXPECT_EQ(Named(u"C:").RootFolder()->Path(), u"C:\\");
}

TEST_F(Drive, VolumeThatCannotBeReadIsNotPresentThoughItsSpaceWas) {
  hook.Fail({.operation = Operation::GetVolumeInformationW, .subject = u"C:\\"}, ERROR_NOT_READY);
  Named(u"C:");
  EXPECT_FALSE(drive.Present());
  EXPECT_GT(drive.TotalSpace(), 0.0);
  EXPECT_EQ(drive.FileSystem(), u"");
}

TEST_F(Drive, ShareExistsWhenItAnswers) {
  machine.AddDrive({.root = u"\\\\srv\\share\\", .type = DRIVE_REMOTE});
  EXPECT_TRUE(Named(u"\\\\srv\\share").Exists());
  EXPECT_EQ(drive.DriveTypeEx(), u"Remote");
  EXPECT_FALSE(Named(u"\\\\srv\\other").Exists());
}

}  // namespace
}  // namespace quillmarsh
