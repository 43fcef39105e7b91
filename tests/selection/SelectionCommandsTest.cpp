// SPDX-License-Identifier: MIT
// The end of a search, the commands of the menus, and marking by hand, with scripted views.
#include <set>

#include "frame/CommandScope.h"
#include "frame/ProgramFlags.h"
#include "frame/Pump.h"
#include "search/ProgramFixture.h"
#include "selection/cSelectionCommands.h"
#include "selection/clsMarkForRemovalWizard.h"

namespace quillmarsh {
namespace {

class ScriptedInputBox final : public InputBoxView {
 public:
  Text Show(TextView prompt, TextView title, TextView defaultText) override {
    asked = {Text(prompt), Text(title), Text(defaultText)};
    return isCancelled ? Text() : answer.value_or(Text(defaultText));
  }
  bool isCancelled = false;
  std::optional<Text> answer;  // none: the default
  std::vector<Text> asked;
};

class ScriptedSelectionView final : public SelectionView {
 public:
  void ClearChosenMultiSelectRule() override { checked.clear(); }
  void CheckRuleItems(std::int32_t rule) override { checked.insert(rule); }
  void MarksChanged() override { changes += 1; }
  void ShowMarkForRemovalWizard() override {
    if (onWizard) onWizard();
  }
  void ShowSelectSummary(const SelectSummary& summary) override { summaries.push_back(summary); }

  std::set<std::int32_t> checked = {2};
  int changes = 0;
  std::function<void()> onWizard;
  std::vector<SelectSummary> summaries;
};

class SelectionCommands : public ProgramFixture {
 protected:
  // One group in this order: the oldest, the newest (in C:\Database\) and one of another drive.
  SelectionCommands() {
    gViews.inputBox = &inputBox;
    SimulatedDrive drive;
    drive.root = u"D:\\";
    drive.serialNumber = 2;
    machine.AddDrive(drive);
    Make(u"C:\\Data\\x.txt", 1500, 0);
    Make(u"C:\\Database\\x.txt", 1500, 2);
    Make(u"D:\\Data\\x.txt", 1500, 1);
  }
  ~SelectionCommands() override { SetPumpClock({}); }

  void SearchAll() { EXPECT_EQ(Search({u"C:\\", u"D:\\"}), SearchOutcome::Complete); }

  // "-xx" for three files of which the first is not marked.
  [[nodiscard]] std::string Marks() const {
    std::string marks;
    for (const bool isMarked : results.mFileMarked) marks += isMarked ? 'x' : '-';
    return marks;
  }
  [[nodiscard]] std::string Details() const {
    std::string text;
    for (std::int32_t position = 0; position < results.ulvwDupeDetails.Count(); ++position) {
      for (int column = 0; column < 7; ++column)
        text += ToUtf8(results.ulvwDupeDetails.CellText(position, column)) + "|";
    }
    return text;
  }
  static clsMarkForRemovalWizard& Options() { return *gMarkForRemovalWizardOptions; }

  ScriptedInputBox inputBox;
  ScriptedSelectionView selectionView;
  cSelectionCommands commands{results, selectionView};
};

TEST_F(SelectionCommands, ASearchEndsWithAllButTheNewestMarkedAndTheFirstGroupShown) {
  machine.SetTimes(u"C:\\Data\\x.txt", 0, 0, TicksOf(1980, 1, 2));
  machine.SetTimes(u"C:\\Database\\x.txt", 0, 0, TicksOf(1980, 1, 3, 4, 5, 6));
  machine.SetTimes(u"D:\\Data\\x.txt", 0, 0, TicksOf(1980, 1, 1));
  Options().mRule = 9;
  Options().mAllowRemovalOfAllFilesInGroup = true;
  SearchAll();
  EXPECT_EQ(Marks(), "x-x") << "also where all dates are older than any rule looks at";
  EXPECT_EQ(Options().mRule, 2);
  EXPECT_FALSE(Options().mAllowRemovalOfAllFilesInGroup);
  EXPECT_EQ(Panel(FILES_SELECTED), "Selected:2 (2.92 KB)");
  EXPECT_EQ(results.mCurrentGroup, 1);
  EXPECT_EQ(Details(),
            "x.txt|C:\\Data\\x.txt|1,500|1/1/1601|1/2/1980|A||"
            "x.txt|C:\\Database\\x.txt|1,500|1/1/1601|1/3/1980 4:05:06 AM|A||"
            "x.txt|D:\\Data\\x.txt|1,500|1/1/1601|1/1/1980|A||");
}

// The line of an emptied group is no group: the one that was shown before comes back at a click.
TEST_F(SelectionCommands, AnEmptiedGroupShowsOneLineWithoutAFile) {
  SearchAll();
  results.mDupeFiles[0].Size = Currency::FromInteger(-1);
  EXPECT_EQ(results.ulvwDupeDetails.CellText(0, 2), u"(Unknown)");
  results.AddGroup(1, 0, {});
  results.DisplayDupeGroupDetails(2, false);
  EXPECT_EQ(Details(), "No duplicates in this group|||||||");
  EXPECT_EQ(results.mCurrentGroup, 1);
  results.ulvwDupeDetails.Select(0);
  messages.Expect();
  commands.mnuFileMark_Click();
  commands.DetailCheckBoxChanged(0, true);
  EXPECT_EQ(Marks(), "x-x");

  int changes = 0;
  results.DisplayDupeGroupDetails(1, false);
  results.ulvwDupeDetails.SetListener([&changes](ListChange) { ++changes; });
  EXPECT_EQ(results.ulvwDupeDetails.Count(), 3);
  results.DisplayDupeGroupDetails(1, false);
  EXPECT_EQ(changes, 0) << "a group that is shown is left alone";
  results.DisplayDupeGroupDetails(1, true);
  EXPECT_EQ(changes, 2) << "a mass fill is told when the list empties and when it is full";
}

TEST_F(SelectionCommands, RulesByMenuMarkCheckAndLetWholeGroupsGo) {
  struct Row {
    void (cSelectionCommands::*command)();
    std::int32_t rule;
    std::string_view marks;
    std::optional<Text> answer;  // to the box
  };
  using C = cSelectionCommands;
  const Row rows[] = {
      {&C::mnuFileKeepNewest_Click, 2, "x-x", {}},
      {&C::mnuFileKeepOldest_Click, 3, "-xx", {}},
      {&C::mnuFileSelectDupesInDrive_Click, 4, "xx-", {}},
      {&C::mnuFileSelectDupesNotInDrive_Click, 5, "--x", {}},
      {&C::mnuFileSelectDupesInFolder_Click, 6, "x--", {}},
      {&C::mnuFileSelectDupesInFolder_Click, 6, "xxx", u"\\dat"},
      {&C::mnuFileSelectDupesInFolder_Click, 6, "xx-", u"C:\\Data"},
      {&C::mnuFileSelectDupesNotInFolder_Click, 7, "-xx", {}},
  };
  SearchAll();
  for (const Row& row : rows) {
    SCOPED_TRACE(row.rule);
    Options().mAllowRemovalOfAllFilesInGroup = Options().mIncludeSubFolders = false;
    inputBox.answer = row.answer;
    results.ulvwDupeDetails.Select(0);
    (commands.*row.command)();
    EXPECT_EQ(Marks(), row.marks);
    EXPECT_EQ(Options().mRule, row.rule);
    EXPECT_TRUE(Options().mAllowRemovalOfAllFilesInGroup);
    EXPECT_EQ(selectionView.checked, std::set{row.rule});
    const auto count = std::count(row.marks.begin(), row.marks.end(), 'x');
    EXPECT_EQ(selectionView.summaries.back().NumFilesSelected, count);
    EXPECT_EQ(selectionView.summaries.back().SpaceSavings, Currency::FromInteger(1500 * count));
    EXPECT_TRUE(Panel(FILES_SELECTED).starts_with("Selected:" + std::to_string(count) + " ("));
  }
  EXPECT_EQ(inputBox.asked,
            (std::vector<Text>{u"Select the Duplicates From Each Group That Are NOT In This Folder",
                               u"Confirm Folder Path", u"C:\\Data\\"}));
  EXPECT_EQ(Options().mFolderSpec, u"C:\\Data\\");
  EXPECT_TRUE(Options().mIncludeSubFolders);
  EXPECT_EQ(Options().DriveSpec(), u"C:");

  commands.UndoMarks();
  EXPECT_EQ(Marks(), "---");
  EXPECT_EQ(Panel(FILES_SELECTED), "Selected:0");
}

TEST_F(SelectionCommands, WithoutWhatTheyNeedTheyTellItAndChangeNothing) {
  using C = cSelectionCommands;
  const auto expectUnchanged = [this](void (C::*command)(), TextView title) {
    messages.shown.clear();
    if (!title.empty()) messages.Expect();
    (commands.*command)();
    EXPECT_EQ(messages.shown.empty() ? Text() : messages.shown.back().title, title);
    EXPECT_EQ(Options().mRule, 9);
    EXPECT_EQ(selectionView.checked, std::set{2});
    EXPECT_TRUE(selectionView.summaries.empty());
  };
  Options().mRule = 9;
  expectUnchanged(&C::mnuFileKeepNewest_Click, u"Select Files For Removal");
  expectUnchanged(&C::ShowSelectionAssistant, u"Select Files For Removal");
  expectUnchanged(&C::mnuFileSelectDupesInDrive_Click, u"Select File for Removal");
  SearchAll();
  Options().mRule = 9;
  expectUnchanged(&C::mnuFileSelectDupesNotInFolder_Click, u"Select File for Removal");
  results.ulvwDupeDetails.Select(2);
  inputBox.isCancelled = true;
  expectUnchanged(&C::mnuFileSelectDupesInFolder_Click, {});
  selectionView.onWizard = [] { Options().mCancelled = true; };
  expectUnchanged(&C::ShowSelectionAssistant, {});
  messages.Expect();
  commands.CheckMarkChosenMultiSelectRule(8);
  EXPECT_EQ(selectionView.checked, std::set{2});
  EXPECT_EQ(Marks(), "x-x");

  Options().mCancelled = true;  // of an earlier time
  selectionView.onWizard = [] { Options().mRule = 13; };
  commands.ShowSelectionAssistant();
  EXPECT_EQ(Marks(), "x--");
  EXPECT_EQ(selectionView.summaries.size(), 1U);
  EXPECT_EQ(selectionView.checked, std::set{2}) << "the assistant leaves the menus alone";
}

TEST_F(SelectionCommands, MarkingTheLastFileOfAGroupWarnsByCommandAndNotByCheckBox) {
  SearchAll();
  commands.DetailCheckBoxChanged(1, true);
  EXPECT_EQ(Panel(FILES_SELECTED), "Selected:3 (4.39 KB)");
  results.ulvwDupeDetails.Select(1);
  commands.mnuFileUnmark_Click();
  EXPECT_EQ(Marks(), "x-x");
  messages.Expect();
  commands.mnuFileMark_Click();
  EXPECT_EQ(messages.shown.back().title, u"Remove All Files in Group");
  EXPECT_EQ(messages.shown.back().text,
            u"All of the files in this group are now selected for removal.\r\n"
            u"This is extremely dangerous.  Please be sure that you want to do this.");
  EXPECT_EQ(Marks(), "xxx") << "a warning and no refusal";
  commands.mnuFileMark_Click();  // is marked: no second warning
  commands.mnuFileUnmark_Click();
  Options().mAllowRemovalOfAllFilesInGroup = true;
  commands.mnuFileMark_Click();
  EXPECT_EQ(Panel(FILES_SELECTED), "Selected:3 (4.39 KB)");
}

// A rule that is half done would be a selection that nobody made.
TEST_F(SelectionCommands, WhileOneRunsAnotherDoesNothingAndAStopDoesNotEndIt) {
  for (int file = 0; file < 5000; ++file) Make(u"C:\\Data\\many\\" + DecimalText(file), 20);
  gDupeSettings->SetNamesMatch(false);
  SearchAll();
  auto now = std::chrono::steady_clock::now();
  SetPumpClock([&now] { return now += std::chrono::milliseconds(20); });
  machine.SetWaitingEvents(QS_KEY);
  int pumps = 0;
  pump.onPump = [&] {
    ++pumps;
    gUserAbort = true;
    commands.mnuFileKeepOldest_Click();
    commands.UndoMarks();
    commands.DetailCheckBoxChanged(0, true);
  };
  commands.mnuFileKeepNewest_Click();
  EXPECT_GT(pumps, 0);
  EXPECT_EQ(Options().mRule, 2);
  EXPECT_EQ(GetTotalMarkedCountAndSize(results).count, 4999 + 2);
  EXPECT_FALSE(CommandScope::IsRunning());
}

}  // namespace
}  // namespace quillmarsh
