// SPDX-License-Identifier: MIT
// Reads the folders of one location after another into flat records. It keeps the work list of
// folders and the records of the location; the records that pass the filters go to the results when
// the location is done. A folder that cannot be read leaves a log entry and never ends the search.
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

  cFileGatherer(cSearchResults& results, SearchView& view, const WalkOptions& options,
                std::int32_t& filesSearched)
      : mResults(results), mView(view), mOptions(options), mFilesSearched(filesSearched) {}

  // Walks a location (with its final backslash) breadth-first. The location's own folder is read
  // whatever the folder filters say.
  void GatherLocation(const Text& location, const cSearchFilters& filters);

  // Moves the location's records that pass the filters to the results and gives the others' names
  // back. False when the user stopped it, in which case the cancellation has been reported.
  [[nodiscard]] bool KeepWhatPasses(const cSearchFilters& filters,
                                    const cSpecialFolders& specialFolders);

  // Drops the records of the location.
  void Release();

 private:
  void VisitQueuedFolder(std::int32_t idx, const cSearchFilters& filters);
  void GiveReadAheadHints(const cSearchFilters& filters);
  void GetFilesArray(cFSXFolder& folder, bool isPrimed);
  // These two answer false when the user stopped the walk.
  [[nodiscard]] bool TakeFiles(const Text& path, std::int32_t folderIdx, const cFSXFiles& files);
  [[nodiscard]] bool QueueSubFolders(const cFSXSubFolders& subFolders);
  [[nodiscard]] bool IsFileSkipped(const Text& path, const cFSXFileFacts& file) const;
  [[nodiscard]] bool IsFolderSkipped(TextView name, std::uint32_t attributes) const;
  void MarkSecondPasses(NameHandle name, const cFSXFileFacts& file);
  [[nodiscard]] NameHandle KeepName(NameHandle name, SecondPassMarks& marks);
  void ShowFilesSearched() const;

  cSearchResults& mResults;
  SearchView& mView;
  WalkOptions mOptions;
  std::int32_t& mFilesSearched;
  clsFolderQueue mFolderQueue;
  std::vector<DupeFileUDT> mLocationFiles;
  std::uint32_t mNamesMark = 0;  // the place in the name arena where the location's names begin
  bool mIsIncomplete = false;    // a record could not be kept
  std::int32_t mHinted = 0;      // entries behind the queue's next one that are hinted already
};

}  // namespace quillmarsh
