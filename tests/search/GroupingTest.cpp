// SPDX-License-Identifier: MIT
// What makes records one group.
#include <map>
#include <random>

#include "base/CaseMapping.h"
#include "frame/ProgramFlags.h"
#include "frame/Pump.h"
#include "fsobjects/cFSXFolderPathsList.h"
#include "search/ProgramFixture.h"
#include "search/cDuplicateGrouping.h"

namespace quillmarsh {
namespace {

class Grouping : public ProgramFixture {
 protected:
  Grouping() : mFolder(gFolderPathsList->AddFolder(u"C:\\a\\")) {}

  void Add(TextView name, std::int64_t size, Date created = Date(45000.0),
           Date modified = Date(45000.0)) {
    DupeFileUDT record;
    record.Name = results.mNames.Add(name);
    record.Size = Currency::FromInteger(size);
    record.CreatedDate = created;
    record.LastModifiedDate = modified;
    record.ParentFolderIdx = mFolder;
    results.mDupeFiles.push_back(record);
    results.mFileCount += 1;
  }

  void Group(bool name, bool size, bool created, bool modified) {
    results.mCriteria = {name, size, created, modified};
    EXPECT_TRUE(cDuplicateGrouping(results, view).ShowDupes({u"C:\\a"}, results.mFileCount));
  }

  // Member texts of all groups, "1,2 3,4,5".
  std::string Members() const {
    std::string text;
    for (std::int32_t group = 1; group <= results.mGroupCount; ++group) {
      text += (group > 1 ? " " : "") + ToUtf8(results.mGroupFileIndexes(group));
    }
    return text;
  }

 private:
  std::int32_t mFolder;
};

TEST_F(Grouping, NamesCountWithoutCaseAndInAnyFolder) {
  for (const TextView name : {u"b.txt", u"A.TXT", u"\u00e9.txt", u"a.txt", u"\u00c9.TXT", u"a.tx"})
    Add(name, 1);
  Group(true, false, false, false);
  EXPECT_EQ(Members(), "2,3 5,6");
  EXPECT_EQ(ToUtf8(results.ulvwDupeGroups.CellText(0, 0)), "A.TXT");
}

TEST_F(Grouping, SizesBeyondThirtyTwoBitsAreSummedExactly) {
  const std::int64_t large = (std::int64_t{1} << 40) + 1;
  Add(u"x", large);
  Add(u"y", large);
  Add(u"z", large);
  Add(u"w", 1);
  Group(false, true, false, false);
  EXPECT_EQ(Members(), "2,3,4");
  EXPECT_EQ(results.mDupeTotalSize.ToInteger(), 3 * large);
  EXPECT_EQ(results.mGroupFileCount, std::vector<std::int32_t>{3});
  EXPECT_EQ(ToUtf8(results.ulvwDupeGroups.CellText(0, 0)), "1,099,511,627,777");
  EXPECT_EQ(ToUtf8(results.ulvwDupeGroups.CellText(0, 1)), "3");
  EXPECT_EQ(ToUtf8(results.ulvwDupeGroups.CellText(0, 2)), "3,298,534,883,331");
  EXPECT_EQ(ToUtf8(results.KeyTextOf(1)), "1099511627777|");
  EXPECT_EQ(Panel(DUPLICATES), "Duplicates:3 (3.00 TB)");
}

TEST_F(Grouping, ATotalThatIsTooLargeToCountStaysAtTheLargest) {
  Add(u"x", 900'000'000'000'000);
  Add(u"y", 900'000'000'000'000);
  Group(false, true, false, false);
  EXPECT_EQ(Members(), "1,2");
  EXPECT_EQ(results.mDupeTotalSize, Currency::FromRaw(INT64_MAX));
}

TEST_F(Grouping, DatesCountToTheSecondCutAndNotRounded) {
  const double second = 1.0 / 86400.0;
  const double day = 45000.0 + 7 * second;
  Add(u"a", 1, Date(), Date(day));
  Add(u"b", 1, Date(), Date(day + 0.9 * second));
  Add(u"c", 1, Date(), Date(day + 1.1 * second));
  Add(u"d", 1, Date(), Date(day + 0.4 * second));
  Group(false, true, false, true);
  EXPECT_EQ(Members(), "1,2,3");
  EXPECT_EQ(ToUtf8(results.KeyTextOf(1)), "1|2023/03/15 00:00:07|");
}

// A bad date must not end a search: its text is that of the record before it in the sorted array.
TEST_F(Grouping, AnImpossibleDateTakesOverTheDateOfTheRecordBefore) {
  Add(u"a", 1, Date(), Date(45000.0));
  Add(u"a", 1, Date(), Date(3e6));
  Add(u"b", 1, Date(), Date(45000.0));
  Add(u"c", 1, Date(), Date(3e6));
  Add(u"c", 1, Date(), Date(45000.0));
  Group(true, true, false, true);
  // Within "c" the impossible one sorts first, behind "b", whose date it takes, as "c" has it too.
  EXPECT_EQ(Members(), "4,5");
}

TEST_F(Grouping, OneRecordMakesNoGroupAndTheSummarySaysSo) {
  Add(u"alone", 1);
  Group(true, true, false, false);
  EXPECT_EQ(Members(), "");
  ASSERT_EQ(view.summaries.size(), 1U);
  EXPECT_EQ(view.summaries[0].NumDuplicatesFound, 0);
  EXPECT_FALSE(view.isResultsView);
}

TEST_F(Grouping, AStopDuringTheSortLeavesNothingToList) {
  machine.SetWaitingEvents(QS_KEY);
  for (int i = 0; i < 400000; ++i) Add(u"a rather long name " + DecimalText(i % 1000), 1);
  // The first pump comes before the sort, the second during it.
  int pumps = 0;
  pump.onPump = [&pumps] { gUserAbort = ++pumps >= 2; };
  DoEvents();
  Group(true, true, false, false);
  EXPECT_GE(pumps, 2);
  EXPECT_EQ(results.mGroupCount, 0);
  EXPECT_EQ(results.RecordCount(), 0);
  EXPECT_EQ(Panel(PANEL1), "Search cancelled by user.");
  EXPECT_TRUE(view.summaries.empty());
}

TEST_F(Grouping, RandomForestsGroupLikeAMapOfKeys) {
  for (unsigned seed = 0; seed < 60; ++seed) {
    std::mt19937 random(seed);
    results.ResetModuleLevelArraysForNewSearch();
    results.mFileCount = 0;
    const std::size_t count = 2 + random() % 300;
    for (std::size_t i = 0; i < count; ++i) {
      Text name(1, u"abAB\u00e9\u00c9"[random() % 6]);
      const auto below = [&random](unsigned limit) { return static_cast<int>(random() % limit); };
      Add(name + DecimalText(below(5)), below(4), Date(45000.0 + below(2)),
          Date(45000.0 + below(4) / 2.0 / 86400.0));
    }
    const unsigned choice = 1 + static_cast<unsigned>(random() % 15);
    if ((choice & 3) == 0) continue;
    Group((choice & 1) != 0, (choice & 2) != 0, (choice & 4) != 0, (choice & 8) != 0);

    std::map<std::tuple<Text, std::int64_t, std::int64_t, std::int64_t>, int> counts;
    for (const DupeFileUDT& record : results.mDupeFiles) {
      counts[{(choice & 1) != 0 ? UpperCaseText(results.NameOf(record)) : Text(),
              (choice & 2) != 0 ? record.Size.Raw() : 0,
              (choice & 4) != 0 ? record.CreatedDate.WholeSeconds() : 0,
              (choice & 8) != 0 ? record.LastModifiedDate.WholeSeconds() : 0}] += 1;
    }
    std::int32_t groups = 0;
    std::int32_t files = 0;
    for (const auto& [key, members] : counts) {
      if (members < 2) continue;
      groups += 1;
      files += members;
    }
    ASSERT_EQ(results.mGroupCount, groups) << "seed " << seed;
    ASSERT_EQ(results.mDupeFileCount, files) << "seed " << seed;
    ASSERT_EQ(results.ulvwDupeGroups.Count(), groups) << "seed " << seed;
  }
}

}  // namespace
}  // namespace quillmarsh
