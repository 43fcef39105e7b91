// SPDX-License-Identifier: MIT
// A moment as a 64-bit float: days since 30 December 1899, the time of day as the fraction. Below
// zero the fraction counts as absolute time of day. Valid from 1 January 100 to the end of 9999.
// A date knows no zone; file times are in local time before they become dates.
#pragma once

#include <cstdint>
#include <optional>

#include "base/Text.h"

namespace quillmarsh {

struct CivilTime {
  std::int32_t year = 1899;  // 100 to 9999
  std::int32_t month = 12;   // 1 to 12
  std::int32_t day = 30;     // 1 to 31
  std::int32_t hour = 0;     // 0 to 23
  std::int32_t minute = 0;   // 0 to 59
  std::int32_t second = 0;   // 0 to 59
  std::int32_t weekday = 6;  // 0 Sunday to 6 Saturday
};

class Date {
 public:
  static constexpr double FirstDay = -657434.0;  // 1 January 100
  static constexpr double LastDay = 2958465.0;   // 31 December 9999

  constexpr Date() = default;
  constexpr explicit Date(double days) : mDays(days) {}

  // No date when a field is out of its range or the day is not in the month.
  [[nodiscard]] static std::optional<Date> FromCivil(const CivilTime& civil);
  // From ticks of 100 nanoseconds since 1601-01-01, with the fraction of a second.
  [[nodiscard]] static Date FromTicks(std::int64_t ticks);
  // From whole seconds since 30 December 1899, 0:00 (may be negative).
  [[nodiscard]] static Date FromWholeSeconds(std::int64_t seconds);

  [[nodiscard]] constexpr double Days() const { return mDays; }
  // False for NaN and for what lies outside FirstDay to the last second of LastDay.
  [[nodiscard]] bool IsValid() const;
  // Whole seconds since 30 December 1899, 0:00 on a straight time line, the fraction of a second
  // cut off. A value less than a microsecond below a second counts as that second, since a float of
  // days cannot tell them apart. The date must be valid.
  [[nodiscard]] std::int64_t WholeSeconds() const;
  // The date must be valid (error 5 if not).
  [[nodiscard]] CivilTime ToCivil() const;

 private:
  double mDays = 0.0;
};

static_assert(sizeof(Date) == 8);

}  // namespace quillmarsh
