// SPDX-License-Identifier: MIT
// The routines that change the disk: copy, move, rename and delete of one object or of a list, the
// times of a file, and writing back what was changed in a file object. CreateFolderTree.h belongs
// to them. They serve for files and for junctions; a plain folder is left alone, with success.
// Nothing here shows a dialog, and nothing is taken back: what was done before a failure stays
// done.
#pragma once

#include "base/Date.h"
#include "base/Text.h"

namespace quillmarsh {

class cFSXFile;

// Takes the line that tells what a list routine is doing, for a person to read.
class FSOStatusTarget {
 public:
  virtual ~FSOStatusTarget() = default;
  virtual void DisplayStatusMessage(TextView message) = 0;
};

// One object. On failure `errorNumber` is the system's number, or 70 for a folder without
// permission, and `errorMessage` its text; on success 0 and empty. What is not there is no failure,
// but what cannot be looked at is one. Once gFSOCancelled is set, which nothing here clears, every
// routine answers false with `cancelled` set and touches no file. Failures of entries of a junction
// are added to `log`.

// Into a folder, which is made when it is missing, under the source's own name. A copy overwrites
// what has that name there, also a read-only file; a move replaces nothing.
bool FSXFSO_CopyFSO(TextView source, TextView destFolder, bool& cancelled,
                    std::int32_t& errorNumber, Text& errorMessage, Text& log);
bool FSXFSO_MoveFSO(TextView source, TextView destFolder, bool& cancelled,
                    std::int32_t& errorNumber, Text& errorMessage, Text& log);

// For good, or into the Recycle Bin. What the bin refuses is then deleted for good, read-only files
// too. A path with wildcards in its last name stays: then `errorNumber` is the shell's code and
// `errorMessage` ends in "(*SHFileOp*)".
bool FSXFSO_DeleteFSO(TextView path, bool& cancelled, std::int32_t& errorNumber, Text& errorMessage,
                      Text& log, bool permanently);

// In its own folder. Success leaves "0" in `errorMessage`.
bool FSXFSO_RenameFSO(TextView path, TextView newName, bool& cancelled, std::int32_t& errorNumber,
                      Text& errorMessage);

// Lists: paths joined by NUL, with or without one at the end. A failed entry does not stop a list,
// only cancelling does. False when an entry failed; then `log` gets an entry of several lines for
// each. `statusTarget` may be null.
bool FSXFSO_CopyFSOs(TextView list, TextView destFolder, bool& cancelled, Text& log,
                     FSOStatusTarget* statusTarget);
bool FSXFSO_MoveFSOs(TextView list, TextView destFolder, bool& cancelled, Text& log,
                     FSOStatusTarget* statusTarget);
bool FSXFSO_DeleteFSOs(TextView list, bool& cancelled, Text& log, bool permanently,
                       FSOStatusTarget* statusTarget);

// The text of a code that SHFileOperationW answered, one sentence for all codes that are not known.
[[nodiscard]] Text GetShellErrorMessage(std::int32_t code);

// Bits of `which`.
inline constexpr std::int32_t kCreationTime = 1;
inline constexpr std::int32_t kLastWriteTime = 2;
inline constexpr std::int32_t kLastAccessTime = 4;

// Sets the chosen times of a file to a local date, in whole seconds. False when nothing is chosen,
// for a date that files cannot have, and when the file cannot be written to.
[[nodiscard]] bool ChangeFileDate(TextView fileSpec, Date newDate, std::int32_t which);

// Writes to the disk what differs there from the object: name, times, attributes, in this order.
// Stops at the first failure.
[[nodiscard]] bool SaveFilePropertyChanges(cFSXFile& file);

}  // namespace quillmarsh
