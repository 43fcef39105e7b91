// SPDX-License-Identifier: MIT
// Dates out of raw local file times (ticks since 1601). A time that no date can tell is reported
// and becomes the zero date.
#pragma once

#include <functional>

#include "base/Currency.h"
#include "base/Date.h"

namespace quillmarsh {

// Gives the path of the file that a report is about; called only when there is one.
using PathOfFile = std::function<Text()>;

// With the fraction of a second.
[[nodiscard]] Date DateOfRawTime(Currency raw, const PathOfFile& path);
// The fraction of a second cut off by the ticks, so that files whose times agree to the second have
// one date.
[[nodiscard]] Date WholeSecondDateOfRawTime(Currency raw, const PathOfFile& path);

// The present moment as the disk tells the times of a file, in UTC ticks.
[[nodiscard]] std::int64_t UtcTicksNow();

}  // namespace quillmarsh
