// SPDX-License-Identifier: MIT
// Small routines that the removal, the log and the lists of results share.
#pragma once

#include <functional>

#include "base/Text.h"
#include "platform/SystemTypes.h"

namespace quillmarsh {

// The text between two quotation marks; marks inside it stay as they are.
[[nodiscard]] Text EncloseInQuotes(TextView text);

// Sends a pinned file to the Recycle Bin. False with the system's number and text of the failure;
// the file is then where it was. What the bin refuses is not deleted.
[[nodiscard]] bool SendFileToRecycleBin(HANDLE pin, std::int32_t& errorNumber, Text& errorText);

// The path of a name in the folder that nothing bears yet: "report(1).txt" where "report.txt" is
// taken, then "report(2).txt" and so on. Without an extension nothing of the old name is kept. When
// a hundred thousand names are taken, or seem to be in a folder that may not be looked into, the
// last of them: a move, which replaces nothing, then tells what is wrong.
[[nodiscard]] Text ResolveFileNameCollision(TextView fileName, TextView folder);
// The same for one after another of many files of a name: `lastName`, empty at first, takes where a
// call ended, and the next one goes on behind it. Only while all that was answered is taken.
[[nodiscard]] Text ResolveNextFileNameCollision(TextView fileName, TextView folder, Text& lastName);
// The same where it is the caller who knows whether a path is taken.
using IsPathTaken = std::function<bool(TextView path)>;
[[nodiscard]] Text ResolveNextFileNameCollision(TextView fileName, TextView folder, Text& lastName,
                                                const IsPathTaken& isTaken);

}  // namespace quillmarsh
