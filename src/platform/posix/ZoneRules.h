// SPDX-License-Identifier: MIT
// The user's time zone: ticks from UTC to local and back by the rule that holds at that moment.
// Where the zone repeats an hour, the lowest bit of the local ticks tells the pass, clear for the
// first and set for the second, so that the way back finds the right one; outside such hours ticks
// are exact. Millions of conversions are cheap: what is known is kept by days. For one thread.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace quillmarsh {

class ZoneRules {
 public:
  // Reads the zone of the process.
  ZoneRules();

  // None for ticks below zero. A local time before 1601 becomes 1601.
  [[nodiscard]] std::optional<std::int64_t> ToLocal(std::int64_t utc);
  // A local time that the zone skips counts as if the clock had not yet been put forward.
  [[nodiscard]] std::optional<std::int64_t> ToUtc(std::int64_t local);
  [[nodiscard]] bool IsSecondPass(std::int64_t local);

 private:
  // A moment at which the offset of the zone changes; seconds since 1970.
  struct Change {
    std::int64_t at;
    std::int32_t before;
    std::int32_t after;
  };
  // What is known of one day of UTC and a margin around it that is wider than any offset.
  struct Day {
    std::int64_t number = INT64_MIN;
    std::int32_t offset = 0;    // at its beginning
    std::uint32_t changes = 0;  // 0: one offset for the day and its margin
    std::array<Change, 3> change{};
  };

  [[nodiscard]] const Day& DayOf(std::int64_t seconds);
  static void FindChanges(Day& day);
  [[nodiscard]] static std::int32_t OffsetAt(const Day& day, std::int64_t seconds);
  // The change whose repeated hour holds the moment; null for none.
  [[nodiscard]] static const Change* RepeatedAround(const Day& day, std::int64_t seconds);
  [[nodiscard]] static const Change* RepeatedAtLocal(const Day& day, std::int64_t localSeconds);

  bool mIsUtc;
  std::vector<Day> mDays;  // a cache: a day lies at its number modulo the size
};

}  // namespace quillmarsh
