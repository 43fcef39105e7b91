// SPDX-License-Identifier: MIT
// The driver of a search, from the user's Start to its end: checks the request, walks the
// locations, filters what was gathered, has it grouped, and closes with status and history. The end
// sequence runs on every way out, also after a refused start, a stop and a failure.
#pragma once

#include <vector>

#include "search/SearchView.h"
#include "search/results/cSearchResults.h"
#include "settings/clsDupeSettings.h"

namespace quillmarsh {

// How a search ended.
enum class SearchOutcome { Refused, Complete, Stopped, Failed };

class cSearchSession {
 public:
  cSearchSession(cSearchResults& results, clsDupeSettings& settings, SearchView& view)
      : mResults(results), mSettings(settings), mView(view) {}

  // Refused, without a word, while another search or removal runs.
  SearchOutcome FindDuplicateFiles();

  // Fills mSelectedFolders and shows its own messages.
  [[nodiscard]] bool SearchAndGroup(bool& isRefused);
  [[nodiscard]] bool IsCriteriaValid();

  // Files looked at in the last search, whether they were kept or not.
  [[nodiscard]] std::int32_t FilesSearched() const { return mFilesSearched; }
  // What the user is to know about it beside its results, a sentence each.
  [[nodiscard]] const std::vector<Text>& Notes() const { return mNotes; }
  // The locations that the results come from.
  [[nodiscard]] const std::vector<Text>& SearchedFolders() const { return mSearchedFolders; }
  // Empties the lists and the status of the last search; pumps, so its caller holds a CommandScope.
  void SetStatusForNewSearch();
  void ClearListviews();

 private:
  void Search();
  [[nodiscard]] bool SearchLocations(const class cSearchFilters& filters,
                                     class cSpecialFolders& specialFolders);
  void DisableUIForSearch();

  cSearchResults& mResults;
  clsDupeSettings& mSettings;
  SearchView& mView;
  std::vector<Text> mSelectedFolders;  // as the last Start found them
  std::vector<Text> mSearchedFolders;  // those that the results come from
  std::vector<Text> mNotes;
  std::int32_t mFilesSearched = 0;
};

}  // namespace quillmarsh
