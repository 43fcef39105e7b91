// SPDX-License-Identifier: MIT
// The search that every command but the history begins with: takes the arguments, searches, and
// keeps the results for what the command does next.
#pragma once

#include <optional>
#include <vector>

#include "console/Arguments.h"
#include "console/ProgramObjects.h"
#include "search/results/cSearchResults.h"

namespace quillmarsh {

class ConsoleSearch {
 public:
  explicit ConsoleSearch(ProgramObjects& objects) : mObjects(objects) {}

  // The exit code with which the command ends at once, which has been told; none when there is a
  // whole set of results.
  [[nodiscard]] std::optional<ExitCode> Run(const SearchArguments& arguments);

  [[nodiscard]] cSearchResults& Results() { return mResults; }
  [[nodiscard]] std::int32_t FilesSearched() const { return mFilesSearched; }
  // In drive form.
  [[nodiscard]] const std::vector<Text>& Locations() const { return mLocations; }
  // Says which other file systems and which DUPES folders below the locations were not entered.
  void TellPlacesNotEntered() const;
  // Of a command that has done what it was to do.
  [[nodiscard]] ExitCode EndCode() const;

 private:
  [[nodiscard]] std::optional<ExitCode> Search();

  ProgramObjects& mObjects;
  cSearchResults mResults;
  std::int32_t mFilesSearched = 0;
  std::vector<Text> mLocations;
  std::vector<Text> mNotes;  // of the search
  bool mTellsPlaces = true;
};

}  // namespace quillmarsh
