// SPDX-License-Identifier: MIT
// Offsets by day, from the system's own conversion.
#include "platform/posix/ZoneRules.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <ctime>
#include <string_view>

namespace quillmarsh {
namespace {

constexpr std::int64_t SecondsFrom1601To1970 = 11'644'473'600;
constexpr std::int64_t TicksPerSecond = 10'000'000;
constexpr std::int64_t SecondsPerDay = 86400;
constexpr std::int64_t Margin = std::int64_t{26} * 3600;
constexpr std::size_t DaysKept = 4096;

std::int64_t DayNumber(std::int64_t seconds) {
  return (seconds >= 0 ? seconds : seconds - (SecondsPerDay - 1)) / SecondsPerDay;
}

std::int32_t SystemOffset(std::int64_t seconds) {
  const auto moment = static_cast<std::time_t>(seconds);
  std::tm local{};
  return ::localtime_r(&moment, &local) == nullptr ? 0 : static_cast<std::int32_t>(local.tm_gmtoff);
}

bool ZoneIsUtc() {
  std::array<char, 256> target{};
  std::string_view zone;
  if (const char* const named = std::getenv("TZ")) {
    zone = named;
    if (zone.starts_with(':')) zone.remove_prefix(1);
  } else {
    const ssize_t length = ::readlink("/etc/localtime", target.data(), target.size());
    if (length <= 0) return ::access("/etc/localtime", F_OK) != 0;
    zone = std::string_view(target.data(), static_cast<std::size_t>(length));
    const std::size_t slash = zone.rfind('/');
    zone.remove_prefix(slash == std::string_view::npos ? 0 : slash + 1);
  }
  constexpr std::array<std::string_view, 5> Names = {"UTC", "UTC0", "Etc/UTC", "Universal", "Zulu"};
  return std::find(Names.begin(), Names.end(), zone) != Names.end();
}

}  // namespace

ZoneRules::ZoneRules() : mIsUtc(ZoneIsUtc()) {
  ::tzset();
  if (!mIsUtc) mDays.resize(DaysKept);
}

std::optional<std::int64_t> ZoneRules::ToLocal(std::int64_t utc) {
  if (utc < 0) return {};
  if (mIsUtc) return utc;
  const std::int64_t seconds = utc / TicksPerSecond - SecondsFrom1601To1970;
  const Day& day = DayOf(seconds);
  const std::int32_t offset = day.changes == 0 ? day.offset : OffsetAt(day, seconds);
  std::int64_t local = 0;
  if (__builtin_add_overflow(utc, offset * TicksPerSecond, &local)) return {};
  if (local < 0) return 0;
  if (day.changes != 0)
    if (const Change* change = RepeatedAround(day, seconds))
      local = (local & ~std::int64_t{1}) | (seconds >= change->at ? 1 : 0);
  return local;
}

std::optional<std::int64_t> ZoneRules::ToUtc(std::int64_t local) {
  if (local < 0) return {};
  if (mIsUtc) return local;
  const std::int64_t seconds = local / TicksPerSecond - SecondsFrom1601To1970;
  const Day& day = DayOf(seconds);  // its margin holds the moment itself
  std::int32_t offset = day.offset;
  if (day.changes != 0) {
    if (const Change* change = RepeatedAtLocal(day, seconds)) {
      offset = (local & 1) != 0 ? change->after : change->before;
    } else {
      // The last change that lies behind, counted by the clock as it stood before that change.
      offset = day.change[0].before;
      for (std::uint32_t index = 0; index < day.changes; ++index) {
        const Change& behind = day.change[index];
        const std::int32_t clock = std::max(behind.before, behind.after);
        if (seconds >= behind.at + clock) offset = behind.after;
      }
    }
  }
  std::int64_t utc = 0;
  if (__builtin_sub_overflow(local, offset * TicksPerSecond, &utc)) return {};
  return std::max<std::int64_t>(utc, 0);
}

bool ZoneRules::IsSecondPass(std::int64_t local) {
  if (mIsUtc || local < 0 || (local & 1) == 0) return false;
  const std::int64_t seconds = local / TicksPerSecond - SecondsFrom1601To1970;
  const Day& day = DayOf(seconds);
  return day.changes != 0 && RepeatedAtLocal(day, seconds) != nullptr;
}

const ZoneRules::Day& ZoneRules::DayOf(std::int64_t seconds) {
  const std::int64_t number = DayNumber(seconds);
  Day& day = mDays[static_cast<std::size_t>(number) % DaysKept];
  if (day.number != number) {
    day.number = number;
    FindChanges(day);
  }
  return day;
}

// No zone changes twice within the six hours between two samples.
void ZoneRules::FindChanges(Day& day) {
  constexpr std::int64_t Step = std::int64_t{6} * 3600;
  const std::int64_t begin = day.number * SecondsPerDay;
  std::int64_t from = begin - Margin;
  std::int32_t offset = SystemOffset(from);
  day.offset = offset;
  day.changes = 0;
  for (; from < begin + SecondsPerDay + Margin; from += Step) {
    const std::int32_t next = SystemOffset(from + Step);
    if (next == offset) continue;
    std::int64_t low = from;
    std::int64_t high = from + Step;
    while (high - low > 1) {
      const std::int64_t middle = low + (high - low) / 2;
      (SystemOffset(middle) == offset ? low : high) = middle;
    }
    if (day.changes < day.change.size()) day.change[day.changes++] = {high, offset, next};
    offset = next;
  }
}

std::int32_t ZoneRules::OffsetAt(const Day& day, std::int64_t seconds) {
  std::int32_t offset = day.change[0].before;
  for (std::uint32_t index = 0; index < day.changes; ++index) {
    const Change& change = day.change[index];
    if (seconds >= change.at) offset = change.after;
  }
  return offset;
}

const ZoneRules::Change* ZoneRules::RepeatedAround(const Day& day, std::int64_t seconds) {
  for (std::uint32_t index = 0; index < day.changes; ++index) {
    const Change& change = day.change[index];
    const std::int64_t length = change.before - change.after;
    if (seconds >= change.at - length && seconds < change.at + length) return &change;
  }
  return nullptr;
}

const ZoneRules::Change* ZoneRules::RepeatedAtLocal(const Day& day, std::int64_t localSeconds) {
  for (std::uint32_t index = 0; index < day.changes; ++index) {
    const Change& change = day.change[index];
    if (localSeconds >= change.at + change.after && localSeconds < change.at + change.before)
      return &change;
  }
  return nullptr;
}

}  // namespace quillmarsh
