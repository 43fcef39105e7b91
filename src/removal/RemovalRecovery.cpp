// SPDX-License-Identifier: MIT
// The disk says what became of each file whose end the journal does not have.
#include "removal/RemovalRecovery.h"

#include <set>

#include "frame/ErrorReporting.h"
#include "frame/Pump.h"
#include "fsobjects/EntryLook.h"
#include "fsobjects/Handles.h"
#include "fsobjects/modPaths.h"
#include "fsobjects/modUnicode.h"
#include "removal/RemovalLock.h"
#include "removal/history/RemovalJournal.h"
#include "removal/history/cLog.h"

namespace quillmarsh {
namespace {

Text Shown(TextView path) {
  return TheMachine().Drives().ShownPath(path);
}

// Numbers of volumes may be others after a restart; size and time come along with every move.
bool IsTheFile(const EntryLook& look, const JournalRecord& record) {
  return look.IsFile() && static_cast<std::int64_t>(look.state.size) == record.size &&
         look.state.written.Ticks() == record.written;
}

void PutBack(const Text& aside, const Text& path) {
  if (TheMachine().Disk().MoveFileExW(ToLongPath(aside), ToLongPath(path), 0))
    return AddFreeTextToLog(u"A removal was interrupted. This file was put back: " + Shown(path));
  AddFreeTextToLog(u"A removal was interrupted. This file could not be put back: " + Shown(path) +
                   u". It is now: " + Shown(aside));
}

void AddEntry(std::int32_t kind, const JournalRecord& record) {
  bool result = false;
  if (gLog != nullptr)
    gLog->Add(kind, {}, Shown(record.path), record.target.empty() ? Text() : Shown(record.target),
              0, {}, {}, result);
}

void Recover(const UnfinishedRemoval& removal) {
  const JournalRecord& record = removal.record;
  const Text aside = GetFolderPartOf(record.path) + record.asideName;
  if (!record.asideName.empty() && LookAtEntry(aside).IsFile()) return PutBack(aside, record.path);
  // What is still there was not reached, and what cannot be looked at is not known to be gone.
  if (!LookAtEntry(record.path).IsAbsent()) return;
  if (removal.method == RemoveMethod::Delete) return AddEntry(log_kind::FileDeleted, record);
  if (removal.method == RemoveMethod::Recycle)
    return AddEntry(log_kind::FileSentToRecycleBin, record);
  if (!IsTheFile(LookAtEntry(record.target), record)) return;
  AddEntry(removal.method == RemoveMethod::MoveToDupesFolder ? log_kind::FileMovedToDupesFolder
                                                             : log_kind::FileMovedToOtherFolder,
           record);
}

}  // namespace

void RecoverInterruptedRemovals() {
  Guarded(u"RemovalRecovery.RecoverInterruptedRemovals", [] {
    if (IsJournalEnded()) return;
    const RemovalLock lock;
    if (lock.IsHeldByAnother()) return;
    const auto unfinished = ReadUnfinished();
    if (!unfinished) return;
    std::set<Text> runs;
    for (const UnfinishedRemoval& removal : *unfinished) {
      DoEvents_Fast();
      Recover(removal);
      runs.insert(removal.run);
    }
    for (const Text& run : runs) static_cast<void>(EndJournalRun(run));
  });
}

}  // namespace quillmarsh
