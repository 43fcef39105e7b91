// SPDX-License-Identifier: MIT
// The folders whose files a search leaves out: the DUPES folder, the Windows folder and the Recycle
// Bin. Fixed once per search; told for each location whether they concern it at all.
#pragma once

#include <vector>

#include "base/Text.h"
#include "fsobjects/cFSXDrive.h"

namespace quillmarsh {

// False for an empty special text; true when the location is a root; else whether one of the two
// texts contains the other, ignoring case.
[[nodiscard]] bool DoesSpecialFolderConcernLocation(bool rootFlag, TextView location,
                                                    TextView specialText);

// "\$Recycle.Bin" on a system of major version 6 or later; else by the file system of the drive.
[[nodiscard]] Text GetRecycleBinFolderName(TextView fileSystem);

class cSpecialFolders {
 public:
  // Asks the system; makes the DUPES folder when it is missing.
  explicit cSpecialFolders(bool ignoreFilesInWindowsDir);

  // A new location: decides what concerns it. A location that is a root concerns all special
  // folders, and so do all locations behind it in the same search. `location` has its final
  // backslash.
  void SetLocation(TextView location, bool isRoot, TextView fileSystem);

  // Whether a file lies in one of the special folders that concern the location. The folder's path
  // has its final backslash. The two windows of the test, prefix and anywhere, see the full path.
  [[nodiscard]] bool HoldsWindowsFile(TextView folder, TextView name) const;
  [[nodiscard]] bool HoldsRecycledFile(TextView folder, TextView name) const;
  [[nodiscard]] bool HoldsDupesFile(TextView folder, TextView name) const;

 private:
  bool mIgnoreWindows;
  bool mRootFlag = false;
  Text mDupesPath;
  Text mWindowsPath;
  std::vector<Text> mRecycleBinTexts;
  bool mInWindows = false;
  bool mInDupes = false;
  std::vector<Text> mRecycleBinTextsHere;  // those that concern the location
};

}  // namespace quillmarsh
