// SPDX-License-Identifier: MIT
// Local time by the zone's own rules, there and back.
#include "platform/posix/ZoneRules.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <random>

namespace quillmarsh {
namespace {

constexpr std::int64_t Tick = 10'000'000;
constexpr std::int64_t From1601 = 11'644'473'600;

class ZoneTest : public testing::Test {
 protected:
  ~ZoneTest() override {
    ::unsetenv("TZ");
    ::tzset();
  }
  static ZoneRules In(const char* zone) {
    ::setenv("TZ", zone, 1);
    return ZoneRules();
  }
};

std::int64_t Ticks(std::int64_t unixSeconds, std::int64_t fraction = 0) {
  return (unixSeconds + From1601) * Tick + fraction;
}

TEST_F(ZoneTest, TellsTheTwoPassesOfARepeatedHourApartByTheLowestBit) {
  // Berlin, 25 October 2026: at 1:00 UTC the clock goes from 3:00 back to 2:00.
  constexpr std::int64_t Change = 1792890000;
  struct Row {
    const char* what;
    std::int64_t utc;
    std::int64_t local;
    bool secondPass;
    std::int64_t back;
  };
  const Row rows[] = {
      {"just before the hour", Ticks(Change - 3601, 7), Ticks(Change + 3599, 7), false,
       Ticks(Change - 3601, 7)},
      {"first pass, odd ticks", Ticks(Change - 1800, 7), Ticks(Change + 5400, 6), false,
       Ticks(Change - 1800, 6)},
      {"second pass, even ticks", Ticks(Change + 1800, 6), Ticks(Change + 5400, 7), true,
       Ticks(Change + 1800, 7)},
      {"second pass, its first moment", Ticks(Change), Ticks(Change + 3600, 1), true,
       Ticks(Change, 1)},
      {"just behind the hour", Ticks(Change + 3600, 7), Ticks(Change + 7200, 7), false,
       Ticks(Change + 3600, 7)},
      {"summer, odd ticks stay", Ticks(1783000000, 1), Ticks(1783007200, 1), false,
       Ticks(1783000000, 1)},
  };
  ZoneRules zone = In("Europe/Berlin");
  for (const Row& row : rows) {
    EXPECT_EQ(zone.ToLocal(row.utc), row.local) << row.what;
    EXPECT_EQ(zone.IsSecondPass(row.local), row.secondPass) << row.what;
    EXPECT_EQ(zone.ToUtc(row.local), row.back) << row.what;
  }
}

TEST_F(ZoneTest, AgreesWithTheSystemAndComesBackExactlyAtRandomMoments) {
  for (const char* name : {"Europe/Berlin", "America/New_York", "Australia/Lord_Howe",
                           "Pacific/Apia", "Asia/Kolkata", "Africa/Casablanca", "UTC"}) {
    ZoneRules zone = In(name);
    std::mt19937_64 random(7);
    for (int round = 0; round < 20000; ++round) {
      // From 1930 to 2036, half of it near the changes of 2026.
      const auto seconds =
          round % 2 == 0 ? static_cast<std::int64_t>(random() % 3'350'000'000U) - 1'262'304'000
                         : 1'767'225'600 + static_cast<std::int64_t>(random() % 31'536'000U);
      const std::int64_t utc = Ticks(seconds, static_cast<std::int64_t>(random() % Tick));
      const auto moment = static_cast<std::time_t>(seconds);
      std::tm civil{};
      ::localtime_r(&moment, &civil);
      const std::int64_t local = zone.ToLocal(utc).value_or(-1);
      ASSERT_EQ(local | 1, (utc + civil.tm_gmtoff * Tick) | 1) << name << " " << seconds;
      ASSERT_EQ(zone.ToUtc(local).value_or(-1) | 1, utc | 1) << name << " " << seconds;
    }
  }
}

TEST_F(ZoneTest, CountsASkippedLocalTimeByTheClockBeforeTheChange) {
  // Berlin, 29 March 2026: 2:00 becomes 3:00 at 1:00 UTC.
  constexpr std::int64_t Change = 1774746000;
  ZoneRules zone = In("Europe/Berlin");
  EXPECT_EQ(zone.ToUtc(Ticks(Change + 3600 + 1800)), Ticks(Change + 1800));
}

TEST_F(ZoneTest, KeepsTimesAtTheEdgesInRange) {
  ZoneRules zone = In("America/New_York");
  EXPECT_EQ(zone.ToLocal(0), 0);
  EXPECT_FALSE(zone.ToLocal(-1));
  ZoneRules east = In("Asia/Tokyo");
  EXPECT_FALSE(east.ToLocal(INT64_MAX));
}

}  // namespace
}  // namespace quillmarsh
