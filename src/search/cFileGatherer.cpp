// SPDX-License-Identifier: MIT
// The walk: the location itself, then its queue, and each file past the filters.
#include "search/cFileGatherer.h"

#include <algorithm>

#include "base/OwnFiles.h"
#include "base/TextEquality.h"
#include "frame/ErrorReporting.h"
#include "frame/ProgramFlags.h"
#include "frame/Pump.h"
#include "frame/TextTable.h"
#include "frame/Views.h"
#include "fsobjects/cFSXFileSystemObject.h"
#include "fsobjects/cFSXFolderPathsList.h"
#include "fsobjects/modPaths.h"
#include "platform/Machine.h"
#include "removal/history/cLog.h"
#include "search/Cancellation.h"
#include "settings/OptionsFolder.h"

namespace quillmarsh {

namespace {

constexpr std::int32_t kFilesPerStatus = 25;
constexpr std::int32_t kFoldersReadAhead = 64;

Text Shown(const Text& path) {
  return TheMachine().Drives().ShownPath(path);
}

void LogSkipped(TextId message, const Text& path) {
  AddFreeTextToLog(LoadResString(message) + u" - '" + Shown(path) + u"' ");
}

Text ErrorTextOf(std::uint32_t code) {
  return code == 0 ? Text() : GetSystemErrorText(code);
}

bool IsGone(std::uint32_t code) {
  return code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND;
}

}  // namespace

cFileGatherer::WalkOptions cFileGatherer::WalkOptions::From(const clsDupeSettings& settings) {
  return {settings.IgnoreSystemFiles(),    settings.IgnoreHiddenFiles(),
          settings.IgnoreTemporaryFiles(), settings.IgnoreSystemFolders(),
          settings.IgnoreHiddenFolders(),  settings.IgnoreTemporaryFolders(),
          settings.IncludeSubFolders()};
}

void cFileGatherer::GatherLocation(const Text& location) {
  mFolderQueue.ResetQueue();
  mHinted = 0;

  Guarded(u"frmFindDuplicates.GetFilesArray", [&] {
    cFSXFileSystemObject fileSystem;
    if (const auto folder = fileSystem.GetFolder(location)) return GetFilesArray(*folder, false);
    // It was there when the search began; a location may not be left out without a word.
    AddFolderErrorToLog(Shown(location), ERROR_PATH_NOT_FOUND, ErrorTextOf(ERROR_PATH_NOT_FOUND));
  });
  for (;;) {
    const std::int32_t idx = mFolderQueue.GetNextFolder();
    if (idx == clsFolderQueue::NoFolder) break;
    // After a stop the rest of the queue is dropped without touching the disk.
    if (gUserAbort || mIsIncomplete) break;
    mHinted = std::max(0, mHinted - 1);
    GiveReadAheadHints();
    VisitQueuedFolder(idx);
  }
  TheMachine().Find().DropReadAhead();
  if (mIsIncomplete) throw RuntimeError(runtime_error::OutOfMemory);
}

void cFileGatherer::VisitQueuedFolder(std::int32_t idx) {
  const Text path = gFolderPathsList->GetFolderByIndex(idx);
  const FolderDecision decision = mFilters.DecideFolder(path);
  if (decision.isIncludedByName) AddFreeTextToLog(Shown(path) + u" - " + LoadResString(314));
  if (decision.isExcludedByName) AddFreeTextToLog(Shown(path) + u" - " + LoadResString(315));
  if (decision.isSkipped) return;
  Guarded(u"frmFindDuplicates.GetFilesArray", [&] {
    cFSXFolder folder;
    folder.SetPath(path);
    folder.SetAttributes(static_cast<std::int32_t>(mFolderQueue.AttributesOfLast()));
    GetFilesArray(folder, true);
  });
}

// Tells the platform which folders come next, so that it can read them in the background.
void cFileGatherer::GiveReadAheadHints() {
  for (; mHinted < kFoldersReadAhead; ++mHinted) {
    const clsFolderQueue::Entry* entry = mFolderQueue.PeekAhead(mHinted);
    if (entry == nullptr) return;
    if ((entry->attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) continue;
    const Text path = gFolderPathsList->GetFolderByIndex(entry->idx);
    if (mFilters.HasFolderLists() && mFilters.DecideFolder(path).isSkipped) continue;
    TheMachine().Find().ReadAhead(path);
  }
}

// `isPrimed` says that the folder's attributes came with the listing of its parent, a moment ago:
// then the disk is not asked for them again, and a folder that has gone meanwhile shows when it is
// listed.
void cFileGatherer::GetFilesArray(cFSXFolder& folder, bool isPrimed) {
  const Text path = folder.Path();
  if (folder.IsJunction()) {
    LogSkipped(316, path);
    return;
  }
  if (!folder.HasReadPermission()) {
    AddFolderErrorToLog(Shown(path), runtime_error::PermissionDenied, LoadResString(317));
    return;
  }
  const std::shared_ptr<cFSXFiles> files = folder.Files();
  if (files != nullptr) {
    // Not of the location itself: who names a DUPES folder wants to see what is in it.
    if (isPrimed && files->Contains(kDupesMarkerName)) return NoteDupesFolder(path);
    const std::uint32_t listingError = folder.ErrorsDuringEnumeration() && files->Count() == 0
                                           ? folder.EnumerationError()
                                           : folder.ListingError();
    if (isPrimed && files->Count() == 0 && IsGone(listingError)) return;
    const bool isReported = folder.ErrorsDuringEnumeration() || listingError != 0;
    if (isReported && !gUserAbort) {
      AddFolderErrorToLog(Shown(path), static_cast<std::int32_t>(listingError),
                          ErrorTextOf(listingError));
    }
    if (!TakeFiles(path, folder.FolderIdx(), *files)) return;
  }
  const std::shared_ptr<cFSXSubFolders> subFolders =
      mOptions.includeSubFolders ? folder.SubFoldersAndJunctions() : nullptr;
  if (subFolders != nullptr && !QueueSubFolders(*subFolders)) return;
  ShowFilesSearched();
}

// It is left out whatever else it holds, and with all that is below it.
void cFileGatherer::NoteDupesFolder(const Text& path) {
  const bool isInUse = AreStringsEqual(path, mDupesFolderPath, true);
  mNotes.push_back(u"\"" + Shown(path) +
                   (isInUse ? u"\" is the DUPES folder and was not searched"
                            : u"\" is a DUPES folder and was not searched; to search it, name it "
                              u"in a search of its own"));
  AddFreeTextToLog(mNotes.back());
}

bool cFileGatherer::TakeFiles(const Text& path, std::int32_t folderIdx, const cFSXFiles& files) {
  const std::int32_t count = files.Count();
  mSpecialFolders.SetFolder(path);
  for (std::int32_t i = 1; i <= count; ++i) {
    DoEvents_Fast();
    const cFSXFileFacts file = files.Facts(i);
    if (IsOwnFileName(file.name)) continue;
    mFilesSearched += 1;
    if (mFilesSearched % kFilesPerStatus == 0) {
      ShowFilesSearched();
      if (gViews.status != nullptr) SetPanelToolTip(PANEL1, Shown(path));
    }
    if (!IsFileSkipped(path, file) && DoesPass(file)) {
      // Set meanwhile, so that it stays set whatever way keeping fails.
      mIsIncomplete = true;
      if (!KeepRecord(folderIdx, file)) return false;
      mIsIncomplete = false;
    }
    if (gUserAbort) {
      ReportSearchCancelled(mView);
      return false;
    }
  }
  return true;
}

bool cFileGatherer::IsFileSkipped(const Text& path, const cFSXFileFacts& file) const {
  const auto log = [&](TextId message) { LogSkipped(message, path + Text(file.name)); };
  if (mOptions.ignoreSystemFiles && file.IsSystem()) {
    log(781);
    return true;
  }
  if (mOptions.ignoreHiddenFiles && file.IsHidden()) {
    log(782);
    return true;
  }
  if (mOptions.ignoreTemporaryFiles && file.IsTemporary()) {
    log(783);
    return true;
  }
  return false;
}

bool cFileGatherer::DoesPass(const cFSXFileFacts& file) const {
  return mFilters.DoesFileMatchIncludeFilter(file.name) &&
         !mFilters.DoesFileMatchIgnoreFilter(file.name, file.size, mSpecialFolders);
}

// False when there was no room for it, which has been reported.
bool cFileGatherer::KeepRecord(std::int32_t folderIdx, const cFSXFileFacts& file) {
  DupeFileUDT record;
  if (!MakeDupeFileUDT(file, folderIdx, mResults.mNames, record)) return false;
  MarkSecondPasses(record.Name, file);
  mResults.mDupeFiles.push_back(record);
  return true;
}

void cFileGatherer::MarkSecondPasses(NameHandle name, const cFSXFileFacts& file) {
  LocaleAndTime& locale = TheMachine().Locale();
  const SecondPasses passes{
      locale.IsSecondPass(FILETIME::FromTicks(file.createdAsCurr.Raw())),
      locale.IsSecondPass(FILETIME::FromTicks(file.lastModifiedAsCurr.Raw()))};
  if (passes.created || passes.lastModified) mResults.mSecondPasses.emplace(name, passes);
}

bool cFileGatherer::QueueSubFolders(const cFSXSubFolders& subFolders) {
  const Text parent = subFolders.ParentFolderPath();
  for (std::int32_t i = 1; i <= subFolders.Count(); ++i) {
    const auto attributes = static_cast<std::uint32_t>(subFolders.Attributes(i));
    const TextView name = subFolders.Name(i);
    // Junctions are queued too, and fall out when their turn comes.
    if (!IsFolderSkipped(name, attributes)) {
      const Text path = parent + Text(name) + u'\\';
      mFolderQueue.AddFolder(gFolderPathsList->AddFolder(path), attributes);
    }
    if (gUserAbort) {
      ReportSearchCancelled(mView);
      return false;
    }
  }
  return true;
}

bool cFileGatherer::IsFolderSkipped(TextView name, std::uint32_t attributes) const {
  const auto has = [attributes](std::uint32_t bit) { return (attributes & bit) != 0; };
  const auto log = [name](TextId message) { LogSkipped(message, Text(name)); };
  if (mOptions.ignoreSystemFolders && has(FILE_ATTRIBUTE_SYSTEM)) {
    log(912);
    return true;
  }
  if (mOptions.ignoreHiddenFolders && has(FILE_ATTRIBUTE_HIDDEN)) {
    log(913);
    return true;
  }
  if (mOptions.ignoreTemporaryFolders && has(FILE_ATTRIBUTE_TEMPORARY)) {
    log(914);
    return true;
  }
  return false;
}

void cFileGatherer::ShowFilesSearched() const {
  SetPanel(FILES_SEARCHED, LoadResString(1120) + u":" + DecimalText(mFilesSearched));
}

}  // namespace quillmarsh
