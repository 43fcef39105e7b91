// SPDX-License-Identifier: MIT
// The calendar of file times: from 1601 to as far as 63 bits of ticks reach, without leap seconds.
#include <chrono>

#include "platform/LocaleAndTime.h"

namespace quillmarsh {
namespace {

using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;
using std::chrono::days;

constexpr std::chrono::sys_days Epoch = std::chrono::year(1601) / 1 / 1;
constexpr unsigned FirstYear = 1601;
constexpr unsigned LastYear = 30827;  // the last that is taken; ticks reach into the next

}  // namespace

bool SystemTimeToFileTime(const SYSTEMTIME& system, FILETIME& file) {
  const std::chrono::year_month_day date(std::chrono::year(system.wYear),
                                         std::chrono::month(system.wMonth),
                                         std::chrono::day(system.wDay));
  if (system.wYear < FirstYear || system.wYear > LastYear || system.wMonth > 12 ||
      system.wDay > 31 || !date.ok() || system.wHour > 23 || system.wMinute > 59 ||
      system.wSecond > 59 || system.wMilliseconds > 999)
    return false;
  const Ticks ticks = std::chrono::sys_days(date) - Epoch + std::chrono::hours(system.wHour) +
                      std::chrono::minutes(system.wMinute) + std::chrono::seconds(system.wSecond) +
                      std::chrono::milliseconds(system.wMilliseconds);
  file = FILETIME::FromTicks(ticks.count());
  return true;
}

bool FileTimeToSystemTime(const FILETIME& file, SYSTEMTIME& system) {
  if (file.Ticks() < 0) return false;
  const Ticks ticks(file.Ticks());
  const days whole = std::chrono::floor<days>(ticks);
  const std::chrono::sys_days day = Epoch + whole;
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss time(std::chrono::floor<std::chrono::milliseconds>(ticks - whole));
  system.wYear = static_cast<std::uint16_t>(static_cast<int>(date.year()));
  system.wMonth = static_cast<std::uint16_t>(static_cast<unsigned>(date.month()));
  system.wDay = static_cast<std::uint16_t>(static_cast<unsigned>(date.day()));
  system.wDayOfWeek = static_cast<std::uint16_t>(std::chrono::weekday(day).c_encoding());
  system.wHour = static_cast<std::uint16_t>(time.hours().count());
  system.wMinute = static_cast<std::uint16_t>(time.minutes().count());
  system.wSecond = static_cast<std::uint16_t>(time.seconds().count());
  system.wMilliseconds = static_cast<std::uint16_t>(time.subseconds().count());
  return true;
}

}  // namespace quillmarsh
