// SPDX-License-Identifier: MIT
// The numbers of the selection rules, and what they are called. The numbers are kept in the options
// file and are the positions in the assistant's list.
#pragma once

#include <cstdint>

#include "base/Text.h"

namespace quillmarsh {

inline constexpr std::int32_t kRuleCount = 16;

// Those of which the program itself speaks.
namespace selection_rule {
inline constexpr std::int32_t KeepNewest = 2;
inline constexpr std::int32_t KeepOldest = 3;
inline constexpr std::int32_t InDrive = 4;
inline constexpr std::int32_t NotInDrive = 5;
inline constexpr std::int32_t InFolder = 6;
inline constexpr std::int32_t NotInFolder = 7;
inline constexpr std::int32_t BySize = 8;
inline constexpr std::int32_t ByDate = 9;
inline constexpr std::int32_t ByFileMask = 10;
inline constexpr std::int32_t NotByFileMask = 11;
}  // namespace selection_rule

// The name in the assistant's list, and the sentence below it. Empty for a number outside 0 to 15.
[[nodiscard]] Text GetRuleName(std::int32_t rule);
[[nodiscard]] Text GetRuleDescription(std::int32_t rule);
// The caption in the menus, which have the rules 2 to 7; empty for any other number.
[[nodiscard]] Text GetRuleMenuTitle(std::int32_t rule);

}  // namespace quillmarsh
