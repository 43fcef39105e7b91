// SPDX-License-Identifier: MIT
// Expands the ranges of CaseMappingData.inc into the table, at compile time.
#include "base/CaseMapping.h"

#include <algorithm>
#include <cstdint>

namespace quillmarsh {
namespace {

struct MappingRange {
  char16_t first;
  char16_t last;
  std::uint16_t step;
  std::int32_t added;
};

constexpr MappingRange Ranges[] = {
#include "base/CaseMappingData.inc"
};

constexpr std::array<char16_t, 65536> Expand() {
  std::array<char16_t, 65536> table{};
  for (std::uint32_t unit = 0; unit < table.size(); ++unit)
    table[unit] = static_cast<char16_t>(unit);
  for (const MappingRange& range : Ranges)
    for (std::int32_t unit = range.first; unit <= range.last; unit += range.step)
      table[static_cast<std::size_t>(unit)] = static_cast<char16_t>(unit + range.added);
  return table;
}

}  // namespace

constexpr std::array<char16_t, 65536> UpperCaseMappings = Expand();

Text UpperCaseText(TextView text) {
  Text upper(text.size(), u'\0');
  std::transform(text.begin(), text.end(), upper.begin(), UpperCase);
  return upper;
}

}  // namespace quillmarsh
