// SPDX-License-Identifier: MIT
// Two roundings, half to even.
#include "selection/DateDiffSeconds.h"

#include <cmath>

namespace quillmarsh {

// The days added are not those from 1601-01-01 to 1899-12-30 (109,205), and need not be: they
// cancel out of every difference. They do decide how a product is rounded, so they stay as they
// are.
Currency MillisecondsOf(Date date) {
  constexpr double AddedDays = 109025;
  constexpr double MillisecondsPerDay = 86'400'000;
  return Currency::FromDouble((date.Days() + AddedDays) * MillisecondsPerDay);
}

Currency SecondsBetween(Currency millisecondsOfA, Currency millisecondsOfB) {
  const double milliseconds = (millisecondsOfA - millisecondsOfB).ToDouble();
  return Currency::FromInteger(static_cast<std::int64_t>(std::nearbyint(milliseconds / 1000)));
}

Currency DateDiffSeconds(Date a, Date b) {
  return SecondsBetween(MillisecondsOf(a), MillisecondsOf(b));
}

}  // namespace quillmarsh
