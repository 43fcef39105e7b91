// SPDX-License-Identifier: MIT
// The calendar, and the way between a straight line of seconds and a float of days whose fraction
// counts upward from midnight also below zero.
#include "base/Date.h"

#include <chrono>
#include <cmath>

#include "base/RuntimeError.h"

namespace quillmarsh {
namespace {

constexpr std::int64_t SecondsPerDay = 86400;
constexpr std::int64_t TicksPerSecond = 10'000'000;
constexpr std::int64_t TicksPerDay = SecondsPerDay * TicksPerSecond;
constexpr std::int64_t TicksPerMicrosecond = 10;
constexpr std::int64_t DayOfTicksZero = -109205;  // 1601-01-01 counted from 1899-12-30

// The neighbours of a float stay below this distance from a second for every day that it is asked
// for; farther away rounding cannot reach the next second.
constexpr std::int64_t NearSecondTicks = 2000;
constexpr std::int64_t FarthestDay = 1 << 24;

struct Split {
  std::int64_t whole;
  std::int64_t rest;
};
constexpr Split FloorDivide(std::int64_t number, std::int64_t divisor) {
  const std::int64_t whole = number / divisor;
  const std::int64_t rest = number % divisor;
  return rest < 0 ? Split{whole - 1, rest + divisor} : Split{whole, rest};
}

std::int64_t SecondsOf(double days) {
  const double day = std::trunc(days);
  const double timeOfDay = std::abs(days - day) * static_cast<double>(SecondsPerDay);
  return static_cast<std::int64_t>(day) * SecondsPerDay +
         static_cast<std::int64_t>(timeOfDay + 1e-6);
}

// The float next to a moment from which SecondsOf gives that moment's second. Plain rounding misses
// it near a second, and below zero may even land on the day before.
double DaysOf(std::int64_t day, std::int64_t ticksOfDay) {
  const double midnight = static_cast<double>(day);
  const double fraction = static_cast<double>(ticksOfDay) / static_cast<double>(TicksPerDay);
  double days = day >= 0 ? midnight + fraction : midnight - fraction;
  const std::int64_t beyondSecond = ticksOfDay % TicksPerSecond;
  const bool nearSecond =
      beyondSecond < NearSecondTicks || beyondSecond > TicksPerSecond - NearSecondTicks;
  if (!nearSecond || day < -FarthestDay || day > FarthestDay) return days;

  const double later = day >= 0 ? HUGE_VAL : -HUGE_VAL;
  if (day < 0 && std::trunc(days) != midnight) days = std::nextafter(days, midnight);
  if (beyondSecond >= TicksPerSecond - TicksPerMicrosecond) return days;
  const std::int64_t wanted = day * SecondsPerDay + ticksOfDay / TicksPerSecond;
  for (int step = 0; step < 2 && SecondsOf(days) != wanted; ++step)
    days = std::nextafter(days, SecondsOf(days) < wanted ? later : midnight);
  return days;
}

constexpr std::chrono::sys_days DayZero = std::chrono::year(1899) / 12 / 30;

constexpr std::int64_t DayOfCivil(std::chrono::year_month_day date) {
  return (std::chrono::sys_days(date) - DayZero).count();
}

static_assert(DayOfCivil(std::chrono::year(1601) / 1 / 1) == DayOfTicksZero);
static_assert(DayOfCivil(std::chrono::year(100) / 1 / 1) ==
              static_cast<std::int64_t>(Date::FirstDay));
static_assert(DayOfCivil(std::chrono::year(9999) / 12 / 31) ==
              static_cast<std::int64_t>(Date::LastDay));

constexpr bool IsWithin(std::int32_t value, std::int32_t least, std::int32_t most) {
  return value >= least && value <= most;
}

}  // namespace

std::optional<Date> Date::FromCivil(const CivilTime& civil) {
  if (!IsWithin(civil.year, 100, 9999) || !IsWithin(civil.month, 1, 12) ||
      !IsWithin(civil.day, 1, 31) || !IsWithin(civil.hour, 0, 23) ||
      !IsWithin(civil.minute, 0, 59) || !IsWithin(civil.second, 0, 59))
    return std::nullopt;
  const std::chrono::year_month_day date(std::chrono::year(civil.year),
                                         std::chrono::month(static_cast<unsigned>(civil.month)),
                                         std::chrono::day(static_cast<unsigned>(civil.day)));
  if (!date.ok()) return std::nullopt;
  const std::int64_t secondOfDay = (civil.hour * 60 + civil.minute) * 60 + civil.second;
  return Date(DaysOf(DayOfCivil(date), secondOfDay * TicksPerSecond));
}

Date Date::FromTicks(std::int64_t ticks) {
  const auto [day, ticksOfDay] = FloorDivide(ticks, TicksPerDay);
  return Date(DaysOf(day + DayOfTicksZero, ticksOfDay));
}

Date Date::FromWholeSeconds(std::int64_t seconds) {
  const auto [day, secondOfDay] = FloorDivide(seconds, SecondsPerDay);
  return Date(DaysOf(day, secondOfDay * TicksPerSecond));
}

bool Date::IsValid() const {
  return mDays > FirstDay - 1 && mDays < LastDay + 1;
}

std::int64_t Date::WholeSeconds() const {
  return SecondsOf(mDays);
}

CivilTime Date::ToCivil() const {
  if (!IsValid()) throw RuntimeError(runtime_error::InvalidProcedureCall);
  const auto [day, secondOfDay] = FloorDivide(WholeSeconds(), SecondsPerDay);
  const std::chrono::sys_days calendarDay = DayZero + std::chrono::days(day);
  const std::chrono::year_month_day date(calendarDay);
  CivilTime civil;
  civil.year = static_cast<int>(date.year());
  civil.month = static_cast<std::int32_t>(static_cast<unsigned>(date.month()));
  civil.day = static_cast<std::int32_t>(static_cast<unsigned>(date.day()));
  civil.hour = static_cast<std::int32_t>(secondOfDay / 3600);
  civil.minute = static_cast<std::int32_t>(secondOfDay / 60 % 60);
  civil.second = static_cast<std::int32_t>(secondOfDay % 60);
  civil.weekday = static_cast<std::int32_t>(std::chrono::weekday(calendarDay).c_encoding());
  return civil;
}

}  // namespace quillmarsh
