// SPDX-License-Identifier: MIT
// Looks by the path, as the removal will, and compares with the record.
#include "removal/VerifyingGuard.h"

#include <algorithm>
#include <cstring>
#include <optional>

#include "frame/ErrorReporting.h"
#include "frame/ProgramFlags.h"
#include "frame/Pump.h"
#include "fsobjects/FileTransfers.h"
#include "fsobjects/Handles.h"
#include "fsobjects/RecordDates.h"
#include "fsobjects/modPaths.h"
#include "fsobjects/modShlWAPI.h"
#include "fsobjects/modUnicode.h"

namespace quillmarsh {
namespace {

constexpr std::size_t kBlockBytes = std::size_t{1} << 18U;
constexpr std::uint32_t kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

Text ReasonOfLastError() {
  Text reason = GetSystemErrorText(TheMachine().GetLastError());
  while (reason.ends_with(u'\n') || reason.ends_with(u'\r')) reason.pop_back();
  return reason;
}

struct Look {
  std::optional<WIN32_FIND_DATAW> entry;  // without its name
  Text problem;                           // where there is none
};

Look LookAt(const Text& path) {
  const RedirectionOff redirection;
  WIN32_FIND_DATAW entry;
  const FindHandle search(TheMachine().Find().FindFirstFileW(ToLongPath(path), entry));
  if (!search.IsValid()) {
    const std::uint32_t code = TheMachine().GetLastError();
    const bool isGone = code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND;
    return {
        {},
        isGone ? u"it is not there any more" : u"it cannot be looked at: " + ReasonOfLastError()};
  }
  entry.cFileName = {};
  return {entry, {}};
}

// Whether the record would be given this date again.
bool IsSameDate(const FILETIME& utc, Date recorded) {
  FILETIME local;
  if (!TheMachine().Locale().FileTimeToLocalFileTime(utc, local)) return false;
  // A time that no date can tell was reported by the search and recorded as none.
  if (!Date::FromTicks(local.Ticks()).IsValid()) return recorded.Days() == Date().Days();
  const Date now =
      WholeSecondDateOfRawTime(Currency::FromRaw(local.Ticks()), [] { return Text(); });
  return now.Days() == recorded.Days();
}

bool IsAsRecorded(const WIN32_FIND_DATAW& entry, const DupeFileUDT& record) {
  const std::uint64_t size = (std::uint64_t{entry.nFileSizeHigh} << 32U) | entry.nFileSizeLow;
  constexpr std::uint32_t notAFile = FILE_ATTRIBUTE_DIRECTORY;
  return (entry.dwFileAttributes & notAFile) == 0 &&
         (record.Size.Raw() < 0 || static_cast<std::uint64_t>(record.Size.ToInteger()) == size) &&
         IsSameDate(entry.ftCreationTime, record.CreatedDate) &&
         IsSameDate(entry.ftLastWriteTime, record.LastModifiedDate);
}

// Empty where the file is what the search saw.
Text WhyNotAsSeen(const Text& path, const DupeFileUDT& record) {
  const Look look = LookAt(path);
  if (!look.entry) return look.problem;
  return IsAsRecorded(*look.entry, record) ? Text() : u"it has changed since the search";
}

HANDLE OpenToRead(const Text& path) {
  return TheMachine().Files().CreateFileW(ToLongPath(path), GENERIC_READ, kShareAll, OPEN_EXISTING,
                                          FILE_FLAG_SEQUENTIAL_SCAN);
}

bool IsRemote(const Text& path) {
  return TheMachine().Drives().GetDriveTypeW(AddBackslash(StripToRoot(path))) == DRIVE_REMOTE;
}

// One entry that is reached by two paths, as when a server's folder is mounted twice, would be its
// own duplicate. A second link to a file is none: what is left of it keeps the contents. Empty
// where the two are known to be two.
Text WhyNotTwoEntries(const Text& path, const Text& other) {
  const Look first = LookAt(path);
  const Look second = LookAt(other);
  if (!first.entry) return first.problem;
  if (!second.entry) return second.problem;
  // Most copies show that they are two by their times, without being opened.
  if (first.entry->ftCreationTime != second.entry->ftCreationTime ||
      first.entry->ftLastWriteTime != second.entry->ftLastWriteTime)
    return {};
  const RedirectionOff redirection;
  const FileHandle here(OpenToRead(path));
  const FileHandle there(OpenToRead(other));
  BY_HANDLE_FILE_INFORMATION a;
  BY_HANDLE_FILE_INFORMATION b;
  if (!here.IsValid() || !there.IsValid() ||
      !TheMachine().Files().GetFileInformationByHandle(here.Get(), a) ||
      !TheMachine().Files().GetFileInformationByHandle(there.Get(), b))
    return u"it cannot be told from the copy that stays: " + ReasonOfLastError();
  // One folder of a server that is mounted twice may show as two volumes; two disks of one kind may
  // number their files alike.
  const bool isOneVolume =
      a.dwVolumeSerialNumber == b.dwVolumeSerialNumber || IsRemote(path) || IsRemote(other);
  const bool isOne = isOneVolume && a.nFileIndexHigh == b.nFileIndexHigh &&
                     a.nFileIndexLow == b.nFileIndexLow && a.nNumberOfLinks <= 1;
  return isOne ? u"the copy that stays is this file itself" : u"";
}

// Empty where both have the same bytes.
Text WhyNotSameBytes(const Text& path, const Text& other) {
  const RedirectionOff redirection;
  const FileHandle here(OpenToRead(path));
  if (!here.IsValid()) return u"this file cannot be read: " + ReasonOfLastError();
  const FileHandle there(OpenToRead(other));
  if (!there.IsValid()) return u"the other file cannot be read: " + ReasonOfLastError();
  std::vector<std::byte> first(kBlockBytes);
  std::vector<std::byte> second(kBlockBytes);
  while (true) {
    DoEvents_Fast();
    if (gUserAbort) return u"the comparison of contents was stopped";
    std::size_t gotFirst = 0;
    std::size_t gotSecond = 0;
    if (!ReadFully(here.Get(), first, gotFirst))
      return u"this file cannot be read: " + ReasonOfLastError();
    if (!ReadFully(there.Get(), second, gotSecond))
      return u"the other file cannot be read: " + ReasonOfLastError();
    if (gotFirst != gotSecond || std::memcmp(first.data(), second.data(), gotFirst) != 0)
      return u"the contents differ";
    if (gotFirst < kBlockBytes) return {};
  }
}

}  // namespace

void VerifyingGuard::FindKeepers(std::int32_t group) {
  if (group == mGroup) return;
  mGroup = group;
  mKeepers = mResults.MembersOf(group);
  std::erase_if(mKeepers, [this](std::int32_t member) {
    return mResults.mFileMarked[static_cast<std::size_t>(member) - 1];
  });
  mHasKeepers = !mKeepers.empty();
}

Text VerifyingGuard::WhyNotCopyOf(const Text& fileSpec, std::int32_t keeper) const {
  const Text other = mResults.FullPathOf(mResults.Record(keeper));
  if (Text reason = WhyNotTwoEntries(fileSpec, other); !reason.empty()) return reason;
  if (!mResults.mCriteria.contentsMatch) return {};
  const Text reason = WhyNotSameBytes(fileSpec, other);
  return reason.empty() ? reason
                        : reason + u"; it was compared with \"" +
                              TheMachine().Drives().ShownPath(other) + u"\"";
}

// Of a group that goes as a whole, which somebody has allowed, no copy stays to be looked at.
Text VerifyingGuard::WhyNotRemoved(std::int32_t group, std::int32_t record) {
  const DupeFileUDT& file = mResults.Record(record);
  const Text fileSpec = mResults.FullPathOf(file);
  if (Text reason = WhyNotAsSeen(fileSpec, file); !reason.empty()) return reason;
  FindKeepers(group);
  if (!mHasKeepers) return {};
  Text reason = u"no copy that stays is still what the search saw";
  for (std::size_t place = 0; place < mKeepers.size();) {
    DoEvents_Fast();
    if (gUserAbort) return u"the look at its copies was stopped";
    const DupeFileUDT& kept = mResults.Record(mKeepers[place]);
    if (!WhyNotAsSeen(mResults.FullPathOf(kept), kept).empty()) {
      mKeepers[place] = mKeepers.back();
      mKeepers.pop_back();
      continue;
    }
    reason = WhyNotCopyOf(fileSpec, mKeepers[place]);
    if (reason.empty()) return reason;
    ++place;
  }
  return reason;
}

bool VerifyingGuard::MayRemove(std::int32_t group, std::int32_t record) {
  if (mChecks == Checks::Replacements) return true;
  const Text reason = WhyNotRemoved(group, record);
  if (reason.empty()) return true;
  if (gUserAbort) return false;
  mTeller(mResults.FullPathOf(mResults.Record(record)), reason);
  return false;
}

bool VerifyingGuard::MayReplace(TextView fileSpec, TextView existing) {
  if (mChecks == Checks::FilesThatGo) return true;
  const Text reason = WhyNotSameBytes(Text(fileSpec), Text(existing));
  if (reason.empty()) return true;
  mTeller(fileSpec, u"another file is in its place, \"" +
                        TheMachine().Drives().ShownPath(existing) + u"\", and " + reason);
  return false;
}

}  // namespace quillmarsh
