// SPDX-License-Identifier: MIT
// The platform's text services under the names that the program calls them by, the number forms of
// sizes and times, and the system's own messages.
#pragma once

#include "base/Currency.h"
#include "base/Date.h"
#include "base/Text.h"

namespace quillmarsh {

// The root of a path without the final backslash of a share; empty where there is none.
[[nodiscard]] Text StripToRoot(TextView path);
// The one wildcard test of the program: '*', '?' and lists parted by ';', ignoring case.
[[nodiscard]] bool MatchesSpec(TextView path, TextView spec);
// "1.30 KB", in the user's decimal separator.
[[nodiscard]] Text FormatByteSize(Currency bytes);

// A byte count of two 32-bit words. A high word of 0 or below adds nothing. Error 6 above the
// currency's limit of some 922 million million bytes.
[[nodiscard]] Currency HiLoToCurr(std::int32_t high, std::int32_t low);
[[nodiscard]] inline Currency HiLoToCurr(std::uint32_t high, std::uint32_t low) {
  return HiLoToCurr(static_cast<std::int32_t>(high), static_cast<std::int32_t>(low));
}

// The raw file time of a date, without its minutes; zero for a year that file times do not have.
[[nodiscard]] Currency DateToFileTimeCurr(Date date);

// The system's text of an error number with its line break, or a sentence with the number.
[[nodiscard]] Text FormatSystemErrorMessage(std::uint32_t code);

}  // namespace quillmarsh
