// SPDX-License-Identifier: MIT
// What a search asks of the window beyond messages and status panels: the locations, the locked
// state and what happens at its end. The console and tests have their own.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "base/Currency.h"
#include "base/Text.h"

namespace quillmarsh {

struct SearchSummary {
  std::int32_t NumFilesSearched = 0;
  std::int32_t NumDuplicatesFound = 0;
  std::int32_t NumDupeGroups = 0;
  Currency TotalSizeOfDupes;
  bool SearchCancelled = false;
};

class SearchView {
 public:
  virtual ~SearchView() = default;

  // The texts of the list of folders to search, in its order.
  [[nodiscard]] virtual std::vector<Text> GetSelectedFolderPaths() = 0;

  // From Start to the end of the search everything is locked but Stop, Esc and close.
  virtual void DisableUIForSearch() = 0;
  virtual void EnableUIAfterSearch() = 0;
  virtual void SetGroupColumnCaption(TextView caption) = 0;
  virtual void StartAnimation() = 0;
  virtual void StopAnimation() = 0;

  // The check mark of the keep-newest rule; with `clearOthers` those of all multi-select rules
  // first.
  virtual void CheckKeepNewestRule(bool clearOthers) = 0;
  virtual void ShowResultsView() = 0;
  virtual void ShowSearchSummary(const SearchSummary& summary) = 0;
};

// Of a program that shows nothing of it: the locations alone.
class QuietSearchView final : public SearchView {
 public:
  explicit QuietSearchView(std::vector<Text> locations) : mLocations(std::move(locations)) {}

  [[nodiscard]] std::vector<Text> GetSelectedFolderPaths() override { return mLocations; }
  void DisableUIForSearch() override {}
  void EnableUIAfterSearch() override {}
  void SetGroupColumnCaption(TextView) override {}
  void StartAnimation() override {}
  void StopAnimation() override {}
  void CheckKeepNewestRule(bool) override {}
  void ShowResultsView() override {}
  void ShowSearchSummary(const SearchSummary&) override {}

 private:
  std::vector<Text> mLocations;
};

}  // namespace quillmarsh
