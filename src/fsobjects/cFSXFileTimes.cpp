// SPDX-License-Identifier: MIT
// The three times of a file object, each as raw local ticks and as a date, and the record that the
// search keeps of a file.
#include <cstdlib>

#include "frame/ErrorReporting.h"
#include "fsobjects/RecordDates.h"
#include "fsobjects/cFSXFile.h"
#include "fsobjects/modShlWAPI.h"
#include "platform/Machine.h"

namespace quillmarsh {
namespace {

struct TimeFamily {
  FileFact rawKnown;
  FileFact dateKnown;
  FILETIME BY_HANDLE_FILE_INFORMATION::*field;
};
constexpr TimeFamily kFamilies[] = {
    {FileFact::LastModifiedRawKnown, FileFact::LastModifiedDateKnown,
     &BY_HANDLE_FILE_INFORMATION::ftLastWriteTime},
    {FileFact::CreatedRawKnown, FileFact::CreatedDateKnown,
     &BY_HANDLE_FILE_INFORMATION::ftCreationTime},
    {FileFact::LastAccessedRawKnown, FileFact::LastAccessedDateKnown,
     &BY_HANDLE_FILE_INFORMATION::ftLastAccessTime},
};

constexpr std::size_t Place(FileTimeKind kind) {
  return static_cast<std::size_t>(kind);
}

}  // namespace

Currency cFSXFile::RawOf(FileTimeKind kind) {
  const TimeFamily& family = kFamilies[Place(kind)];
  FileTimeFact& fact = mTimes[Place(kind)];
  if (!GetStateBit(family.rawKnown)) {
    NeedFileInfo();
    FILETIME local;
    if (TheMachine().Locale().FileTimeToLocalFileTime(mFileInfo.*family.field, local))
      fact.asCurr = Currency::FromRaw(local.Ticks());
    SetStateBit(family.rawKnown, true);
  }
  return fact.asCurr;
}

void cFSXFile::SetRaw(FileTimeKind kind, Currency raw) {
  mTimes[Place(kind)].asCurr = raw;
  SetStateBit(kFamilies[Place(kind)].rawKnown, true);
}

Date cFSXFile::DateOf(FileTimeKind kind) {
  const TimeFamily& family = kFamilies[Place(kind)];
  FileTimeFact& fact = mTimes[Place(kind)];
  if (!GetStateBit(family.dateKnown)) {
    fact.date = ConvertDateTimeCurrToVBDateTime(RawOf(kind));
    SetStateBit(family.dateKnown, true);
  }
  return fact.date;
}

// Date and raw time part here: the raw time loses the minutes. SaveChanges tells by the raw time
// that there is something to write, and writes the date, which has them.
void cFSXFile::SetDate(FileTimeKind kind, Date date) {
  const TimeFamily& family = kFamilies[Place(kind)];
  FileTimeFact& fact = mTimes[Place(kind)];
  if (!date.IsValid()) throw RuntimeError(runtime_error::InvalidProcedureCall);
  if (GetStateBit(family.dateKnown) && fact.date.WholeSeconds() == date.WholeSeconds()) return;
  fact.date = date;
  SetStateBit(family.dateKnown, true);
  SetRaw(kind, DateToFileTimeCurr(date));
}

std::uint32_t cFSXFile::LastModifiedDateFTHigh() {
  return static_cast<std::uint32_t>(
      static_cast<std::uint64_t>(RawOf(FileTimeKind::LastModified).Raw()) >> 32U);
}

std::uint32_t cFSXFile::LastModifiedDateFTLow() {
  return static_cast<std::uint32_t>(RawOf(FileTimeKind::LastModified).Raw());
}

// The halves of the other two times answer 0 and wipe the raw time while it goes on counting as
// known. Nobody may take them for a time; a caller that needs one uses the raw time as a whole.
std::uint32_t cFSXFile::WipedHalf(FileTimeKind kind) {
  static_cast<void>(RawOf(kind));
  mTimes[Place(kind)].asCurr = Currency();
  return 0;
}

Date cFSXFile::ConvertDateTimeCurrToVBDateTime(Currency raw) {
  return DateOfRawTime(raw, [this] { return Path(); });
}

// A date that a setter laid down counts as it is; one that comes from the raw time is cut by its
// ticks, since a float of days cannot tell the last microsecond of a second from the next second.
Date cFSXFile::RecordDateOf(FileTimeKind kind) {
  FileTimeFact& fact = mTimes[Place(kind)];
  if (!GetStateBit(kFamilies[Place(kind)].dateKnown)) {
    const Date cut = WholeSecondDateOfRawTime(RawOf(kind), [this] { return Path(); });
    // A time that was reported stays the zero date and is not reported again.
    const Date whole = Date::FromTicks(fact.asCurr.Raw());
    fact.date = whole.IsValid() ? whole : cut;
    SetStateBit(kFamilies[Place(kind)].dateKnown, true);
    return cut;
  }
  const Date date = fact.date;
  if (date.Days() == Date::FromTicks(fact.asCurr.Raw()).Days())
    return WholeSecondDateOfRawTime(fact.asCurr, [this] { return Path(); });
  return Date::FromWholeSeconds(date.WholeSeconds());
}

DupeFileUDT cFSXFile::DupeFileUDT(NameArena& names) {
  quillmarsh::DupeFileUDT record;
  Guarded(u"cFSXFile.DupeFileUDT", [&] {
    record.Attributes = Attributes();
    record.CreatedDate = RecordDateOf(FileTimeKind::Created);
    record.Name = names.Add(mName);
    record.LastModifiedDate = RecordDateOf(FileTimeKind::LastModified);
    record.ParentFolderIdx = ParentFolderIdx();
    record.Size = Size();
  });
  return record;
}

}  // namespace quillmarsh
