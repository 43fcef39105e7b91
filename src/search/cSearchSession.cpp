// SPDX-License-Identifier: MIT
// The order of a search, and its end on every way out.
#include "search/cSearchSession.h"

#include <unordered_set>

#include "frame/CommandScope.h"
#include "frame/ErrorReporting.h"
#include "frame/ProgramFlags.h"
#include "frame/Pump.h"
#include "frame/TextTable.h"
#include "frame/Views.h"
#include "fsobjects/cFSXDrive.h"
#include "fsobjects/cFSXFileSystemObject.h"
#include "fsobjects/cFSXFolderPathsList.h"
#include "fsobjects/modPaths.h"
#include "platform/Machine.h"
#include "removal/history/cLog.h"
#include "search/Cancellation.h"
#include "search/cDuplicateGrouping.h"
#include "search/cFileGatherer.h"
#include "search/cLocationCheck.h"

namespace quillmarsh {

namespace {

Text Joined(const std::vector<Text>& texts, TextView separator) {
  Text joined;
  for (const Text& text : texts) {
    if (!joined.empty()) joined += separator;
    joined += text;
  }
  return joined;
}

std::vector<Text> ShownPaths(const std::vector<Text>& paths) {
  std::vector<Text> shown;
  for (const Text& path : paths) shown.push_back(TheMachine().Drives().ShownPath(path));
  return shown;
}

}  // namespace

SearchOutcome cSearchSession::FindDuplicateFiles() {
  const CommandScope command;
  if (!command.IsEntered()) return SearchOutcome::Refused;
  // Cleared here and nowhere later in a search: from now on a stop is not to be lost.
  gUserAbort = false;
  bool isRefused = false;
  const bool isWhole = SearchAndGroup(isRefused);
  DoEvents_Fast();
  AddToLog(log_kind::EndSearch);
  if (gLog != nullptr) {
    gLog->AppendInMemoryStringToLogFile();
    gLog->ResetInMemoryLog();
  }
  if (gUserAbort) return SearchOutcome::Stopped;
  if (isRefused) return SearchOutcome::Refused;
  return isWhole ? SearchOutcome::Complete : SearchOutcome::Failed;
}

// False when something was reported as failed.
bool cSearchSession::SearchAndGroup(bool& isRefused) {
  const StoppablePart stoppable;
  const bool isSearched = Guarded(u"frmFindDuplicates.FindDuplicateFiles", [&] {
    isRefused = !IsCriteriaValid();
    if (!isRefused) Search();
  });
  if (!isSearched) mResults.ResetModuleLevelArraysForNewSearch();
  // Reached on every way, also after a refused start, which has no begin entry.
  mView.StopAnimation();
  cDuplicateGrouping grouping(mResults, mView);
  const bool isShown = grouping.ShowDupes(mSearchedFolders, mFilesSearched);
  // Nothing was searched, so nothing was not found either.
  if (isRefused && mResults.RecordCount() == 0) SetPanel(PANEL1, {});
  return isShown && isSearched;
}

bool cSearchSession::IsCriteriaValid() {
  bool isValid = false;
  Guarded(u"frmFindDuplicates.IsCriteriaValid()", [&] {
    mSelectedFolders = mView.GetSelectedFolderPaths();
    isValid = AreCriteriaAndLocationsValid(mSettings, mSelectedFolders);
  });
  return isValid;
}

void cSearchSession::Search() {
  AddToLog(log_kind::BeginSearch);
  mSearchedFolders = mSelectedFolders;
  mSettings.SetFolderPaths(Joined(mSelectedFolders, kListSeparator));
  AddFreeTextToLog(u"Locations To Search: " + Joined(ShownPaths(mSelectedFolders), u","));
  SetStatusForNewSearch();
  DisableUIForSearch();
  DoEvents_Fast();

  const cSearchFilters filters(mSettings);
  for (const Text& line : filters.Announcements()) AddFreeTextToLog(line);
  cSpecialFolders specialFolders(mSettings.IgnoreFilesInWindowsDir());
  mFilesSearched = 0;
  mNotes.clear();
  mResults.mCurrentGroup = 0;
  mResults.ResetModuleLevelArraysForNewSearch();
  // A refused Start groups these results once more: by what they were searched for, not by what the
  // settings say then.
  mResults.mCriteria = {mSettings.NamesMatch(), mSettings.SizesMatch(),
                        mSettings.CreateTimeStampsMatch(), mSettings.LastModTimeStampsMatch(),
                        mSettings.ContentsMatch()};
  DoEvents_Fast();
  gFolderPathsList->NewList();

  // Only a walk that was finished counts; after a stop the number is still that of an earlier one.
  if (SearchLocations(filters, specialFolders)) {
    mResults.mFileCount = static_cast<std::int32_t>(mResults.mDupeFiles.size());
  } else {
    // Nor may what was gathered until then ever be listed as if it were all.
    mResults.ResetModuleLevelArraysForNewSearch();
  }
}

// False when the user stopped the search.
bool cSearchSession::SearchLocations(const cSearchFilters& filters,
                                     cSpecialFolders& specialFolders) {
  const auto options = cFileGatherer::WalkOptions::From(mSettings);
  cFileGatherer gatherer(mResults, mView, {options, filters, specialFolders}, mFilesSearched);
  cFSXFileSystemObject fileSystem;
  std::unordered_set<Text> walked;
  for (const Text& selected : mSelectedFolders) {
    if (!walked.insert(CanonicalFormOf(selected)).second) continue;
    const Text location = AddBackslash(selected);
    const auto drive = fileSystem.GetDrive(location);
    specialFolders.SetLocation(location, IsRootPath(location),
                               drive == nullptr ? Text() : drive->FileSystem());
    SetPanel(PANEL1, LoadResString(313) + u" " + TheMachine().Drives().ShownPath(location) + u" .");
    DoEvents_Fast();
    gatherer.GatherLocation(location);
    if (gUserAbort) {
      ReportSearchCancelled(mView);
      return false;
    }
  }
  mNotes = gatherer.Notes();
  return true;
}

void cSearchSession::ClearListviews() {
  // One after the other, since only one list can hold the update lock.
  mResults.ulvwDupeDetails.Clear();
  mResults.ulvwDupeGroups.Clear();
  DoEvents_Fast();
}

void cSearchSession::SetStatusForNewSearch() {
  SetPanel(PANEL1, LoadResString(323) + u"...");
  DoEvents_Fast();
  ClearListviews();
  // What is not listed is not selected either.
  mResults.ClearGroups();
  mResults.mFileMarked.assign(mResults.mFileMarked.size(), false);
  SetPanel(PANEL1, {});
  SetPanel(PANEL2, {});
  SetPanel(FILES_SEARCHED, LoadResString(1120) + u":0");
  SetPanel(DUPLICATES, LoadResString(1121) + u":0");
  SetPanel(FILES_SELECTED, LoadResString(1123) + u":0");
}

void cSearchSession::DisableUIForSearch() {
  mView.DisableUIForSearch();
  mView.SetGroupColumnCaption(mSettings.NamesMatch() ? LoadResString(347) : LoadResString(364));
  mView.StartAnimation();
}

}  // namespace quillmarsh
