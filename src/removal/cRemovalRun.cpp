// SPDX-License-Identifier: MIT
// Asking, walking, bookkeeping, closing. The closing steps come on every way, also after a No.
#include "removal/cRemovalRun.h"

#include <algorithm>
#include <chrono>
#include <random>

#include "base/LocaleFormat.h"
#include "base/OwnFiles.h"
#include "frame/CommandScope.h"
#include "frame/ErrorReporting.h"
#include "frame/ProgramFlags.h"
#include "frame/Pump.h"
#include "frame/TextTable.h"
#include "frame/Views.h"
#include "fsobjects/EntryLook.h"
#include "fsobjects/LocaleFormats.h"
#include "fsobjects/modShlWAPI.h"
#include "removal/RemovalLock.h"
#include "removal/RemovalRecovery.h"
#include "removal/cFileRemoval.h"
#include "removal/history/RemovalJournal.h"
#include "removal/history/cLog.h"
#include "selection/MarkedFiles.h"
#include "settings/OptionsFolder.h"

namespace quillmarsh {

std::int32_t gRemovalWarningResult = kRemovalWarningCancel;

namespace {

constexpr TextView kSource = u"frmFindDuplicates.RemoveMarkedFilesAllGroups";
constexpr TextView kLineBreak = u"\r\n";
constexpr auto kSaveInterval = std::chrono::seconds(1);
constexpr std::size_t kMostInBatch = 100;
constexpr TextView kAnotherRuns = u"Another removal is running.";

bool AskYesNo(const Text& question) {
  return ShowMessageBox({question, LoadResString(377), MessageBoxIcon::Exclamation,
                         MessageBoxButtons::YesNo, MessageBoxResult::No}) == MessageBoxResult::Yes;
}

bool AskAboutMemory() {
  return AskYesNo(
      u"A copy that you are keeping is on a file system in memory.  It would be lost when the "
      u"computer is switched off.\r\n\r\nDo you want to remove files of which only such a copy is "
      u"left?");
}

void WriteHistory() {
  AddToLog(log_kind::EndRemoval);
  if (gLog == nullptr) return;
  gLog->AppendInMemoryStringToLogFile();
  gLog->ResetInMemoryLog();
}

}  // namespace

struct cRemovalRun::Walk {
  Walk(const cSearchResults& results, const clsDupeSettings& settings,
       const RemovalOptions& walkOptions, std::function<bool()> mayTrustMemory,
       RemovalListener walkListener)
      : options(walkOptions),
        listener(std::move(walkListener)),
        plan(PlanRemoval(results, settings)),
        journal(plan.Method()),
        checks(results, {walkOptions.comparesContents, std::move(mayTrustMemory)}) {}

  [[nodiscard]] bool IsPlanned(std::int32_t record) const {
    return next < plan.Files().size() && plan.Files()[next].record == record;
  }

  RemovalOptions options;
  const RemovalListener listener;
  const RemovalPlan plan;
  cRemovalJournal journal;
  RemovalChecks checks;
  std::optional<cFileRemoval> removal;
  std::size_t next = 0;              // of the planned files
  std::vector<JournalRecord> batch;  // journalled, with what was seen of each
  std::vector<std::optional<FileState>> seen;
  std::size_t batchBegin = 0;
  std::uint64_t asideNumber = std::random_device()() * std::uint64_t{1000000};
  std::int32_t scannedCount = 0;
  bool isUnsettled = false;  // the next run has to look at something of this one
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

// Every marked file leaves the lists, and none the disk.
void cRemovalRun::ListOnly() {
  Guarded(kSource, [&] {
    mView.DisableUIForRemoval();
    if (gViews.status != nullptr) gViews.status->ShowProgress(mResults.mDupeFileCount);
    AddToLog(log_kind::BeginRemoval);
    const cResultsList& list = mResults.ulvwDupeGroups;
    for (std::int32_t position = 0; position < list.Count(); ++position) {
      const std::int32_t group = list.ItemData(position);
      const std::vector<std::int32_t> members = mResults.MembersOf(group);
      auto remainingInGroup = static_cast<std::int32_t>(members.size());
      for (const std::int32_t record : members)
        if (IsMarked(mResults, record)) TakeOutOfGroup(group, record, --remainingInGroup);
    }
  });
  Close(nullptr);
}

void cRemovalRun::RemoveMarkedFilesAllGroups(bool listOnly) {
  if (listOnly) return ListOnly();
  const CommandScope command;
  if (!command.IsEntered()) return;
  // A stop of an earlier search is none of this one, even if something has to be waited for.
  gUserAbort = false;
  const StoppablePart stoppable;
  RecoverInterruptedRemovals();
  const RemovalLock lock;
  if (lock.IsHeldByAnother()) {
    ShowMessageBox({Text(kAnotherRuns) + u"  Please try again when it has ended.",
                    LoadResString(377), MessageBoxIcon::Exclamation});
    return;
  }
  static_cast<void>(GetDupesFolderPath());
  Walk walk(mResults, mSettings, {}, AskAboutMemory, {});
  std::int32_t confirmedCount = 0;
  walk.outcome.isFailed = !Guarded(kSource, [&] {
    if (gUserAbort || !AskBeforeRemoval(walk, confirmedCount)) return;
    SetPanel(PANEL1, LoadResString(381) + u"...");
    RemoveMarked(walk);
  });
  Close(&walk);
  TellEnd(walk.outcome, confirmedCount);
}

cRemovalRun::Outcome cRemovalRun::RemoveWithoutAsking(const RemovalOptions& options,
                                                      RemovalListener listener) {
  const CommandScope command;
  if (command.IsEntered()) gUserAbort = false;
  const StoppablePart stoppable;
  RecoverInterruptedRemovals();
  const RemovalLock lock;
  Outcome refused;
  refused.isRefused = true;
  refused.problem = kAnotherRuns;
  if (!command.IsEntered() || lock.IsHeldByAnother()) return refused;
  static_cast<void>(GetDupesFolderPath());
  Walk walk(
      mResults, mSettings, options, [&options] { return options.trustsMemory; },
      std::move(listener));
  const bool isDone = Guarded(kSource, [&] {
    if (gUserAbort)
      walk.outcome.isStopped = true;
    else if (!HasRoom(walk) || !BeginHistory(walk))
      walk.outcome.isRefused = true;
    else
      RemoveMarked(walk);
  });
  if (!isDone) walk.outcome.isFailed = true;
  Close(&walk);
  return walk.outcome;
}

// The guidelines, the first time, stand in for the confirmation. That they were shown is noted
// before they open, so that Cancel does not bring them back next time.
bool cRemovalRun::AskBeforeRemoval(Walk& walk, std::int32_t& confirmedCount) {
  if (!mSettings.RemoveWarningShown()) {
    mSettings.SetRemoveWarningShown(true);
    gRemovalWarningResult = mView.ShowRemovalWarning();
    if (gRemovalWarningResult == kRemovalWarningCancel) return false;
  } else if (!ConfirmMarkedFiles(walk, confirmedCount)) {
    return false;
  }
  if (ConfirmGroupsLeftWithoutCopy() && MayBegin(walk)) return true;
  confirmedCount = 0;
  return false;
}

bool cRemovalRun::MayBegin(Walk& walk) {
  if (!HasRoom(walk)) {
    ShowMessageBox({walk.outcome.problem, LoadResString(377), MessageBoxIcon::Exclamation});
    return false;
  }
  if (!BeginHistory(walk)) {
    const Text question = walk.outcome.problem +
                          u"\r\n\r\nNo one could look up later what was removed and where it "
                          u"went.  Do you want to remove the files without a history?";
    if (!AskYesNo(question)) return false;
    walk.outcome.problem.clear();
    walk.options.keepsHistory = false;
  }
  AskAboutFilesWithoutBin(walk);
  return true;
}

bool cRemovalRun::ConfirmMarkedFiles(const Walk& walk, std::int32_t& confirmedCount) {
  const auto count = static_cast<std::int32_t>(walk.plan.Files().size());
  if (count == 0) {
    ShowMessageBox({LoadResString(376), LoadResString(377), MessageBoxIcon::Information});
    return false;
  }
  Text method;
  GetRemovalMethodDescription(method);
  const Text lineBreak(kLineBreak);
  Text question = LoadResString(378) + u": " + DecimalText(count) + lineBreak + LoadResString(379) +
                  u": " + method + lineBreak;
  for (const Obstacle obstacle : {Obstacle::AlreadyThere, Obstacle::NameNotHeld})
    if (const std::int32_t kept = walk.plan.CountOf(obstacle); kept > 0)
      question += u"Files that stay because " + Text(ReasonOf(obstacle)) + u": " +
                  FormatGrouped(std::int64_t{kept}, GetLocaleFacts()) + lineBreak;
  question += lineBreak + LoadResString(380);
  const bool agreed =
      ShowMessageBox({question, LoadResString(377), MessageBoxIcon::Question,
                      MessageBoxButtons::YesNo, MessageBoxResult::No}) == MessageBoxResult::Yes;
  confirmedCount = agreed ? count : 0;
  return agreed;
}

// No last copy is lost unasked, even by a rule that says so or by marks set by hand.
bool cRemovalRun::ConfirmGroupsLeftWithoutCopy() {
  const std::int32_t groups = WhollyMarkedGroupCount(mResults);
  if (groups == 0) return true;
  return AskYesNo(u"Groups of which every file is selected, so that no copy stays in its place: " +
                  FormatGrouped(std::int64_t{groups}, GetLocaleFacts()) + Text(kLineBreak) +
                  Text(kLineBreak) + LoadResString(380));
}

void cRemovalRun::AskAboutFilesWithoutBin(Walk& walk) {
  const std::int32_t count = walk.plan.CountOf(Obstacle::NoRecycleBin);
  if (count == 0) return;
  walk.options.deletesWithoutBin =
      AskYesNo(u"Files on drives that have no Recycle Bin: " +
               FormatGrouped(std::int64_t{count}, GetLocaleFacts()) +
               u"\r\n\r\nDo you want to delete these files permanently?  If you choose No, they "
               u"are kept.");
}

bool cRemovalRun::HasRoom(Walk& walk) const {
  if (walk.plan.HasRoom()) return true;
  const auto size = [](std::uint64_t bytes) {
    return FormatByteSize(Currency::FromInteger(static_cast<std::int64_t>(bytes)));
  };
  walk.outcome.problem = u"The drive of \"" + TheMachine().Drives().ShownPath(walk.plan.Folder()) +
                         u"\" has " + size(walk.plan.FreeBytes()) + u" free, and the files need " +
                         size(walk.plan.BytesToCopy()) + u".";
  return false;
}

// Nothing is removed that cannot be written down.
bool cRemovalRun::BeginHistory(Walk& walk) {
  AddToLog(log_kind::BeginRemoval);
  if (!walk.options.keepsHistory) return true;
  bool isWritten = walk.journal.Begin();
  std::uint32_t code = TheMachine().GetLastError();
  if (isWritten && gLog != nullptr) {
    gLog->AppendInMemoryStringToLogFile();
    isWritten = gLog->WasLastBatchWritten();
    code = TheMachine().GetLastError();
    gLog->ResetInMemoryLog();
  }
  if (isWritten) return true;
  walk.outcome.problem = u"The history cannot be written: " + SystemErrorReason(code);
  walk.outcome.isHistoryMissing = true;
  return false;
}

void cRemovalRun::RemoveMarked(Walk& walk) {
  mView.DisableUIForRemoval();
  if (gViews.status != nullptr) gViews.status->ShowProgress(mResults.mDupeFileCount);
  // A stop of an earlier copy, move or delete is none of this run, nor the other way round.
  gFSOCancelled = false;
  walk.removal.emplace(mResults, walk.plan, walk.checks, walk.options.deletesWithoutBin,
                       walk.listener);
  const cResultsList& list = mResults.ulvwDupeGroups;
  for (std::int32_t position = 0; position < list.Count(); ++position) {
    if (!RemoveFromGroup(walk, list.ItemData(position))) break;
  }
  gFSOCancelled = false;
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
    if (walk.IsPlanned(record) && !RemoveNextFile(walk, remainingInGroup)) return false;
  }
  return true;
}

bool cRemovalRun::RemoveNextFile(Walk& walk, std::int32_t& remainingInGroup) {
  if (!PlanBatch(walk)) return false;
  const PlannedRemoval& planned = walk.plan.Files()[walk.next];
  const JournalRecord& record = walk.batch[walk.next - walk.batchBegin];
  const cFileRemoval::Job job{planned, record.path, record.target, record.asideName,
                              walk.seen[walk.next - walk.batchBegin]};
  walk.next += 1;
  const cFileRemoval::Done done = walk.removal->RemoveFile(job);
  walk.isUnsettled = walk.isUnsettled || done.isUnsettled;
  if (!done.problem.empty()) walk.outcome.problem = done.problem;
  if (done.result == cFileRemoval::Result::Stopped) return EndByStop(walk);
  const bool isRemoved = done.result == cFileRemoval::Result::Removed;
  if (!done.isUnsettled)
    walk.journal.Done(record.sequence, isRemoved ? JournalOutcome::Removed : JournalOutcome::Kept,
                      isRemoved && done.target != record.target ? done.target : Text());
  if (!isRemoved) {
    walk.outcome.failedCount += 1;
    if (done.result == cFileRemoval::Result::Kept) walk.outcome.keptCount += 1;
    return true;
  }
  walk.outcome.removedCount += 1;
  if (done.isDeletedForGood) walk.outcome.deletedForGoodCount += 1;
  const Currency size = mResults.Record(planned.record).Size;
  if (done.isSpaceFreed && size > Currency())
    walk.outcome.removedSize = Currency::SaturatingSum(walk.outcome.removedSize, size);
  remainingInGroup -= 1;
  TakeOutOfGroup(planned.group, planned.record, remainingInGroup);
  SaveHistoryIfDue(walk);
  return true;
}

// The next files, as they are now, go to the journal before the first of them is touched.
bool cRemovalRun::PlanBatch(Walk& walk) {
  if (walk.next < walk.batchBegin + walk.batch.size()) return true;
  walk.batch.clear();
  walk.seen.clear();
  walk.batchBegin = walk.next;
  const auto end = std::chrono::steady_clock::now() + kSaveInterval;
  const std::vector<PlannedRemoval>& files = walk.plan.Files();
  while (walk.batchBegin + walk.batch.size() < files.size() && walk.batch.size() < kMostInBatch &&
         (walk.batch.empty() || std::chrono::steady_clock::now() < end)) {
    DoEvents_Fast();
    const std::size_t index = walk.batchBegin + walk.batch.size();
    JournalRecord& record = walk.batch.emplace_back();
    record.sequence = static_cast<std::int64_t>(index) + 1;
    record.path = walk.plan.FileSpecOf(files[index]);
    record.asideName = OwnFileName(OwnFile::Aside, ++walk.asideNumber);
    record.target = walk.plan.TargetOf(files[index]);
    const EntryLook look = LookAtEntry(record.path);
    walk.seen.push_back(look.IsPresent() ? std::optional(look.state) : std::nullopt);
    record.size = static_cast<std::int64_t>(look.state.size);
    record.created = look.state.created.Ticks();
    record.written = look.state.written.Ticks();
    record.changed = look.state.changed.Ticks();
    record.volume = look.state.volume;
    record.file = look.state.number;
  }
  if (!walk.options.keepsHistory || walk.journal.Plan(walk.batch)) return true;
  walk.outcome.problem = u"The history cannot be written, so nothing more was removed: " +
                         SystemErrorReason(TheMachine().GetLastError());
  walk.outcome.isFailed = true;
  return false;
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
void cRemovalRun::Close(Walk* walk) {
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
  Guarded(kSource, [&] {
    WriteHistory();
    if (walk != nullptr && walk->removal && walk->options.keepsHistory && !walk->isUnsettled)
      static_cast<void>(walk->journal.End());
  });
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

// What the user does not expect, as further lines of the closing message.
Text cRemovalRun::NotesOf(const Outcome& outcome) {
  const std::pair<TextView, std::int32_t> notes[] = {
      {u"Files that were kept, since they or the copies you are keeping are in use or have changed "
       u"since the search, or are one file.  The history says why.  Kept files: ",
       outcome.keptCount},
      {u"Files that were deleted permanently because their drives have no Recycle Bin: ",
       outcome.deletedForGoodCount}};
  Text text;
  for (const auto& [note, count] : notes) {
    if (count > 0)
      text += Text(kLineBreak) + Text(kLineBreak) + Text(note) +
              FormatGrouped(std::int64_t{count}, GetLocaleFacts());
  }
  if (!outcome.problem.empty()) text += Text(kLineBreak) + Text(kLineBreak) + outcome.problem;
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
