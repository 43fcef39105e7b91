// SPDX-License-Identifier: MIT
// Decides which records are duplicates of one another: sorts them by the criteria, walks the array
// once and makes a group of each run of equal neighbours, of which all but the newest are marked.
// It owns nothing; the groups, their totals and the list go to the results, which also tell the
// criteria.
#pragma once

#include <vector>

#include "search/SearchView.h"
#include "search/results/cSearchResults.h"

namespace quillmarsh {

class cDuplicateGrouping {
 public:
  cDuplicateGrouping(cSearchResults& results, SearchView& view) : mResults(results), mView(view) {}

  // Runs after every Start, also after a refused or cancelled one. `locations` and `filesSearched`
  // are for the history and the summary. False when a failure was reported; then nothing is listed.
  bool ShowDupes(const std::vector<Text>& locations, std::int32_t filesSearched);

 private:
  enum class Outcome { Grouped, NothingToGroup, Cancelled };

  [[nodiscard]] Outcome SortAndGroup();
  [[nodiscard]] bool SortBy(const SearchCriteria& criteria);
  void DropGroups();
  void FormGroups(std::int32_t count);
  void ShowOutcome(const std::vector<Text>& locations, std::int32_t filesSearched);

  cSearchResults& mResults;
  SearchView& mView;
};

}  // namespace quillmarsh
