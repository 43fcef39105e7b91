// SPDX-License-Identifier: MIT
// The history file byte by byte, when it is written, and what becomes of entries when memory or the
// disk fails.
#include "fsobjects/modUnicode.h"
#include "removal/FailingMemory.h"
#include "removal/HistoryFixture.h"

namespace quillmarsh {
namespace {

using namespace log_kind;

constexpr std::size_t kMost = 102400;  // characters that may wait in memory

class HistoryLog : public HistoryFixture {};

TEST_F(HistoryLog, EveryKindHasItsLayout) {
  const TextView file = u"C:\\a\\x.txt";
  const TextView target = u"D:\\DUPES\\[C DRIVE]\\a\\x.txt";
  const TextView denied = u"Access is denied.\r\n";
  LocaleFacts locale;
  locale.shortDate = u"dd/MM/yyyy 'of course'";
  locale.longTime = u"HH:mm:ss";
  machine.SetLocale(locale);
  ResetLocaleFacts();

  Add({BeginSearch});
  Add({.kind = FreeText, .custom = u"Locations To Search: C:\\a\\\u4E2D"});
  Add({.kind = GetSubFoldersError, .file = u"C:\\a\\b\\", .number = 5, .error = denied});
  Add({.kind = CRC32Error, .file = file, .number = -2147024891, .error = u"two\r\nlines"});
  Add({UserCancelled});
  machine.SetClock(TicksOf(2026, 11, 15, 16, 45, 51));
  Add({EndSearch});
  Flush();
  machine.SetClock(TicksOf(2026, 12, 1, 9, 5, 1));
  Add({BeginRemoval});
  Add({.kind = FileDeleted, .file = file});
  Add({.kind = FileSentToRecycleBin, .file = file});
  Add({.kind = FileMovedToDupesFolder, .file = file, .target = target});
  Add({.kind = FileMovedToOtherFolder, .file = file, .target = u"E:\\x.txt"});
  Add({.kind = DeleteError, .file = file, .number = 5, .error = denied});
  Add({.kind = MoveError, .file = file, .target = target, .number = 32, .error = u"In use."});
  Add({.kind = CreateFolderError, .target = u"D:\\DUPES\\", .number = 3, .error = u""});
  Add({EndRemoval});
  Flush();

  EXPECT_EQ(
      OnDisk(),
      "\xFF\xFE" +
          WideBytes(u"\r\n15/11/2026 16:45:49 <Begin Duplicate Search>\r\n"
                    u"\tLocations To Search: C:\\a\\\u4E2D\r\n"
                    u"\t*Get SubFolders Error: 5 Access is denied.   \"C:\\a\\b\\\"\r\n"
                    u"\t*CRC32 Error: -2147024891two  lines \"C:\\a\\x.txt\"\r\n"
                    u"\r\n\t*User cancelled current operation\r\n"
                    u"15/11/2026 16:45:51 <End Duplicate Search>\r\n"
                    u"\r\n01/12/2026 09:05:01 <Begin Duplicate Removal>\r\n"
                    u"\t File Deleted: C:\\a\\x.txt\r\n"
                    u"\t File Sent to Recycle Bin: C:\\a\\x.txt\r\n"
                    u"\t File Moved to Folder: C:\\a\\x.txt --> D:\\DUPES\\[C DRIVE]\\a\\x.txt\r\n"
                    u"\t File Moved to Folder: C:\\a\\x.txt --> E:\\x.txt\r\n"
                    u"\t*Delete Error: 5 Access is denied.   C:\\a\\x.txt\r\n"
                    u"\t*Move Error: 32 In use. C:\\a\\x.txt --> D:\\DUPES\\[C DRIVE]\\a\\x.txt\r\n"
                    u"\t*Create Folder Error: 3  D:\\DUPES\\\r\n"
                    u"01/12/2026 09:05:01 <End Duplicate Removal>\r\n"));
}

TEST_F(HistoryLog, OtherKindsWriteNothing) {
  for (const std::int32_t kind : {-1, 11, 14, 15, 18, 1000})
    Add({kind, u"C:\\a", u"C:\\b", 5, u"error", u"custom"});
  EXPECT_EQ(gLog->CurrInMemoryLogSize(), 0);
  Flush();
  EXPECT_FALSE(machine.Exists(kLogPath)) << "an empty flush makes no file";
}

TEST_F(HistoryLog, StampFollowsTheLocalesClock) {
  Add({EndSearch});
  EXPECT_EQ(gLog->InMemoryString(), u"11/15/2026 4:45:49 PM <End Duplicate Search>\r\n");
}

// The settings are there for callers that keep them; nothing is left out of the history.
TEST_F(HistoryLog, SettingsLeaveNoEntryOut) {
  gLog->SetLogOnlyErrors(true);
  gLog->SetLogInfoOnlyErrors(true);
  gLog->SetMaxLogFileSize(1);
  Add({.kind = FileDeleted, .file = u"C:\\a"});
  EXPECT_EQ(gLog->InMemoryString(), u"\t File Deleted: C:\\a\r\n");
}

TEST_F(HistoryLog, GoesToTheFileWithOneCharacterMoreThanItMayHold) {
  AddCharacters(kMost - 10);
  AddCharacters(10);
  EXPECT_FALSE(machine.Exists(kLogPath));
  EXPECT_EQ(gLog->CurrInMemoryLogSize(), static_cast<std::int32_t>(kMost));
  gLog->ResetInMemoryLog();
  EXPECT_EQ(gLog->InMemoryString(), u"");

  AddCharacters(kMost - 10);
  AddCharacters(11);
  EXPECT_EQ(machine.SizeOf(kLogPath), 2 + 2 * (kMost + 1));
  EXPECT_EQ(gLog->CurrInMemoryLogSize(), 0);
  EXPECT_EQ(gLog->InMemoryString(), u"");
  EXPECT_EQ(Calls(Operation::FlushFileBuffers), 1U);
}

// A flush alone does not empty the memory: whoever flushes and goes on has to reset too.
TEST_F(HistoryLog, FlushWithoutResetWritesTheSameAgain) {
  AddCharacters(5);
  gLog->AppendInMemoryStringToLogFile();
  gLog->AppendInMemoryStringToLogFile();
  EXPECT_EQ(OnDisk(), "\xFF\xFE" + WideBytes(u"\txx\r\n\txx\r\n"));
}

TEST_F(HistoryLog, BatchThatCannotBeWrittenIsLostWithoutAWord) {
  AddCharacters(10);
  Flush();
  const std::string before = OnDisk();
  const HANDLE held = machine.HoldOpen(kLogPath, FILE_SHARE_READ);
  Add({.kind = FreeText, .custom = u"lost"});
  Flush();
  machine.LetGo(held);
  EXPECT_EQ(OnDisk(), before);
  hook.Fail({Operation::WriteFile}, ERROR_DISK_FULL);
  Add({.kind = FreeText, .custom = u"lost too"});
  Flush();
  Add({.kind = FreeText, .custom = u"kept"});
  Flush();
  EXPECT_EQ(OnDisk(), before + WideBytes(u"\tkept\r\n"));
}

TEST_F(HistoryLog, MarkThatCouldNotBeWrittenComesWithTheNextBatch) {
  hook.Fail({Operation::WriteFile}, ERROR_DISK_FULL);
  AddCharacters(4);
  Flush();
  EXPECT_EQ(OnDisk(), "");
  AddCharacters(5);
  Flush();
  EXPECT_EQ(OnDisk(), "\xFF\xFE" + WideBytes(u"\txx\r\n"));
}

TEST_F(HistoryLog, EntryThatMemoryCannotHoldIsLostAndTheLossIsWrittenDown) {
  constexpr TextView lossNote =
      u"\tUnable to add log entry to memory. This is probably due to a string memory issue.  "
      u"Some log entries may be lost.\r\n";
  AddCharacters(4);
  Flush();
  AddCharacters(10'000);
  {
    // Room for the next entry by itself, and none for both.
    const FailingMemory memory(30'000);
    AddCharacters(5'000);
  }
  EXPECT_EQ(TakeReportedSource(), "clsStringAppend.Append");
  EXPECT_EQ(machine.SizeOf(kLogPath), 2 + 2 * 10'004U) << "what was there is saved first";
  EXPECT_EQ(gLog->InMemoryString(), lossNote);
  EXPECT_EQ(gLog->CurrInMemoryLogSize(), static_cast<std::int32_t>(lossNote.size()) + 5'000);
}

TEST_F(HistoryLog, FailureInsideIsReportedAndTheCallerGoesOn) {
  machine.SetClock(std::numeric_limits<std::int64_t>::max());
  Add({EndSearch});
  EXPECT_EQ(TakeReportedSource(), "cLog.Add");
  EXPECT_EQ(gLog->CurrInMemoryLogSize(), 0);
}

TEST_F(HistoryLog, FileIsReadAndCopiedWhole) {
  EXPECT_EQ(gLog->GetLogEntriesFromFile(), u"");
  gLog->SaveAs(u"C:\\copy.log");
  EXPECT_FALSE(machine.Exists(u"C:\\copy.log")) << "there was nothing to copy";
  AddCharacters(5);
  Flush();
  EXPECT_EQ(gLog->GetLogEntriesFromFile(), u"\uFEFF\txx\r\n");
  gLog->SaveAs(u"C:\\copy.log");
  EXPECT_EQ(machine.ContentsOf(u"C:\\copy.log"), OnDisk());
  AddCharacters(9);
  Flush();
  gLog->SaveAs(u"C:\\copy.log");
  EXPECT_NE(machine.ContentsOf(u"C:\\copy.log"), OnDisk()) << "an earlier copy is not replaced";
}

TEST_F(HistoryLog, FileIsDeletedFromItsLargestSizeOn) {
  const auto deletedAt = [&](std::uint64_t size, bool restricted) {
    machine.AddFile(kLogPath, FileContents::Recipe(1, size));
    gLog->SetRestrictLogSize(restricted);
    gLog->DeleteLogFileIfMaxSizeIsExceeded();
    const bool isDeleted = !machine.Exists(kLogPath);
    if (!isDeleted) machine.Remove(kLogPath);
    return isDeleted;
  };
  gLog->DeleteLogFileIfMaxSizeIsExceeded();
  EXPECT_FALSE(deletedAt(511'999, true));
  EXPECT_TRUE(deletedAt(512'000, true));
  EXPECT_TRUE(deletedAt(std::uint64_t{3} << 30U, true)) << "a size that fits no signed word";
  EXPECT_FALSE(deletedAt(512'000, false));
}

TEST_F(HistoryLog, DeletionThatFailsIsToldWithTheReason) {
  gLog->DeleteLogFile();
  AddCharacters(5);
  Flush();
  machine.SetAttributes(kLogPath, FILE_ATTRIBUTE_READONLY);
  gLog->DeleteLogFile();
  const MessageBoxRequest box = TakeBox();
  EXPECT_EQ(box.text,
            u"Unable to Delete the Log file.\r\n\r\nError Number: 5\r\n"
            u"Error Description: Access is denied.\r\n\r\n"
            u"If this problem continues, please contact technical support.");
  EXPECT_EQ(box.title, u"Log Delete Failed");
  EXPECT_EQ(box.icon, MessageBoxIcon::Exclamation);
  EXPECT_TRUE(machine.Exists(kLogPath));
}

TEST_F(HistoryLog, WithoutAPlaceForItNothingIsWrittenAndNothingSaid) {
  machine.SetShellFolder(CSIDL_LOCAL_APPDATA, u"Q:\\nowhere");
  AddCharacters(5);
  Flush();
  EXPECT_EQ(gLog->CurrInMemoryLogSize(), 0);
}

}  // namespace
}  // namespace quillmarsh
