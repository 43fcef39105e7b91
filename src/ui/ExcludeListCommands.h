// SPDX-License-Identifier: MIT
// Puts the name of a file, or all files of its extension, on the list of files that searches leave
// out, and tells in a message box what came of it. It knows no toolkit.
#pragma once

#include "settings/clsDupeSettings.h"

namespace quillmarsh {

// `fileName` is that of the selected file, empty without one.
void mnuFileAddFileToExcludeList_Click(TextView fileName, clsDupeSettings& settings);
void mnuFileAddFileExtensionToExcludeList_Click(TextView fileName, clsDupeSettings& settings);

}  // namespace quillmarsh
