// SPDX-License-Identifier: MIT
// The contents as a criterion: who is read, what it comes to, what is shown meanwhile, and a stop.
#include "frame/ErrorReporting.h"
#include "frame/ProgramFlags.h"
#include "frame/Pump.h"
#include "fsobjects/PrivateClipboard.h"
#include "search/ProgramFixture.h"
#include "support/PlainCrc32.h"

namespace quillmarsh {
namespace {

using Groups_t = std::vector<std::vector<std::string>>;
using std::chrono_literals::operator""ms;

constexpr std::uint64_t MiB = 1 << 20;
constexpr TextView kHint =
    u"Examining the contents of potential duplicates.  Press STOP to Cancel.";

class Contents : public ProgramFixture {
 protected:
  Contents() {
    gDupeSettings->SetContentsMatch(true);
    gDupeSettings->SetNamesMatch(false);
  }
  ~Contents() override {
    SetPumpClock({});
    gStopCRC = false;
  }

  void Put(TextView name, const FileContents& contents) {
    machine.AddFile(u"C:\\data\\" + Text(name), contents);
  }
  void MatchNames() {
    gDupeSettings->SetNamesMatch(true);
    gDupeSettings->SetSizesMatch(false);
  }
  SearchOutcome SearchData() { return Search({u"C:\\data"}); }
  [[nodiscard]] std::vector<std::string> LinesOfKind(std::string_view kind) const {
    std::vector<std::string> lines;
    for (const std::string& line : log->lines) {
      if (line.substr(0, line.find(' ')) == kind) lines.push_back(line);
    }
    return lines;
  }
  [[nodiscard]] std::size_t Openings(TextView name) const {
    return hook.CountOf(Operation::CreateFileW, u"C:\\data\\" + Text(name));
  }
};

TEST_F(Contents, FilesOfOneNameAreOneGroupWhereTheirContentsAreEqual) {
  MatchNames();
  Put(u"1\\x", "123456789");
  Put(u"2\\x", "another text");
  Put(u"3\\X", "123456789");
  Put(u"3\\alone", "123456789");
  ASSERT_EQ(SearchData(), SearchOutcome::Complete);
  EXPECT_EQ(Groups(), (Groups_t{{"C:\\data\\1\\x", "C:\\data\\3\\X"}}));
  EXPECT_EQ(ToUtf8(results.KeyTextOf(1)), "x|CBF43926|");
  EXPECT_EQ(view.summaries.at(0).NumDuplicatesFound, 2);
}

TEST_F(Contents, FilesOfDifferentSizeDifferWhateverTheirChecksums) {
  MatchNames();
  const std::string ones = "\xFF\xFF\xFF\xFF";
  Put(u"1\\x", ones);
  Put(u"2\\x", ones + std::string(1000, '\0'));
  Put(u"3\\x", ones);
  ASSERT_EQ(SearchData(), SearchOutcome::Complete);
  EXPECT_EQ(results.Record(1).CRC32, results.Record(3).CRC32);
  EXPECT_EQ(Groups(), (Groups_t{{"C:\\data\\1\\x", "C:\\data\\3\\x"}}));
}

TEST_F(Contents, OnlyFilesWithAPartnerAreReadAndEachOnce) {
  const FileContents large = FileContents::Recipe(1, 300'000);
  Put(u"a", large);
  Put(u"b", large.ChangedAt(299'999));
  Put(u"\u03a9", large);
  Put(u"other size", FileContents::Recipe(1, 299'999));
  Put(u"small 1", "12");
  Put(u"small 2", "12");
  ASSERT_EQ(SearchData(), SearchOutcome::Complete);
  EXPECT_EQ(Groups(), (Groups_t{{"C:\\data\\small 1", "C:\\data\\small 2"},
                                {"C:\\data\\a", "C:\\data\\\u03a9"}}));
  for (const TextView name : {u"a", u"b", u"\u03a9", u"small 1", u"small 2"})
    EXPECT_EQ(Openings(name), 1U) << ToUtf8(name);
  EXPECT_EQ(Openings(u"other size"), 0U);
  EXPECT_EQ(machine.OpenHandles(), 0U);
  // Nothing is kept for the next search.
  machine.SetContents(u"C:\\data\\b", large);
  ASSERT_EQ(SearchData(), SearchOutcome::Complete);
  EXPECT_EQ(results.mGroupFileCount, (std::vector<std::int32_t>{2, 3}));
}

TEST_F(Contents, ValuesThatLookLikeFailuresGroupLikeAnyOther) {
  for (const std::uint32_t value : {0xFFFFFFFFU, 0xFFFFFFFEU}) {
    Put(u"1\\" + DecimalText(value), WithCrc32("same", value));
    Put(u"2\\" + DecimalText(value), WithCrc32("same", value));
  }
  ASSERT_EQ(SearchData(), SearchOutcome::Complete);
  EXPECT_EQ(results.mGroupFileCount, (std::vector<std::int32_t>{2, 2}));
  EXPECT_EQ(ToUtf8(results.KeyTextOf(1)), "8|FFFFFFFE|");
  EXPECT_EQ(ToUtf8(results.KeyTextOf(2)), "8|FFFFFFFF|");
  EXPECT_TRUE(LinesOfKind("12").empty());
}

TEST_F(Contents, EmptyFilesAreEqual) {
  gDupeSettings->SetIgnoreZeroByteFiles(false);
  Put(u"a", "");
  Put(u"b", "");
  ASSERT_EQ(SearchData(), SearchOutcome::Complete);
  EXPECT_EQ(Groups(), (Groups_t{{"C:\\data\\a", "C:\\data\\b"}}));
  EXPECT_EQ(ToUtf8(results.KeyTextOf(1)), "0|0|");
}

TEST_F(Contents, AFileThatCannotBeReadIsToldOnceAndEqualsNobody) {
  for (const TextView name : {u"a", u"b", u"c", u"d", u"\u03a9", u"vanishes"})
    Put(name, "the same everywhere");
  const HANDLE held[] = {machine.HoldOpen(u"C:\\data\\b", 0), machine.HoldOpen(u"C:\\data\\d", 0),
                         machine.HoldOpen(u"C:\\data\\\u03a9", 0)};
  hook.RunBefore({Operation::CreateFileW, 1, u"C:\\data\\vanishes"},
                 [this] { machine.Remove(u"C:\\data\\vanishes"); });
  ASSERT_EQ(SearchData(), SearchOutcome::Complete);
  EXPECT_EQ(Groups(), (Groups_t{{"C:\\data\\a", "C:\\data\\c"}}));
  const std::string inUse = ToUtf8(GetSystemErrorText(ERROR_SHARING_VIOLATION));
  const std::vector<std::string> lines = LinesOfKind("12");
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_EQ(lines[0] + "\r\n", "12 C:\\data\\b 32 " + inUse);
  EXPECT_EQ(lines[3].find("12 C:\\data\\\u03a9 32 "), 0U);
  EXPECT_EQ(lines[2].find("12 C:\\data\\vanishes 2 "), 0U);
  for (const DupeFileUDT& record : results.mDupeFiles) {
    if (!results.mUnreadable.contains(record.Name)) continue;
    EXPECT_GE(record.CRC32, 0);
    EXPECT_LE(record.CRC32, 32766);
  }

  // A refused start groups once more, without reading. The random numbers may meet by chance, also
  // with true ones.
  for (DupeFileUDT& record : results.mDupeFiles) record.CRC32 = 77;
  hook.ClearJournal();
  messages.Expect();
  ASSERT_EQ(Search({u"C:\\missing"}), SearchOutcome::Refused);
  EXPECT_EQ(hook.CountOf(Operation::ReadFile), 0U);
  EXPECT_EQ(Groups(), (Groups_t{{"C:\\data\\a", "C:\\data\\c"}}));
  EXPECT_EQ(results.ulvwDupeGroups.Count(), 1);

  // A new search knows nothing of it.
  for (const HANDLE each : held) machine.LetGo(each);
  ASSERT_EQ(SearchData(), SearchOutcome::Complete);
  EXPECT_EQ(results.mGroupFileCount, std::vector<std::int32_t>{5});
}

TEST_F(Contents, AStopAtAnyReadListsNothing) {
  for (const TextView name : {u"a", u"b", u"\u03a9"}) Put(name, FileContents::Recipe(1, 300'000));
  ASSERT_EQ(SearchData(), SearchOutcome::Complete);
  const std::size_t reads = hook.CountOf(Operation::ReadFile);
  ASSERT_GE(reads, 9U);
  for (std::size_t nth = 1; nth <= reads; ++nth) {
    SCOPED_TRACE(nth);
    log->lines.clear();
    view.summaries.clear();
    hook.ClearJournal();
    // The stop of one checksum is the stop of the search.
    hook.RunBefore({Operation::ReadFile, nth}, [nth] {
      gStopCRC = true;
      gUserAbort = nth % 2 == 0;
    });
    EXPECT_EQ(SearchData(), SearchOutcome::Stopped);
    EXPECT_EQ(hook.CountOf(Operation::ReadFile), nth);
    EXPECT_EQ(results.mGroupCount, 0);
    EXPECT_EQ(results.ulvwDupeGroups.Count(), 0);
    EXPECT_EQ(results.RecordCount(), 0);
    EXPECT_TRUE(view.summaries.empty());
    EXPECT_EQ(LinesOfKind("13").size(), 1U);
    EXPECT_TRUE(LinesOfKind("12").empty());
    EXPECT_EQ(Panel(PANEL1), "Search cancelled by user.");
    EXPECT_EQ(machine.OpenHandles(), 0U);
  }
  EXPECT_EQ(SearchData(), SearchOutcome::Complete);
  EXPECT_EQ(results.mGroupCount, 1);
}

// What the limits decide stands before anything is read, so the reads may fail.
TEST_F(Contents, TheNameOfAFileIsShownAbove20MiB) {
  MatchNames();
  for (const auto& [folder, size] :
       {std::pair{u"1", 1 * MiB}, std::pair{u"2", 20 * MiB + 1}, std::pair{u"3", 20 * MiB}})
    Put(Text(folder) + u"\\x", FileContents::Recipe(1, size));
  hook.Fail({Operation::ReadFile, 0}, ERROR_IO_DEVICE);
  std::vector<std::string> shown;
  for (const TextView folder : {u"1", u"2", u"3"}) {
    hook.RunBefore({Operation::CreateFileW, 1, u"C:\\data\\" + Text(folder) + u"\\x"}, [&] {
      shown.push_back(Panel(PANEL1) + ";" + ToUtf8(status.toolTips[Text(PANEL1)]) + ";" +
                      Panel(PANEL2));
    });
  }
  ASSERT_EQ(SearchData(), SearchOutcome::Complete);
  EXPECT_EQ(shown,
            (std::vector<std::string>{ToUtf8(kHint) + ";;1/3", "C:\\data\\2\\x;C:\\data\\2\\x;2/3",
                                      ToUtf8(kHint) + ";;3/3"}));
}

TEST_F(Contents, ProgressIsShownTwiceASecondAbove50MiB) {
  MatchNames();
  for (const auto& [folder, size] :
       {std::pair{u"1", 50 * MiB}, std::pair{u"2", 50 * MiB + 1}, std::pair{u"3", 2 * MiB}})
    Put(Text(folder) + u"\\x", FileContents::Recipe(1, size));
  // Each read takes 200 milliseconds and brings a text; the eighth of a large file fails.
  std::chrono::steady_clock::time_point now{};
  SetPumpClock([&now] { return now; });
  std::string shown;
  int reads = 0;
  hook.RunBefore({Operation::ReadFile, 0}, [&] {
    shown += Panel(PANEL2) + " ";
    now += 200ms;
    PublishCRCProgressText("text" + std::to_string(++reads));
  });
  hook.Fail({Operation::ReadFile, 8}, ERROR_IO_DEVICE);
  hook.Fail({Operation::ReadFile, 15}, ERROR_IO_DEVICE);
  ASSERT_EQ(SearchData(), SearchOutcome::Complete);
  std::string expected;
  for (int i = 0; i < 8; ++i) expected += "1/3 ";
  // The first text comes half a second behind the beginning of the file.
  expected += "2/3 2/3 2/3 text11 text11 text11 text14 ";
  for (int i = 0; i < 17; ++i) expected += "3/3 ";
  EXPECT_EQ(shown, expected);
}

}  // namespace
}  // namespace quillmarsh
