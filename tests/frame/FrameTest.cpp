// SPDX-License-Identifier: MIT
// The reporter, the text table and the pump.
#include <gtest/gtest.h>

#include "frame/ErrorReporting.h"
#include "frame/ProgramFlags.h"
#include "frame/Pump.h"
#include "frame/TextTable.h"
#include "frame/Views.h"
#include "support/MachineFixture.h"

namespace quillmarsh {
namespace {

class KeptMessages final : public MessageView {
 public:
  MessageBoxResult Show(const MessageBoxRequest& request) override {
    shown.push_back(request);
    return MessageBoxResult::Ok;
  }
  std::vector<MessageBoxRequest> shown;
};

class ErrorReports : public ::testing::Test, public MachineFixture {
 protected:
  ErrorReports() {
    gViews.messages = &messages;
    machine.AddFolder(u"C:\\options");
    SetErrorDetailFolder([] { return Text(u"C:\\options\\"); });
  }
  ~ErrorReports() override {
    gViews = {};
    SetErrorDetailFolder({});
  }
  KeptMessages messages;
};

constexpr TextView kHelpLines =
    u"\r\n* If this problem persists, please contact our technical support staff for "
    u"assistance.\r\n"
    u"  (Refer to the Troubleshooting section of the Help file for details.)";

TEST_F(ErrorReports, ARunTimeErrorIsToldInThreeLinesAndTheHelpLines) {
  EXPECT_FALSE(Guarded(u"frmFindDuplicates.ShowDupes", [] { throw RuntimeError(9); }));
  ASSERT_EQ(messages.shown.size(), 1U);
  EXPECT_EQ(messages.shown[0].text, Text(u"Error: Subscript out of range\r\n"
                                         u"Source: frmFindDuplicates.ShowDupes\r\nNumber: 9\r\n") +
                                        Text(kHelpLines));
  EXPECT_EQ(messages.shown[0].title, u"Unexpected Error in module: frmFindDuplicates.ShowDupes");
  EXPECT_EQ(messages.shown[0].icon, MessageBoxIcon::Exclamation);
  EXPECT_FALSE(machine.Exists(u"C:\\options\\ERR_DETAIL.TXT"));
}

TEST_F(ErrorReports, ASystemErrorComesFirstAndGivesItsNumber) {
  gPendingError = {5, u"Invalid procedure call or argument", 99999, 120};
  ReportError(u"a.b", {});
  ASSERT_EQ(messages.shown.size(), 1U);
  EXPECT_TRUE(messages.shown[0].text.starts_with(
      u"DLL Error: (99999) - Error number not defined in system.\r\n"
      u"Error: Invalid procedure call or argument\r\nSource: a.b\r\nNumber: 99999\r\n"
      u"Line Number: 120\r\n"))
      << ToUtf8(messages.shown[0].text);
}

TEST_F(ErrorReports, DetailIsAppendedToTheDetailFile) {
  machine.SetClock(TicksOf(2026, 11, 21, 10, 37, 20));
  const auto report = [] {
    Guarded(
        u"a.b", [] { throw RuntimeError(6); }, [] { return Text(u"Folder=C:\\x"); });
  };
  report();
  const std::string entry =
      "\r\n11/21/2026 10:37:20 AM\r\nError: Overflow\r\nSource: a.b\r\nNumber: 6\r\n\r\n"
      "- More Information - \r\nFolder=C:\\x\r\n";
  EXPECT_EQ(machine.ContentsOf(u"C:\\options\\ERR_DETAIL.TXT"), entry);
  EXPECT_NE(messages.shown[0].text.find(u"\r\nSee the ERR_DETAIL.TXT file before proceeding.\r\n"),
            Text::npos);
  report();
  EXPECT_EQ(machine.ContentsOf(u"C:\\options\\ERR_DETAIL.TXT"), entry + entry);
  EXPECT_EQ(machine.OpenHandles(), 0U);
}

TEST_F(ErrorReports, AFailureOfTheReporterIsToldInItsOwnBox) {
  hook.Fail({Operation::CreateFileW, 1, {}}, ERROR_ACCESS_DENIED);
  Guarded(
      u"a.b", [] { throw RuntimeError(6); }, [] { return Text(u"detail"); });
  ASSERT_EQ(messages.shown.size(), 1U);
  EXPECT_EQ(messages.shown[0].title, u"Error in Error Handler");
  EXPECT_EQ(messages.shown[0].text,
            u"An error has occured in the error handler.\r\n70\r\nPermission denied");
}

TEST_F(ErrorReports, AFailureToFindTheDetailFolderDoesNotReportItselfWithoutEnd) {
  SetErrorDetailFolder([] {
    Guarded(
        u"c.d", [] { throw RuntimeError(9); }, [] { return Text(u"detail"); });
    return Text(u"C:\\nowhere\\");
  });
  Guarded(
      u"a.b", [] { throw RuntimeError(6); }, [] { return Text(u"detail"); });
  ASSERT_EQ(messages.shown.size(), 1U);
  EXPECT_EQ(messages.shown[0].title, u"Error in Error Handler");
}

TEST(TextTable, WordsOfBooleansGoThereAndBackInAnyCase) {
  EXPECT_EQ(BoolToText(true), u"True");
  EXPECT_EQ(BoolToText(false), u"False");
  for (const TextView word : {u"True", u"TRUE", u"tRuE"}) EXPECT_TRUE(TextToBool(word));
  for (const TextView word : {u"", u"1", u"yes", u"True ", u"False"})
    EXPECT_FALSE(TextToBool(word));
}

TEST(TextTable, AnIdWithoutARowIsAnError) {
  EXPECT_EQ(LoadResStringAt(176), u"Quillmarsh is already running");
  EXPECT_THROW(static_cast<void>(LoadResStringAt(103)), RuntimeError);
  EXPECT_EQ(std::size(kTextTable), 565U);
}

class CountingPump final : public PumpView {
 public:
  void PumpEvents() override {
    count += 1;
    DoEvents_Fast();
    DoEvents();
  }
  int count = 0;
};

TEST(Pump, RunsOnlyWhenSomethingWaitsAndNeverWithinItself) {
  MachineFixture fixture;
  CountingPump pump;
  gViews.pump = &pump;
  const auto turn = [] {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(60);
    while (std::chrono::steady_clock::now() < end) DoEvents_Fast();
  };
  turn();
  EXPECT_EQ(pump.count, 0);
  fixture.machine.SetWaitingEvents(QS_PAINT);
  turn();
  // Sixteen milliseconds lie between two pumps, whatever the machine is busy with.
  EXPECT_GE(pump.count, 1);
  EXPECT_LE(pump.count, 5);
  gViews = {};
}

TEST(Pump, AWaitForTheDiskEndsWithTheStopWhereThatIsStoppableAndElsewhereAfterHalfAMinute) {
  MachineFixture fixture;
  std::chrono::steady_clock::time_point now{std::chrono::hours(1)};
  SetPumpClock([&now] { return now; });
  gUserAbort = true;  // of a stop that may be over
  PumpingPatience patience;
  for (int wait = 0; wait < 2; ++wait) {
    int seconds = 0;
    for (; patience.KeepWaiting(); ++seconds) now += std::chrono::seconds(1);
    EXPECT_EQ(seconds, 30) << "wait " << wait;
    now += std::chrono::minutes(1);
  }
  {
    const StoppablePart part;
    EXPECT_FALSE(patience.KeepWaiting());
    gUserAbort = false;
    EXPECT_TRUE(patience.KeepWaiting());
    now += std::chrono::hours(1);
    EXPECT_TRUE(patience.KeepWaiting());
  }
  SetPumpClock({});
}

}  // namespace
}  // namespace quillmarsh
