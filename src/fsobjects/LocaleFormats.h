// SPDX-License-Identifier: MIT
// The user's locale as the formats need it. The machine is asked once and the answer kept; whoever
// puts another machine in its place resets it.
#pragma once

#include "base/LocaleFormat.h"

namespace quillmarsh {

// A locale fact by its LOCALE_... number; empty when the machine has none.
[[nodiscard]] Text GetLocaleString(std::uint32_t type);

// A fact that the machine does not tell stays that of US English.
[[nodiscard]] const LocaleFacts& GetLocaleFacts();
void ResetLocaleFacts();

// The format of every time stamp in logs and lists, for FormatDate: the locale's short date without
// its literal text, a blank, and its long time.
[[nodiscard]] Text GetDateTimeFormat();

}  // namespace quillmarsh
