// SPDX-License-Identifier: MIT
// The ten common file types: their numbers 0 to 9 and names, their built-in masks, and what is done
// to a whole set of them. A type's position in gCommonFileTypes is its number plus 1. Names are
// texts of the text table and are compared with regard to case.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

class cCommonFileTypes;

// The ten names in the order of their numbers, joined by ";".
[[nodiscard]] Text GetDefaultCFTList();

// -1 for any other name, and the empty text for any other number.
[[nodiscard]] std::int32_t CFTEnumFromName(TextView name);
[[nodiscard]] Text CFTNameFromEnum(std::int32_t number);

// The built-in masks joined by the separator, or by "," where that is empty; empty for an unknown
// name.
[[nodiscard]] Text GetDefaultFileMasksFromCFTName(TextView name, TextView separator = {});

// Makes the target an image of the source; without a target nothing happens. An empty source leaves
// the target as it is.
void CopyCFTsObject(const cCommonFileTypes& source, cCommonFileTypes* target);

// Gives every member of gCommonFileTypes its built-in masks, and a member of any other name none.
// False where there is no gCommonFileTypes, and after a failure, which is reported.
[[nodiscard]] bool RestoreDefaultFileTypeMasks();

}  // namespace quillmarsh
