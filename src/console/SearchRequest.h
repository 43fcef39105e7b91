// SPDX-License-Identifier: MIT
// From the arguments of a search to the options and locations that the machine knows.
#pragma once

#include <string>
#include <vector>

#include "base/Text.h"
#include "console/Arguments.h"

namespace quillmarsh {

// Sets gDupeSettings and answers the drive form of each location. Empty when an argument was
// refused, which has been told.
[[nodiscard]] std::vector<Text> TakeSearchArguments(const SearchArguments& arguments);

// The roots of all drives.
[[nodiscard]] std::vector<Text> DriveRoots();

// The system's text of an error number without its line break.
[[nodiscard]] std::string ReasonOf(std::uint32_t code);

}  // namespace quillmarsh
