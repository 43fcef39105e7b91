// SPDX-License-Identifier: MIT
// How far apart two dates are, as all rules of the selection count it: in whole seconds, by way of
// milliseconds with four decimals, each step rounded half to even. Dates less than half a second
// apart count as equal. Pure.
#pragma once

#include "base/Currency.h"
#include "base/Date.h"

namespace quillmarsh {

// a - b in whole seconds: 0.5 seconds are 0, 1.5 seconds are 2. Error 6 for a date too far away to
// be counted.
[[nodiscard]] Currency DateDiffSeconds(Date a, Date b);

// Its two steps, for loops that hold many dates against one.
[[nodiscard]] Currency MillisecondsOf(Date date);
[[nodiscard]] Currency SecondsBetween(Currency millisecondsOfA, Currency millisecondsOfB);

}  // namespace quillmarsh
