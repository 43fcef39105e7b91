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

  // A new folder of the location, with its final backslash, whose files are asked for next.
  void SetFolder(TextView folder);
  // Whether the full path of a file in that folder begins with the path of the Windows or the DUPES
  // folder, or holds a text of the Recycle Bin anywhere, ignoring case. These are tests of text:
  // the last letters of such a text may be the first of a file's name.
  [[nodiscard]] bool HoldFile(TextView name) const;

 private:
  void SetFolderForPrefix(TextView folder, TextView prefix);
  void SetFolderForText(TextView folder, TextView text);

  bool mIgnoreWindows;
  bool mRootFlag = false;
  Text mDupesPath;
  Text mWindowsPath;
  std::vector<Text> mRecycleBinTexts;
  // Of the location: what concerns it.
  std::vector<Text> mPrefixesHere;
  std::vector<Text> mRecycleBinTextsHere;
  // Of the folder.
  bool mHoldWholeFolder = false;
  std::vector<TextView> mNameBeginnings;  // of names that complete a text which the folder begins
};

}  // namespace quillmarsh
