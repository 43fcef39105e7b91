// SPDX-License-Identifier: MIT
// The sixteen rules that mark files of all groups for removal. A rule sets or clears the mark of
// every file of every group, whatever was marked before, and always runs to its end: a stop in
// between would leave a selection that no rule makes. It pumps now and then, so its caller holds a
// CommandScope; it takes its parameters from gMarkForRemovalWizardOptions before the first group.
// Nothing here touches the disk; failures are reported, and what was marked until then stays.
#pragma once

#include "search/results/cSearchResults.h"

namespace quillmarsh {

class cGroupSelection {
 public:
  static constexpr std::int32_t NoFile = -1;

  explicit cGroupSelection(cSearchResults& results) : mResults(results) {}

  // The rule whose number the options hold; a number without a rule is told and marks nothing. The
  // caller redraws.
  void MarkFilesBasedOnWizardOptions();
  // The selection that nobody chose, at the end of a search: KeepNewestMarkAllOthers, but where
  // that would keep no file of a group, since all of them are too old, the latest stays too.
  void PreselectAllButNewest();

  // By the last-modified date, then the creation date, then the order of the group. A file that is
  // 30 years old or older does not count as newest, nor one that is a year or more ahead as oldest.
  void MarkNewest();
  void MarkOldest();
  void KeepNewestMarkAllOthers();
  void KeepOldestMarkAllOthers();

  // Unless all files of a group may go, the one that was modified last is kept where all fulfil the
  // condition; not where even that is 30 years old or older.
  void MarkAllInDrive();
  void KeepAllInDriveMarkOthers();
  void MarkAllInFolder();
  void KeepAllInFolderMarkOthers();
  void MarkBasedOnSize();
  void MarkBasedOnDate();
  void MarkBasedOnFileMask();
  void KeepAllMatchingFileMaskMarkOthers();

  // The first of the group among equal sizes.
  void MarkSmallest();
  void MarkLargest();
  void KeepSmallestMarkOthers();
  void KeepLargestMarkOthers();

  // A record's index from 1, or NoFile.
  [[nodiscard]] std::int32_t GetIdxOfNewestFileInGroup(std::int32_t group);
  [[nodiscard]] std::int32_t GetIdxOfOldestFileInGroup(std::int32_t group);

  // Also tells the status bar, and shows the current group anew.
  void UnMarkAll();

 private:
  cSearchResults& mResults;
};

}  // namespace quillmarsh
