// SPDX-License-Identifier: MIT
// The four ways in which a file is removed, each through the pin that holds it.
#include "removal/cFileRemoval.h"

#include "base/OwnFiles.h"
#include "frame/ErrorReporting.h"
#include "frame/ProgramFlags.h"
#include "fsobjects/CreateFolderTree.h"
#include "fsobjects/EntryLook.h"
#include "fsobjects/cFSXFolderPathsList.h"
#include "fsobjects/modPaths.h"
#include "fsobjects/modShlWAPI.h"
#include "removal/StaleParts.h"
#include "removal/history/cLog.h"
#include "search/results/modDupe.h"
#include "settings/OptionsFolder.h"

namespace quillmarsh {
namespace {

constexpr int kMostNameAttempts = 8;
constexpr TextView kChangedSinceLook = u"it has changed since it was looked at";

Text Shown(TextView path) {
  return path.empty() ? Text() : TheMachine().Drives().ShownPath(path);
}

std::optional<Refusal> RefusalOfLastCall() {
  const std::uint32_t code = TheMachine().GetLastError();
  if (code == ERROR_FILE_INVALID) return Refusal{0, Text(kChangedSinceLook)};
  return Refusal{code, SystemErrorReason(code)};
}

bool IsTakenName(const std::optional<Refusal>& refusal) {
  return refusal && (refusal->code == ERROR_ALREADY_EXISTS || refusal->code == ERROR_FILE_EXISTS);
}

std::int32_t FailureKindOf(RemoveMethod method) {
  return IsMove(method) ? log_kind::MoveError : log_kind::DeleteError;
}

std::int32_t SuccessKindOf(RemoveMethod method) {
  switch (method) {
    case RemoveMethod::Recycle:
      return log_kind::FileSentToRecycleBin;
    case RemoveMethod::MoveToDupesFolder:
      return log_kind::FileMovedToDupesFolder;
    case RemoveMethod::MoveToOtherFolder:
      return log_kind::FileMovedToOtherFolder;
    case RemoveMethod::Delete:
      break;
  }
  return log_kind::FileDeleted;
}

}  // namespace

cFileRemoval::cFileRemoval(const cSearchResults& results, const RemovalPlan& plan,
                           RemovalChecks& checks, bool deletesWithoutBin, RemovalListener listener)
    : mPlan(plan),
      mChecks(checks),
      mDeletesWithoutBin(deletesWithoutBin),
      mListener(std::move(listener)) {
  if (plan.Method() != RemoveMethod::MoveToDupesFolder || plan.Folder().empty()) return;
  // The DUPES folder is left out of searches, so that this is rare: it was moved since.
  std::unordered_map<std::int32_t, bool> isThere;
  std::vector<std::int32_t> members;
  for (std::int32_t group = 1; group <= results.mGroupCount; ++group) {
    results.ReadMembers(group, members);
    for (const std::int32_t member : members) {
      const DupeFileUDT& record = results.Record(member);
      const auto [known, isNew] = isThere.try_emplace(record.ParentFolderIdx, false);
      if (isNew)
        known->second =
            AddBackslash(GetFolderPathByIdx(record.ParentFolderIdx)).starts_with(plan.Folder());
      if (known->second && !results.mFileMarked[static_cast<std::size_t>(member) - 1])
        mCopiesInDupesFolder.insert(results.FullPathOf(record));
    }
  }
}

cFileRemoval::Done cFileRemoval::RemoveFile(const Job& job) {
  Done done;
  Guarded(u"frmFindDuplicates.RemoveFile()", [&] {
    const RedirectionOff redirection;
    done = Remove(job);
  });
  return done;
}

cFileRemoval::Done cFileRemoval::Remove(const Job& job) {
  const bool isForGood = job.planned.obstacle == Obstacle::NoRecycleBin && mDeletesWithoutBin;
  if (job.planned.obstacle != Obstacle::None && !isForGood)
    return Keep(job, job.target, {0, Text(ReasonOf(job.planned.obstacle))});
  HeldPair pair;
  if (auto refusal = mChecks.Hold(job.planned.group, job.planned.record, job.asideName, pair))
    return Keep(job, job.target, *refusal);
  if (job.seen && !job.seen->IsSameFileAs(pair.file.State()))
    return Keep(job, job.target, {0, Text(kChangedSinceLook)});
  if (IsMove(mPlan.Method())) {
    const Text folder = GetFolderPartOf(job.target);
    if (const std::uint32_t code = ProvideFolder(folder)) {
      AddEntry({log_kind::CreateFolderError, job.fileSpec, folder, code,
                FormatSystemErrorMessage(code)});
      return {Result::Failed};
    }
  }
  Done done;
  done.target = job.target;
  Step refusal;
  if (mPlan.Method() == RemoveMethod::Delete || isForGood)
    refusal = Delete(pair, done.problem);
  else if (mPlan.Method() == RemoveMethod::Recycle)
    refusal = Recycle(pair);
  else
    refusal = Move(job, pair, done.target);
  if (refusal) {
    const Text left = TheMachine().Pins().WhereLeft(pair.file.Get());
    const bool isUnsettled = !left.empty() || refusal->code == ERROR_OPERATION_ABORTED;
    if (!left.empty()) {
      refusal->code = 0;
      refusal->reason += u"; see \"" + Shown(left) + u"\"";
    }
    done = Keep(job, done.target, *refusal);
    done.isUnsettled = isUnsettled;
    return done;
  }
  done.result = Result::Removed;
  done.isSpaceFreed = pair.file.State().links <= 1;
  done.isDeletedForGood = isForGood;
  AddEntry({SuccessKindOf(mPlan.Method()), job.fileSpec, done.target, 0, {}, {}, isForGood});
  if (isForGood)
    AddFreeTextToLog(u"Its drive has no Recycle Bin, so it was deleted: " + Shown(job.fileSpec));
  return done;
}

void cFileRemoval::AddEntry(const RemovalEntry& entry) const {
  bool result = false;
  const Text note =
      entry.reason.empty() ? Text() : u"Kept: " + Shown(entry.fileSpec) + u": " + entry.reason;
  if (gLog != nullptr)
    gLog->Add(entry.kind, {}, Shown(entry.fileSpec), Shown(entry.target),
              static_cast<std::int32_t>(entry.code), entry.text, note, result);
  if (mListener) mListener(entry);
}

// What the user stopped is as if it had not been reached.
cFileRemoval::Done cFileRemoval::Keep(const Job& job, const Text& target,
                                      const Refusal& refusal) const {
  if (gUserAbort && refusal.code == ERROR_OPERATION_ABORTED) return {Result::Stopped};
  if (refusal.code == 0) {
    AddEntry({log_kind::FreeText, job.fileSpec, {}, 0, {}, refusal.reason});
    return {Result::Kept};
  }
  AddEntry({FailureKindOf(mPlan.Method()), job.fileSpec, target, refusal.code,
            FormatSystemErrorMessage(refusal.code)});
  return {Result::Failed};
}

cFileRemoval::Step cFileRemoval::Prepare(const HeldPair& pair, bool isAside) {
  Pinning& pins = TheMachine().Pins();
  if (isAside && !pins.TakeAside(pair.file.Get())) return RefusalOfLastCall();
  if (!pair.copy.IsHeld()) return std::nullopt;
  Step refusal = mChecks.LookAtCopyAgain(pair);
  if (refusal && isAside && !pins.PutBack(pair.file.Get())) return RefusalOfLastCall();
  return refusal;
}

// Where names can change under a pin the file is taken aside first, whatever is known of the copy;
// and the copy is looked at once more when the file is gone, which can still be made again then.
cFileRemoval::Step cFileRemoval::Delete(const HeldPair& pair, Text& problem) {
  Pinning& pins = TheMachine().Pins();
  if (Step refusal = mChecks.SecureCopy(pair)) return refusal;
  const bool isAside = !pins.HoldsNames() || pair.IsProofNeeded();
  if (Step refusal = Prepare(pair, isAside)) return refusal;
  if (!pins.Delete(pair.file.Get())) {
    Step refusal = RefusalOfLastCall();
    if (isAside) static_cast<void>(pins.PutBack(pair.file.Get()));
    return refusal;
  }
  if (pins.HoldsNames() || !pair.copy.IsHeld()) return std::nullopt;
  Step refusal = mChecks.LookAtCopyAgain(pair);
  if (!refusal) return std::nullopt;
  if (pins.Restore(pair.file.Get())) {
    refusal->reason += u", so this file was put back";
    return refusal;
  }
  problem = u"A file was deleted, then its copy \"" + Shown(pair.copyPath) +
            u"\" changed, and the file could not be put back: " +
            SystemErrorReason(TheMachine().GetLastError());
  AddFreeTextToLog(problem);
  return std::nullopt;
}

cFileRemoval::Step cFileRemoval::Recycle(const HeldPair& pair) {
  if (Step refusal = Prepare(pair, pair.IsProofNeeded())) return refusal;
  std::int32_t number = 0;
  Text text;
  if (SendFileToRecycleBin(pair.file.Get(), number, text)) return std::nullopt;
  Refusal refusal{static_cast<std::uint32_t>(number), text};
  if (refusal.code == ERROR_FILE_INVALID) refusal = {0, Text(kChangedSinceLook)};
  if (pair.IsProofNeeded()) static_cast<void>(TheMachine().Pins().PutBack(pair.file.Get()));
  return refusal;
}

cFileRemoval::Step cFileRemoval::MoveTo(const HeldPair& pair, const Text& target) {
  Pinning& pins = TheMachine().Pins();
  const Text path = ToLongPath(target);
  if (pins.MoveTo(pair.file.Get(), path, PinnedMove::Rename)) return std::nullopt;
  if (TheMachine().GetLastError() == ERROR_NOT_SAME_DEVICE &&
      pins.MoveTo(pair.file.Get(), path, PinnedMove::CopyIfNeeded))
    return std::nullopt;
  return RefusalOfLastCall();
}

// Where nobody knows the folder yet, making it fails like any other.
std::uint32_t cFileRemoval::ProvideFolder(TextView folder) {
  if (folder.empty()) return ERROR_PATH_NOT_FOUND;
  if (folder == mProvidedFolder) return ERROR_SUCCESS;
  const EntryLook look = LookAtFolder(folder);
  if (look.IsUnknown()) return look.code;
  std::uint32_t code = 0;
  if (!look.IsFolder() && !CreateFolderTree(folder, code))
    return code != 0 ? code : ERROR_PATH_NOT_FOUND;
  if (mClearedFolders.insert(Text(folder)).second) RemoveStaleParts(folder);
  if (mProvidedFolder.empty() && mPlan.Method() == RemoveMethod::MoveToDupesFolder)
    MarkDupesFolder(mPlan.Folder());
  mProvidedFolder = folder;
  return ERROR_SUCCESS;
}

bool cFileRemoval::IsListedCopy(TextView path) const {
  return mCopiesInDupesFolder.contains(Text(path));
}

// What gives way is aside until the newcomer is in its place.
cFileRemoval::Step cFileRemoval::Replace(const Job& job, const HeldPair& pair, Text& target) {
  PinnedFile replaced;
  const bool mayReplace = mPlan.Method() == RemoveMethod::MoveToDupesFolder &&
                          !IsListedCopy(target) &&
                          !mChecks.HoldReplaced(target, job.asideName, pair.file, replaced);
  if (!mayReplace) {
    replaced = PinnedFile();
    target = ResolveNextFileNameCollision(GetFileNameOf(job.fileSpec), GetFolderPartOf(target),
                                          mLastNames[target]);
    return MoveTo(pair, target);
  }
  Pinning& pins = TheMachine().Pins();
  if (!pins.TakeAside(replaced.Get())) return RefusalOfLastCall();
  Step refusal = MoveTo(pair, target);
  const bool isDone = refusal ? pins.PutBack(replaced.Get()) : pins.Delete(replaced.Get());
  if (!isDone)
    AddFreeTextToLog(u"This file in the DUPES folder had to be left: " +
                     Shown(pins.WhereLeft(replaced.Get())));
  return refusal;
}

cFileRemoval::Step cFileRemoval::Move(const Job& job, const HeldPair& pair, Text& target) {
  if (Step refusal = Prepare(pair, pair.IsProofNeeded())) return refusal;
  Step refusal = MoveTo(pair, target);
  for (int attempt = 0; attempt < kMostNameAttempts && IsTakenName(refusal); ++attempt)
    refusal = Replace(job, pair, target);
  if (!refusal) return std::nullopt;
  if (pair.IsProofNeeded()) static_cast<void>(TheMachine().Pins().PutBack(pair.file.Get()));
  mProvidedFolder.clear();
  mLastNames.clear();
  return refusal;
}

}  // namespace quillmarsh
