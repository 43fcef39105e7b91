// SPDX-License-Identifier: MIT
// Sort, one walk over neighbours, and what is shown at the end.
#include "search/cDuplicateGrouping.h"

#include "base/LocaleFormat.h"
#include "frame/ErrorReporting.h"
#include "frame/ProgramFlags.h"
#include "frame/Pump.h"
#include "frame/TextTable.h"
#include "frame/Views.h"
#include "fsobjects/LocaleFormats.h"
#include "fsobjects/modShlWAPI.h"
#include "platform/Machine.h"
#include "removal/history/cLog.h"
#include "search/Cancellation.h"
#include "search/cContentComparison.h"
#include "search/results/RecordSort.h"
#include "selection/MarkedFiles.h"
#include "selection/RuleTexts.h"
#include "selection/cGroupSelection.h"
#include "selection/clsMarkForRemovalWizard.h"

namespace quillmarsh {

namespace {

constexpr TextView kLineBreak = u"\r\n";
constexpr std::int32_t kRecordsPerLook = 4096;

// The entry of the history that sums a search up. The last text of the files line was never given a
// content, so a lone "; " ends it; readers of the history know the line that way.
Text HistoryText(const std::vector<Text>& locations, std::int32_t filesSearched) {
  const Text lineBreak(kLineBreak);
  Text text = lineBreak + u"\t== " + LoadResString(310) + u" ==" + lineBreak + lineBreak + u"\t" +
              LoadResString(311) + u": " + lineBreak;
  bool isFirst = true;
  for (const Text& location : locations) {
    if (!isFirst) text += kLineBreak;
    isFirst = false;
    text += u"\t" + TheMachine().Drives().ShownPath(location);
  }
  text += lineBreak + lineBreak + u"\t" + LoadResString(312) + u": " + DecimalText(filesSearched) +
          u"; " + lineBreak;
  return text;
}

}  // namespace

bool cDuplicateGrouping::ShowDupes(const std::vector<Text>& locations, std::int32_t filesSearched) {
  mResults.mFilesSearched = filesSearched;
  const bool isWhole = Guarded(u"frmFindDuplicates.ShowDupes", [&] {
    switch (SortAndGroup()) {
      case Outcome::Grouped:
        ShowOutcome(locations, filesSearched);
        break;
      case Outcome::NothingToGroup:
        if (!gUserAbort) SetPanel(PANEL1, LoadResString(290));
        break;
      case Outcome::Cancelled:
        DropGroups();
        mResults.ResetModuleLevelArraysForNewSearch();
        ReportSearchCancelled(mView);
        break;
    }
  });
  if (!isWhole) DropGroups();
  if (gViews.status != nullptr) gViews.status->HideProgress();
  mView.EnableUIAfterSearch();
  return isWhole;
}

void cDuplicateGrouping::DropGroups() {
  mResults.ClearGroups();
  mResults.ulvwDupeGroups.Clear();
  mResults.ulvwDupeDetails.Clear();
}

cDuplicateGrouping::Outcome cDuplicateGrouping::SortAndGroup() {
  // A list that stands from an earlier search is made anew, so that no group appears in it twice.
  DropGroups();
  // Files that were removed since the search are not found again.
  mResults.DropTakenOutRecords();
  const std::int32_t count = mResults.RecordCount();
  // After a stop there is no whole set of records, and so nothing true to list.
  if (count == 0 || gUserAbort) return Outcome::NothingToGroup;

  mResults.mFileMarked.assign(static_cast<std::size_t>(count), false);
  SetPanel(PANEL1, LoadResString(291) + u": " + DecimalText(mResults.mFileCount));
  DoEvents_Fast();
  // Only files that agree in everything else are read, once for a search.
  if (mResults.mCriteria.contentsMatch && !mResults.mAreContentsKnown) {
    if (!SortBy(mResults.mCriteria.WithoutContents())) return Outcome::Cancelled;
    if (!cContentComparison(mResults).ComputeChecksums()) return Outcome::Cancelled;
  }
  if (!SortBy(mResults.mCriteria)) return Outcome::Cancelled;
  SetPanel(PANEL1, LoadResString(304) + u"...");
  DoEvents_Fast();
  FormGroups(count);
  // Before the outcome is settled: this pumps too, and a stop that comes then is not to be lost.
  if (!gUserAbort) cGroupSelection(mResults).PreselectAllButNewest();
  return gUserAbort ? Outcome::Cancelled : Outcome::Grouped;
}

bool cDuplicateGrouping::SortBy(const SearchCriteria& criteria) {
  return SortRecordsWhilePumping(mResults.mDupeFiles, mResults.Facts(), criteria);
}

// One walk over neighbours. A group is added when its run ends, with what the run summed up.
void cDuplicateGrouping::FormGroups(std::int32_t count) {
  const cResultsList::UpdateLock lock(mResults.ulvwDupeGroups);
  RecordKeyReader reader(mResults.Facts(), mResults.mCriteria);
  RecordKey previous = reader.Next(mResults.Record(1));
  std::int32_t runStart = 1;
  Currency runSize = mResults.Record(1).Size;
  const auto endRun = [&](std::int32_t behind) {
    const std::int32_t members = behind - runStart;
    if (members > 1) {
      mResults.AddGroup(runStart, members, runSize);
      mResults.ulvwDupeGroups.Add(mResults.mGroupCount);
    }
  };
  for (std::int32_t i = 2; i <= count; ++i) {
    if (i % kRecordsPerLook == 0) {
      DoEvents_Fast();
      if (gUserAbort) return;
    }
    const DupeFileUDT& record = mResults.Record(i);
    const RecordKey key = reader.Next(record);
    if (reader.AreEqual(previous, key)) {
      runSize = Currency::SaturatingSum(runSize, record.Size);
    } else {
      endRun(i);
      runStart = i;
      runSize = record.Size;
    }
    previous = key;
  }
  endRun(count + 1);
}

void cDuplicateGrouping::ShowOutcome(const std::vector<Text>& locations,
                                     std::int32_t filesSearched) {
  const LocaleFacts& locale = GetLocaleFacts();
  if (mResults.mDupeFileCount > 0) {
    mResults.DisplayDupeGroupDetails(1, true);
    mResults.ulvwDupeGroups.Select(0);
  }
  SetPanel(FILES_SEARCHED,
           LoadResString(1120) + u":" + FormatGrouped(std::int64_t{filesSearched}, locale));
  SetPanel(DUPLICATES, LoadResString(1121) + u":" +
                           FormatGrouped(std::int64_t{mResults.mDupeFileCount}, locale) + u" (" +
                           FormatByteSize(mResults.mDupeTotalSize) + u")");
  SetPanel(FILES_SELECTED, LoadResString(1123) + u":0");
  SetPanel(PANEL1, LoadResString(720));
  SetPanelToolTip(PANEL1, {});
  SetPanel(PANEL2, {});
  SetPanelToolTip(PANEL2, {});
  AddFreeTextToLog(HistoryText(locations, filesSearched));
  if (mResults.mDupeFileCount > 0) {
    gMarkForRemovalWizardOptions->mRule = selection_rule::KeepNewest;
    gMarkForRemovalWizardOptions->mAllowRemovalOfAllFilesInGroup = false;
    mResults.DisplayDupeGroupDetails(mResults.mCurrentGroup, true);
  }
  mView.CheckKeepNewestRule(mResults.mDupeFileCount > 0);
  ShowSelectedCountAndSizeInStatusBar(GetTotalMarkedCountAndSize(mResults));
  if (mResults.mDupeFileCount != 0) mView.ShowResultsView();
  mView.ShowSearchSummary({filesSearched, mResults.mDupeFileCount, mResults.mGroupCount,
                           mResults.mDupeTotalSize, gUserAbort});
}

}  // namespace quillmarsh
