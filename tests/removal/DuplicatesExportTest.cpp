// SPDX-License-Identifier: MIT
// The exported file byte by byte, the command's boxes, and what lies at the path when it fails.
#include "frame/CommandScope.h"
#include "removal/DuplicatesExport.h"
#include "removal/HistoryFixture.h"
#include "removal/ScriptedPickers.h"
#include "search/results/cSearchResults.h"
#include "settings/clsDupeSettings.h"

namespace quillmarsh {
namespace {

class DuplicatesExport : public FsObjectsFixture {
 protected:
  DuplicatesExport() {
    settings.SetNamesMatch(true);
    settings.SetSizesMatch(true);
    settings.SetContentsMatch(true);
    settings.SetIncludeSubFolders(true);
  }
  void Add(TextView folder, TextView name, std::int64_t size, std::uint32_t attributes) {
    DupeFileUDT record;
    record.Name = results.mNames.Add(name);
    record.ParentFolderIdx = gFolderPathsList->AddFolder(folder);
    record.Size = Currency::FromInteger(size);
    record.CreatedDate = Date::FromTicks(TicksOf(2026, 11, 21, 10, 37, 20));
    record.LastModifiedDate = Date::FromTicks(TicksOf(2025, 1, 2));
    record.Attributes = attributes;
    results.mDupeFiles.push_back(record);
    results.mFileCount += 1;
  }
  void AddGroupOfTwo(std::int32_t first, std::int64_t totalSize) {
    results.AddGroup(first, 2, Currency::FromInteger(totalSize));
    results.ulvwDupeGroups.Add(results.mGroupCount);
  }
  void Fill() {
    Add(u"C:\\a\\", u"x \"y\", z.txt", 1234567, FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_READONLY);
    Add(u"C:\\b\\", u"\u0416\n.txt", 0, 0);
    AddGroupOfTwo(1, 1234567);
    Add(u"C:\\b\\", u"p", -1, FILE_ATTRIBUTE_HIDDEN);
    Add(u"C:\\b\\", u"q", 1, FILE_ATTRIBUTE_ARCHIVE);
    AddGroupOfTwo(3, 0);
  }
  [[nodiscard]] ExportSource Source() const { return {results, settings, folders}; }

  cSearchResults results;
  clsDupeSettings settings;
  std::vector<Text> folders{u"C:\\a", u"C:\\b"};
  ScriptedPickers person;
};

TEST_F(DuplicatesExport, WritesThisFile) {
  Fill();
  results.mGroupCount = 3;  // a group that is not there leaves its blank line, as an emptied one
  machine.AddFile(u"C:\\list.txt", "older");
  SaveDuplicatesListToFile(u"C:\\list.txt", Source());
  EXPECT_EQ(
      machine.ContentsOf(u"C:\\list.txt"),
      "\xFF\xFE" +
          WideBytes(
              u"PATHS CHECKED (SUBFOLDERS INCLUDED):\r\n"
              u"\"C:\\a\"\r\n"
              u"\"C:\\b\"\r\n"
              u"\r\n"
              u"DUPLICATE CRITERIA:\r\n"
              u"Names Match\r\n"
              u"Sizes Match\r\n"
              u"Contents Match\r\n"
              u"\r\n"
              u"SEARCH SUMMARY:\r\n"
              u"Number Of Duplicates Found: 4\r\n"
              u"Number Of Duplicate Groups: 3\r\n"
              u"Total Size: 1.17 MB\r\n"
              u"\r\n"
              u"DUPLICATES FOUND:\r\n"
              u"\"File Name\",\"Full Path Specification\",\"Size\",\"Create Date/Time\",\"Last "
              u"Modified Date/Time\",\"Attributes\"\r\n"
              u"\r\n"
              u"\"x \"y\", z.txt\",\"C:\\a\\\",\"1,234,567\",\"11/21/2026 10:37:20 "
              u"AM\",\"1/2/2025\",\"RA\"\r\n"
              u"\"\u0416\u240A.txt\",\"C:\\b\\\",\"0\",\"11/21/2026 10:37:20 "
              u"AM\",\"1/2/2025\",\"\"\r\n"
              u"\r\n"
              u"\"p\",\"C:\\b\\\",\"(Unknown)\",\"11/21/2026 10:37:20 AM\",\"1/2/2025\",\"H\"\r\n"
              u"\"q\",\"C:\\b\\\",\"1\",\"11/21/2026 10:37:20 AM\",\"1/2/2025\",\"A\"\r\n"
              u"\r\n"
              u"\r\n"));
  EXPECT_EQ(machine.TreeOf(u"C:\\").size(), 1U) << "nothing is left beside it";
  EXPECT_EQ(TakeBox().text, u"Export of duplicate list has completed successfully");
  EXPECT_EQ(person.pointer, "+-");
}

TEST_F(DuplicatesExport, TheCommandAsksWhereToAndOnlyWhenThereIsSomething) {
  mnuFileExport_Click(Source());
  EXPECT_EQ(TakeBox().text, u"There are no duplicates to Export");
  Fill();
  mnuFileExport_Click(Source());
  EXPECT_EQ(
      person.asked,
      (std::vector<std::string>{"Save Duplicate Files List As... | Text File (*.txt)|*.txt"}));
  {
    const CommandScope another;
    mnuFileExport_Click(Source());
  }
  EXPECT_EQ(person.asked.size(), 1U);
  EXPECT_TRUE(machine.TreeOf(u"C:\\").empty());
  settings.SetIncludeSubFolders(false);
  person.paths = {u"C:\\list"};
  mnuFileExport_Click(Source());
  EXPECT_EQ(TakeBox().title, u"Export Complete");
  EXPECT_EQ(machine.ContentsOf(u"C:\\list").substr(2, 90),
            WideBytes(u"PATHS CHECKED (SUBFOLDERS NOT INCLUDED):\r\n\"C:\\").substr(0, 90));
}

TEST_F(DuplicatesExport, WhateverFailsTheOlderFileIsWholeAndTheReasonIsTold) {
  Fill();
  for (int i = 0; i < 3000; ++i) {
    Add(u"C:\\a\\", u"name", 1, 0);
    Add(u"C:\\b\\", u"name", 1, 0);
    AddGroupOfTwo(5 + 2 * i, 2);
  }
  const auto expectFailure = [this](std::uint32_t code) {
    SaveDuplicatesListToFile(u"C:\\list.txt", Source());
    EXPECT_EQ(machine.ContentsOf(u"C:\\list.txt"), "older");
    machine.Remove(u"C:\\list.txt");
    EXPECT_EQ(machine.TreeOf(u"C:\\").size(), 0U);
    machine.AddFile(u"C:\\list.txt", "older");
    const MessageBoxRequest box = TakeBox();
    EXPECT_NE(box.title.find(u"frmFindDuplicates.SaveDuplicatesListToFile"), Text::npos);
    EXPECT_NE(box.text.find(machine.Locale().FormatMessageW(code)), Text::npos) << ToUtf8(box.text);
  };
  machine.AddFile(u"C:\\list.txt", "older");
  struct Row {
    Operation operation;
    std::size_t nth;
    std::uint32_t code;
  };
  const Row rows[] = {
      {Operation::CreateFileW, 1, ERROR_ACCESS_DENIED},  {Operation::CreateFileW, 2, 3},
      {Operation::WriteFile, 1, ERROR_IO_DEVICE},        {Operation::WriteFile, 2, ERROR_DISK_FULL},
      {Operation::FlushFileBuffers, 1, ERROR_IO_DEVICE}, {Operation::MoveFileExW, 1, 32}};
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(NameOf(row.operation)) + " " + std::to_string(row.nth));
    hook.Fail({row.operation, row.nth}, row.code);
    expectFailure(row.code);
  }
  machine.SetFreeBytes(u"C:\\", 150'000);
  expectFailure(ERROR_DISK_FULL);
  const HANDLE held = machine.HoldOpen(u"C:\\list.txt", 0);
  SaveDuplicatesListToFile(u"C:\\list.txt", Source());
  machine.LetGo(held);
  EXPECT_EQ(machine.ContentsOf(u"C:\\list.txt"), "older");
  EXPECT_EQ(TakeReportedSource(), "frmFindDuplicates.SaveDuplicatesListToFile");
  EXPECT_EQ(person.pointer.size(), 16U);
}

}  // namespace
}  // namespace quillmarsh
