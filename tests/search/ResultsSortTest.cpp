// SPDX-License-Identifier: MIT
// The order of the results lists after clicks on their headings, with the outcomes that look odd.
#include "search/results/ResultsSort.h"

#include "frame/CommandScope.h"
#include "frame/Pump.h"
#include "fsobjects/LocaleFormats.h"
#include "fsobjects/cFSXFolderPathsList.h"
#include "search/ProgramFixture.h"
#include "search/results/DetailColumns.h"

namespace quillmarsh {
namespace {

constexpr Date kNoDate(9e9);  // shows as a blank cell

class ResultsSort : public ProgramFixture {
 protected:
  std::int32_t Record(TextView name, std::int64_t size, Date modified = kNoDate,
                      TextView folder = u"C:\\a\\") {
    DupeFileUDT record;
    record.Name = results.mNames.Add(name);
    record.Size = Currency::FromInteger(size);
    record.CreatedDate = kNoDate;
    record.LastModifiedDate = modified;
    record.ParentFolderIdx = gFolderPathsList->AddFolder(Text(folder));
    results.mDupeFiles.push_back(record);
    results.mFileCount += 1;
    return results.mFileCount;
  }
  // One group of all the records, shown.
  void Show() {
    results.mFileMarked.assign(results.mDupeFiles.size(), false);
    results.AddGroup(1, results.mFileCount, {});
    results.DisplayDupeGroupDetails(1, true);
  }
  [[nodiscard]] static std::string Column(const cResultsList& list, int column) {
    std::string text;
    for (std::int32_t position = 0; position < list.Count(); ++position)
      text += (position > 0 ? " " : "") + ToUtf8(list.CellText(position, column));
    return text;
  }
  [[nodiscard]] std::string Names() const { return Column(results.ulvwDupeDetails, 0); }
  void Click(int column) { details.ClickColumn(column); }

  DetailListSort details{results};
  GroupListSort groups{results};
};

TEST_F(ResultsSort, AColumnClickedTwiceFlipsAndEachColumnKeepsItsOwnOrder) {
  Record(u"b", 9);
  Record(u"A", 1234567);
  Record(u"c", 100);
  Show();
  Click(0);
  EXPECT_EQ(Names(), "A b c") << "whatever the case";
  Click(0);
  EXPECT_EQ(Names(), "c b A");
  Click(2);
  EXPECT_EQ(Names(), "b c A") << "sizes are numbers";
  Click(0);
  EXPECT_EQ(Names(), "c b A") << "as it was left, without flipping";
  Click(0);
  EXPECT_EQ(Names(), "A b c");
  for (const int column : {-1, 6, 7}) Click(column);
  EXPECT_EQ(Names(), "A b c");
  EXPECT_EQ(details.LastColumn(), 0);
}

TEST_F(ResultsSort, EqualRowsKeepTheirOrderEitherWayAndTheSelectedStaysSelected) {
  Record(u"b", 5);
  Record(u"a", 5);
  Record(u"c", 4);
  Show();
  results.ulvwDupeDetails.Select(0);
  Click(2);
  EXPECT_EQ(Names(), "c b a");
  EXPECT_EQ(results.ulvwDupeDetails.SelectedPosition(), 1);
  Click(2);
  EXPECT_EQ(Names(), "b a c");
  EXPECT_EQ(results.ulvwDupeDetails.SelectedPosition(), 0);
}

TEST_F(ResultsSort, NumbersSortAsTextOfTwentyDigitsAndWhatIsNoNumberAsZeros) {
  const std::int32_t known = Record(u"known", 1234567);
  const std::int32_t unknown = Record(u"unknown", -1);
  Record(u"empty", 0);
  Show();
  EXPECT_EQ(details.HiddenText(known), u"");
  Click(0);
  EXPECT_EQ(details.HiddenText(known), u"") << "a column of text sorts on itself";
  for (const TextView separator : {u",", u".", u"\u00A0"}) {
    LocaleFacts locale;
    locale.thousandsSeparator = separator;
    locale.decimalSeparator = separator == u"." ? u"," : u".";
    machine.SetLocale(locale);
    ResetLocaleFacts();
    Click(2);
    EXPECT_EQ(details.HiddenText(known), u"00000000000001234567");
    EXPECT_EQ(details.HiddenText(unknown), u"00000000000000000000");
  }
}

// The date that was read last is used again, in the order in which the rows stood.
TEST_F(ResultsSort, ABlankDateTakesThatOfTheRowBefore) {
  const std::int32_t blankFirst = Record(u"blank first", 1);
  Record(u"late", 1, *Date::FromCivil({2024, 5, 6, 7, 8, 9}));
  const std::int32_t blank = Record(u"blank", 1);
  Record(u"early", 1, *Date::FromCivil({1999, 12, 31, 23, 59, 59}));
  Show();
  Click(4);
  EXPECT_EQ(Names(), "blank first early late blank");
  EXPECT_EQ(details.HiddenText(blankFirst), u"1899/12/30 00:00:00");
  EXPECT_EQ(details.HiddenText(blank), u"2024/05/06 07:08:09");
  Click(4);
  EXPECT_EQ(Names(), "late blank early blank first");
  Click(0);
  Click(0);
  EXPECT_EQ(Names(), "late early blank first blank");
  Click(4);
  Click(4);
  EXPECT_EQ(Names(), "early blank first blank late");
  EXPECT_EQ(details.HiddenText(blankFirst), u"1999/12/31 23:59:59") << "the row before is another";
}

TEST_F(ResultsSort, TheFirstColumnOfTheGroupsIsNamesOrSizes) {
  results.mCriteria.namesMatch = true;
  Record(u"10", 9);
  Record(u"9", 1000);
  results.AddGroup(1, 1, Currency::FromInteger(20));
  results.AddGroup(2, 12, Currency::FromInteger(3));
  for (const std::int32_t group : {1, 2}) results.ulvwDupeGroups.Add(group);
  groups.ClickColumn(0);
  groups.ClickColumn(0);
  EXPECT_EQ(Column(results.ulvwDupeGroups, 0), "9 10") << "text, descending";
  groups.ClickColumn(1);
  EXPECT_EQ(Column(results.ulvwDupeGroups, 1), "1 12");
  groups.ClickColumn(2);
  EXPECT_EQ(Column(results.ulvwDupeGroups, 2), "3 20");
  results.mCriteria.namesMatch = false;
  groups.SetFirstColumnHoldsNames(false);
  groups.ClickColumn(0);
  EXPECT_EQ(Column(results.ulvwDupeGroups, 0), "1,000 9") << "numbers, still descending";
}

TEST_F(ResultsSort, ASortIsACommandAndLeavesAListAloneThatChangedMeanwhile) {
  for (int i = 0; i < 2000; ++i) Record(DecimalText(2000 - i), 1);
  Show();
  const std::string before = Names();
  {
    const CommandScope other;
    Click(0);
  }
  EXPECT_EQ(Names(), before);
  EXPECT_EQ(details.LastColumn(), ListSort::kNoColumn);
  bool isCommand = false;
  pump.onPump = [&] {
    isCommand = isCommand || CommandScope::IsRunning();
    // The window is closed: before any row was read, or in the middle.
    if (CommandScope::IsRunning()) results.ulvwDupeDetails.Clear();
  };
  machine.SetWaitingEvents(QS_PAINT);
  Click(0);
  SetPumpClock([now = std::chrono::steady_clock::time_point()]() mutable {
    return now += std::chrono::milliseconds(1);
  });
  pump.onPump = {};
  results.DisplayDupeGroupDetails(1, true);
  int pumps = 0;
  pump.onPump = [&] {
    if (++pumps == 3) results.ulvwDupeDetails.Clear();
  };
  Click(0);
  SetPumpClock({});
  EXPECT_TRUE(isCommand);
  EXPECT_GT(pumps, 3) << "it pumps between two rows";
  EXPECT_EQ(results.ulvwDupeDetails.Count(), 0);
}

TEST_F(ResultsSort, OnlyAPermutationReordersAList) {
  cResultsList list;
  for (const std::int32_t data : {7, 8, 9}) list.Add(data);
  for (const std::vector<std::int32_t>& order :
       {std::vector{0, 1}, {0, 1, 1}, {0, 1, 3}, {-1, 0, 1}})
    EXPECT_FALSE(list.Reorder(order));
  EXPECT_EQ(list.Items(), (std::vector{7, 8, 9}));
  list.Select(2);
  EXPECT_TRUE(list.Reorder({2, 0, 1}));
  EXPECT_EQ(list.Items(), (std::vector{9, 7, 8}));
  EXPECT_EQ(list.SelectedPosition(), 0);
}

TEST_F(ResultsSort, AColumnWithoutAHeadingIsTold) {
  EXPECT_EQ(GetDupeDetailColCount(), 7) << "with the hidden one";
  EXPECT_EQ(GetDupeDetailColLabelFromColNumber(4), u"Last Modified");
  messages.Expect();
  EXPECT_EQ(GetDupeDetailColLabelFromColNumber(6), u"");
  EXPECT_EQ(messages.shown.at(0).text,
            u"Ooops.  Unsupported case in GetDupeDetailColLabelFromColNumber");
}

}  // namespace
}  // namespace quillmarsh
