// SPDX-License-Identifier: MIT
// The bars, the comparisons and the pump.
#include "selection/RuleRun.h"

#include "base/RuntimeError.h"
#include "frame/Pump.h"
#include "platform/Machine.h"
#include "selection/DateDiffSeconds.h"

namespace quillmarsh {

namespace {

constexpr std::uint32_t kFilesPerPump = 4096;
constexpr std::int32_t kYearsBack = -30;
constexpr std::int32_t kYearsAhead = 1;

// Beyond these no size counts.
constexpr std::int64_t kNoLargest = -922'337'203'685'477;
constexpr std::int64_t kNoSmallest = 922'337'203'685'477;

// The same day and time in another year; 28 February where there is no 29th.
Date InAnotherYear(CivilTime civil, std::int32_t yearsLater) {
  civil.year += yearsLater;
  if (const auto date = Date::FromCivil(civil)) return *date;
  civil.day = 28;
  return Date::FromCivil(civil).value_or(Date());
}

}  // namespace

RuleRun::RuleRun(cSearchResults& results) : mResults(results) {
  const CivilTime now = Date::FromTicks(TheMachine().Locale().GetLocalTime().Ticks()).ToCivil();
  mThirtyYearsAgo = MillisecondsOf(InAnotherYear(now, kYearsBack));
  mNextYear = MillisecondsOf(InAnotherYear(now, kYearsAhead));
}

RuleRun::Members RuleRun::MembersOf(std::int32_t group) {
  mResults.ReadMembers(group, mMembers);
  const std::int32_t records = mResults.RecordCount();
  for (const std::int32_t member : mMembers) {
    const bool hasRecord = member >= 1 && member <= records &&
                           static_cast<std::size_t>(member) <= mResults.mFileMarked.size();
    if (!hasRecord) throw RuntimeError(runtime_error::SubscriptOutOfRange);
  }
  return mMembers;
}

std::int32_t RuleRun::FindByDate(Members members, DateOrder order) {
  const Currency bar = order == DateOrder::Newest ? mThirtyYearsAgo : mNextYear;
  return FindBeyond({NoFile, bar, bar}, members, order);
}

std::int32_t RuleRun::FindNewestOfAnyAge(Members members) {
  if (members.empty()) return NoFile;
  const DupeFileUDT& first = mResults.Record(members.front());
  const DatedFile best = {members.front(), MillisecondsOf(first.LastModifiedDate),
                          MillisecondsOf(first.CreatedDate)};
  return FindBeyond(best, members, DateOrder::Newest);
}

// The last-modified date of the best stays when a file of the same second takes its place by its
// creation date.
std::int32_t RuleRun::FindBeyond(DatedFile best, Members members, DateOrder order) {
  const auto isBeyond = [order](Currency difference) {
    return order == DateOrder::Newest ? difference > Currency() : difference < Currency();
  };
  for (const std::int32_t member : members) {
    Step();
    const DupeFileUDT& record = mResults.Record(member);
    const Currency modified = MillisecondsOf(record.LastModifiedDate);
    const Currency difference = SecondsBetween(modified, best.modified);
    if (isBeyond(difference)) {
      best = {member, modified, MillisecondsOf(record.CreatedDate)};
    } else if (difference == Currency()) {
      const Currency created = MillisecondsOf(record.CreatedDate);
      if (!isBeyond(SecondsBetween(created, best.created))) continue;
      best.index = member;
      best.created = created;
    }
  }
  return best.index;
}

std::int32_t RuleRun::FindBySize(Members members, SizeOrder order) {
  const bool isLargest = order == SizeOrder::Largest;
  std::int32_t found = NoFile;
  Currency best = Currency::FromInteger(isLargest ? kNoLargest : kNoSmallest);
  for (const std::int32_t member : members) {
    Step();
    const Currency size = mResults.Record(member).Size;
    if (isLargest ? size <= best : size >= best) continue;
    found = member;
    best = size;
  }
  return found;
}

void RuleRun::LastModified::Offer(std::int32_t member, Date modified) {
  const Currency offered = MillisecondsOf(modified);
  if (SecondsBetween(offered, milliseconds) <= Currency()) return;
  index = member;
  milliseconds = offered;
}

void RuleRun::SetMark(std::int32_t index, bool isMarked) {
  Step();
  mResults.mFileMarked[static_cast<std::size_t>(index) - 1] = isMarked;
}

void RuleRun::Step() {
  if (++mSteps % kFilesPerPump == 0) DoEvents_Fast();
}

}  // namespace quillmarsh
