// SPDX-License-Identifier: MIT
// The commands on the selected file: what reaches the disk and the shell, and what is told.
#include "removal/FileCommands.h"

#include "frame/CommandScope.h"
#include "removal/RemovalProgram.h"
#include "selection/clsMarkForRemovalWizard.h"

namespace quillmarsh {
namespace {

class GivenInput final : public InputBoxView {
 public:
  Text Show(TextView prompt, TextView title, TextView defaultText) override {
    asked = {Text(prompt), Text(title), Text(defaultText)};
    return answer;
  }
  Text answer;
  std::vector<Text> asked;
};

class FileCommands : public ProgramFixture {
 protected:
  FileCommands() {
    gViews.inputBox = &input;
    machine.AddFile(u"C:\\a\\x.txt", "same");
    machine.AddFile(u"C:\\b\\x.txt", "same");
    machine.AddFile(u"C:\\c\\x.txt", "same");
    machine.AddFile(u"C:\\a\\taken.txt", "another one");
  }
  ~FileCommands() override { gViews.inputBox = nullptr; }

  void SearchBy(bool names, bool sizes) {
    gDupeSettings->SetNamesMatch(names);
    gDupeSettings->SetSizesMatch(sizes);
    EXPECT_EQ(Search({u"C:\\"}), SearchOutcome::Complete);
    results.mFileMarked.assign(results.mFileMarked.size(), false);
    results.ulvwDupeDetails.Select(0);
  }
  void Rename(TextView newName) {
    commands.RenameListItem(0, results.ulvwDupeDetails.CellText(0, 0), newName);
  }
  [[nodiscard]] std::string Told() {
    std::string told;
    for (const MessageBoxRequest& box : messages.shown)
      told += ToUtf8(box.title) + ": " + ToUtf8(box.text) + "\n";
    messages.shown.clear();
    return told;
  }
  [[nodiscard]] std::string Paths() const {
    std::string paths;
    for (std::int32_t position = 0; position < results.ulvwDupeDetails.Count(); ++position)
      paths += ToUtf8(results.ulvwDupeDetails.CellText(position, 1)) + " ";
    return paths;
  }

  GivenInput input;
  QuietRemovalView removalView;
  cFileCommands commands{results, *gDupeSettings, removalView};
};

TEST_F(FileCommands, ARenamedFileThatStaysADuplicateShowsItsNewName) {
  SearchBy(false, true);
  ASSERT_EQ(Paths(), "C:\\a\\x.txt C:\\b\\x.txt C:\\c\\x.txt ");
  results.mUnreadable.insert(results.Record(1).Name);
  Rename(u"new name.txt");
  EXPECT_EQ(Paths(), "C:\\a\\new name.txt C:\\b\\x.txt C:\\c\\x.txt ");
  EXPECT_EQ(machine.ContentsOf(u"C:\\a\\new name.txt"), "same");
  EXPECT_FALSE(machine.Exists(u"C:\\a\\x.txt"));
  EXPECT_EQ(commands.GetSelectedFileSpec(), u"C:\\a\\new name.txt");
  EXPECT_EQ(commands.GetSelectedFileName(), u"new name.txt");
  EXPECT_TRUE(
      results.mUnreadable.contains(results.Record(results.ulvwDupeDetails.ItemData(0)).Name))
      << "what is known of a file stays with it";
}

TEST_F(FileCommands, WithNamesMatchedItLeavesTheListsWithAllMarkedFilesAndNothingIsDeleted) {
  SearchBy(true, true);
  Rename(u"new name.txt");
  EXPECT_EQ(Paths(), "C:\\b\\x.txt C:\\c\\x.txt ");
  EXPECT_EQ(ToUtf8(results.ulvwDupeGroups.CellText(0, 0)), "x.txt");
  EXPECT_EQ(ToUtf8(results.ulvwDupeGroups.CellText(0, 1)), "2");
  EXPECT_EQ(Panel(FILES_SEARCHED), "Files:4");
  EXPECT_EQ(machine.ContentsOf(u"C:\\a\\new name.txt"), "same");
  results.mFileMarked[static_cast<std::size_t>(results.ulvwDupeDetails.ItemData(1)) - 1] = true;
  messages.Expect();
  Rename(u"third.txt");
  EXPECT_EQ(
      Told(),
      "Rename File: A file with a new name is no duplicate any more and leaves the lists, and "
      "all files that were selected for removal have left them with it.\r\n\r\nNothing was "
      "removed from the disk. A new search shows the duplicates that there are now.\n");
  EXPECT_EQ(results.ulvwDupeGroups.Count(), 0);
  for (const TextView path : {u"C:\\a\\new name.txt", u"C:\\b\\third.txt", u"C:\\c\\x.txt"})
    EXPECT_EQ(machine.ContentsOf(path), "same");
}

TEST_F(FileCommands, ANameThatCannotBeMovesNothing) {
  struct Row {
    TextView name;
    std::string_view told;
  };
  const Row rows[] = {
      {u"X.TXT", ""},
      {u"taken.txt", "Name Already In Use: A file with that name already exists in the folder\n"},
      {u"..\\b\\y.txt", "Rename File: A file name cannot contain this character: \\\n"},
      {u"b/y.txt", "Rename File: A file name cannot contain this character: /\n"},
      {u"D:", "Rename File: A file name cannot contain this character: :\n"},
      {u"x.txt:stream", "Rename File: A file name cannot contain this character: :\n"},
      {u"a\nb", "Rename File: A file name cannot contain this character: \u240A\n"},
      {u"..", "Rename File: This is not a name that a file can have.\n"},
      {u". ", "Rename File: This is not a name that a file can have.\n"},
      {u"", "Rename File: This is not a name that a file can have.\n"},
  };
  SearchBy(true, true);
  const std::vector<Text> before = machine.TreeOf(u"C:\\");
  for (const Row& row : rows) {
    SCOPED_TRACE(ToUtf8(row.name));
    if (!row.told.empty()) messages.Expect();
    Rename(row.name);
    EXPECT_EQ(Told(), row.told);
  }
  hook.Fail({Operation::MoveFileW}, ERROR_ACCESS_DENIED);
  Rename(u"refused.txt");
  EXPECT_EQ(Told(), "") << "the name that stays says it";
  {
    const CommandScope other;
    Rename(u"busy.txt");
  }
  commands.RenameListItem(77, u"x.txt", u"y.txt");
  EXPECT_EQ(machine.TreeOf(u"C:\\"), before);
  EXPECT_EQ(results.ulvwDupeDetails.Count(), 3);
}

TEST_F(FileCommands, TheMenuAsksForTheNewName) {
  SearchBy(false, true);
  commands.mnuFileRenameFile_Click();
  EXPECT_EQ(input.asked,
            (std::vector<Text>{u"Enter new file name here", u"Rename File", u"x.txt"}));
  EXPECT_TRUE(machine.Exists(u"C:\\a\\x.txt")) << "an empty answer does nothing";
  input.answer = u"asked.txt";
  commands.mnuFileRenameFile_Click();
  EXPECT_TRUE(machine.Exists(u"C:\\a\\asked.txt"));
}

TEST_F(FileCommands, EachCommandStartsWhatTheSystemHasForIt) {
  SearchBy(false, true);
  commands.mnuFileViewSelected_Click();
  commands.mnuFileViewSelectedFileProperties_Click();
  commands.mnuFileOpenInContainingFolder_Click();
  ASSERT_EQ(machine.Started().size(), 3U);
  EXPECT_EQ(machine.Started()[0].file, u"C:\\a\\x.txt");
  EXPECT_EQ(machine.Started()[1].verb, u"properties");
  EXPECT_EQ(machine.Started()[1].file, u"C:\\a\\x.txt");
  EXPECT_EQ(machine.Started()[1].mask, 17484U);
  EXPECT_EQ(machine.Started()[2].file, u"explorer.exe");
  EXPECT_EQ(machine.Started()[2].parameters, u"\"C:\\a\\\"");
}

TEST_F(FileCommands, WhatCannotBeOpenedIsOfferedAChoiceOfProgramsAndThenTold) {
  SearchBy(false, true);
  hook.RunBefore({Operation::ShellExecuteW, 2}, [&] { machine.SetShellAnswer(33); });
  machine.SetShellAnswer(SE_ERR_NOASSOC);
  commands.mnuFileViewSelected_Click();
  ASSERT_EQ(machine.Started().size(), 1U);
  EXPECT_EQ(machine.Started()[0].file, u"rundll32.exe");
  EXPECT_EQ(machine.Started()[0].parameters, u"shell32.dll,OpenAs_RunDLL C:\\a\\x.txt");
  machine.SetShellAnswer(SE_ERR_NOASSOC);
  for (int box = 0; box < 3; ++box) messages.Expect();
  commands.mnuFileViewSelected_Click();
  commands.mnuFileViewSelectedFileProperties_Click();
  commands.mnuFileOpenInContainingFolder_Click();
  EXPECT_EQ(Told(),
            "View File: There is no program that opens files of this type.\r\n\r\nC:\\a\\x.txt\n"
            "File Properties: The system cannot show the properties of this file.\r\n\r\n"
            "C:\\a\\x.txt\n"
            "Open In Containing Folder: There is no program that shows folders.\r\n\r\nC:\\a\\\n");
  machine.SetShellAnswer(SE_ERR_ACCESSDENIED);
  commands.mnuFileOpenInContainingFolder_Click();
  EXPECT_EQ(Told(), "") << "any other failure shows itself";
}

TEST_F(FileCommands, WithoutASelectedFileEachSaysSo) {
  SearchBy(false, true);
  for (const bool isEmptiedGroup : {false, true}) {
    SCOPED_TRACE(isEmptiedGroup);
    if (isEmptiedGroup) {
      results.AddGroup(1, 0, {});
      results.DisplayDupeGroupDetails(2, true);
      results.ulvwDupeDetails.Select(0);
    } else {
      results.ulvwDupeDetails.Select(-1);
    }
    for (int box = 0; box < 4; ++box) messages.Expect();
    commands.mnuFileRenameFile_Click();
    commands.mnuFileViewSelected_Click();
    commands.mnuFileViewSelectedFileProperties_Click();
    commands.mnuFileOpenInContainingFolder_Click();
    EXPECT_EQ(Told(),
              "Rename File: No file is selected\nView File: No file is selected\n"
              "File Properties: No file is selected\nOpen In Containing Folder: No file selected.  "
              "Please select a file and try again.\n");
  }
  EXPECT_TRUE(machine.Started().empty());
}

}  // namespace
}  // namespace quillmarsh
