// SPDX-License-Identifier: MIT
// A search file type's place in the table below is its number.
#include "filetypes/SFT_CFT_Interface.h"

#include <iterator>

#include "filetypes/modCommonFileTypes.h"
#include "filetypes/modSearchFileTypes.h"

namespace quillmarsh {

std::int32_t CFTEnumFromSFTEnum(std::int32_t number) {
  constexpr std::int32_t kCommonFileTypes[] = {-1, 1, 4, 0, 2};
  return number < 0 || number >= std::ssize(kCommonFileTypes) ? -1 : kCommonFileTypes[number];
}

Text CFTNameFromSFTName(TextView name) {
  return CFTNameFromEnum(CFTEnumFromSFTEnum(SFTEnumFromName(name)));
}

}  // namespace quillmarsh
