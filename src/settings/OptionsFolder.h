// SPDX-License-Identifier: MIT
// Where the options file, the history and the error details lie, and where the DUPES folder is.
// Both folders are made when they are missing; that they cannot be made is no error here.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

// The user's local application data folder, then "Harrow Fen\Quillmarsh\", with its final
// backslash; made with all its parents, at each call, when missing. Empty where the user has no
// such folder.
[[nodiscard]] Text GetIniFileFolder();

// The DUPES folder with its final backslash. Empty means not yet decided.
extern Text mDupesFolderPath;

// mDupesFolderPath, decided now if it was not ("DUPES\" in the folder of the options file) and made
// and marked when missing. Empty where there is no folder of the options file.
[[nodiscard]] Text GetDupesFolderPath();
// The same path, with nothing decided or made.
[[nodiscard]] Text DupesFolderPathWithoutMaking();

// Puts the marker file into a folder, by which every later search knows it for a DUPES folder and
// skips it, also when another folder has become the DUPES folder. A marker that is there stays as
// it is. A folder that was there before it became the DUPES folder is marked when it is first used,
// so that a look at what would be removed leaves no trace in it.
void MarkDupesFolder(TextView folder);

}  // namespace quillmarsh
