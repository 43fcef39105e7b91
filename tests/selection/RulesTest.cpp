// SPDX-License-Identifier: MIT
// The sixteen rules and the automatic selection over random groups, against an oracle that knows
// the answer of each condition by heart and orders dates as pairs of seconds.
#include <algorithm>
#include <random>

#include "base/CaseMapping.h"
#include "frame/ErrorReporting.h"
#include "fsobjects/cFSXFolderPathsList.h"
#include "search/ProgramFixture.h"
#include "selection/MarkedFiles.h"
#include "selection/RuleTexts.h"
#include "selection/cGroupSelection.h"
#include "selection/clsMarkForRemovalWizard.h"

namespace quillmarsh {
namespace {

constexpr std::int64_t kLimit = 922'337'203'685'477;  // beyond it no size counts
constexpr std::int64_t kSizes[] = {-1, 0, 1, 2048, 2049, std::int64_t{1} << 40, kLimit, -kLimit};

struct Folder {
  TextView path;
  TextView drive;
};
constexpr Folder kFolders[] = {
    {u"C:\\Data\\", u"C:"},
    {u"c:\\dATA\\deep\\", u"c:"},
    {u"C:\\Database\\", u"C:"},
    {u"D:\\Old\\C\\Data\\", u"D:"},
    {u"C:\\", u"C:"},
    {u"\\\\srv\\Share\\Data\\", u"\\\\srv\\Share"},
    {u"\\\\SRV\\share\\x\\", u"\\\\SRV\\share"},
};
constexpr TextView kFolderSpecs[] = {u"C:\\Data\\",   u"C:\\Data", u"dATA\\", u"",
                                     u"c:\\database", u"\\\\srv",  u"X:\\"};
constexpr TextView kDriveSpecs[] = {u"C:\\", u"d: [System]", u"\\\\srv\\share\\", u"c",
                                    u"\\\\srv\\share\\Data"};

constexpr TextView kMasks[] = {u"*.txt", u"*.*", u"a*; *.DOC", u"?.txt"};
struct Name {
  TextView text;
  bool matches[4];
};
constexpr Name kNames[] = {
    {u"a.txt", {true, true, true, true}},
    {u"b.TXT", {true, true, false, true}},
    {u"Abc.doc", {false, true, true, false}},
    {u"none", {false, true, false, false}},
};

std::int64_t SecondOf(int year, int month, int day, int hour) {
  return Date::FromCivil({.year = year, .month = month, .day = day, .hour = hour})->WholeSeconds();
}

struct File {
  std::int64_t modified;  // seconds
  std::int64_t created;
  std::int64_t size;
  const Folder* folder;
  const Name* name;
  bool isMarked;

  [[nodiscard]] std::pair<std::int64_t, std::int64_t> Dates() const { return {modified, created}; }
};
using Files = std::vector<File>;

class Rules : public ProgramFixture {
 protected:
  // On a day of which the year 30 years ago had none.
  Rules() { machine.SetClock(TicksOf(2028, 2, 29, 10)); }

  const std::int64_t mNow = SecondOf(2028, 2, 29, 10);
  const std::int64_t mOld = SecondOf(1998, 2, 28, 10);
  const std::int64_t mAhead = SecondOf(2029, 2, 28, 10);
  const std::int64_t mMoments[11] = {mNow,
                                     mNow - 1,
                                     mNow - 86400,
                                     mOld - 1,
                                     mOld,
                                     mOld + 1,
                                     mAhead - 1,
                                     mAhead,
                                     mAhead + 1,
                                     SecondOf(1601, 1, 1, 0),
                                     SecondOf(9999, 12, 31, 23)};
  std::mt19937 random;
  std::vector<Files> groups;
  unsigned maskNumber = 0;
  cGroupSelection selection{results};

  static clsMarkForRemovalWizard& Options() { return *gMarkForRemovalWizardOptions; }

  template <typename Range>
  const auto& OneOf(const Range& range) {
    return range[random() % std::size(range)];
  }

  // 0.4 seconds more make no other second, and no tie with any other of these dates.
  Date DateOf(std::int64_t second) {
    const Date date = Date::FromWholeSeconds(second);
    const bool isLater = second > 0 && random() % 2 != 0;
    return isLater ? Date(date.Days() + 0.4 / 86400) : date;
  }

  void AddGroup(const Files& files) {
    const auto first = static_cast<std::int32_t>(results.mDupeFiles.size()) + 1;
    for (const File& file : files) {
      DupeFileUDT record;
      record.Name = results.mNames.Add(file.name->text);
      record.Size = Currency::FromInteger(file.size);
      record.LastModifiedDate = DateOf(file.modified);
      record.CreatedDate = DateOf(file.created);
      record.ParentFolderIdx = gFolderPathsList->AddFolder(file.folder->path);
      results.mDupeFiles.push_back(record);
      results.mFileMarked.push_back(random() % 2 != 0);
    }
    results.mFileCount = static_cast<std::int32_t>(results.mDupeFiles.size());
    results.AddGroup(first, static_cast<std::int32_t>(files.size()), {});
    groups.push_back(files);
  }

  void Clear() {
    results.ResetModuleLevelArraysForNewSearch();
    groups.clear();
  }

  // Few different values in each group, so that ties and groups of one kind are common; now and
  // then an emptied group.
  void MakeForest(unsigned seed) {
    Clear();
    random.seed(seed);
    for (int group = 0; group < 60; ++group) {
      const std::int64_t moments[] = {OneOf(mMoments), OneOf(mMoments)};
      const std::int64_t sizes[] = {OneOf(kSizes), OneOf(kSizes)};
      const Folder* folders[] = {&OneOf(kFolders), &OneOf(kFolders)};
      const Name* names[] = {&OneOf(kNames), &OneOf(kNames)};
      Files files(random() % 12 == 0 ? 0 : 1 + random() % 5);
      for (File& file : files)
        file = {OneOf(moments), OneOf(moments), OneOf(sizes), OneOf(folders), OneOf(names), false};
      AddGroup(files);
    }
    maskNumber = static_cast<unsigned>(random() % std::size(kMasks));
    Options().mFileMask = kMasks[maskNumber];
    Options().mFolderSpec = OneOf(kFolderSpecs);
    Options().mIncludeSubFolders = random() % 2 != 0;
    Options().SetDriveSpec(OneOf(kDriveSpecs));
    Options().SetSizeIncrement(static_cast<std::int32_t>(random() % 2));
    Options().SetFileSize(Currency::FromDouble(static_cast<double>(random() % 3)));
    Options().mLastModifiedDate = DateOf(OneOf(mMoments));
    Options().mAllowRemovalOfAllFilesInGroup = random() % 2 != 0;
  }

  [[nodiscard]] bool Fulfils(std::int32_t rule, const File& file) const {
    const Text folder = UpperCaseText(file.folder->path);
    const Text spec = UpperCaseText(Options().mFolderSpec);
    switch (rule / 2) {
      case 2:
        return UpperCaseText(file.folder->drive) == UpperCaseText(Options().DriveSpec());
      case 3:
        return Options().mIncludeSubFolders ? folder.find(spec) != Text::npos : folder == spec;
      case 5:
        return file.name->matches[maskNumber];
      default:
        return rule == 8 ? Currency::FromInteger(file.size) > Options().FileSizeInBytes()
                         : file.modified < Options().mLastModifiedDate.WholeSeconds();
    }
  }

  static void MarkOne(Files& files, Files::iterator found, bool marksFound) {
    for (File& file : files) file.isMarked = !marksFound;
    if (found != files.end()) found->isMarked = marksFound;
  }

  void MarkByDate(Files& files, bool newest, bool marksFound) const {
    const auto before = [](const File& a, const File& b) { return a.Dates() < b.Dates(); };
    auto found =
        newest ? std::ranges::max_element(files, before) : std::ranges::min_element(files, before);
    const std::pair old(mOld, mOld);
    const std::pair ahead(mAhead, mAhead);
    if (found != files.end() && (newest ? found->Dates() <= old : found->Dates() >= ahead))
      found = files.end();
    MarkOne(files, found, marksFound);
  }

  static void MarkBySize(Files& files, bool largest, bool marksFound) {
    auto found = largest ? std::ranges::max_element(files, {}, &File::size)
                         : std::ranges::min_element(files, {}, &File::size);
    if (found != files.end() && found->size == (largest ? -kLimit : kLimit)) found = files.end();
    MarkOne(files, found, marksFound);
  }

  void MarkWhere(Files& files, std::int32_t rule) const {
    const bool isNegated = rule == 5 || rule == 7 || rule == 11;
    for (File& file : files) file.isMarked = Fulfils(rule, file) != isNegated;
    if (Options().mAllowRemovalOfAllFilesInGroup) return;
    if (!std::ranges::all_of(files, &File::isMarked)) return;
    const auto newest = std::ranges::max_element(files, {}, &File::modified);
    if (newest != files.end() && newest->modified > mOld) newest->isMarked = false;
  }

  void Mark(Files& files, std::int32_t rule) const {
    if (rule < 4) return MarkByDate(files, rule % 2 == 0, rule < 2);
    if (rule < 12) return MarkWhere(files, rule);
    return MarkBySize(files, rule % 2 != 0, rule < 14);
  }

  // Holds marks, totals and the count of wholly marked groups against the groups of the oracle.
  void ExpectMarksOfOracle(const std::string& where) {
    std::int32_t index = 0;
    std::int32_t whole = 0;
    MarkedTotal total;
    for (std::size_t group = 0; group < groups.size(); ++group) {
      const bool isWhole =
          !groups[group].empty() && std::ranges::all_of(groups[group], &File::isMarked);
      if (isWhole) ++whole;
      ASSERT_EQ(IsWhollyMarked(results, static_cast<std::int32_t>(group) + 1), isWhole) << where;
      for (const File& file : groups[group]) {
        ASSERT_EQ(IsMarked(results, ++index), file.isMarked) << where << ", group " << group + 1;
        if (!file.isMarked) continue;
        total.count += 1;
        total.size = Currency::SaturatingSum(total.size, Currency::FromInteger(file.size));
      }
    }
    ASSERT_EQ(WhollyMarkedGroupCount(results), whole) << where;
    ASSERT_EQ(GetTotalMarkedCountAndSize(results).count, total.count) << where;
    ASSERT_EQ(GetTotalMarkedCountAndSize(results).size, total.size) << where;
  }
};

TEST_F(Rules, MarkRandomGroupsAsTheOracleDoes) {
  for (unsigned seed = 0; seed < 100; ++seed) {
    MakeForest(seed);
    for (std::int32_t rule = 0; rule < kRuleCount; ++rule) {
      Options().mRule = rule;
      selection.MarkFilesBasedOnWizardOptions();
      for (Files& files : groups) Mark(files, rule);
      ExpectMarksOfOracle("seed " + std::to_string(seed) + ", rule " + std::to_string(rule));
      if (HasFatalFailure()) return;
    }
  }
}

// The selection that nobody chose leaves exactly one file of every group, whatever its dates: the
// rule's newest, and where there is none the latest.
TEST_F(Rules, TheAutomaticSelectionKeepsTheNewestFileOfEveryGroupWhateverItsAge) {
  const auto before = [](const File& a, const File& b) { return a.Dates() < b.Dates(); };
  for (unsigned seed = 0; seed < 100; ++seed) {
    MakeForest(seed);
    selection.PreselectAllButNewest();
    for (Files& files : groups) MarkOne(files, std::ranges::max_element(files, before), false);
    ExpectMarksOfOracle("seed " + std::to_string(seed));
    ASSERT_EQ(WhollyMarkedGroupCount(results), 0);
  }
}

// What a person chose does what it says, also where no copy is left. Removal asks then.
TEST_F(Rules, ThatAPersonChoseMayMarkAWholeGroupByItsDates) {
  struct Row {
    const char* what;
    std::int64_t modified;
    std::int64_t created;
    std::int32_t rule;
    std::int32_t marked;  // of two files
  };
  const Row rows[] = {
      {"old: no newest", mOld, mOld, 0, 0},
      {"old: all but none", mOld, mOld, 2, 2},
      {"old, but created later", mOld, mOld + 1, 2, 1},
      {"old: none to keep in the drive", mOld, mOld, 4, 2},
      {"old, and the later creation keeps none", mOld, mNow, 4, 2},
      {"one second younger: one is kept", mOld + 1, mOld, 4, 1},
      {"ahead: no oldest", mAhead, mAhead, 1, 0},
      {"ahead: all but none", mAhead, mAhead, 3, 2},
  };
  for (const Row& row : rows) {
    Clear();
    const File file = {row.modified, row.created, 1, &kFolders[0], &kNames[0], false};
    AddGroup({file, file});
    Options().mRule = row.rule;
    Options().SetDriveSpec(u"C:");
    selection.MarkFilesBasedOnWizardOptions();
    EXPECT_EQ(GetTotalMarkedCountAndSize(results).count, row.marked) << row.what;
  }
}

TEST_F(Rules, AStaleMemberEndsTheRuleWhereItStandsAndANumberWithoutARuleMarksNothing) {
  const File file = {mNow, mNow, 1, &kFolders[0], &kNames[0], false};
  AddGroup({file, file});
  AddGroup({file, file});
  results.mFileMarked = {false, false, true, true};
  results.mDupeFiles.resize(3);
  Options().mRule = 14;
  messages.Expect();
  selection.MarkFilesBasedOnWizardOptions();
  EXPECT_EQ(results.mFileMarked, (std::vector<bool>{false, true, true, true}));
  EXPECT_EQ(gPendingError.number, runtime_error::SubscriptOutOfRange);
  EXPECT_NE(messages.shown[0].text.find(u"frmFindDuplicates.KeepSmallestMarkOthers"), Text::npos);

  EXPECT_EQ(GetRuleName(15), u"Keep Largest, Select Others");
  for (const std::int32_t rule : {-1, kRuleCount}) {
    Options().mRule = rule;
    messages.Expect();
    selection.MarkFilesBasedOnWizardOptions();
    EXPECT_EQ(messages.shown.back().title, u"MarkFilesBasedOnWizardOptions()");
    EXPECT_EQ(results.mFileMarked, (std::vector<bool>{false, true, true, true}));
    EXPECT_EQ(GetRuleName(rule) + GetRuleDescription(rule), u"");
  }
}

}  // namespace
}  // namespace quillmarsh
