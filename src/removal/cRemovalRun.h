// SPDX-License-Identifier: MIT
// Takes the marked files away, one after another, and keeps the groups, the two lists, the counts
// and the history in step with what happened. It asks before and tells afterwards; it can be
// stopped between two files. There is no way back but the history. A file that could not be removed
// stays in its group, marked. The marks of removed files stay set.
#pragma once

#include "removal/RemovalEntry.h"
#include "removal/RemovalGuard.h"
#include "removal/RemovalView.h"
#include "search/results/cSearchResults.h"
#include "settings/clsDupeSettings.h"

namespace quillmarsh {

class cRemovalRun {
 public:
  // How a run that was begun ended.
  struct Outcome {
    std::int32_t removedCount = 0;
    Currency removedSize;  // bytes, of files whose size is known
    std::int32_t failedCount = 0;
    std::int32_t refusedCount = 0;         // of the failed ones, those that the guard refused
    std::int32_t deletedForGoodCount = 0;  // of the removed ones, those that the bin refused
    bool isStopped = false;
    bool isRefused = false;  // another removal is running; nothing was done
    bool isFailed = false;   // by what was reported as an error of the program
  };

  // `filesSearched` is shown in the status at the end. Nothing is owned.
  cRemovalRun(cSearchResults& results, clsDupeSettings& settings, RemovalView& view,
              std::int32_t filesSearched)
      : mResults(results), mSettings(settings), mView(view), mFilesSearched(filesSearched) {}

  // The command. With `listOnly` nothing is asked and no file is touched, but every marked file of
  // every group leaves the lists as if it were gone. Does nothing while another command runs. The
  // guard may be null; how many files it refused is told at the end on every way.
  void RemoveMarkedFilesAllGroups(bool listOnly, RemovalGuard* guard = nullptr);
  // The same without a question or a closing message, for callers that have asked in their own way.
  // Guard and listener may be null.
  Outcome RemoveWithoutAsking(RemovalGuard* guard, RemovalListener listener);

  // Marks that are set, those of files that are gone included.
  void GetMarkedCount(std::int32_t& count) const;
  // Of the options' removal method; empty for one that has no meaning.
  void GetRemovalMethodDescription(Text& text) const;

 private:
  enum class Mode { Files, ListOnly };
  struct Walk;

  // False when the user did not agree. `confirmedCount` stays 0 where nothing was confirmed.
  [[nodiscard]] bool AskBeforeRemoval(std::int32_t& confirmedCount);
  [[nodiscard]] bool ConfirmMarkedFiles(std::int32_t& confirmedCount);
  [[nodiscard]] bool ConfirmGroupsLeftWithoutCopy();
  void RemoveMarked(Walk& walk);
  // False when the user stopped it.
  [[nodiscard]] bool RemoveFromGroup(Walk& walk, std::int32_t group);
  [[nodiscard]] static bool EndByStop(Walk& walk);
  static void SaveHistoryIfDue(Walk& walk);
  void TakeOutOfGroup(std::int32_t group, std::int32_t record, std::int32_t remainingInGroup);
  void Close();
  [[nodiscard]] static Text NotesOf(const Outcome& outcome);
  static void TellEnd(const Outcome& outcome, std::int32_t confirmedCount);

  cSearchResults& mResults;
  clsDupeSettings& mSettings;
  RemovalView& mView;
  const std::int32_t mFilesSearched;
};

}  // namespace quillmarsh
