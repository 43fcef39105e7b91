// SPDX-License-Identifier: MIT
// Reads the folders of one location after another into the flat records of the results. It keeps
// the work list of folders. What the filters refuse is counted and never becomes a record. A folder
// that cannot be read leaves a log entry and never ends the search.
#pragma once

#include <vector>

#include "fsobjects/cFSXFolder.h"
#include "search/SearchView.h"
#include "search/cSearchFilters.h"
#include "search/clsFolderQueue.h"
#include "search/results/cSearchResults.h"

namespace quillmarsh {

class cFileGatherer {
 public:
  // What the ignore options say while the tree is walked.
  struct WalkOptions {
    bool ignoreSystemFiles = true;
    bool ignoreHiddenFiles = true;
    bool ignoreTemporaryFiles = true;
    bool ignoreSystemFolders = true;
    bool ignoreHiddenFolders = true;
    bool ignoreTemporaryFolders = true;
    bool includeSubFolders = true;

    [[nodiscard]] static WalkOptions From(const clsDupeSettings& settings);
  };

  // What the walk decides by. The special folders have been told the location.
  struct Deciders {
    const WalkOptions& options;
    const cSearchFilters& filters;
    cSpecialFolders& specialFolders;
  };

  cFileGatherer(cSearchResults& results, SearchView& view, const Deciders& deciders,
                std::int32_t& filesSearched)
      : mResults(results),
        mView(view),
        mOptions(deciders.options),
        mFilters(deciders.filters),
        mSpecialFolders(deciders.specialFolders),
        mFilesSearched(filesSearched) {}

  // Walks a location (with its final backslash) breadth-first, until it is done or the user stops.
  // The location's own folder is read whatever the folder filters say. A record that could not be
  // kept raises error 7: going on without it would show groups that are not whole.
  void GatherLocation(const Text& location);
  // What the user is to know about the walks, a sentence each: DUPES folders that were left out.
  [[nodiscard]] const std::vector<Text>& Notes() const { return mNotes; }

 private:
  void VisitQueuedFolder(std::int32_t idx);
  void GiveReadAheadHints();
  void GetFilesArray(cFSXFolder& folder, bool isPrimed);
  void NoteDupesFolder(const Text& path);
  // These two answer false when the user stopped the walk.
  [[nodiscard]] bool TakeFiles(const Text& path, std::int32_t folderIdx, const cFSXFiles& files);
  [[nodiscard]] bool QueueSubFolders(const cFSXSubFolders& subFolders);
  [[nodiscard]] bool IsFileSkipped(const Text& path, const cFSXFileFacts& file) const;
  [[nodiscard]] bool IsFolderSkipped(TextView name, std::uint32_t attributes) const;
  [[nodiscard]] bool DoesPass(const cFSXFileFacts& file) const;
  [[nodiscard]] bool KeepRecord(std::int32_t folderIdx, const cFSXFileFacts& file);
  void MarkSecondPasses(NameHandle name, const cFSXFileFacts& file);
  void ShowFilesSearched() const;

  cSearchResults& mResults;
  SearchView& mView;
  const WalkOptions mOptions;
  const cSearchFilters& mFilters;
  cSpecialFolders& mSpecialFolders;
  std::int32_t& mFilesSearched;
  clsFolderQueue mFolderQueue;
  std::vector<Text> mNotes;
  bool mIsIncomplete = false;  // a record could not be kept
  std::int32_t mHinted = 0;    // entries behind the queue's next one that are hinted already
};

}  // namespace quillmarsh
