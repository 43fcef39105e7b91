// SPDX-License-Identifier: MIT
// The scaled number: rounding half to even, and an error instead of a wrapped result.
#include "base/Currency.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

#include "base/RuntimeError.h"

namespace quillmarsh {
namespace {

constexpr std::int64_t Largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t Smallest = std::numeric_limits<std::int64_t>::min();

TEST(CurrencyTest, FloatsAreRoundedHalfToEvenByTheirTrueValue) {
  struct Case {
    double number;
    std::int64_t raw;
  };
  constexpr Case Cases[] = {
      {0, 0},
      {1.5, 15000},
      {-1.5, -15000},
      {0.00003125, 0},  // exactly 0.3125 of the last place
      {0.03125, 312},   // exactly 312.5: to even
      {0.09375, 938},   // exactly 937.5: to even
      {-0.03125, -312},
      {-0.09375, -938},
      {0.00005, 1},  // the float is a little more than half
      {0.00015, 1},  // and here a little less than one and a half
      {-0.00005, -1},
      {922337203685477.5, 9223372036854775000},
      {-922337203685477.5, -9223372036854775000},
      {500000000000000.0625, 5000000000000000625},
      {100000000000000.09375, 1000000000000000938},  // 937.5 although the product is a whole float
  };
  for (const Case& row : Cases)
    EXPECT_EQ(Currency::FromDouble(row.number).Raw(), row.raw) << row.number;
}

TEST(CurrencyTest, WholeNumbersAreRoundedHalfToEven) {
  struct Case {
    std::int64_t raw;
    std::int64_t whole;
  };
  constexpr Case Cases[] = {
      {4999, 0},  {5000, 0},   {5001, 1},    {15000, 2},   {25000, 2},
      {-5000, 0}, {-5001, -1}, {-15000, -2}, {-25000, -2}, {Largest, 922337203685478}};
  for (const Case& row : Cases) EXPECT_EQ(Currency::FromRaw(row.raw).ToInteger(), row.whole);
}

TEST(CurrencyTest, WhatDoesNotFitRaisesOverflow) {
  const Currency largest = Currency::FromRaw(Largest);
  const Currency smallest = Currency::FromRaw(Smallest);
  const Currency least = Currency::FromRaw(1);
  struct Case {
    const char* name;
    std::function<Currency()> run;
  };
  const Case cases[] = {
      {"sum", [&] { return largest + least; }},
      {"sum below", [&] { return smallest + Currency::FromRaw(-1); }},
      {"difference", [&] { return smallest - least; }},
      {"negation", [&] { return Currency() - smallest; }},
      {"product", [&] { return Currency::FromRaw(Largest / 3 + 1) * 3; }},
      {"product below", [&] { return Currency::FromRaw(Largest / 3 + 1) * -3; }},
      {"product of negatives", [&] { return Currency::FromRaw(-(Largest / 3 + 1)) * -3; }},
      {"product with minus one", [&] { return smallest * -1; }},
      {"product with the smallest", [&] { return Currency::FromRaw(-1) * Smallest; }},
      {"whole number", [] { return Currency::FromInteger(922337203685478); }},
      {"negative whole number", [] { return Currency::FromInteger(-922337203685478); }},
      {"float", [] { return Currency::FromDouble(922337203685477.625); }},
      {"negative float", [] { return Currency::FromDouble(-922337203685477.625); }},
      {"large float", [] { return Currency::FromDouble(1e300); }},
      {"infinity", [] { return Currency::FromDouble(-HUGE_VAL); }},
      {"not a number", [] { return Currency::FromDouble(std::nan("")); }},
  };
  for (const Case& row : cases) {
    try {
      const Currency result = row.run();
      ADD_FAILURE() << row.name << " gave " << result.Raw();
    } catch (const RuntimeError& error) {
      EXPECT_EQ(error.Number(), runtime_error::Overflow) << row.name;
    }
  }
}

TEST(CurrencyTest, ResultsAtTheLimitsStand) {
  const Currency largest = Currency::FromRaw(Largest);
  const Currency smallest = Currency::FromRaw(Smallest);
  EXPECT_EQ((smallest + largest).Raw(), -1);
  EXPECT_EQ((Currency::FromRaw(-1) - smallest).Raw(), Largest);
  EXPECT_EQ((Currency::FromRaw(Smallest / 2) * 2).Raw(), Smallest);
  EXPECT_EQ((Currency::FromRaw(1) * Smallest).Raw(), Smallest);
  EXPECT_EQ((largest * -1).Raw(), -Largest);
  EXPECT_EQ(Currency::FromInteger(-922337203685477).Raw(), -9223372036854770000);
}

TEST(CurrencyTest, TextIsPlainDecimal) {
  struct Case {
    std::int64_t raw;
    TextView text;
  };
  constexpr Case Cases[] = {{204800000, u"20480"},
                            {-10000, u"-1"},
                            {15000, u"1.5"},
                            {-1, u"-0.0001"},
                            {10100, u"1.01"},
                            {0, u"0"},
                            {Smallest, u"-922337203685477.5808"}};
  for (const Case& row : Cases) EXPECT_EQ(Currency::FromRaw(row.raw).ToText(), row.text);
}

}  // namespace
}  // namespace quillmarsh
