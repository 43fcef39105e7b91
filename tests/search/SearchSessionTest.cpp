// SPDX-License-Identifier: MIT
// A search from Start to its end on the simulated machine.
#include <algorithm>

#include "frame/CommandScope.h"
#include "frame/ProgramFlags.h"
#include "frame/Pump.h"
#include "fsobjects/cFSXFolderPathsList.h"
#include "search/ProgramFixture.h"
#include "search/cLocationCheck.h"
#include "search/cSpecialFolders.h"
#include "settings/OptionsFolder.h"

namespace quillmarsh {
namespace {

using Groups_t = std::vector<std::vector<std::string>>;

class SearchSession : public ProgramFixture {
 protected:
  void AddDrive(TextView root, std::uint32_t serialNumber) {
    SimulatedDrive drive;
    drive.root = root;
    drive.serialNumber = serialNumber;
    machine.AddDrive(drive);
  }

  [[nodiscard]] bool HasLogged(std::string_view text) const {
    return std::any_of(log->lines.begin(), log->lines.end(), [text](const std::string& line) {
      return line.find(text) != std::string::npos;
    });
  }
};

TEST_F(SearchSession, FindsGroupsBreadthFirstAndTellsItsStory) {
  Make(u"C:\\data\\x.txt");
  Make(u"C:\\data\\deep\\deeper\\x.txt");
  Make(u"C:\\data\\side\\X.TXT");
  Make(u"C:\\data\\side\\other.txt");
  EXPECT_EQ(Search({u"C:\\data"}), SearchOutcome::Complete);
  EXPECT_EQ(
      Groups(),
      (Groups_t{{"C:\\data\\x.txt", "C:\\data\\side\\X.TXT", "C:\\data\\deep\\deeper\\x.txt"}}));
  EXPECT_EQ(log->lines,
            (std::vector<std::string>{
                "0", "17 Locations To Search: C:\\data",
                "17 \r\n\t== Search Details ==\r\n\r\n\tFolder(s) searched: \r\n\tC:\\data\r\n\r\n"
                "\tNumber of files searched: 4; ",
                "1"}));
  EXPECT_EQ(log->flushes, 1);
  EXPECT_EQ(Panel(FILES_SEARCHED), "Files:4");
  EXPECT_EQ(Panel(DUPLICATES), "Duplicates:3 (30 bytes)");
  EXPECT_EQ(Panel(PANEL1), "Search Summary");
  EXPECT_EQ(view.groupCaption, u"File Name");
  EXPECT_TRUE(view.isResultsView);
  EXPECT_FALSE(view.isLocked);
  EXPECT_EQ(results.ulvwDupeDetails.Count(), 3);
  EXPECT_EQ(gDupeSettings->FolderPaths(), u"C:\\data");
  EXPECT_EQ(machine.OpenHandles(), 0U);
}

TEST_F(SearchSession, ARefusedStartShowsOneMessageAndStillEnds) {
  machine.AddFolder(u"C:\\data");
  machine.AddFolder(u"C:\\database");
  struct Case {
    const char* name;
    bool names, sizes, modified;
    std::vector<Text> locations;
    const char* message;
  };
  const Case cases[] = {
      {"no criterion",
       false,
       false,
       false,
       {u"C:\\data"},
       "Select the duplicate criteria to be used"},
      {"dates alone", false, false, true, {u"C:\\data"}, "Name or Size must be one of"},
      {"no location", true, true, false, {}, "Select a folder path to check"},
      {"one letter", true, true, false, {u"C"}, "Paths must contain at least two characters."},
      {"no such drive", true, true, false, {u"Q:\\data"}, "Make sure that the drive exists"},
      {"no such folder", true, true, false, {u"C:\\none"}, "Make sure that the folder exists"},
      // Odd by design: no folder boundary is looked at.
      {"nested by text",
       true,
       true,
       false,
       {u"C:\\database", u"C:\\data"},
       "is a subfolder of another one"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    log->lines.clear();
    messages.shown.clear();
    gDupeSettings->SetNamesMatch(c.names);
    gDupeSettings->SetSizesMatch(c.sizes);
    gDupeSettings->SetLastModTimeStampsMatch(c.modified);
    messages.Expect();
    EXPECT_EQ(Search(c.locations), SearchOutcome::Refused);
    ASSERT_EQ(messages.shown.size(), 1U);
    EXPECT_NE(ToUtf8(messages.shown[0].text).find(c.message), std::string::npos)
        << ToUtf8(messages.shown[0].text);
    EXPECT_EQ(log->lines, std::vector<std::string>{"1"});
    EXPECT_EQ(Panel(PANEL1), "") << "nothing was searched";
  }
  gDupeSettings->SetIncludeSubFolders(false);
  EXPECT_EQ(Search({u"C:\\database", u"C:\\data"}), SearchOutcome::Complete);
}

TEST_F(SearchSession, LocationsThatAreNoFoldersAreToldApart) {
  AddDrive(u"E:\\", 5);
  machine.SetReady(u"E:\\", false);
  machine.AddFolder(u"C:\\real");
  machine.AddJunction(u"C:\\junction", u"C:\\real");
  AddDrive(u"D:\\", 7);
  machine.AddMountPoint(u"C:\\mount", u"D:\\");
  messages.Expect(MessageBoxResult::Ok);
  EXPECT_FALSE(IsLocationUsable(u"E:\\"));
  messages.Expect(MessageBoxResult::Cancel);
  EXPECT_FALSE(IsLocationUsable(u"C:\\junction"));
  EXPECT_TRUE(IsLocationUsable(u"C:\\mount"));
  ASSERT_EQ(messages.shown.size(), 2U);
  EXPECT_EQ(ToUtf8(messages.shown[0].text),
            "The drive is not ready. Please insert/connect the drive.\r\n\r\n");
  EXPECT_EQ(ToUtf8(messages.shown[1].text), "The path is a Directory Junction Point\r\n\r\n");
  EXPECT_EQ(messages.shown[1].title, u"Problem with Folder");
  EXPECT_EQ(messages.shown[1].buttons, MessageBoxButtons::OkCancel);
}

TEST_F(SearchSession, ARefusedStartAfterResultsListsEachGroupOnce) {
  Make(u"C:\\data\\1\\x");
  Make(u"C:\\data\\2\\x");
  ASSERT_EQ(Search({u"C:\\data"}), SearchOutcome::Complete);
  Make(u"C:\\data\\3\\y");
  messages.Expect();
  // The settings that are refused must not decide what the old results are grouped by.
  gDupeSettings->SetNamesMatch(false);
  gDupeSettings->SetSizesMatch(false);
  EXPECT_EQ(Search({u"C:\\elsewhere"}), SearchOutcome::Refused);
  EXPECT_TRUE(HasLogged("Folder(s) searched: \r\n\tC:\\data\r\n"));
  EXPECT_FALSE(HasLogged("C:\\elsewhere"));
  EXPECT_EQ(results.ulvwDupeGroups.Count(), 1);
  EXPECT_EQ(results.mGroupCount, 1);
  EXPECT_EQ(results.mDupeFileCount, 2);
}

TEST_F(SearchSession, SkippedFilesAndFoldersAreLoggedOnceWithTheFirstReason) {
  Make(u"C:\\data\\a", 10, 0, FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
  Make(u"C:\\data\\b", 10, 0, FILE_ATTRIBUTE_HIDDEN);
  Make(u"C:\\data\\c.Tmp");
  Make(u"C:\\data\\d", 0);
  machine.AddFolder(u"C:\\data\\hid", {FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN});
  Make(u"C:\\data\\hid\\below\\e");
  machine.AddFolder(u"C:\\elsewhere");
  machine.AddJunction(u"C:\\data\\junction", u"C:\\elsewhere");
  ASSERT_EQ(Search({u"C:\\data"}), SearchOutcome::Complete);
  const std::vector<std::string> skips(log->lines.begin() + 2, log->lines.end() - 1);
  EXPECT_EQ(
      skips,
      (std::vector<std::string>{
          "17 File was skipped because it is a System file and the Ignore System Files option is "
          "selected. - 'C:\\data\\a' ",
          "17 File was skipped because it is a Hidden file and the Ignore Hidden Files option is "
          "selected. - 'C:\\data\\b' ",
          "17 File was skipped because it is a Temporary file and the Ignore Temporary Files "
          "option "
          "is selected. - 'C:\\data\\c.Tmp' ",
          "17 Folder was skipped because it is a Hidden folder and the Ignore Hidden Folders "
          "option "
          "is selected. - 'hid' ",
          "17 Path was skipped because it is a junction point not a folder. - "
          "'C:\\data\\junction\\' "}));
  EXPECT_EQ(results.mFileCount, 0)
      << "an empty file is counted, kept and then dropped without a word";
  EXPECT_EQ(Panel(FILES_SEARCHED), "Files:4");
}

TEST_F(SearchSession, AFolderThatCannotBeReadLeavesAnEntryAndTheWalkGoesOn) {
  for (const TextView folder : {u"1", u"2", u"3", u"4"})
    Make(Text(u"C:\\data\\") + Text(folder) + u"\\x");
  hook.Fail({Operation::FindFirstFileW, 1, u"C:\\data\\1\\*"}, ERROR_ACCESS_DENIED);
  // Gone since its parent was listed: no error, there is just nothing.
  hook.RunBefore({Operation::FindFirstFileW, 1, u"C:\\data\\4\\*"},
                 [&] { machine.Remove(u"C:\\data\\4"); });
  ASSERT_EQ(Search({u"C:\\data"}), SearchOutcome::Complete);
  EXPECT_EQ(Groups(), (Groups_t{{"C:\\data\\2\\x", "C:\\data\\3\\x"}}));
  EXPECT_TRUE(HasLogged("16 C:\\data\\1\\ 5 Access is denied."));
  EXPECT_FALSE(HasLogged("C:\\data\\4"));
  EXPECT_EQ(hook.OrdersNotMet(), 0U);
}

TEST_F(SearchSession, AListingThatBreaksOffKeepsItsFilesAndIsTold) {
  Make(u"C:\\data\\x1", 7);
  Make(u"C:\\data\\x2", 7);
  Make(u"C:\\data\\x3", 7);
  gDupeSettings->SetNamesMatch(false);
  // The two dots and x1 come first; the call that should give x3 fails.
  hook.Fail({Operation::FindNextFileW, 4}, ERROR_IO_DEVICE);
  ASSERT_EQ(Search({u"C:\\data"}), SearchOutcome::Complete);
  EXPECT_EQ(Groups(), (Groups_t{{"C:\\data\\x1", "C:\\data\\x2"}}));
  EXPECT_TRUE(HasLogged("16 C:\\data\\ 1117"));
}

TEST_F(SearchSession, TheWalkAsksTheDiskOnceForEachFolder) {
  for (int i = 0; i < 5; ++i) Make(Text(u"C:\\data\\") + DecimalText(i) + u"\\below\\x");
  ASSERT_EQ(Search({u"C:\\data"}), SearchOutcome::Complete);
  EXPECT_EQ(hook.CountOf(Operation::FindFirstFileW), 11U);
  // Only the location is looked at by name; everything below is known from the listing above it.
  for (const FaultHook::Call& call : hook.Journal()) {
    if (call.operation == Operation::GetFileAttributesW ||
        call.operation == Operation::CreateFileW) {
      EXPECT_TRUE(call.subject == u"C:\\data\\" || !call.subject.starts_with(u"C:\\data\\"))
          << ToUtf8(call.subject);
    }
  }
}

TEST_F(SearchSession, FiltersApplyToFilesByMaskAndToFoldersByPath) {
  for (const TextView path :
       {u"C:\\data\\x.jpg", u"C:\\data\\keep\\x.jpg", u"C:\\data\\keep\\no\\x.jpg",
        u"C:\\data\\drop\\x.jpg", u"C:\\data\\keep\\y.txt", u"C:\\data\\y.txt"}) {
    Make(path);
  }
  struct Case {
    const char* name;
    TextView includeFiles, excludeFiles, includeFolders, excludeFolders;
    std::size_t files;
  };
  const Case cases[] = {
      {"no filter", u"", u"", u"", u"", 6},
      {"star", u"*", u"", u"*", u"", 6},
      {"masks", u"*.JPG<:>z*", u"", u"", u"", 4},
      {"comma list", u"*.gif,*.txt", u"", u"", u"", 2},
      {"exclude", u"", u"x.*", u"", u"", 2},
      {"include folder anywhere in the path", u"", u"", u"KEEP", u"", 5},
      {"a deep entry is not reached", u"", u"", u"\\no", u"", 2},
      {"exclude whole path", u"", u"", u"", u"c:\\data\\keep\\", 3},
      {"exclude needs the backslash", u"", u"", u"", u"C:\\data\\keep", 6},
      {"the location itself is always read", u"", u"", u"", u"C:\\data\\", 6},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    gDupeSettings->SetIncludeFiles(c.includeFiles);
    gDupeSettings->SetExcludeFiles(c.excludeFiles);
    gDupeSettings->SetIncludeFolders(c.includeFolders);
    gDupeSettings->SetExcludeFolders(c.excludeFolders);
    ASSERT_EQ(Search({u"C:\\data"}), SearchOutcome::Complete);
    EXPECT_EQ(results.mDupeFiles.size(), c.files);
  }
  EXPECT_TRUE(HasLogged("17 Files To Include: *.JPG,z*"));
  EXPECT_TRUE(HasLogged("C:\\data\\keep\\ - This subfolder has been excluded by the user."));
}

TEST_F(SearchSession, AStarForAllFilesIsStoredAsEmpty) {
  machine.AddFolder(u"C:\\data");
  gDupeSettings->SetIncludeFiles(u"*.*");
  Search({u"C:\\data"});
  EXPECT_EQ(gDupeSettings->IncludeFiles(), u"");
}

TEST_F(SearchSession, SpecialFoldersAreLeftOutWhereTheyConcernTheLocation) {
  AddDrive(u"D:\\", 2);
  Make(u"C:\\$Recycle.Bin\\x");
  Make(u"C:\\Windows\\x");
  Make(u"C:\\Users\\me\\AppData\\Local\\Harrow Fen\\Quillmarsh\\DUPES\\x");
  Make(u"C:\\data\\x");
  Make(u"D:\\$Recycle.Bin\\sub\\x");
  Make(u"D:\\data\\x");
  ASSERT_EQ(Search({u"C:\\", u"D:\\"}), SearchOutcome::Complete);
  EXPECT_EQ(Groups(), (Groups_t{{"C:\\data\\x", "D:\\data\\x"}}));
  gDupeSettings->SetIgnoreFilesInWindowsDir(false);
  ASSERT_EQ(Search({u"C:\\"}), SearchOutcome::Complete);
  EXPECT_EQ(Groups(), (Groups_t{{"C:\\data\\x", "C:\\Windows\\x"}}));
  EXPECT_TRUE(machine.Exists(u"C:\\Users\\me\\AppData\\Local\\Harrow Fen\\Quillmarsh\\DUPES"));
}

TEST_F(SearchSession, OwnFilesAndMarkedFoldersAreNeitherListedNorCounted) {
  mDupesFolderPath = u"C:\\data\\now\\";
  for (const TextView path :
       {u"C:\\data\\x", u"C:\\data\\.quillmarsh-7.part", u"C:\\data\\.quillmarsh-.part",
        u"C:\\data\\.quillmarsh-7.part2", u"C:\\data\\.quillmarsh-7a.aside",
        u"C:\\data\\sub\\.quillmarsh-18446744073709551615.aside",
        // In the order of the listing the marker stands between two files.
        u"C:\\data\\old\\!x", u"C:\\data\\old\\.quillmarsh-dupes", u"C:\\data\\old\\x",
        u"C:\\data\\old\\below\\x", u"C:\\data\\old\\below\\again\\.quillmarsh-dupes",
        u"C:\\data\\old\\below\\again\\x"}) {
    Make(path);
  }
  struct Case {
    TextView location;
    std::size_t files;
    std::vector<Text> notes;
  };
  const Text skipped =
      u" is a DUPES folder and was not searched; to search it, name it in a search of its own";
  const Case cases[] = {
      {u"C:\\data",
       4,
       {u"\"C:\\data\\now\\\" is the DUPES folder and was not searched",
        u"\"C:\\data\\old\\\"" + skipped}},
      {u"C:\\data\\old", 3, {u"\"C:\\data\\old\\below\\again\\\"" + skipped}},
      {u"C:\\data\\old\\below\\again", 1, {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(ToUtf8(c.location));
    view.locations = {Text(c.location)};
    cSearchSession session(results, *gDupeSettings, view);
    ASSERT_EQ(session.FindDuplicateFiles(), SearchOutcome::Complete);
    EXPECT_EQ(results.mDupeFiles.size(), c.files);
    EXPECT_EQ(session.FilesSearched(), static_cast<std::int32_t>(c.files));
    EXPECT_EQ(session.Notes(), c.notes);
    for (const Text& note : c.notes) EXPECT_TRUE(HasLogged("17 " + ToUtf8(note)));
  }
  EXPECT_TRUE(machine.Exists(u"C:\\data\\now\\.quillmarsh-dupes"));
}

TEST_F(SearchSession, TheRootFlagStaysForAllFurtherLocations) {
  cSpecialFolders folders(true);
  folders.SetLocation(u"C:\\elsewhere\\", false, u"NTFS");
  const auto hold = [&folders](TextView folder, TextView name) {
    folders.SetFolder(folder);
    return folders.HoldFile(name);
  };
  EXPECT_FALSE(hold(u"C:\\Windows\\", u"x"));
  folders.SetLocation(u"C:\\", true, u"NTFS");
  folders.SetLocation(u"C:\\elsewhere\\", false, u"NTFS");
  EXPECT_TRUE(hold(u"C:\\windows\\sub\\", u"x"));
  // A test of prefix without a boundary, and a hit that begins in the folder and ends in the name.
  EXPECT_TRUE(hold(u"C:\\", u"Windows.old"));
  EXPECT_TRUE(hold(u"C:\\", u"$RECYCLE.BIN.txt"));
  EXPECT_FALSE(hold(u"C:\\", u"$Recycle"));
  EXPECT_TRUE(
      hold(u"C:\\Users\\me\\AppData\\Local\\Harrow Fen\\Quillmarsh\\DUPES\\[C DRIVE]\\", u"x"));
  EXPECT_FALSE(hold(u"C:\\Users\\me\\AppData\\Local\\Harrow Fen\\Quillmarsh\\", u"DUPES"));
}

TEST_F(SearchSession, TheRecycleBinIsNamedByTheSystemAndTheFileSystem) {
  EXPECT_EQ(GetRecycleBinFolderName(u"NTFS"), u"\\$Recycle.Bin");
  machine.SetVersion({5, VER_PLATFORM_WIN32_NT});
  EXPECT_EQ(GetRecycleBinFolderName(u"NTFS"), u"\\Recycler");
  EXPECT_EQ(GetRecycleBinFolderName(u"FAT32"), u"\\Recycled");
  EXPECT_EQ(GetRecycleBinFolderName(u"exFAT"), u"\\Recycle");
}

TEST_F(SearchSession, OneLocationUnderTwoSpellingsIsWalkedOnce) {
  Make(u"C:\\Data\\1\\x");
  Make(u"C:\\Data\\2\\x");
  ASSERT_EQ(Search({u"C:\\Data", u"c:\\DATA", u"C:\\Data", u"C:\\Data\\"}),
            SearchOutcome::Complete);
  EXPECT_EQ(results.mDupeFiles.size(), 2U);
}

class StoppedSearch : public SearchSession {
 protected:
  StoppedSearch() { machine.SetWaitingEvents(QS_KEY); }

  void MakeTree(int files) {
    for (int i = 0; i < files; ++i)
      Make(u"C:\\data\\" + DecimalText(i % 20) + u"\\" + DecimalText(i / 20));
  }
};

TEST_F(StoppedSearch, NothingIsListedWhereverTheStopFallsAndTheQueueIsDropped) {
  MakeTree(400);
  ASSERT_EQ(Search({u"C:\\data"}), SearchOutcome::Complete);
  const std::size_t folders = hook.CountOf(Operation::FindFirstFileW);
  // The stop comes while the nth folder is opened.
  for (std::size_t nth = 1; nth <= folders; nth += 4) {
    SCOPED_TRACE(nth);
    log->lines.clear();
    hook.ClearJournal();
    const std::size_t summaries = view.summaries.size();
    hook.RunBefore({Operation::FindFirstFileW, nth, {}}, [] { gUserAbort = true; });
    EXPECT_EQ(Search({u"C:\\data"}), SearchOutcome::Stopped);
    EXPECT_EQ(results.mGroupCount, 0);
    EXPECT_EQ(results.ulvwDupeGroups.Count(), 0);
    EXPECT_EQ(results.RecordCount(), 0) << "nothing may index what was gathered until then";
    EXPECT_EQ(Panel(PANEL1), "Search cancelled by user.");
    EXPECT_TRUE(HasLogged("13"));
    EXPECT_EQ(log->lines.back(), "1");
    EXPECT_EQ(view.summaries.size(), summaries);
    EXPECT_LE(hook.CountOf(Operation::FindFirstFileW), nth);
    EXPECT_FALSE(view.isLocked);
  }
  EXPECT_EQ(results.mFileCount, 400) << "that of the last walk that was finished";
}

TEST_F(StoppedSearch, AStopInAPumpWithinOneLargeFolderIsSeen) {
  for (int i = 0; i < 5000; ++i) Make(u"C:\\data\\" + DecimalText(i));
  bool isStopped = false;
  pump.onPump = [&] {
    if (hook.CountOf(Operation::FindNextFileW) < 100) return;
    isStopped = true;
    gUserAbort = true;
  };
  // Time stands still for no test: without a pump the search ends by itself, and that is a failure.
  hook.RunBefore({Operation::FindNextFileW, 150, {}}, [] { DoEvents(); });
  EXPECT_EQ(Search({u"C:\\data"}), SearchOutcome::Stopped);
  EXPECT_TRUE(isStopped);
  EXPECT_LT(hook.CountOf(Operation::FindNextFileW), 200U);
}

TEST_F(StoppedSearch, ASecondStartDuringASearchDoesNothing) {
  MakeTree(40);
  SearchOutcome inner = SearchOutcome::Complete;
  hook.RunBefore({Operation::FindFirstFileW, 3, {}}, [&] {
    EXPECT_TRUE(CommandScope::IsRunning());
    inner = cSearchSession(results, *gDupeSettings, view).FindDuplicateFiles();
  });
  EXPECT_EQ(Search({u"C:\\data"}), SearchOutcome::Complete);
  EXPECT_EQ(inner, SearchOutcome::Refused);
  EXPECT_EQ(results.mFileCount, 40);
  EXPECT_FALSE(CommandScope::IsRunning());
}

}  // namespace
}  // namespace quillmarsh
