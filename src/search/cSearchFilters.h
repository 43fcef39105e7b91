// SPDX-License-Identifier: MIT
// The user's include and exclude lists and ignore options of one search, read once from the
// settings, and what they say of a file or a folder. Nothing here changes anything; the log lines
// that a folder decision asks for are part of the answer.
#pragma once

#include <vector>

#include "base/DupeFileUDT.h"
#include "search/MaskList.h"
#include "search/cSpecialFolders.h"
#include "settings/clsDupeSettings.h"

namespace quillmarsh {

// What becomes of a folder that comes out of the queue.
struct FolderDecision {
  bool isSkipped = false;
  bool isIncludedByName = false;  // an include entry is exactly this folder
  bool isExcludedByName = false;
};

class cSearchFilters {
 public:
  // Reads the four lists; an IncludeFiles of "*.*" or "*" is written back as empty.
  explicit cSearchFilters(clsDupeSettings& settings);

  // The log lines that tell the lists, in their order.
  [[nodiscard]] std::vector<Text> Announcements() const;

  [[nodiscard]] FolderDecision DecideFolder(TextView path) const;
  [[nodiscard]] bool HasFolderLists() const {
    return !mIncludeFolders.empty() || !mExcludeFolders.empty();
  }

  // True when no include filter is in force or the name matches one of its masks.
  [[nodiscard]] bool DoesFileMatchIncludeFilter(TextView name) const;
  // True when the file is to be left out. The special folders have been told its folder.
  [[nodiscard]] bool DoesFileMatchIgnoreFilter(TextView name, Currency size,
                                               const cSpecialFolders& specialFolders) const;

 private:
  Text mIncludeFilesText;
  Text mExcludeFilesText;
  Text mIncludeFoldersText;
  Text mExcludeFoldersText;
  MaskList mIncludeFiles;
  MaskList mExcludeFiles;
  std::vector<Text> mIncludeFolders;
  std::vector<Text> mExcludeFolders;
  bool mIgnoreZeroByteFiles;
};

}  // namespace quillmarsh
