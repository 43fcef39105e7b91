// SPDX-License-Identifier: MIT
// Asking, walking, bookkeeping, closing. The closing steps come on every way, also after a No.
#include "removal/cRemovalRun.h"

#include <algorithm>
#include <chrono>

#include "base/LocaleFormat.h"
#include "frame/CommandScope.h"
#include "frame/ErrorReporting.h"
#include "frame/ProgramFlags.h"
#include "frame/Pump.h"
#include "frame/TextTable.h"
#include "frame/Views.h"
#include "fsobjects/LocaleFormats.h"
#include "fsobjects/modShlWAPI.h"
#include "removal/RemovalLock.h"
#include "removal/cFileRemoval.h"
#include "removal/history/cLog.h"
#include "selection/MarkedFiles.h"
#include "settings/OptionsFolder.h"

namespace quillmarsh {

std::int32_t gRemovalWarningResult = kRemovalWarningCancel;

namespace {

constexpr TextView kSource = u"frmFindDuplicates.RemoveMarkedFilesAllGroups";
constexpr TextView kLineBreak = u"\r\n";
constexpr auto kSaveInterval = std::chrono::seconds(1);

void WriteHistory() {
  AddToLog(log_kind::EndRemoval);
  if (gLog == nullptr) return;
  gLog->AppendInMemoryStringToLogFile();
  gLog->ResetInMemoryLog();
}

}  // namespace

struct cRemovalRun::Walk {
  Walk(Mode walkMode, const clsDupeSettings& settings, RemovalGuard* walkGuard,
       RemovalListener listener)
      : mode(walkMode), removal(settings, walkGuard, std::move(listener)), guard(walkGuard) {}

  const Mode mode;
  Text dupesFolder;
  cFileRemoval removal;
  RemovalGuard* const guard;
  std::int32_t scannedCount = 0;
  Outcome outcome;
  std::chrono::steady_clock::time_point nextSave = std::chrono::steady_clock::now() + kSaveInterval;
};

void cRemovalRun::GetMarkedCount(std::int32_t& count) const {
  const auto& marks = mResults.mFileMarked;
  const auto counted = std::min(marks.size(), static_cast<std::size_t>(mResults.RecordCount()));
  count = static_cast<std::int32_t>(
      std::count(marks.begin(), marks.begin() + static_cast<std::ptrdiff_t>(counted), true));
}

void cRemovalRun::GetRemovalMethodDescription(Text& text) const {
  switch (mSettings.RemoveMethod()) {
    case RemoveMethod::Delete:
      text = LoadResString(410);
      return;
    case RemoveMethod::Recycle:
      text = LoadResString(411);
      return;
    case RemoveMethod::MoveToDupesFolder:
      text = LoadResString(438) + u" \\DUPES";
      return;
    case RemoveMethod::MoveToOtherFolder:
      text = LoadResString(414);
      return;
  }
  text.clear();
}

void cRemovalRun::RemoveMarkedFilesAllGroups(bool listOnly, RemovalGuard* guard) {
  if (listOnly) {
    Walk walk(Mode::ListOnly, mSettings, nullptr, {});
    Guarded(kSource, [&] { RemoveMarked(walk); });
    Close();
    return;
  }
  const CommandScope command;
  if (!command.IsEntered()) return;
  // A stop of an earlier search is none of this one, also where something has to be waited for.
  gUserAbort = false;
  const StoppablePart stoppable;
  const RemovalLock lock(mResults);
  if (lock.IsHeldByAnother()) {
    ShowMessageBox({u"Another removal is running.  Please try again when it has ended.",
                    LoadResString(377), MessageBoxIcon::Exclamation});
    return;
  }
  Walk walk(Mode::Files, mSettings, guard, {});
  std::int32_t confirmedCount = 0;
  walk.outcome.isFailed = !Guarded(kSource, [&] {
    walk.dupesFolder = GetDupesFolderPath();
    if (!AskBeforeRemoval(confirmedCount)) return;
    SetPanel(PANEL1, LoadResString(381) + u"...");
    RemoveMarked(walk);
  });
  walk.outcome.deletedForGoodCount = walk.removal.DeletedForGoodCount();
  Close();
  TellEnd(walk.outcome, confirmedCount);
}

cRemovalRun::Outcome cRemovalRun::RemoveWithoutAsking(RemovalGuard* guard,
                                                      RemovalListener listener) {
  const CommandScope command;
  if (command.IsEntered()) gUserAbort = false;
  const StoppablePart stoppable;
  const RemovalLock lock(mResults);
  if (!command.IsEntered() || lock.IsHeldByAnother()) {
    Outcome refused;
    refused.isRefused = true;
    return refused;
  }
  Walk walk(Mode::Files, mSettings, guard, std::move(listener));
  walk.outcome.isFailed = !Guarded(kSource, [&] {
    walk.dupesFolder = GetDupesFolderPath();
    RemoveMarked(walk);
  });
  Close();
  return walk.outcome;
}

// The guidelines, the first time, stand in for the confirmation. That they were shown is noted
// before they open, so that Cancel does not bring them back next time.
bool cRemovalRun::AskBeforeRemoval(std::int32_t& confirmedCount) {
  if (!mSettings.RemoveWarningShown()) {
    mSettings.SetRemoveWarningShown(true);
    gRemovalWarningResult = mView.ShowRemovalWarning();
    if (gRemovalWarningResult == kRemovalWarningCancel) return false;
  } else if (!ConfirmMarkedFiles(confirmedCount)) {
    return false;
  }
  if (ConfirmGroupsLeftWithoutCopy()) return true;
  confirmedCount = 0;
  return false;
}

bool cRemovalRun::ConfirmMarkedFiles(std::int32_t& confirmedCount) {
  std::int32_t count = 0;
  GetMarkedCount(count);
  if (count == 0) {
    ShowMessageBox({LoadResString(376), LoadResString(377), MessageBoxIcon::Information});
    return false;
  }
  Text method;
  GetRemovalMethodDescription(method);
  const Text lineBreak(kLineBreak);
  const Text question = LoadResString(378) + u": " + DecimalText(count) + lineBreak +
                        LoadResString(379) + u": " + method + lineBreak + lineBreak +
                        LoadResString(380);
  const bool agreed =
      ShowMessageBox({question, LoadResString(377), MessageBoxIcon::Question,
                      MessageBoxButtons::YesNo, MessageBoxResult::No}) == MessageBoxResult::Yes;
  confirmedCount = agreed ? count : 0;
  return agreed;
}

// Nobody loses a last copy unasked, also not by a rule that says so or by marks set by hand.
bool cRemovalRun::ConfirmGroupsLeftWithoutCopy() {
  const std::int32_t groups = WhollyMarkedGroupCount(mResults);
  if (groups == 0) return true;
  const Text lineBreak(kLineBreak);
  const Text question =
      u"Groups of which every file is selected, so that no copy stays in its "
      u"place: " +
      FormatGrouped(std::int64_t{groups}, GetLocaleFacts()) + lineBreak + lineBreak +
      LoadResString(380);
  return ShowMessageBox({question, LoadResString(377), MessageBoxIcon::Exclamation,
                         MessageBoxButtons::YesNo, MessageBoxResult::No}) == MessageBoxResult::Yes;
}

void cRemovalRun::RemoveMarked(Walk& walk) {
  mView.DisableUIForRemoval();
  if (gViews.status != nullptr) gViews.status->ShowProgress(mResults.mDupeFileCount);
  AddToLog(log_kind::BeginRemoval);
  gFSOCancelled = false;
  const cResultsList& list = mResults.ulvwDupeGroups;
  for (std::int32_t position = 0; position < list.Count(); ++position) {
    if (!RemoveFromGroup(walk, list.ItemData(position))) break;
  }
}

bool cRemovalRun::EndByStop(Walk& walk) {
  AddToLog(log_kind::UserCancelled);
  walk.outcome.isStopped = true;
  return false;
}

bool cRemovalRun::RemoveFromGroup(Walk& walk, std::int32_t group) {
  const std::vector<std::int32_t> members = mResults.MembersOf(group);
  auto remainingInGroup = static_cast<std::int32_t>(members.size());
  for (const std::int32_t record : members) {
    DoEvents_Fast();
    if (gUserAbort) return EndByStop(walk);
    walk.scannedCount += 1;
    if (gViews.status != nullptr) gViews.status->SetProgress(walk.scannedCount);
    if (!mResults.mFileMarked[static_cast<std::size_t>(record) - 1]) continue;
    bool isRemoved = walk.guard == nullptr || walk.guard->MayRemove(group, record);
    // A stop while the guard compares leaves the file as one that was not reached.
    if (!isRemoved && gUserAbort) return EndByStop(walk);
    if (!isRemoved) walk.outcome.refusedCount += 1;
    if (isRemoved && walk.mode == Mode::Files) {
      const Text fileSpec = mResults.FullPathOf(mResults.Record(record));
      walk.removal.RemoveFile(fileSpec, walk.dupesFolder, isRemoved);
    }
    if (!isRemoved) {
      walk.outcome.failedCount += 1;
      continue;
    }
    walk.outcome.removedCount += 1;
    const Currency size = mResults.Record(record).Size;
    if (size > Currency())
      walk.outcome.removedSize = Currency::SaturatingSum(walk.outcome.removedSize, size);
    remainingInGroup -= 1;
    TakeOutOfGroup(group, record, remainingInGroup);
    SaveHistoryIfDue(walk);
  }
  return true;
}

// Nobody else knows where a moved file came from: a program that is killed loses no more than the
// entries of the last moment.
void cRemovalRun::SaveHistoryIfDue(Walk& walk) {
  const auto now = std::chrono::steady_clock::now();
  if (gLog == nullptr || now < walk.nextSave) return;
  walk.nextSave = now + kSaveInterval;
  gLog->AppendInMemoryStringToLogFile();
  gLog->ResetInMemoryLog();
}

// A group of which one file is left is none any more: it goes as a whole, and what is removed of it
// afterwards changes no count.
void cRemovalRun::TakeOutOfGroup(std::int32_t group, std::int32_t record,
                                 std::int32_t remainingInGroup) {
  const auto row = static_cast<std::size_t>(group) - 1;
  if (remainingInGroup == 1) {
    mResults.mDupeFileCount -= 2;
    mResults.mDupeTotalSize -= mResults.mGroupTotalSize[row];
  }
  if (remainingInGroup <= 1) {
    mResults.EmptyGroup(group, record);
    return;
  }
  mResults.mDupeFileCount -= 1;
  mResults.mGroupFileCount[row] = remainingInGroup;
  const Currency size = mResults.Record(record).Size;
  if (size != Currency::FromInteger(-1)) {
    mResults.mDupeTotalSize -= size;
    mResults.mGroupTotalSize[row] -= size;
  }
  mResults.TakeOut(group, record);
}

// Reached on every way, also after a No and after a failure in the middle.
void cRemovalRun::Close() {
  Guarded(kSource, [&] {
    // Only now, in one pass: the walk goes by positions.
    mResults.ulvwDupeGroups.RemoveIf([this](std::int32_t group) {
      return mResults.mGroupFileCount[static_cast<std::size_t>(group) - 1] == 0;
    });
    if (gViews.status != nullptr) gViews.status->HideProgress();
    const LocaleFacts& locale = GetLocaleFacts();
    SetPanel(FILES_SEARCHED,
             LoadResString(1120) + u":" + FormatGrouped(std::int64_t{mFilesSearched}, locale));
    SetPanel(DUPLICATES, LoadResString(1121) + u":" +
                             FormatGrouped(std::int64_t{mResults.mDupeFileCount}, locale) + u" (" +
                             FormatByteSize(mResults.mDupeTotalSize) + u")");
    for (const TextView panel : {PANEL1, PANEL2}) {
      SetPanel(panel, {});
      SetPanelToolTip(panel, {});
    }
    ShowSelectedCountAndSizeInStatusBar(GetTotalMarkedCountAndSize(mResults));
  });
  Guarded(kSource, [] { WriteHistory(); });
  mView.EnableUIAfterRemoval();
  Guarded(kSource, [&] {
    if (mResults.mDupeFileCount == 0) {
      mResults.ulvwDupeDetails.Clear();
      mResults.ulvwDupeGroups.Clear();
      return;
    }
    const cResultsList& groups = mResults.ulvwDupeGroups;
    const std::int32_t selected = groups.ItemData(groups.SelectedPosition());
    mResults.DisplayDupeGroupDetails(selected == cResultsList::NoItem ? 1 : selected, true);
  });
}

// What a person does not expect, as further lines of the closing message.
Text cRemovalRun::NotesOf(const Outcome& outcome) {
  const std::pair<TextView, std::int32_t> notes[] = {
      {u"Files left in their places, since they or the copies that were to stay have changed since "
       u"the search: ",
       outcome.refusedCount},
      {u"Files that the Recycle Bin refused, so that they were deleted for good: ",
       outcome.deletedForGoodCount}};
  Text text;
  for (const auto& [note, count] : notes) {
    if (count > 0)
      text += Text(kLineBreak) + Text(kLineBreak) + Text(note) +
              FormatGrouped(std::int64_t{count}, GetLocaleFacts());
  }
  return text;
}

// After the guidelines, which name no number, and where nothing was confirmed, a run ends without a
// word, unless there is something that a person does not expect.
void cRemovalRun::TellEnd(const Outcome& outcome, std::int32_t confirmedCount) {
  const Text notes = NotesOf(outcome);
  if (gUserAbort) {
    ShowMessageBox({LoadResString(382) + notes, LoadResString(383), MessageBoxIcon::Information});
  } else if (confirmedCount == 0 && notes.empty()) {
    return;
  } else if (outcome.failedCount > 0 || outcome.isFailed) {
    ShowMessageBox({LoadResString(384) + notes, LoadResString(385), MessageBoxIcon::Exclamation});
  } else {
    ShowMessageBox({LoadResString(386) + notes, LoadResString(387), MessageBoxIcon::Information});
  }
}

}  // namespace quillmarsh
