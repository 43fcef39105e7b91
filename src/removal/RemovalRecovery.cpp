// SPDX-License-Identifier: MIT
// The disk says what became of each file whose end the journal does not have.
#include "removal/RemovalRecovery.h"

#include <map>

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

// False where it could not be put back and may be later.
bool PutBack(const Text& aside, const Text& path) {
  if (TheMachine().Disk().MoveFileExW(ToLongPath(aside), ToLongPath(path), 0)) {
    AddFreeTextToLog(u"A removal was interrupted. This file was put back: " + Shown(path));
    return true;
  }
  const std::uint32_t code = TheMachine().GetLastError();
  AddFreeTextToLog(u"A removal was interrupted. This file could not be put back: " + Shown(path) +
                   u": " + SystemErrorReason(code) + u" It is now: " + Shown(aside) +
                   u". Please rename it.");
  return code == ERROR_ALREADY_EXISTS;
}

void AddEntry(std::int32_t kind, const JournalRecord& record) {
  bool result = false;
  if (gLog != nullptr)
    gLog->Add(kind, {}, Shown(record.path), record.target.empty() ? Text() : Shown(record.target),
              0, {}, {}, result);
}

// What gave way in the DUPES folder is put back like the file itself.
bool PutAllBack(const JournalRecord& record, bool& isFound) {
  bool isSettled = true;
  for (const Text& path : {record.path, record.target}) {
    if (path.empty() || record.asideName.empty()) continue;
    const Text aside = GetFolderPartOf(path) + record.asideName;
    const EntryLook look = LookAtEntry(aside);
    if (look.IsUnknown()) isSettled = false;
    if (!look.IsFile()) continue;
    isFound = isFound || path == record.path;
    isSettled = PutBack(aside, path) && isSettled;
  }
  return isSettled;
}

// False where the disk does not say, as of a drive that is not there.
bool Recover(const UnfinishedRemoval& removal) {
  const JournalRecord& record = removal.record;
  if (!LookAtFolder(GetFolderPartOf(record.path)).IsFolder()) return false;
  bool isFound = false;
  const bool isSettled = PutAllBack(record, isFound);
  const EntryLook look = LookAtEntry(record.path);
  if (isFound || look.IsPresent()) return isSettled;
  if (look.IsUnknown()) return false;
  if (removal.method == RemoveMethod::Delete)
    AddEntry(log_kind::FileDeleted, record);
  else if (removal.method == RemoveMethod::Recycle)
    AddEntry(log_kind::FileSentToRecycleBin, record);
  else if (IsTheFile(LookAtEntry(record.target), record))
    AddEntry(removal.method == RemoveMethod::MoveToDupesFolder ? log_kind::FileMovedToDupesFolder
                                                               : log_kind::FileMovedToOtherFolder,
             record);
  return isSettled;
}

}  // namespace

// A run of which something could not be found out is looked at again the next time.
void RecoverInterruptedRemovals() {
  Guarded(u"RemovalRecovery.RecoverInterruptedRemovals", [] {
    if (IsJournalEnded()) return;
    const RemovalLock lock;
    if (lock.IsHeldByAnother()) return;
    const auto unfinished = ReadUnfinished();
    if (!unfinished) return;
    std::map<Text, bool> isSettled;
    for (const UnfinishedRemoval& removal : *unfinished) {
      DoEvents_Fast();
      const bool isDone = Recover(removal);
      const auto [run, isNew] = isSettled.try_emplace(removal.run, isDone);
      if (!isNew) run->second = run->second && isDone;
    }
    bool areAllSettled = true;
    for (const auto& [run, isDone] : isSettled) {
      areAllSettled = areAllSettled && isDone;
      if (isDone) static_cast<void>(EndJournalRun(run));
    }
    // Of a run that ended before its first file nothing is unfinished.
    if (areAllSettled && !IsJournalEnded()) static_cast<void>(EndJournalRun(u"-"));
  });
}

}  // namespace quillmarsh
