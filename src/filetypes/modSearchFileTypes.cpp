// SPDX-License-Identifier: MIT
// A name's place in the table below is its number.
#include "filetypes/modSearchFileTypes.h"

#include <iterator>

#include "frame/TextTable.h"
#include "frame/Views.h"

namespace quillmarsh {
namespace {

constexpr TextId kNames[] = {1248, 961, 1249, 960, 962};
constexpr std::int32_t kCount = std::ssize(kNames);

}  // namespace

std::int32_t SFTEnumFromName(TextView name) {
  for (std::int32_t number = 0; number < kCount; ++number) {
    if (LoadResString(kNames[number]) == name) return number;
  }
  return 0;
}

Text SFTNameFromEnum(std::int32_t number) {
  if (number >= 0 && number < kCount) return LoadResString(kNames[number]);
  ShowMessageBox({u"Ooops, unaccounted for option in SFTNameFromEnum Select Case", {}});
  return {};
}

}  // namespace quillmarsh
