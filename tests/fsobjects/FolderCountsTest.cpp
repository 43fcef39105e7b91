// SPDX-License-Identifier: MIT
// The counts of a folder and of the tree below it, and how they end when something is in the way.
#include "FsObjectsFixture.h"
#include "fsobjects/cFSXFolder.h"

namespace quillmarsh {
namespace {

class FolderCounts : public FsObjectsFixture {
 protected:
  FolderCounts() {
    machine.AddFile(u"C:\\t\\1", "1");
    machine.AddFile(u"C:\\t\\a\\2", "22");
    machine.AddFile(u"C:\\t\\a\\b\\3", "333");
    machine.AddFile(u"C:\\elsewhere\\4", "4444");
    machine.AddJunction(u"C:\\t\\a\\junction", u"C:\\elsewhere");
    folder.SetPath(u"C:\\t\\");
  }
  cFSXFolder folder;
};

TEST_F(FolderCounts, CountTheFolderOrItsTreeAndNothingBehindJunctions) {
  EXPECT_EQ(folder.NumFiles(false), 1);
  EXPECT_EQ(folder.NumFiles(true), 3);
  EXPECT_EQ(folder.NumSubFolders(false), 1);
  EXPECT_EQ(folder.NumSubFolders(true), 2);
  EXPECT_EQ(folder.NumJunctionPoints(false), 0);
  EXPECT_EQ(folder.NumJunctionPoints(true), 1);
  EXPECT_EQ(folder.NumSubFoldersAndJunctions(true), 3);
  EXPECT_EQ(folder.Size(false), 1.0);
  EXPECT_EQ(folder.Size(true), 6.0);
  const cFSXFolderCounts all = folder.CountOfAllFSObjects(true);
  EXPECT_TRUE(all.succeeded);
  EXPECT_EQ(all.files, 3);
  EXPECT_EQ(all.subFolders, 2);
  EXPECT_EQ(all.junctions, 1);
  EXPECT_EQ(all.size, 6.0);
  EXPECT_EQ(folder.CountOfAllFSObjects(false).files, 1);
}

TEST_F(FolderCounts, MountedVolumesAreCountedThrough) {
  const Text volume = machine.AddVolumeWithoutLetter({});
  machine.AddMountPoint(u"C:\\t\\mount", volume);
  machine.AddFile(u"C:\\t\\mount\\x\\5", "55555");
  EXPECT_EQ(folder.NumFiles(true), 4);
  EXPECT_EQ(folder.NumJunctionPoints(false), 1);
}

TEST_F(FolderCounts, VolumeThatIsMountedBelowItselfIsEnteredOnce) {
  machine.AddMountPoint(u"C:\\t\\self", u"C:\\");
  // Once the tree as such, once more through the mount, and not again below it.
  EXPECT_EQ(folder.NumFiles(true), 3 + 3 + 1);
  EXPECT_TRUE(folder.CountOfAllFSObjects(true).succeeded);
  cFSXFolder whole;
  whole.SetPath(u"C:\\t\\");
  EXPECT_TRUE(whole.Enumerate(true));
}

TEST_F(FolderCounts, LinksThatLeadUpwardComeToAnEnd) {
  machine.AddFolderLink(u"C:\\t\\a\\up", u"C:\\t");
  machine.AddFolderLink(u"C:\\t\\a\\b\\up", u"C:\\t");
  EXPECT_GE(folder.NumFiles(true), 3);
}

TEST_F(FolderCounts, TreeTooDeepForAWalkIsReportedAndNotFollowedIntoTheGround) {
  // Names of one letter, so that the whole path stays within what the system takes.
  Text path = u"C:\\deep";
  for (int level = 0; level < 1200; ++level) path += u"\\d";
  machine.AddFolder(path);
  cFSXFolder deep;
  deep.SetPath(u"C:\\deep\\");
  EXPECT_EQ(deep.NumSubFolders(true), 1000);
  EXPECT_EQ(TakeReportedSource(), "cFSXFolder.GetFolderTreeSubFolderCount");
}

TEST_F(FolderCounts, FirstFolderThatFailsIsToldByItsPath) {
  hook.Fail({.operation = Operation::FindFirstFileW, .subject = u"C:\\t\\a\\b\\*"},
            ERROR_IO_DEVICE);
  const cFSXFolderCounts all = folder.CountOfAllFSObjects(true);
  EXPECT_FALSE(all.succeeded);
  EXPECT_EQ(all.failedPath, u"C:\\t\\a\\b\\");
  EXPECT_EQ(all.files, 2) << "the sums so far stand";
  EXPECT_EQ(all.size, 3.0);
}

TEST_F(FolderCounts, FoldersThatAreNotReadableCountAsEmpty) {
  machine.SetAttributes(u"C:\\t\\a\\b", FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_SYSTEM);
  machine.DenyAccess(u"C:\\t\\a\\b", FILE_LIST_DIRECTORY);
  const cFSXFolderCounts all = folder.CountOfAllFSObjects(true);
  EXPECT_TRUE(all.succeeded);
  EXPECT_EQ(all.files, 2);
  EXPECT_EQ(all.failedPath, u"");
}

// Required as it is: only these three are kept, and a new path does not drop them.
TEST_F(FolderCounts, TreeCountsOfFilesFoldersAndSizeAreKeptForGood) {
  EXPECT_EQ(folder.NumFiles(true), 3);
  EXPECT_EQ(folder.NumSubFolders(true), 2);
  EXPECT_EQ(folder.Size(true), 6.0);
  EXPECT_EQ(folder.NumJunctionPoints(true), 1);
  machine.AddFile(u"C:\\t\\a\\new", "7777777");
  machine.AddJunction(u"C:\\t\\a\\another", u"C:\\elsewhere");
  folder.SetPath(u"C:\\t\\");
  EXPECT_EQ(folder.NumFiles(true), 3);
  EXPECT_EQ(folder.NumSubFolders(true), 2);
  EXPECT_EQ(folder.Size(true), 6.0);
  EXPECT_EQ(folder.Size(false), 1.0) << "not twice what lies there";
  EXPECT_EQ(folder.NumJunctionPoints(true), 2);
}

TEST_F(FolderCounts, MissingCollectionIsToldAndCountsAsNothing) {
  folder.SetEnumerationStatus(cFSXFolder::Enumerated);
  EXPECT_EQ(folder.NumFiles(false), 0);
  const MessageBoxRequest box = TakeBox();
  EXPECT_EQ(box.title, u"Unexpected Error");
  EXPECT_EQ(box.text, u"mobjFiles object is Nothing in cFSXFolder.NumFiles()");
  EXPECT_EQ(box.icon, MessageBoxIcon::Exclamation);
  EXPECT_EQ(folder.NumJunctionPoints(true), 0);
  EXPECT_EQ(TakeBox().text,
            u"mobjSubFoldersAndJunctions object is Nothing in cFSXFolder.NumJunctionPoints()");
  EXPECT_FALSE(folder.CountOfAllFSObjects(true).succeeded);
  TakeBox();
}

TEST_F(FolderCounts, DeniedPermissionHasABoxOfItsOwn) {
  hook.RunBefore({.operation = Operation::FindFirstFileW, .subject = u"C:\\t\\*"},
                 [] { throw RuntimeError(runtime_error::PermissionDenied); });
  EXPECT_EQ(folder.NumFiles(false), 0);
  const MessageBoxRequest box = TakeBox();
  EXPECT_EQ(box.title, u"Folder Permission Denied");
  EXPECT_EQ(ToUtf8(box.text),
            "Error Number:70\r\nError Description:Permission Denied\r\n"
            "Code Module:cFSXFolder.NumFiles\r\n\r\n"
            "QUILLMARSH - An error was encountered while processing the path:\r\n\r\n"
            "\"C:\\t\\\"\r\n\r\n"
            "You do not have permission to access this folder.  Please see your Network "
            "Administrator.");
}

TEST_F(FolderCounts, AnyOtherErrorGoesToTheReporterWithTheFoldersPath) {
  hook.RunBefore({.operation = Operation::FindFirstFileW, .subject = u"C:\\t\\*"},
                 [] { throw RuntimeError(runtime_error::DeviceError); });
  EXPECT_EQ(folder.Size(true), 0.0);
  EXPECT_EQ(TakeReportedSource(), "cFSXFolder.Size");
  EXPECT_NE(ReportedDetail().find("Folder Path: \r\nC:\\t\\"), std::string::npos);
}

}  // namespace
}  // namespace quillmarsh
