// SPDX-License-Identifier: MIT
// Small routines that the removal, the log and the lists of results share.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

// The text between two quotation marks; marks inside it stay as they are.
[[nodiscard]] Text EncloseInQuotes(TextView text);

// Sends one file to the Recycle Bin. What the bin refuses is deleted for good, unless
// gKeepWhatTheBinRefuses is set. False with number and text of the failure; also, as if access were
// denied, where a folder has come to stand under the file's name.
[[nodiscard]] bool SendFileToRecycleBin(TextView fileSpec, std::int32_t& errorNumber,
                                        Text& errorText);

// The path of a name in the folder that nothing bears yet: "report(1).txt" where "report.txt" is
// taken, then "report(2).txt" and so on. Without an extension nothing of the old name is kept. When
// a hundred thousand names are taken, or seem to be in a folder that may not be looked into, the
// last of them: a move, which replaces nothing, then tells what is wrong.
[[nodiscard]] Text ResolveFileNameCollision(TextView fileName, TextView folder);
// The same for one after another of many files of a name: `lastName`, empty at first, takes where a
// call ended, and the next one goes on behind it. Only while all that was answered is taken.
[[nodiscard]] Text ResolveNextFileNameCollision(TextView fileName, TextView folder,
                                                Text& lastName);

}  // namespace quillmarsh
