// SPDX-License-Identifier: MIT
// The calendar, the mapping of rights and the table of error texts against the system's own.
#include <gtest/gtest.h>

#include <cstring>

#include "RealCalls.h"

namespace quillmarsh {
namespace {

using win32::Narrow;

std::string ShownTime(const SYSTEMTIME& time) {
  std::string shown;
  for (const std::uint16_t number : {time.wYear, time.wMonth, time.wDay, time.wDayOfWeek,
                                     time.wHour, time.wMinute, time.wSecond, time.wMilliseconds})
    shown += std::to_string(number) + " ";
  return shown;
}

TEST(RealTimeTest, FileTimesHaveTheSystemsCalendar) {
  FewFailures failures;
  for (std::uint32_t seed = 1; seed <= 200000 && !failures.Enough(); ++seed) {
    Dice dice(seed);
    const auto ticks = static_cast<std::int64_t>(dice.Bits() >> dice.Below(20));
    const FILETIME file = FILETIME::FromTicks(ticks);
    const ::FILETIME realFile{file.dwLowDateTime, file.dwHighDateTime};
    SYSTEMTIME real;
    SYSTEMTIME ours;
    static_assert(sizeof(real) == sizeof(::SYSTEMTIME));
    const bool isReal =
        ::FileTimeToSystemTime(&realFile, reinterpret_cast<::SYSTEMTIME*>(&real)) != FALSE;
    const bool isOurs = FileTimeToSystemTime(file, ours);
    if (isReal == isOurs && (!isReal || ShownTime(real) == ShownTime(ours))) continue;
    failures.Count();
    ADD_FAILURE() << "seed " << seed << ": " << ticks << " is " << isReal << " " << ShownTime(real)
                  << "and not " << isOurs << " " << ShownTime(ours);
  }
}

std::uint16_t Number(Dice& dice, std::uint16_t first, std::uint16_t last) {
  constexpr std::uint16_t Beyond[] = {0, 257, 1000, 32768, 65535};
  if (dice.OneIn(40)) return dice.Of(Beyond);
  if (dice.OneIn(40)) return static_cast<std::uint16_t>(last + 1);
  return static_cast<std::uint16_t>(first + dice.Below(last - first + 1U));
}

// Wine takes years beyond the last one, and gives each fourth year a leap day where it looks
// whether a day exists.
bool IsTakenByWineAlone(const SYSTEMTIME& time) {
  const bool isLeapYear = (time.wYear % 4 == 0 && time.wYear % 100 != 0) || time.wYear % 400 == 0;
  return time.wYear > 30827 || (time.wMonth == 2 && time.wDay == 29 && !isLeapYear);
}

TEST(RealTimeTest, CalendarTimesAreTheSystemsTicks) {
  constexpr std::uint16_t years[] = {0,    1600, 1601, 1602, 1604, 1700,  1900,  1999,
                                     2000, 2023, 2024, 2100, 9999, 30826, 30827, 30828};
  FewFailures failures;
  int taken = 0;
  for (std::uint32_t seed = 1; seed <= 200000 && !failures.Enough(); ++seed) {
    Dice dice(seed);
    const SYSTEMTIME system = {dice.Of(years),      Number(dice, 1, 12), Number(dice, 0, 6),
                               Number(dice, 1, 31), Number(dice, 0, 23), Number(dice, 0, 59),
                               Number(dice, 0, 59), Number(dice, 0, 999)};
    if (IsWine() && IsTakenByWineAlone(system)) continue;
    ::SYSTEMTIME realSystem;
    std::memcpy(&realSystem, &system, sizeof(realSystem));
    ::FILETIME real{};
    FILETIME ours;
    const bool isReal = ::SystemTimeToFileTime(&realSystem, &real) != FALSE;
    const bool isOurs = SystemTimeToFileTime(system, ours);
    taken += isReal ? 1 : 0;
    if (isReal == isOurs && (!isReal || std::memcmp(&real, &ours, sizeof(real)) == 0)) continue;
    failures.Count();
    ADD_FAILURE() << "seed " << seed << ": " << ShownTime(system) << "is taken " << isReal
                  << " and by us " << isOurs;
  }
  EXPECT_GT(taken, 50000);
}

// No mapping of an object's rights has generic ones in itself.
TEST(RealRightsTest, GenericRightsAreMappedAsTheSystemMapsThem) {
  constexpr std::uint32_t SpecificRights = 0x0FFFFFFF;
  for (std::uint32_t seed = 1; seed <= 20000; ++seed) {
    Dice dice(seed);
    const auto any = [&dice] { return static_cast<std::uint32_t>(dice.Bits() & dice.Bits()); };
    const GENERIC_MAPPING ours{any() & SpecificRights, any() & SpecificRights,
                               any() & SpecificRights, any() & SpecificRights};
    ::GENERIC_MAPPING real{ours.GenericRead, ours.GenericWrite, ours.GenericExecute,
                           ours.GenericAll};
    const std::uint32_t mask = any();
    DWORD mapped = mask;
    ::MapGenericMask(&mapped, &real);
    ASSERT_EQ(MapGenericMask(mask, ours), mapped) << "seed " << seed;
  }
}

// Wine has texts of its own making, most of them shorter, and none for what it never answers.
TEST(RealErrorTextTest, TextsOfErrorNumbersAreTheSystems) {
  int known = 0;
  int missing = 0;
  for (std::uint32_t code = 0; code <= 20000; ++code) {
    const TextView ours = EnglishSystemErrorText(code);
    if (ours.empty()) continue;
    ++known;
    wchar_t buffer[4096] = {};
    const DWORD length =
        ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code,
                         MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), buffer, 4096, nullptr);
    const Text real = Narrow({buffer, length});
    if (real.empty()) ++missing;
    if (!IsWine()) {
      EXPECT_EQ(Shown(real), Shown(ours)) << code;
    } else if (!real.empty()) {
      EXPECT_TRUE(real.ends_with(u"\r\n")) << code << " " << Shown(real);
      EXPECT_EQ(real.find(u'%') == Text::npos, ours.find(u'%') == TextView::npos)
          << code << " " << Shown(real) << " " << Shown(ours);
    }
  }
  EXPECT_GT(known, 100);
  EXPECT_LE(missing, IsWine() ? 9 : 0);
}

}  // namespace
}  // namespace quillmarsh
