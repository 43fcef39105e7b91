// SPDX-License-Identifier: MIT
// The two reports word for word, and what they say where something is in the way.
#include "fsobjects/FSObjectReport.h"

#include "FsObjectsFixture.h"

namespace quillmarsh {
namespace {

class FSObjectReportTest : public FsObjectsFixture, private PumpView {
 protected:
  FSObjectReportTest() {
    gViews.pump = this;
    machine.SetWaitingEvents(0xFFFF);
    machine.AddFile(u"C:\\t\\1", "1");
    machine.AddFile(u"C:\\t\\a\\2", FileContents::Recipe(1, 1'234'566));
  }
  ~FSObjectReportTest() override { SetPumpClock({}); }

  static std::string Lines(const FSObjectReport& report) {
    std::string text = ToUtf8(report.text);
    std::erase(text, '\r');
    return text;
  }
  static FSObjectReport Tree(TextView path) {
    return ReportOnFolder(path, [] { return true; });
  }
  static FSObjectReport Level(TextView path) {
    return ReportOnFolder(path, [] { return false; });
  }
  // At every step of a walk, whatever the clock says.
  void InEachPump(std::function<void(int)> action) {
    mAction = std::move(action);
    SetPumpClock([this] { return mClock += std::chrono::seconds(1); });
  }

 private:
  void PumpEvents() override {
    if (mAction) mAction(++mPumps);
  }
  std::function<void(int)> mAction;
  int mPumps = 0;
  std::chrono::steady_clock::time_point mClock;
};

TEST_F(FSObjectReportTest, AFolderIsToldWithItsWholeTreeAndItsDrive) {
  const FSObjectReport report = Tree(u"C:\\t");
  EXPECT_EQ(Lines(report),
            "**** Folder Properties ****\n"
            "(Entire Tree)\n"
            "\n"
            "Name= t\n"
            "Path = C:\\t\\\n"
            "User Can Read From = True\n"
            "User Can Write To = True\n"
            "Attributes = 16\n"
            "IsHidden = False\n"
            "IsSystem = False\n"
            "IsTemporary = False\n"
            "IsReparsePoint = False\n"
            "IsDirectoryJunction = False\n"
            "IsVolumeMount = False\n"
            "IsReadOnly = False\n"
            "Number Files = 2\n"
            "Number SubFolders = 1\n"
            "Number Junction Points = 0\n"
            "Size = 1,234,567 bytes\n"
            "Drive = C:\\\n"
            "Drive Type = Fixed\n"
            "File System = NTFS\n");
  EXPECT_TRUE(report.text.ends_with(u"\r\n"));
  EXPECT_TRUE(report.isThere);
}

// Required as it is: the three lines of the drive belong to the whole tree alone.
TEST_F(FSObjectReportTest, OfAMountPointAloneTheVolumeIsNamedAndTheDriveLeftOut) {
  const Text volume = machine.AddVolumeWithoutLetter({});
  machine.AddMountPoint(u"C:\\t\\mount", volume);
  machine.AddFile(u"C:\\t\\mount\\x\\5", "55555");
  const std::string lines = Lines(Level(u"C:\\t\\mount\\"));
  EXPECT_NE(lines.find("(Root Level only)\n\nName= mount\n"), std::string::npos);
  EXPECT_NE(lines.find("IsVolumeMount = True\nVolume Mount Name = " + ToUtf8(volume) +
                       "\nIsReadOnly = False\n"
                       "Number Files (Root Level) = 0\n"
                       "Number SubFolders (Root Level) = 1\n"
                       "Number Junction Points (Root Level) = 0\n"
                       "Size = 0 bytes\n"),
            std::string::npos)
      << lines;
  EXPECT_TRUE(lines.ends_with("Size = 0 bytes\n"));
}

TEST_F(FSObjectReportTest, AFileIsToldWithItsPlainSize) {
  machine.SetTypeName(u"txt", u"Text Document");
  const std::int64_t moment = TicksOf(2024, 5, 6, 14, 7, 8);
  machine.AddFile(u"C:\\t\\b.txt", FileContents::Recipe(1, 1'234'567),
                  {FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_HIDDEN, moment, moment, moment});
  EXPECT_EQ(Lines(ReportOnFile(u"C:\\t\\b.txt")),
            "**** File Properties ****\n"
            "\n"
            "Name= b.txt\n"
            "Path = C:\\t\\b.txt\n"
            "File Type = Text Document\n"
            "User Can Read From = True\n"
            "User Can Write To = True\n"
            "Attributes = 34\n"
            "IsHidden = True\n"
            "IsSystem = False\n"
            "IsTemporary = False\n"
            "IsReadOnly = False\n"
            "IsCompressed = False\n"
            "IsEncrypted = False\n"
            "IsShortcut = False\n"
            "InUse = False\n"
            "Created Date = 5/6/2024 2:07:08 PM\n"
            "Last Accessed Date = 5/6/2024 2:07:08 PM\n"
            "Last Modified Date = 5/6/2024 2:07:08 PM\n"
            "Size = 1234567\n"
            "Version = \n"
            "Drive = C:\\\n"
            "Drive Type = Fixed\n"
            "File System = NTFS\n"
            "\n");
}

TEST_F(FSObjectReportTest, WhatIsNotThereOrOfTheOtherKindDoesNotExist) {
  int asked = 0;
  const auto ask = [&] { return ++asked > 0; };
  for (const TextView path : {u"C:\\t\\none", u"C:\\t\\1"})
    EXPECT_EQ(Lines(ReportOnFolder(path, ask)), "Folder does not exist");
  for (const TextView path : {u"C:\\t\\none", u"C:\\t\\a"})
    EXPECT_EQ(Lines(ReportOnFile(path)), "File does not exist");
  EXPECT_EQ(Lines(ReportOnFile({})) + Lines(ReportOnFolder({}, ask)), "");
  EXPECT_EQ(asked, 0);
}

TEST_F(FSObjectReportTest, AFailureThatLeavesItOpenIsNoProofThatNothingIsThere) {
  hook.Fail({.operation = Operation::GetFileAttributesW, .nth = 0, .subject = u"C:\\t\\1"},
            ERROR_IO_DEVICE);
  EXPECT_EQ(Lines(ReportOnFile(u"C:\\t\\1")) + "\r\n", ToUtf8(GetSystemErrorText(ERROR_IO_DEVICE)));
  EXPECT_EQ(TakeReportedSource(), "modFSXFSO.FileExists");
}

TEST_F(FSObjectReportTest, WhatCannotBeLookedAtHasUnknownFactsAndNoZeroes) {
  for (const Operation operation :
       {Operation::GetFileAttributesW, Operation::CreateFileW, Operation::FindFirstFileW})
    hook.Fail({.operation = operation, .nth = 0, .subject = u"C:\\t\\1"}, ERROR_ACCESS_DENIED);
  const std::string lines = Lines(ReportOnFile(u"C:\\t\\1"));
  for (const char* const line : {"Attributes = Unknown\n", "IsHidden = Unknown\n",
                                 "Created Date = Unknown\n", "Size = Unknown\n"})
    EXPECT_NE(lines.find(line), std::string::npos) << line << lines;
  EXPECT_EQ(lines.find("= 0\n"), std::string::npos);
}

TEST_F(FSObjectReportTest, TheCountsThatStandAreToldWithTheFolderThatCouldNotBeRead) {
  hook.Fail({.operation = Operation::FindFirstFileW, .subject = u"C:\\t\\a\\*"}, ERROR_IO_DEVICE);
  const FSObjectReport failed = Tree(u"C:\\t");
  EXPECT_EQ(ToUtf8(failed.failedPath), "C:\\t\\a\\");
  EXPECT_NE(Lines(failed).find("Number Files = 1\n"), std::string::npos);

  // A listing that breaks off counts as read, but not as whole.
  machine.AddFile(u"C:\\t\\b\\3", "3");
  hook.Fail({.operation = Operation::FindNextFileW, .nth = 3}, ERROR_IO_DEVICE);
  EXPECT_EQ(ToUtf8(Tree(u"C:\\t").failedPath), "C:\\t\\");
  EXPECT_EQ(ToUtf8(Tree(u"C:\\t").failedPath), "");
}

TEST_F(FSObjectReportTest, AStoppedCountSaysSoAndTouchesNothingMore) {
  for (int folder = 0; folder < 50; ++folder) {
    const Text name = u"C:\\t\\f" + DecimalText(folder);
    machine.AddFile(name + u"\\file", "x");
  }
  InEachPump([](int pump) {
    if (pump == 5) gUserAbort = true;
  });
  {
    const AnalysisScope analysis;
    const FSObjectReport report = Tree(u"C:\\t");
    EXPECT_TRUE(report.isStopped);
    const std::string lines = Lines(report);
    EXPECT_EQ(lines.find("(Entire Tree)"), std::string::npos);
    EXPECT_NE(lines.find("(Stopped: "), std::string::npos);
    EXPECT_NE(lines.find(" (so far)\n"), std::string::npos);
    EXPECT_LT(Calls(Operation::FindFirstFileW), 25U);
  }
  EXPECT_TRUE(gUserAbort);
  const AnalysisScope next;
  EXPECT_NE(Lines(Tree(u"C:\\t")).find("Number Files = 52\n"), std::string::npos)
      << "the stop of one analysis is not that of the next";
  EXPECT_GT(Calls(Operation::FindFirstFileW), 50U);
}

TEST_F(FSObjectReportTest, ADriveThatDoesNotAnswerIsLeftByAStop) {
  SimulatedDrive drive;
  drive.root = u"D:\\";
  machine.AddDrive(drive);
  machine.AddFolder(u"D:\\t");
  machine.SetAnswering(u"D:\\", false);
  PumpingPatience patience;
  machine.SetPatience(&patience);
  InEachPump([](int pump) { gUserAbort = pump % 3 == 0; });
  {
    const AnalysisScope analysis;
    EXPECT_TRUE(Tree(u"D:\\t").isStopped);
    const FSObjectReport report = ReportOnFile(u"D:\\t\\file");
    EXPECT_TRUE(report.isStopped);
    EXPECT_EQ(report.text, StoppedReportText());
  }
  machine.SetPatience(nullptr);
}

}  // namespace
}  // namespace quillmarsh
