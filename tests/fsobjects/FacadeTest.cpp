// SPDX-License-Identifier: MIT
// The entry to the objects: what exists, which objects it hands out, and the making of folders.
#include "FsObjectsFixture.h"
#include "fsobjects/CreateFolderTree.h"
#include "fsobjects/cFSXDrive.h"
#include "fsobjects/cFSXFile.h"
#include "fsobjects/cFSXFileSystemObject.h"
#include "fsobjects/cFSXFolder.h"

namespace quillmarsh {
namespace {

class Facade : public FsObjectsFixture {
 protected:
  cFSXFileSystemObject facade;
};

TEST_F(Facade, ExistenceIsToldApartForFilesAndFolders) {
  machine.AddFile(u"C:\\d\\a.txt");
  const HANDLE held = machine.HoldOpen(u"C:\\d\\a.txt", 0);
  EXPECT_TRUE(FSXFileExists(u"C:\\d\\a.txt"));
  machine.LetGo(held);
  EXPECT_FALSE(FSXFolderExists(u"C:\\d\\a.txt"));
  EXPECT_FALSE(FSXFileExists(u"C:\\d"));
  EXPECT_TRUE(FSXFolderExists(u"C:\\d"));
  EXPECT_FALSE(FSXFileExists(u"C:\\d\\missing.txt"));
  EXPECT_FALSE(FSXFileExists(u""));
  EXPECT_FALSE(FSXFolderExists(u""));
}

TEST_F(Facade, WhatCannotBeLookedAtExistsAndUnusualFailuresAreReported) {
  const struct {
    std::uint32_t error;
    bool exists, reported;
  } rows[] = {{ERROR_FILE_NOT_FOUND, false, false},   {ERROR_PATH_NOT_FOUND, false, false},
              {ERROR_INVALID_DATA, false, false},     {ERROR_ACCESS_DENIED, true, false},
              {ERROR_SHARING_VIOLATION, true, false}, {ERROR_NOT_READY, false, true}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.error);
    FaultHook faults;
    faults.Fail({.operation = Operation::GetFileAttributesW, .nth = 0}, row.error);
    machine.SetHook(&faults);
    EXPECT_EQ(facade.FileExists(u"C:\\a", true), row.exists);
    if (row.reported) {
      EXPECT_EQ(TakeReportedSource(), "modFSXFSO.FileExists");
    }
    EXPECT_EQ(facade.FolderExists(u"C:\\a", false), row.exists);
    machine.SetHook(&hook);
    if (!row.reported) {
      EXPECT_EQ(machine.GetLastError(), ERROR_SUCCESS);
    }
  }
  EXPECT_NE(ReportedDetail().find("FSXFileExists - File: C:\\a"), std::string::npos);
}

TEST_F(Facade, RunTimeErrorsOfALookAreReportedButForTheTwoOfAFileThatIsNotThere) {
  for (const std::int32_t number :
       {runtime_error::BadFileName, runtime_error::FileNotFound, runtime_error::DeviceError}) {
    FaultHook faults;
    faults.RunBefore({.operation = Operation::GetFileAttributesW},
                     [number] { throw RuntimeError(number); });
    machine.SetHook(&faults);
    EXPECT_FALSE(facade.FolderExists(u"C:\\a", true));
    machine.SetHook(&hook);
    if (number == runtime_error::DeviceError) {
      EXPECT_EQ(TakeReportedSource(), "modFSXFSO.FolderExists");
    }
  }
}

TEST_F(Facade, HandsOutObjectsOnlyForWhatExists) {
  machine.AddFile(u"C:\\d\\a.txt");
  EXPECT_EQ(facade.GetFolder(u"  C:\\d ")->Path(), u"C:\\d\\");
  EXPECT_EQ(facade.GetFolder(u"C:\\missing"), nullptr);
  EXPECT_EQ(facade.GetFolder(u"   "), nullptr);
  EXPECT_EQ(facade.GetFile(u" C:\\d\\a.txt")->Path(), u"C:\\d\\a.txt");
  EXPECT_EQ(facade.GetFile(u"C:\\d"), nullptr);
  EXPECT_EQ(facade.GetDrive(u"c")->Name(), u"C:\\");
  EXPECT_EQ(facade.GetDrive(u"Q:\\x"), nullptr);
  EXPECT_EQ(facade.GetDrive(u"no root"), nullptr);
  EXPECT_TRUE(facade.DriveExists(u"C:\\d\\a.txt"));
  EXPECT_EQ(facade.GetParentFolderName(u"C:\\d\\a.txt"), u"C:\\d\\");
  EXPECT_EQ(facade.GetParentFolderName(u"C:\\"), u"");
  EXPECT_EQ(facade.GetDriveName(u"c:\\d"), u"c:\\");
  EXPECT_EQ(facade.GetFileName(u"C:\\d\\a.txt"), u"a.txt");
  EXPECT_EQ(facade.GetExtensionName(u"C:\\d\\a.txt"), u"txt");
}

TEST_F(Facade, FindsSpecialFoldersByTheirNumbers) {
  machine.AddFolder(u"C:\\Temp");
  machine.AddFolder(u"C:\\Win\\Sys");
  machine.AddFolder(u"C:\\Me\\Docs");
  machine.SetTempPath(u"C:\\Temp\\");
  machine.SetShellFolder(CSIDL_WINDOWS, u"C:\\Win");
  machine.SetShellFolder(CSIDL_SYSTEM, u"C:\\Win\\Sys");
  machine.SetShellFolder(CSIDL_PERSONAL, u"C:\\Me\\Docs");
  machine.SetShellFolder(CSIDL_PROFILE, u"");
  EXPECT_EQ(facade.GetSpecialFolder(-3)->Path(), u"C:\\Temp\\");
  EXPECT_EQ(facade.GetSpecialFolder(-2)->Path(), u"C:\\Win\\Sys\\");
  EXPECT_EQ(facade.GetSpecialFolder(-1)->Path(), u"C:\\Win\\");
  EXPECT_EQ(facade.GetSpecialFolder(CSIDL_PERSONAL)->Path(), u"C:\\Me\\Docs\\");
  EXPECT_EQ(facade.GetSpecialFolder(CSIDL_PROFILE), nullptr);
}

TEST_F(Facade, ListsAllLogicalDrives) {
  machine.AddDrive({.root = u"E:\\", .type = DRIVE_CDROM, .ready = false});
  const auto drives = facade.GetMappedDrivesCollection();
  ASSERT_TRUE(drives);
  ASSERT_EQ(drives->size(), 2U);
  EXPECT_EQ((*drives)[0]->Name(), u"C:\\");
  EXPECT_EQ((*drives)[1]->Name(), u"E:\\");
  hook.Fail({.operation = Operation::GetLogicalDriveStringsW}, ERROR_NOT_READY);
  EXPECT_FALSE(facade.GetMappedDrivesCollection());
}

TEST_F(Facade, FileSystemNameIsInCapitals) {
  machine.AddDrive({.root = u"D:\\", .fileSystem = u"exFat"});
  EXPECT_EQ(facade.FileSystemName(u"D:\\x"), u"EXFAT");
  EXPECT_FALSE(facade.IsDriveNTFS(u"D:\\x"));
  EXPECT_TRUE(facade.IsDriveNTFS(u"c"));
  EXPECT_EQ(facade.FileSystemName(u"Q:\\"), u"");
}

TEST_F(Facade, ListsTheExtensionsOfAFolderOrTreeOnceEach) {
  for (const TextView name : {u"1.txt", u"2.TXT", u"3.doc", u"4.txt", u"5", u"6."})
    machine.AddFile(Text(u"C:\\t\\").append(name));
  machine.AddFile(u"C:\\t\\sub\\7.Doc");
  machine.AddFile(u"C:\\t\\sub\\8.png");
  machine.AddMountPoint(u"C:\\t\\sub\\self", u"C:\\");
  using List = std::vector<Text>;
  EXPECT_EQ(facade.GetListOfFileTypesInTree(u"C:\\t", false, false), (List{u"txt", u"doc"}));
  EXPECT_EQ(facade.GetListOfFileTypesInTree(u"C:\\t", true, false), (List{u"txt", u"doc", u"png"}));
  EXPECT_EQ(facade.GetListOfFileTypesInTree(u"C:\\missing", true, false), List{});
}

TEST_F(Facade, SampleLooksAtAQuarterOfMoreThan50Files) {
  const struct {
    int files;
    std::size_t seen;
  } rows[] = {{50, 50}, {51, 12}, {100, 25}};
  for (const auto& row : rows) {
    for (int i = 0; i < row.files; ++i)
      machine.AddFile(u"C:\\s\\" + DecimalText(1000 + i) + u".e" + DecimalText(i));
    EXPECT_EQ(facade.GetListOfFileTypesInTree(u"C:\\s", false, true).size(), row.seen);
    machine.Remove(u"C:\\s");
  }
}

TEST_F(Facade, MakesEveryMissingFolderOfAPath) {
  machine.AddDrive({.root = u"\\\\srv\\share\\", .type = DRIVE_REMOTE});
  const Text deep = u"C:\\" + Text(120, u'a') + u"\\" + Text(120, u'b') + u"\\" + Text(120, u'c');
  for (const Text& path :
       {Text(u"C:\\one\\two\\three"), Text(u"C:\\one\\two\\four\\"), deep,
        Text(u"C:\\\u0416\\\u0417"), Text(u"\\\\srv\\share\\x\\y"), Text(u"C:\\one")}) {
    std::uint32_t error = 99;
    EXPECT_TRUE(CreateFolderTree(path, error)) << ToUtf8(path);
    EXPECT_EQ(error, 0U);
    EXPECT_TRUE(FSXFolderExists(path)) << ToUtf8(path);
  }
  EXPECT_EQ(Calls(Operation::CreateDirectoryW, u"\\\\srv"), 0U);
  EXPECT_EQ(Calls(Operation::CreateDirectoryW, u"\\\\srv\\share"), 0U);
}

TEST_F(Facade, FolderThatCannotBeMadeTellsTheFirstFailure) {
  machine.AddFile(u"C:\\file");
  std::uint32_t error = 0;
  EXPECT_FALSE(CreateFolderTree(u"C:\\file\\below", error));
  EXPECT_EQ(error, ERROR_ALREADY_EXISTS);
  // A long way counts as done when the folder is there in the end, whoever made it.
  hook.RunBefore({.operation = Operation::CreateDirectoryW, .subject = u"C:\\\u0416"},
                 [this] { machine.AddFolder(u"C:\\\u0416"); });
  EXPECT_TRUE(CreateFolderTree(u"C:\\\u0416", error));
  EXPECT_EQ(error, ERROR_ALREADY_EXISTS);
}

}  // namespace
}  // namespace quillmarsh
