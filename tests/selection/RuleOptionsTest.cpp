// SPDX-License-Identifier: MIT
// What a person may leave in the assistant's controls, and how dates are held against one another.
#include "selection/RuleOptions.h"

#include "base/RuntimeError.h"
#include "search/ProgramFixture.h"
#include "selection/DateDiffSeconds.h"

namespace quillmarsh {
namespace {

using RuleOptions = ProgramFixture;

TEST_F(RuleOptions, OnlyWhatTheRuleNeedsIsLookedAt) {
  machine.AddFolder(u"C:\\Data\\more");
  struct Row {
    std::int32_t rule;
    TextView typed;
    RuleField field;
    std::string_view message;  // line breaks as '|'
  };
  constexpr Row kRows[] = {
      {6, u"", RuleField::FolderSpec, "Please enter a folder specification"},
      {7, u"   ", RuleField::FolderSpec, "Please enter a folder specification"},
      {7, u"C:\\none", RuleField::FolderSpec, "The folder does not exist"},
      {6, u" C:\\data\\MORE ", RuleField::None, ""},
      {8, u" ", RuleField::FileSize, "Please enter a file size"},
      {8, u"12 KB", RuleField::FileSize, "Please enter a numeric value for the file size"},
      {8, u"1/2/2026", RuleField::FileSize, "Please enter a numeric value for the file size"},
      {8, u"-0.6", RuleField::FileSize, "Please enter a positive value for the file size"},
      {8, u"-0.5", RuleField::None, ""},
      {8, u"0", RuleField::None, ""},
      {8, u" 1,234.5 ", RuleField::None, ""},
      {10, u"", RuleField::FileMask, "Please enter a file mask"},
      {11, u"txt", RuleField::FileMask,
       "The file mask you entered is not valid.|The file mask should contain a 'dot' character."},
      {10, u"* . ", RuleField::FileMask,
       "The file mask you entered is not valid.|The file mask should contain text after the "
       "'dot'."},
      {10, u".", RuleField::FileMask,
       "The file mask you entered is not valid.|The file mask should contain text after the "
       "'dot'."},
      {11, u".txt", RuleField::FileMask,
       "The file mask you entered is not valid.|The file mask should contain text before the 'dot'."
       "||Consider adding an asterisk before the dot character."},
      {10, u"*.tar.", RuleField::None, ""},
      {2, u"", RuleField::None, ""},
      {9, u"", RuleField::None, ""},
      {15, u"", RuleField::None, ""},
  };
  for (const Row& row : kRows) {
    RuleControls controls;
    controls.folderSpec = controls.fileSize = controls.fileMask = Text(row.typed);
    const RuleProblem problem = ValidateRuleOptions(row.rule, controls);
    std::string message;
    for (const char unit : ToUtf8(problem.message))
      if (unit != '\r') message += unit == '\n' ? '|' : unit;
    EXPECT_EQ(message, row.message) << row.rule << ToUtf8(row.typed);
    EXPECT_EQ(problem.field, row.field) << row.rule << ToUtf8(row.typed);
  }
  RuleControls controls;
  controls.fileSize = u"2147483648";
  EXPECT_THROW(static_cast<void>(ValidateRuleOptions(8, controls)), RuntimeError);
}

TEST_F(RuleOptions, AreSavedWholeOrNotAtAllAndComeBackAsTheyWere) {
  RuleControls controls = {8, u"d: [Disk]",  u"C:\\Data", {},  true, u"1.5",
                           2, Date(45000.5), u"*.bak",    true};
  clsMarkForRemovalWizard options;
  SaveControlsToOptions(controls, options);
  EXPECT_EQ(options.FileSizeInBytes(), Currency::FromInteger(1'572'864));
  EXPECT_EQ(options.DriveSpec(), u"d:");
  const RuleControls loaded = LoadControlsFromOptions(options);
  EXPECT_EQ(loaded.folderSpec, u"C:\\Data");
  EXPECT_EQ(loaded.fileSize, u"1.5");
  EXPECT_TRUE(loaded.includeSubFolders && loaded.allowRemovalOfAllFilesInGroup);

  // The size is converted whatever the rule.
  controls.rule = 2;
  controls.drive = u"e:";
  controls.fileMask = u"*.new";
  for (const auto& [size, unit, number] : {std::tuple(u"many", 0, runtime_error::TypeMismatch),
                                           {u"", 0, runtime_error::TypeMismatch},
                                           {u"858994", 3, runtime_error::Overflow}}) {
    controls.fileSize = size;
    controls.sizeIncrement = unit;
    try {
      SaveControlsToOptions(controls, options);
      ADD_FAILURE() << "no error";
    } catch (const RuntimeError& error) {
      EXPECT_EQ(error.Number(), number);
      EXPECT_TRUE(error.Description().starts_with(u"File Size: "));
    }
    EXPECT_EQ(options.mRule, 8);
    EXPECT_EQ(options.DriveSpec(), u"d:");
    EXPECT_EQ(options.mFileMask, u"*.bak");
    EXPECT_EQ(options.FileSizeInBytes(), Currency::FromInteger(1'572'864));
  }
}

TEST_F(RuleOptions, ALargeSizeIsNotTakenInTheUnitOfTheOneBefore) {
  clsMarkForRemovalWizard options;
  options.SetSizeIncrement(3);
  RuleControls controls;
  controls.rule = 8;
  controls.fileSize = u"2000000";
  SaveControlsToOptions(controls, options);
  EXPECT_EQ(options.FileSizeInBytes(), Currency::FromInteger(2'000'000));
  controls.fileSize = u"1";
  controls.sizeIncrement = 3;
  SaveControlsToOptions(controls, options);
  EXPECT_EQ(options.FileSizeInBytes(), Currency::FromInteger(1LL << 30));
}

TEST_F(RuleOptions, DrivesAreListedWithTheirLabelsAndFoundByAnyOfTheirForms) {
  SimulatedDrive stick;
  stick.root = u"E:\\";
  stick.label = u"Stick";
  stick.serialNumber = 2;
  machine.AddDrive(stick);
  SimulatedDrive reader;
  reader.root = u"F:\\";
  reader.serialNumber = 3;
  reader.ready = false;
  machine.AddDrive(reader);
  const std::vector<RuleDrive> drives = GetRuleDrives();
  ASSERT_EQ(drives.size(), 3U);
  EXPECT_EQ(drives[1].drive, u"E:");
  EXPECT_EQ(drives[1].shown, u"E: [Stick]");
  EXPECT_EQ(drives[2].shown, u"F:");
  EXPECT_EQ(PositionOfDrive(drives, u"C"), 0);
  EXPECT_EQ(PositionOfDrive(drives, u"e:"), 1);
  EXPECT_EQ(PositionOfDrive(drives, u"\\\\server\\share"), -1);
  EXPECT_EQ(PositionOfDrive(drives, u""), -1);
}

TEST(DateDiff, IsRoundedToWholeSecondsHalfToEvenTwice) {
  constexpr double Second = 1.0 / 86400;
  struct Row {
    double a;
    double b;
    std::int64_t seconds;
  };
  constexpr Row kRows[] = {
      {45000 + 0.4 * Second, 45000, 0},  {45000 + 0.6 * Second, 45000, 1},
      {45000, 45000 + 0.6 * Second, -1}, {45000 + 1.4 * Second, 45000, 1},
      {45000.25, 45000, 21600},          {Date::LastDay, Date::FirstDay, 312'413'673'600},
      {-109024.99999, -109024.99999, 0},
  };
  for (const Row& row : kRows)
    EXPECT_EQ(DateDiffSeconds(Date(row.a), Date(row.b)), Currency::FromInteger(row.seconds));
  for (const auto& [milliseconds, seconds] :
       {std::pair(500.0, 0), {1500.0, 2}, {2500.0, 2}, {-500.0, 0}, {500.0001, 1}, {-1500.0, -2}})
    EXPECT_EQ(SecondsBetween(Currency::FromDouble(milliseconds), Currency()),
              Currency::FromInteger(seconds));
  // The fourth decimal of a millisecond decides: half of it goes to the even neighbour.
  constexpr double HalfOfLastDecimal = 0.5 / 10'000 / 86'400'000;
  EXPECT_EQ(MillisecondsOf(Date(-109025 + HalfOfLastDecimal)).Raw(), 0);
  EXPECT_THROW(static_cast<void>(DateDiffSeconds(Date(1e12), Date())), RuntimeError);
}

}  // namespace
}  // namespace quillmarsh
