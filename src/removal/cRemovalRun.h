// SPDX-License-Identifier: MIT
// Removes the marked files, one after another, and keeps the groups, the two lists, the counts
// and the history in step with what happened. It asks before and reports afterwards; it can be
// stopped between two files. A file that could not be removed
// stays in its group, marked. The marks of removed files stay set.
#pragma once

#include "removal/RemovalEntry.h"
#include "removal/RemovalView.h"
#include "search/results/cSearchResults.h"
#include "settings/clsDupeSettings.h"

namespace quillmarsh {

// What the user of a program that asks nothing has allowed.
struct RemovalOptions {
  bool comparesContents = true;    // once more, where they were a criterion of the search
  bool deletesWithoutBin = false;  // what is on a drive without a Recycle Bin
  bool trustsMemory = false;       // a copy in memory counts as the one to keep of a file on a disk
  bool keepsHistory = true;        // nothing is removed that cannot be written down
};

class cRemovalRun {
 public:
  // How a run ended.
  struct Outcome {
    std::int32_t removedCount = 0;
    Currency removedSize;  // bytes that this has freed, of files whose size is known
    std::int32_t failedCount = 0;
    std::int32_t keptCount = 0;            // of the failed ones, those that a check kept
    std::int32_t deletedForGoodCount = 0;  // of the removed ones, those without a Recycle Bin
    bool isStopped = false;
    bool isRefused = false;         // nothing was done
    bool isFailed = false;          // it ended early
    bool isHistoryMissing = false;  // which is why it was refused
    Text problem;                   // why it was refused or ended early
  };

  // `filesSearched` is shown in the status at the end. Nothing is owned.
  cRemovalRun(cSearchResults& results, clsDupeSettings& settings, RemovalView& view,
              std::int32_t filesSearched)
      : mResults(results), mSettings(settings), mView(view), mFilesSearched(filesSearched) {}

  // The command. With `listOnly` nothing is asked and no file is touched, but every marked file of
  // every group leaves the lists as if it were gone. Does nothing while another command runs.
  void RemoveMarkedFilesAllGroups(bool listOnly);
  // The same without a question or a closing message, for callers that have asked in their own way.
  // The listener may be null.
  Outcome RemoveWithoutAsking(const RemovalOptions& options, RemovalListener listener);

  // Marks that are set, those of files that are gone included.
  void GetMarkedCount(std::int32_t& count) const;
  // Of the options' removal method; empty for one that has no meaning.
  void GetRemovalMethodDescription(Text& text) const;

 private:
  struct Walk;

  void ListOnly();
  // False when the user did not agree. `confirmedCount` stays 0 where nothing was confirmed.
  [[nodiscard]] bool AskBeforeRemoval(Walk& walk, std::int32_t& confirmedCount);
  [[nodiscard]] bool ConfirmMarkedFiles(const Walk& walk, std::int32_t& confirmedCount);
  [[nodiscard]] bool ConfirmGroupsLeftWithoutCopy();
  [[nodiscard]] bool MayBegin(Walk& walk);
  static void AskAboutFilesWithoutBin(Walk& walk);
  // What must hold before the first file; false with the problem in the outcome.
  [[nodiscard]] bool HasRoom(Walk& walk) const;
  [[nodiscard]] static bool BeginHistory(Walk& walk);
  void RemoveMarked(Walk& walk);
  // False when the run is to end.
  [[nodiscard]] bool RemoveFromGroup(Walk& walk, std::int32_t group);
  [[nodiscard]] bool RemoveNextFile(Walk& walk, std::int32_t& remainingInGroup);
  [[nodiscard]] static bool PlanBatch(Walk& walk);
  [[nodiscard]] static bool EndByStop(Walk& walk);
  static void SaveHistoryIfDue(Walk& walk);
  void TakeOutOfGroup(std::int32_t group, std::int32_t record, std::int32_t remainingInGroup);
  void Close(Walk* walk);
  [[nodiscard]] static Text NotesOf(const Outcome& outcome);
  static void TellEnd(const Outcome& outcome, std::int32_t confirmedCount);

  cSearchResults& mResults;
  clsDupeSettings& mSettings;
  RemovalView& mView;
  const std::int32_t mFilesSearched;
};

}  // namespace quillmarsh
