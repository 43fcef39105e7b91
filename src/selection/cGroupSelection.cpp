// SPDX-License-Identifier: MIT
// Each rule is one of two frames with its own choice of a file or its own condition.
#include "selection/cGroupSelection.h"

#include <iterator>
#include <unordered_map>

#include "base/TextEquality.h"
#include "frame/ErrorReporting.h"
#include "frame/Views.h"
#include "fsobjects/modPaths.h"
#include "fsobjects/modShlWAPI.h"
#include "selection/DateDiffSeconds.h"
#include "selection/MarkedFiles.h"
#include "selection/RuleRun.h"
#include "selection/RuleTexts.h"
#include "selection/clsMarkForRemovalWizard.h"

namespace quillmarsh {

namespace {

using DateOrder = RuleRun::DateOrder;
using SizeOrder = RuleRun::SizeOrder;
using Marks = RuleRun::Marks;
using Members = RuleRun::Members;

// The rules in the order of their numbers.
constexpr void (cGroupSelection::*kRules[])() = {
    &cGroupSelection::MarkNewest,
    &cGroupSelection::MarkOldest,
    &cGroupSelection::KeepNewestMarkAllOthers,
    &cGroupSelection::KeepOldestMarkAllOthers,
    &cGroupSelection::MarkAllInDrive,
    &cGroupSelection::KeepAllInDriveMarkOthers,
    &cGroupSelection::MarkAllInFolder,
    &cGroupSelection::KeepAllInFolderMarkOthers,
    &cGroupSelection::MarkBasedOnSize,
    &cGroupSelection::MarkBasedOnDate,
    &cGroupSelection::MarkBasedOnFileMask,
    &cGroupSelection::KeepAllMatchingFileMaskMarkOthers,
    &cGroupSelection::MarkSmallest,
    &cGroupSelection::MarkLargest,
    &cGroupSelection::KeepSmallestMarkOthers,
    &cGroupSelection::KeepLargestMarkOthers,
};
static_assert(std::size(kRules) == kRuleCount);

template <typename Body>
void RunRule(TextView routine, Body&& body) {
  Guarded(u"frmFindDuplicates." + Text(routine), body);
}

void MarkByDate(cSearchResults& results, TextView routine, DateOrder order, Marks marks) {
  RunRule(routine, [&] {
    RuleRun run(results);
    run.MarkByOneFile(marks, [&](Members members) { return run.FindByDate(members, order); });
  });
}

void MarkBySize(cSearchResults& results, TextView routine, SizeOrder order, Marks marks) {
  RunRule(routine, [&] {
    RuleRun run(results);
    run.MarkByOneFile(marks, [&](Members members) { return run.FindBySize(members, order); });
  });
}

// The options are copied: an event of the pump may change them meanwhile.
template <typename MakeCondition>
void MarkByCondition(cSearchResults& results, TextView routine, MakeCondition&& makeCondition) {
  RunRule(routine, [&] {
    const clsMarkForRemovalWizard options = *gMarkForRemovalWizardOptions;
    RuleRun(results).MarkWhere(options.mAllowRemovalOfAllFilesInGroup, makeCondition(options));
  });
}

// What a condition says of a folder, worked out once for each.
template <typename Decide>
class FolderCondition {
 public:
  FolderCondition(Decide decide, bool wanted) : mDecide(std::move(decide)), mWanted(wanted) {}

  bool operator()(const DupeFileUDT& record) {
    const auto [known, isNew] = mKnown.try_emplace(record.ParentFolderIdx, false);
    if (isNew) known->second = mDecide(GetFolderPathByIdx(record.ParentFolderIdx)) == mWanted;
    return known->second;
  }

 private:
  Decide mDecide;
  bool mWanted;
  std::unordered_map<std::int32_t, bool> mKnown;
};

void MarkByDrive(cSearchResults& results, TextView routine, bool isInDrive) {
  MarkByCondition(results, routine, [isInDrive](const clsMarkForRemovalWizard& options) {
    return FolderCondition(
        [&drive = options.DriveSpec()](const Text& folder) {
          return AreStringsEqual(RemoveBackslash(GetDriveRootOf(folder)), drive, true);
        },
        isInDrive);
  });
}

// With subfolders the text may stand anywhere in the path, also across the border of a folder's
// name: C:\Data finds C:\Database\ too, and people's rules are made for it. Without them nothing
// adds the final backslash that every folder's path has.
bool IsInFolder(const clsMarkForRemovalWizard& options, const Text& folder) {
  if (!options.mIncludeSubFolders) return AreStringsEqual(options.mFolderSpec, folder, true);
  return !folder.empty() && ContainsIgnoringCase(folder, options.mFolderSpec);
}

void MarkByFolder(cSearchResults& results, TextView routine, bool isInFolder) {
  MarkByCondition(results, routine, [isInFolder](const clsMarkForRemovalWizard& options) {
    return FolderCondition([&options](const Text& folder) { return IsInFolder(options, folder); },
                           isInFolder);
  });
}

void MarkByMask(cSearchResults& results, TextView routine, bool matches) {
  MarkByCondition(results, routine, [&results, matches](const clsMarkForRemovalWizard& options) {
    return [&results, &options, matches](const DupeFileUDT& record) {
      return MatchesSpec(results.NameOf(record), options.mFileMask) == matches;
    };
  });
}

std::int32_t FindInGroup(cSearchResults& results, TextView routine, std::int32_t group,
                         DateOrder order) {
  std::int32_t found = cGroupSelection::NoFile;
  RunRule(routine, [&] {
    RuleRun run(results);
    found = run.FindByDate(run.MembersOf(group), order);
  });
  return found;
}

}  // namespace

void cGroupSelection::MarkFilesBasedOnWizardOptions() {
  RunRule(u"MarkFilesBasedOnWizardOptions", [this] {
    const std::int32_t rule = gMarkForRemovalWizardOptions->mRule;
    if (rule >= 0 && rule < kRuleCount) return (this->*kRules[rule])();
    ShowMessageBox({u"Oops, forgot to code this Select for Removal method.",
                    u"MarkFilesBasedOnWizardOptions()", MessageBoxIcon::Information});
  });
}

void cGroupSelection::PreselectAllButNewest() {
  RunRule(u"PreselectAllButNewest", [this] {
    RuleRun run(mResults);
    run.MarkByOneFile(Marks::AllOthers, [&run](Members members) {
      const std::int32_t newest = run.FindByDate(members, DateOrder::Newest);
      return newest != NoFile ? newest : run.FindNewestOfAnyAge(members);
    });
  });
}

void cGroupSelection::MarkNewest() {
  MarkByDate(mResults, u"MarkNewest", DateOrder::Newest, Marks::TheFound);
}
void cGroupSelection::MarkOldest() {
  MarkByDate(mResults, u"MarkOldest", DateOrder::Oldest, Marks::TheFound);
}
void cGroupSelection::KeepNewestMarkAllOthers() {
  MarkByDate(mResults, u"KeepNewestMarkAllOthers", DateOrder::Newest, Marks::AllOthers);
}
void cGroupSelection::KeepOldestMarkAllOthers() {
  MarkByDate(mResults, u"KeepOldestMarkAllOthers", DateOrder::Oldest, Marks::AllOthers);
}

void cGroupSelection::MarkAllInDrive() {
  MarkByDrive(mResults, u"MarkAllInDrive", true);
}
void cGroupSelection::KeepAllInDriveMarkOthers() {
  MarkByDrive(mResults, u"KeepAllInDriveMarkOthers", false);
}
void cGroupSelection::MarkAllInFolder() {
  MarkByFolder(mResults, u"MarkAllInFolder", true);
}
void cGroupSelection::KeepAllInFolderMarkOthers() {
  MarkByFolder(mResults, u"KeepAllInFolderMarkOthers", false);
}

void cGroupSelection::MarkBasedOnSize() {
  MarkByCondition(mResults, u"MarkBasedOnSize", [](const clsMarkForRemovalWizard& options) {
    return [bytes = options.FileSizeInBytes()](const DupeFileUDT& record) {
      return record.Size > bytes;
    };
  });
}

void cGroupSelection::MarkBasedOnDate() {
  MarkByCondition(mResults, u"MarkBasedOnDate", [](const clsMarkForRemovalWizard& options) {
    return [bar = MillisecondsOf(options.mLastModifiedDate)](const DupeFileUDT& record) {
      return SecondsBetween(MillisecondsOf(record.LastModifiedDate), bar) < Currency();
    };
  });
}

void cGroupSelection::MarkBasedOnFileMask() {
  MarkByMask(mResults, u"MarkBasedOnFileMask", true);
}
void cGroupSelection::KeepAllMatchingFileMaskMarkOthers() {
  MarkByMask(mResults, u"KeepAllMatchingFileMaskMarkOthers", false);
}

void cGroupSelection::MarkSmallest() {
  MarkBySize(mResults, u"MarkSmallest", SizeOrder::Smallest, Marks::TheFound);
}
void cGroupSelection::MarkLargest() {
  MarkBySize(mResults, u"MarkLargest", SizeOrder::Largest, Marks::TheFound);
}
void cGroupSelection::KeepSmallestMarkOthers() {
  MarkBySize(mResults, u"KeepSmallestMarkOthers", SizeOrder::Smallest, Marks::AllOthers);
}
void cGroupSelection::KeepLargestMarkOthers() {
  MarkBySize(mResults, u"KeepLargestMarkOthers", SizeOrder::Largest, Marks::AllOthers);
}

std::int32_t cGroupSelection::GetIdxOfNewestFileInGroup(std::int32_t group) {
  return FindInGroup(mResults, u"GetIdxOfNewestFileInGroup", group, DateOrder::Newest);
}

std::int32_t cGroupSelection::GetIdxOfOldestFileInGroup(std::int32_t group) {
  return FindInGroup(mResults, u"GetIdxOfOldestFileInGroup", group, DateOrder::Oldest);
}

void cGroupSelection::UnMarkAll() {
  RunRule(u"UnMarkAll", [this] {
    mResults.mFileMarked.assign(mResults.mFileMarked.size(), false);
    ShowSelectedCountAndSizeInStatusBar({});
    if (mResults.mDupeFileCount != 0)
      mResults.DisplayDupeGroupDetails(mResults.mCurrentGroup, true);
  });
}

}  // namespace quillmarsh
