// SPDX-License-Identifier: MIT
// A folder's own facts, the kinds of junction points, and the reading of its directory.
#include "FsObjectsFixture.h"
#include "fsobjects/cFSXDrive.h"
#include "fsobjects/cFSXFolder.h"
#include "fsobjects/cFSXSubFolder.h"

namespace quillmarsh {
namespace {

class Folder : public FsObjectsFixture {
 protected:
  // Counts its pumps, and stops the search at the first.
  class StoppingPump final : public PumpView {
   public:
    int pumps = 0;
    void PumpEvents() override {
      ++pumps;
      gUserAbort = true;
    }
  };

  static std::unique_ptr<cFSXFolder> At(TextView path) {
    auto folder = std::make_unique<cFSXFolder>();
    folder->SetPath(path);
    return folder;
  }
};

TEST_F(Folder, ReadsItsEntriesInTheOrderOfTheSystem) {
  machine.AddDrive({.root = u"F:\\", .fileSystem = u"FAT32"});
  machine.SetTimeZoneBias(120);
  const std::int64_t written = TicksOf(2022, 3, 4, 5, 6, 7);
  machine.AddFile(u"F:\\d\\z.txt", "12345",
                  {.attributes = 0x22, .created = written + 1, .written = written});
  machine.AddFolder(u"F:\\d\\sub",
                    {.attributes = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_SYSTEM});
  machine.AddFile(u"F:\\d\\a.txt", FileContents::Recipe(1, 5'000'000'000));
  const auto folder = At(u"F:\\d\\");
  EXPECT_TRUE(folder->Enumerate(false));
  EXPECT_EQ(folder->EnumerationStatus(), cFSXFolder::Enumerated);
  ASSERT_EQ(folder->Files()->Count(), 2);
  const cFSXFileFacts first = folder->Files()->Facts(1);
  EXPECT_EQ(first.name, u"z.txt");
  EXPECT_EQ(first.size, Currency::FromInteger(5));
  EXPECT_EQ(first.attributes, 0x22U);
  EXPECT_EQ(first.lastModifiedAsCurr.Raw(), TicksOf(2022, 3, 4, 3, 6, 7));
  EXPECT_EQ(first.createdAsCurr.Raw(), TicksOf(2022, 3, 4, 3, 6, 7) + 1);
  EXPECT_EQ(folder->Files()->Facts(2).size, Currency::FromInteger(5'000'000'000));
  ASSERT_EQ(folder->SubFoldersAndJunctions()->Count(), 1);
  EXPECT_TRUE(folder->SubFoldersAndJunctions()->Item(1)->IsSystem());
  EXPECT_EQ(folder->Size(false), 5'000'000'005.0);
}

TEST_F(Folder, SecondEnumerationNeverTouchesTheDisk) {
  machine.AddFile(u"C:\\d\\a.txt");
  const auto good = At(u"C:\\d\\"), bad = At(u"C:\\missing\\");
  EXPECT_TRUE(good->Enumerate(false));
  EXPECT_FALSE(bad->Enumerate(false));
  machine.AddFile(u"C:\\missing\\now.txt");
  hook.ClearJournal();
  EXPECT_TRUE(good->Enumerate(false));
  EXPECT_FALSE(bad->Enumerate(false));
  EXPECT_TRUE(hook.Journal().empty());
  bad->SetPath(u"C:\\missing\\");
  EXPECT_TRUE(bad->Enumerate(false)) << "a new path makes it readable again";
}

TEST_F(Folder, FailedFolderRemembersTheErrorNumber) {
  const auto missing = At(u"C:\\missing\\");
  missing->SetAttributes(FILE_ATTRIBUTE_DIRECTORY);
  EXPECT_EQ(missing->Files()->Count(), 0);
  EXPECT_EQ(missing->EnumerationStatus(), cFSXFolder::Failed);
  EXPECT_TRUE(missing->ErrorsDuringEnumeration());
  EXPECT_EQ(missing->EnumerationError(), ERROR_PATH_NOT_FOUND);

  machine.AddFolder(u"C:\\sys", {.attributes = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_SYSTEM});
  machine.DenyAccess(u"C:\\sys", FILE_LIST_DIRECTORY);
  const auto system = At(u"C:\\sys\\");
  EXPECT_FALSE(system->Enumerate(false));
  EXPECT_EQ(system->EnumerationStatus(), cFSXFolder::NotReadable) << "no surprise there";
  EXPECT_EQ(system->EnumerationError(), ERROR_ACCESS_DENIED);
}

TEST_F(Folder, PrimedAttributesAreNotAskedAgain) {
  machine.AddFile(u"C:\\d\\sub\\a.txt");
  const auto sub = At(u"C:\\d\\")->SubFoldersAndJunctions()->Item(1);
  hook.ClearJournal();
  EXPECT_TRUE(sub->Enumerate(false));
  EXPECT_FALSE(sub->IsHidden());
  EXPECT_EQ(Calls(Operation::GetFileAttributesW), 0U);
  EXPECT_EQ(Calls(Operation::FindFirstFileW), 1U);
}

// Required as it is: the listing counts as whole; only ListingError tells.
TEST_F(Folder, NextCallThatFailsEndsTheListingWithoutAnError) {
  for (int i = 0; i < 10; ++i) machine.AddFile(u"C:\\d\\" + DecimalText(i));
  hook.Fail({.operation = Operation::FindNextFileW, .nth = 5}, ERROR_IO_DEVICE);
  const auto folder = At(u"C:\\d\\");
  EXPECT_TRUE(folder->Enumerate(false));
  EXPECT_EQ(folder->EnumerationStatus(), cFSXFolder::Enumerated);
  EXPECT_EQ(folder->Files()->Count(), 3);
  EXPECT_EQ(folder->ListingError(), ERROR_IO_DEVICE);
  const auto again = At(u"C:\\d\\");
  EXPECT_EQ(again->Files()->Count(), 10);
  EXPECT_EQ(again->ListingError(), 0U);
}

TEST_F(Folder, StopKeepsTheEntriesSoFarAndCountsAsEnumerated) {
  for (int i = 0; i < 10; ++i) machine.AddFile(u"C:\\d\\" + DecimalText(i));
  hook.RunBefore({.operation = Operation::FindNextFileW, .nth = 5}, [] { gUserAbort = true; });
  const auto folder = At(u"C:\\d\\");
  EXPECT_TRUE(folder->Enumerate(false));
  EXPECT_EQ(folder->Files()->Count(), 3);
  EXPECT_EQ(folder->EnumerationStatus(), cFSXFolder::Enumerated);
  EXPECT_EQ(folder->ListingError(), 0U);
}

TEST_F(Folder, OneLongFolderCanBeStoppedByItsOwnPump) {
  for (int i = 0; i < 2000; ++i) machine.AddFile(u"C:\\d\\" + DecimalText(i));
  StoppingPump pump;
  gViews.pump = &pump;
  machine.SetWaitingEvents(QS_KEY);
  const auto folder = At(u"C:\\d\\");
  EXPECT_TRUE(folder->Enumerate(false));
  EXPECT_EQ(pump.pumps, 1);
  EXPECT_LT(folder->Files()->Count(), 2000);
}

TEST_F(Folder, TellsJunctionsMountPointsAndOtherReparsePointsApart) {
  machine.AddFile(u"C:\\real\\a.txt");
  machine.AddJunction(u"C:\\junction", u"C:\\real");
  const Text volume = machine.AddVolumeWithoutLetter({.fileSystem = u"NTFS"});
  machine.AddMountPoint(u"C:\\mount", volume);
  machine.AddFile(u"C:\\mount\\on the volume.txt");
  machine.AddFolderLink(u"C:\\link", u"C:\\real");
  machine.AddFile(u"C:\\cloud\\a.txt");
  machine.SetReparseTag(u"C:\\cloud", 0x9000001A);
  const struct {
    TextView path;
    bool isJunction;
    std::int32_t type;
    bool readable;
  } rows[] = {
      {u"C:\\real\\", false, cFSXFolder::NoJunctionPoint, true},
      {u"C:\\junction\\", true, cFSXFolder::DirectoryJunction, false},
      {u"C:\\mount\\", true, cFSXFolder::VolumeMountPoint, true},
      {u"C:\\link\\", true, cFSXFolder::NoJunctionPoint, true},
      {u"C:\\cloud\\", true, cFSXFolder::NoJunctionPoint, true},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(ToUtf8(row.path));
    const auto folder = At(row.path);
    EXPECT_EQ(folder->IsJunction(), row.isJunction);
    EXPECT_EQ(folder->JunctionPointType(), row.type);
    EXPECT_EQ(folder->IsDirectoryJunction(), row.type == cFSXFolder::DirectoryJunction);
    EXPECT_EQ(folder->VolumeMountName(), row.type == cFSXFolder::VolumeMountPoint ? volume : u"");
    EXPECT_EQ(folder->Enumerate(false), row.readable);
    EXPECT_EQ(folder->Files()->Count(), row.readable ? 1 : 0);
    EXPECT_EQ(folder->EnumerationStatus(),
              row.readable ? cFSXFolder::Enumerated : cFSXFolder::NotReadable);
  }
}

// Required as it is: callers ask for existence first.
TEST_F(Folder, VanishedFolderReadsAsHavingEveryAttribute) {
  const auto gone = At(u"C:\\gone\\");
  EXPECT_EQ(gone->Attributes(), -1);
  EXPECT_TRUE(gone->IsReadOnly());
  EXPECT_TRUE(gone->IsHidden());
  EXPECT_TRUE(gone->IsSystem());
  EXPECT_TRUE(gone->IsTemporary());
  EXPECT_TRUE(gone->IsJunction());
  machine.AddFolder(u"C:\\gone");
  EXPECT_FALSE(gone->IsHidden()) << "a failure is tried again";
}

// Required as it is: with the check off every folder is readable and none writable.
TEST_F(Folder, WithoutPermissionChecksReadingIsAllowedAndWritingIsNot) {
  machine.AddFile(u"C:\\d\\a.txt");
  EXPECT_TRUE(At(u"C:\\d\\")->HasReadPermission());
  EXPECT_TRUE(At(u"C:\\d\\")->HasWritePermission());
  machine.DenyAccess(u"C:\\d");
  mCheckFolderPermission = false;
  hook.ClearJournal();
  const auto folder = At(u"C:\\d\\");
  EXPECT_TRUE(folder->HasReadPermission());
  EXPECT_FALSE(folder->HasWritePermission());
  EXPECT_EQ(Calls(Operation::GetVolumeInformationW), 0U);
  folder->SetAttributes(FILE_ATTRIBUTE_DIRECTORY);
  EXPECT_FALSE(folder->Enumerate(false));
  EXPECT_EQ(folder->EnumerationStatus(), cFSXFolder::Failed);
}

TEST_F(Folder, TellsItsPlace) {
  const auto folder = At(u"C:\\one\\two\\");
  EXPECT_EQ(folder->Name(), u"two");
  EXPECT_EQ(folder->ParentFolderPath(), u"C:\\one\\");
  EXPECT_EQ(folder->ParentName(), u"one");
  EXPECT_EQ(folder->DriveName(), u"C:\\");
  EXPECT_EQ(folder->Drive()->FileSystem(), u"NTFS");
  EXPECT_FALSE(folder->IsRootFolder());
  EXPECT_TRUE(At(u"C:\\")->IsRootFolder());
  EXPECT_TRUE(At(u"\\\\srv\\share\\")->IsRootFolder());
  folder->SetName(u"");
  EXPECT_EQ(folder->Name(), u"two");
  EXPECT_EQ(cFSXFolder().FolderIdx(), 0);
  EXPECT_EQ(cFSXFolder().Path(), u"");
}

TEST_F(Folder, EmptinessIsSeenWithoutReadingTheFolder) {
  machine.AddFolder(u"C:\\empty");
  machine.AddFolder(u"C:\\outer\\inner");
  machine.AddFile(u"C:\\full\\a.txt");
  machine.AddJunction(u"C:\\junction", u"C:\\full");
  const struct {
    TextView path;
    bool empty;
  } rows[] = {{u"C:\\empty\\", true},
              {u"C:\\outer\\", false},
              {u"C:\\full\\", false},
              {u"C:\\junction\\", true},
              {u"C:\\missing\\", true}};
  for (const auto& row : rows) {
    const auto folder = At(row.path);
    EXPECT_EQ(folder->IsEmpty(), row.empty) << ToUtf8(row.path);
    EXPECT_EQ(folder->EnumerationStatus(), cFSXFolder::NotEnumerated);
    folder->Enumerate(false);
    EXPECT_EQ(folder->IsEmpty(), row.empty) << ToUtf8(row.path);
  }
}

TEST_F(Folder, ReadsLongPathsWithRedirectionOff) {
  machine.SetWow64(true);
  gIsWow64 = true;
  const Text deep = u"C:\\" + Text(130, u'a') + u"\\" + Text(130, u'b') + u"\\";
  machine.AddFile(deep + u"f.txt");
  for (const Operation operation : {Operation::FindFirstFileW, Operation::GetFileAttributesW}) {
    hook.RunBefore({.operation = operation, .nth = 0},
                   [this] { EXPECT_GT(machine.RedirectionDepth(), 0); });
  }
  EXPECT_EQ(At(deep)->Files()->Count(), 1);
  EXPECT_FALSE(At(deep)->IsEmpty());
}

TEST_F(Folder, FileThatIsTooLargeToCountIsLeftOutAndTold) {
  machine.AddFile(u"C:\\d\\huge", FileContents::Recipe(1, 1'000'000'000'000'000));
  machine.AddFile(u"C:\\d\\small", "12345");
  machine.AddFolder(u"C:\\d\\sub");
  const auto folder = At(u"C:\\d\\");
  EXPECT_TRUE(folder->Enumerate(false));
  EXPECT_EQ(folder->NumFiles(false), 1);
  EXPECT_EQ(folder->NumSubFolders(false), 1);
  EXPECT_EQ(folder->Size(false), 5);
  EXPECT_EQ(folder->ListingError(), ERROR_ARITHMETIC_OVERFLOW);
}

TEST_F(Folder, SubFolderThatIsNoneAnswersZeroValues) {
  cFSXSubFolder none;
  none.SetPath(u"C:\\");
  EXPECT_EQ(none.Path(), u"");
  EXPECT_FALSE(none.Enumerate(true));
  EXPECT_EQ(none.Files(), nullptr);
  EXPECT_FALSE(none.CountOfAllFSObjects(true).succeeded);
}

}  // namespace
}  // namespace quillmarsh
