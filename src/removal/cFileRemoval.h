// SPDX-License-Identifier: MIT
// Removes one file by the removal method of the plan and writes its entry to the history: one entry
// a file, whatever happens. The file and the copy that stays are pinned from the look at them to
// the removal; whatever differs keeps the file. It keeps nothing of a file, and of the disk only
// which target folder it saw last.
#pragma once

#include <unordered_map>
#include <unordered_set>

#include "removal/RemovalChecks.h"
#include "removal/RemovalEntry.h"
#include "removal/RemovalPlan.h"

namespace quillmarsh {

class cFileRemoval {
 public:
  // What of one file is known before it is removed.
  struct Job {
    const PlannedRemoval& planned;
    Text fileSpec;
    Text target;                    // empty for a file that is not moved
    Text asideName;                 // by which it is taken aside in its folder
    std::optional<FileState> seen;  // as the journal has it
  };
  enum class Result : std::uint8_t { Removed, Failed, Kept, Stopped };
  struct Done {
    Result result = Result::Failed;
    bool isSpaceFreed = false;  // it was the last name of its file
    bool isDeletedForGood = false;
    bool isUnsettled = false;  // something is under another name, or not known
    Text target = {};          // where a moved file is
    Text problem = {};         // of a removed file, for the user to know
  };

  // `deletesWithoutBin`: what is on a drive without a Recycle Bin is deleted. The listener may be
  // null; nothing is owned.
  cFileRemoval(const cSearchResults& results, const RemovalPlan& plan, RemovalChecks& checks,
               bool deletesWithoutBin, RemovalListener listener);

  [[nodiscard]] Done RemoveFile(const Job& job);

 private:
  using Step = std::optional<Refusal>;

  [[nodiscard]] Done Remove(const Job& job);
  // The last look before a removal; with `isAside` the file is taken aside for it.
  [[nodiscard]] Step Prepare(const HeldPair& pair, bool isAside);
  [[nodiscard]] Step Delete(const HeldPair& pair, Text& problem);
  // The others can be taken back, so that the file is taken aside only for the proof.
  [[nodiscard]] Step Recycle(const HeldPair& pair);
  [[nodiscard]] Step Move(const Job& job, const HeldPair& pair, Text& target);
  [[nodiscard]] static Step MoveTo(const HeldPair& pair, const Text& target);
  // Takes the place of a file in the DUPES folder that has the same bytes. `target` becomes a free
  // name where there is none such.
  [[nodiscard]] Step Replace(const Job& job, const HeldPair& pair, Text& target);

  void AddEntry(const RemovalEntry& entry) const;
  [[nodiscard]] Done Keep(const Job& job, const Text& target, const Refusal& refusal) const;
  // A code; makes and marks the folder when it is missing.
  [[nodiscard]] std::uint32_t ProvideFolder(TextView folder);
  [[nodiscard]] bool IsListedCopy(TextView path) const;

  const RemovalPlan& mPlan;
  RemovalChecks& mChecks;
  const bool mDeletesWithoutBin;
  const RemovalListener mListener;
  Text mProvidedFolder;                      // was there when it was looked at last
  std::unordered_set<Text> mClearedFolders;  // of unfinished copies of earlier removals
  // By file name, the last name that a file of it was given in the target folder.
  std::unordered_map<Text, Text> mLastNames;
  std::unordered_set<Text> mCopiesInDupesFolder;  // listed files there that stay
};

}  // namespace quillmarsh
