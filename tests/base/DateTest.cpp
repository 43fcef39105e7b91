// SPDX-License-Identifier: MIT
// Dates from ticks, seconds and calendar fields, and back, to the second and at the limits.
#include "base/Date.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "base/RuntimeError.h"

namespace quillmarsh {
namespace {

constexpr std::int64_t TicksPerSecond = 10'000'000;
constexpr std::int64_t TicksPerDay = 86400 * TicksPerSecond;
constexpr std::int64_t SecondsToTicksZero = 109205LL * 86400;
constexpr std::int64_t FirstTicks = (-657434LL + 109205) * TicksPerDay;
constexpr std::int64_t EndTicks = (2958466LL + 109205) * TicksPerDay;

std::int64_t CutSeconds(std::int64_t ticks) {
  std::int64_t seconds = ticks / TicksPerSecond;
  if (ticks % TicksPerSecond < 0) --seconds;
  return seconds - SecondsToTicksZero;
}

void ExpectCutToTheSecond(std::int64_t ticks) {
  const Date date = Date::FromTicks(ticks);
  const std::int64_t seconds = CutSeconds(ticks);
  const std::int64_t beyond = ticks - (seconds + SecondsToTicksZero) * TicksPerSecond;
  const std::int64_t shown = date.WholeSeconds();
  if (shown == seconds + 1) {
    ASSERT_GE(beyond, TicksPerSecond - 10) << ticks;
  } else {
    ASSERT_EQ(shown, seconds) << ticks;
  }
}

TEST(DateTest, SecondsOfTicksAreCutAndNotRounded) {
  std::mt19937_64 random(11);
  std::uniform_int_distribution<std::int64_t> anyTicks(FirstTicks, EndTicks - TicksPerDay);
  constexpr std::int64_t Offsets[] = {0,   1,   3,   9,    50,   399, 401,
                                      -11, -13, -30, -200, -401, -5,  TicksPerSecond / 2};
  for (int round = 0; round < 20000; ++round) {
    const std::int64_t ticks = anyTicks(random);
    ExpectCutToTheSecond(ticks);
    const std::int64_t second = ticks / TicksPerSecond * TicksPerSecond;
    for (const std::int64_t offset : Offsets) ExpectCutToTheSecond(second + offset);
    // Below zero the last moments of a day are the farthest from its whole number.
    const std::int64_t midnight = ticks / TicksPerDay * TicksPerDay;
    for (const std::int64_t offset : Offsets) ExpectCutToTheSecond(midnight + offset);
  }
}

TEST(DateTest, AnyTicksAndSecondsGiveADateThatCanBeAsked) {
  for (const std::int64_t number : {INT64_MIN, INT64_MAX}) {
    EXPECT_FALSE(Date::FromTicks(number).IsValid());
    EXPECT_FALSE(Date::FromWholeSeconds(number).IsValid());
  }
  EXPECT_TRUE(Date::FromTicks(FirstTicks).IsValid());
  EXPECT_FALSE(Date::FromTicks(FirstTicks - 50).IsValid());
  EXPECT_TRUE(Date::FromTicks(EndTicks - TicksPerSecond).IsValid());
  EXPECT_FALSE(Date::FromTicks(EndTicks).IsValid());
}

TEST(DateTest, EveryWholeSecondComesBack) {
  std::mt19937_64 random(12);
  std::uniform_int_distribution<std::int64_t> anySecond(-657434LL * 86400, 2958466LL * 86400 - 1);
  for (int round = 0; round < 100000; ++round) {
    const std::int64_t second = anySecond(random);
    const Date date = Date::FromWholeSeconds(second);
    ASSERT_EQ(date.WholeSeconds(), second);
    const CivilTime civil = date.ToCivil();
    const auto again = Date::FromCivil(civil);
    ASSERT_TRUE(again.has_value());
    ASSERT_EQ(again->Days(), date.Days());
  }
}

TEST(DateTest, BelowZeroTheFractionIsTheTimeOfDay) {
  struct Case {
    double days;
    std::int32_t year, month, day, hour, weekday;
  };
  constexpr Case Cases[] = {
      {0, 1899, 12, 30, 0, 6},     {0.5, 1899, 12, 30, 12, 6},     {-0.5, 1899, 12, 30, 12, 6},
      {-1.25, 1899, 12, 29, 6, 5}, {1.25, 1899, 12, 31, 6, 0},     {36526, 2000, 1, 1, 0, 6},
      {-657434, 100, 1, 1, 0, 5},  {-657434.75, 100, 1, 1, 18, 5}, {2958465.5, 9999, 12, 31, 12, 5},
      {60, 1900, 2, 28, 0, 3},
  };
  for (const Case& row : Cases) {
    const CivilTime civil = Date(row.days).ToCivil();
    EXPECT_EQ(civil.year, row.year) << row.days;
    EXPECT_EQ(civil.month, row.month) << row.days;
    EXPECT_EQ(civil.day, row.day) << row.days;
    EXPECT_EQ(civil.hour, row.hour) << row.days;
    EXPECT_EQ(civil.weekday, row.weekday) << row.days;
  }
  EXPECT_EQ(Date::FromWholeSeconds(-86400 + 6 * 3600).Days(), -1.25);
}

TEST(DateTest, ADateOutsideTheCalendarIsNotValid) {
  for (const double days : {-657435.0, 2958466.0, 1e300, -HUGE_VAL, std::nan("")}) {
    EXPECT_FALSE(Date(days).IsValid()) << days;
    EXPECT_THROW((void)Date(days).ToCivil(), RuntimeError) << days;
  }
  EXPECT_TRUE(Date(-657434.5).IsValid());
  EXPECT_EQ(Date(std::nextafter(2958466.0, 0.0)).ToCivil().second, 59);
}

TEST(DateTest, FieldsOutOfRangeGiveNoDate) {
  struct Case {
    const char* name;
    CivilTime civil;
    bool isDate;
  };
  constexpr Case Cases[] = {
      {"leap day", {2024, 2, 29, 0, 0, 0}, true},
      {"no leap day", {2023, 2, 29, 0, 0, 0}, false},
      {"no leap day in 1900", {1900, 2, 29, 0, 0, 0}, false},
      {"31 April", {2024, 4, 31, 0, 0, 0}, false},
      {"month 13", {2024, 13, 1, 0, 0, 0}, false},
      {"month 257", {2024, 257, 1, 0, 0, 0}, false},
      {"day 0", {2024, 1, 0, 0, 0, 0}, false},
      {"negative day", {2024, 1, -1, 0, 0, 0}, false},
      {"hour 24", {2024, 1, 1, 24, 0, 0}, false},
      {"second 60", {2024, 1, 1, 0, 0, 60}, false},
      {"year 99", {99, 12, 31, 0, 0, 0}, false},
      {"year 10000", {10000, 1, 1, 0, 0, 0}, false},
  };
  for (const Case& row : Cases)
    EXPECT_EQ(Date::FromCivil(row.civil).has_value(), row.isDate) << row.name;
}

}  // namespace
}  // namespace quillmarsh
