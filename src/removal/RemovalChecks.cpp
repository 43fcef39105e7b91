// SPDX-License-Identifier: MIT
// Looks through the pins, never by name alone.
#include "removal/RemovalChecks.h"

#include <cstring>

#include "frame/ErrorReporting.h"
#include "frame/ProgramFlags.h"
#include "frame/Pump.h"
#include "frame/Views.h"
#include "fsobjects/EntryLook.h"
#include "fsobjects/RecordDates.h"

namespace quillmarsh {
namespace {

constexpr std::size_t kBlockBytes = std::size_t{1} << 18U;
// Times of files are kept less exactly than the clock: a copy counts as younger a bit longer.
constexpr std::int64_t kClockSlack = 20'000'000;  // ticks

// Files of at most so many bytes are compared in a moment, for which writers can be held off.
constexpr std::uint64_t kMomentBytes = std::uint64_t{1} << 20U;
constexpr int kMostCopiesTried = 32;  // for one file
constexpr TextView kChanged = u"it has changed since the search";
constexpr TextView kIsGone = u"it is not there any more";
constexpr TextView kIsInUse = u"another program is using it";
constexpr TextView kCopiesChanged = u"every copy you are keeping has changed since the search";

Text QuotedPath(TextView path) {
  return u"\"" + TheMachine().Drives().ShownPath(path) + u"\"";
}

Refusal Because(TextView reason) {
  return {0, Text(reason)};
}

// Of the file itself: what says that it has changed is a reason, all else the system's refusal.
Refusal RefusalOf(std::uint32_t code) {
  if (SaysAbsent(code)) return Because(kIsGone);
  if (code == ERROR_FILE_INVALID) return Because(kChanged);
  if (code == ERROR_LOCK_VIOLATION) return Because(kIsInUse);
  return {code, SystemErrorReason(code)};
}

Refusal RefusalOfCopy(TextView path, std::uint32_t code) {
  if (code == ERROR_OPERATION_ABORTED) return RefusalOf(code);
  return Because(u"the copy to keep, " + QuotedPath(path) + u", cannot be used: " +
                 RefusalOf(code).reason);
}

// Whether the record would be given this date again.
bool IsSameDate(const FILETIME& utc, Date recorded) {
  FILETIME local;
  if (!TheMachine().Locale().FileTimeToLocalFileTime(utc, local)) return false;
  // A time that no date can show was reported by the search and recorded as none.
  if (!Date::FromTicks(local.Ticks()).IsValid()) return recorded.Days() == Date().Days();
  const Date now =
      WholeSecondDateOfRawTime(Currency::FromRaw(local.Ticks()), [] { return Text(); });
  return now.Days() == recorded.Days();
}

bool IsAsRecorded(const FileState& state, const DupeFileUDT& record) {
  return !state.isFolder &&
         (record.Size.Raw() < 0 ||
          static_cast<std::uint64_t>(record.Size.ToInteger()) == state.size) &&
         IsSameDate(state.created, record.CreatedDate) &&
         IsSameDate(state.written, record.LastModifiedDate);
}

// A code; reads until the buffer is full or the file ends.
std::uint32_t ReadBlock(const PinnedFile& file, std::int64_t position, std::span<std::byte> buffer,
                        std::size_t& done) {
  for (done = 0; done < buffer.size();) {
    std::uint32_t got = 0;
    if (const std::uint32_t code = TheMachine().Pins().ReadAt(
            file.Get(), position + static_cast<std::int64_t>(done), buffer.subspan(done), got))
      return code;
    if (got == 0) break;
    done += got;
  }
  return ERROR_SUCCESS;
}

std::uint32_t LastError() {
  return TheMachine().GetLastError();
}

}  // namespace

void RemovalChecks::FindKeepers(std::int32_t group) {
  if (group == mGroup) return;
  mGroup = group;
  mKeepers = mResults.MembersOf(group);
  std::erase_if(mKeepers, [this](std::int32_t member) {
    return mResults.mFileMarked[static_cast<std::size_t>(member) - 1];
  });
  mHasKeepers = !mKeepers.empty();
}

bool RemovalChecks::MayTrust(const FileState& file, const FileState& copy) {
  if (!copy.isVolatile || file.isVolatile) return true;
  if (!mTrustsMemory) mTrustsMemory = mOptions.mayTrustMemory();
  return *mTrustsMemory;
}

std::optional<Refusal> RemovalChecks::CompareContents(const PinnedFile& file,
                                                      const PinnedFile& copy) {
  mFirst.resize(kBlockBytes);
  mSecond.resize(kBlockBytes);
  for (std::int64_t position = 0;; position += kBlockBytes) {
    DoEvents_Fast();
    if (gUserAbort) return RefusalOf(ERROR_OPERATION_ABORTED);
    std::size_t gotFirst = 0;
    std::size_t gotSecond = 0;
    if (const std::uint32_t code = ReadBlock(file, position, mFirst, gotFirst))
      return code == ERROR_OPERATION_ABORTED
                 ? RefusalOf(code)
                 : Because(u"this file cannot be read: " + SystemErrorReason(code));
    if (const std::uint32_t code = ReadBlock(copy, position, mSecond, gotSecond))
      return code == ERROR_OPERATION_ABORTED
                 ? RefusalOf(code)
                 : Because(u"the other file cannot be read: " + SystemErrorReason(code));
    if (gotFirst != gotSecond || std::memcmp(mFirst.data(), mSecond.data(), gotFirst) != 0)
      return Because(u"the contents differ");
    if (gotFirst < kBlockBytes) return std::nullopt;
  }
}

std::optional<Refusal> RemovalChecks::HoldCopy(std::int32_t keeper, HeldPair& pair) {
  const DupeFileUDT& record = mResults.Record(keeper);
  pair.copyPath = mResults.FullPathOf(record);
  pair.copy = PinnedFile(pair.copyPath, PinPurpose::Keep);
  if (!pair.copy.IsHeld()) {
    const std::uint32_t code = LastError();
    const bool hasChanged = SaysAbsent(code) || code == ERROR_FILE_INVALID;
    return hasChanged ? Because(kCopiesChanged) : RefusalOfCopy(pair.copyPath, code);
  }
  const FileState& copy = pair.copy.State();
  if (!IsAsRecorded(copy, record)) return Because(kCopiesChanged);
  if (!MayTrust(pair.file.State(), copy))
    return Because(u"the copy to keep, " + QuotedPath(pair.copyPath) +
                   u", is in memory and would be lost with the power");
  // Two names of one file have one lock.
  const FileState& file = pair.file.State();
  pair.isSameFile = copy.IsSameFileAs(file) && copy.hasTrustedNumbers && file.hasTrustedNumbers;
  if (!pair.isSameFile && !TheMachine().Pins().Lock(pair.copy.Get()))
    return RefusalOfCopy(pair.copyPath, LastError());
  pair.isProven = copy.IsSurelyAnotherThan(pair.file.State());
  if (!mOptions.comparesContents || !mResults.mCriteria.contentsMatch || pair.isSameFile)
    return std::nullopt;
  if (file.size <= kMomentBytes)
    for (const PinnedFile* held : {&pair.file, &pair.copy})
      if (!TheMachine().Pins().HoldOffWriters(held->Get()))
        return held == &pair.file ? RefusalOf(LastError())
                                  : RefusalOfCopy(pair.copyPath, LastError());
  auto refusal = CompareContents(pair.file, pair.copy);
  if (refusal && refusal->code == 0)
    refusal->reason += u"; it was compared with " + QuotedPath(pair.copyPath);
  return refusal;
}

std::optional<Refusal> RemovalChecks::Hold(std::int32_t group, std::int32_t record,
                                           TextView asideName, HeldPair& pair) {
  const DupeFileUDT& file = mResults.Record(record);
  pair.file = PinnedFile(mResults.FullPathOf(file), PinPurpose::Remove, asideName);
  if (!pair.file.IsHeld() || !TheMachine().Pins().Lock(pair.file.Get())) {
    const std::uint32_t code = LastError();
    return LookAtEntry(mResults.FullPathOf(file)).IsFolder() ? Because(kChanged) : RefusalOf(code);
  }
  if (!IsAsRecorded(pair.file.State(), file)) return Because(kChanged);
  FindKeepers(group);
  if (!mHasKeepers) return std::nullopt;
  Refusal refusal = Because(kCopiesChanged);
  std::size_t place = 0;
  for (int tried = 0; place < mKeepers.size() && tried < kMostCopiesTried; ++tried) {
    DoEvents_Fast();
    if (gUserAbort) return RefusalOf(ERROR_OPERATION_ABORTED);
    auto problem = HoldCopy(mKeepers[place], pair);
    // The copy that serves for this file is tried first for the next one.
    if (!problem) {
      std::swap(mKeepers[place], mKeepers.front());
      return std::nullopt;
    }
    pair.copy = PinnedFile();
    refusal = std::move(*problem);
    if (refusal.code == ERROR_OPERATION_ABORTED) return refusal;
    if (refusal.reason == kCopiesChanged) {
      mKeepers[place] = mKeepers.back();
      mKeepers.pop_back();
      --tried;
    } else {
      ++place;
    }
  }
  return refusal;
}

std::optional<Refusal> RemovalChecks::HoldReplaced(TextView existing, TextView asideName,
                                                   const PinnedFile& newcomer,
                                                   PinnedFile& replaced) {
  replaced = PinnedFile(existing, PinPurpose::Remove, asideName);
  if (!replaced.IsHeld()) return RefusalOf(LastError());
  if (!replaced.State().IsSurelyAnotherThan(newcomer.State()) &&
      replaced.State().volume == newcomer.State().volume)
    return Because(u"it may be this same file");
  if (!TheMachine().Pins().Lock(replaced.Get())) return RefusalOf(LastError());
  return CompareContents(replaced, newcomer);
}

// A name that is taken aside changes the file itself, and so the other name of it. Of a copy that
// only seemed to be another file the same change tells.
std::optional<Refusal> RemovalChecks::LookAtCopyAgain(const HeldPair& pair) const {
  Pinning& pins = TheMachine().Pins();
  const HANDLE copy = pair.copy.Get();
  const bool isThere = pair.isProven || pins.IsReachedAnew(copy);
  if (isThere && (pair.isSameFile || pins.IsAsPinned(copy))) return std::nullopt;
  const std::uint32_t code = LastError();
  if (code == ERROR_OPERATION_ABORTED) return RefusalOf(code);
  if (code != ERROR_FILE_INVALID && !SaysAbsent(code))
    return Because(u"the copy to keep cannot be looked at: " + SystemErrorReason(code));
  return Because(pair.isProven ? u"the copy to keep has changed"
                               : u"the copy to keep is this same file, or has changed");
}

std::optional<Refusal> RemovalChecks::SecureCopy(const HeldPair& pair) {
  if (!pair.copy.IsHeld()) return std::nullopt;
  Pinning& pins = TheMachine().Pins();
  const FileState& copy = pair.copy.State();
  const std::uint64_t flushed = pins.FlushesVolumes() ? copy.volume : copy.number;
  const auto synced = mSyncedAt.find(flushed);
  const bool isSecure = copy.isVolatile || (synced != mSyncedAt.end() &&
                                            copy.changed.Ticks() + kClockSlack < synced->second);
  if (!isSecure) {
    const std::int64_t now = UtcTicksNow();
    SetPanel(PANEL2, u"Making sure that the copies to keep are on the disk...");
    const bool isDone = pins.Flush(pair.copy.Get());
    const std::uint32_t code = LastError();
    SetPanel(PANEL2, {});
    if (!isDone && code == ERROR_OPERATION_ABORTED) return RefusalOf(code);
    if (!isDone)
      return Because(u"the copy to keep cannot be brought to the disk: " + SystemErrorReason(code));
    mSyncedAt[flushed] = now;
  }
  // Last, since other programs wait from now on.
  if (!pins.HoldOffWriters(pair.copy.Get())) return RefusalOfCopy(pair.copyPath, LastError());
  return std::nullopt;
}

}  // namespace quillmarsh
