// SPDX-License-Identifier: MIT
// From arguments through the search to its results, or to the exit code that says why there are
// none.
#include "console/ConsoleSearch.h"

#include <algorithm>

#include "console/SearchRequest.h"
#include "console/StandardStreams.h"
#include "frame/Pump.h"
#include "fsobjects/modPaths.h"
#include "platform/Machine.h"
#include "search/cSearchSession.h"
#include "settings/OptionsFolder.h"
#include "settings/clsDupeSettings.h"
#include "settings/optionsfile/modIniFile.h"

namespace quillmarsh {

namespace {

bool IsBelowOneOf(const Text& place, const std::vector<Text>& locations) {
  const Volumes& volumes = TheMachine().Drives();
  return std::any_of(locations.begin(), locations.end(), [&](const Text& location) {
    const Text above = volumes.ShownPath(AddBackslash(location));
    return place.starts_with(above) && place != above;
  });
}

}  // namespace

std::optional<ExitCode> ConsoleSearch::Run(const SearchArguments& arguments) {
  {
    const StoppablePart stoppable;
    mLocations = TakeSearchArguments(arguments);
  }
  if (ConsolePump::IsStopRequested()) return ExitCode::Stopped;
  if (mLocations.empty()) return ExitCode::Refused;
  // Unless the command line named one. What was moved there is not found again.
  if (mDupesFolderPath.empty()) ReadDupesFolderPathFromIniFile();
  mTellsPlaces = !arguments.isQuiet && !arguments.withoutSubFolders;
  const bool isTerminal = TheMachine().Process().IsConsole(StandardStream::Error);
  if (arguments.showsProgress || (isTerminal && !arguments.isQuiet))
    mObjects.BeginProgress(isTerminal);
  const auto ended = Search();
  mObjects.EndProgress();
  return ended;
}

std::optional<ExitCode> ConsoleSearch::Search() {
  QuietSearchView view(mLocations);
  cSearchSession session(mResults, *gDupeSettings, view);
  SearchOutcome outcome = session.FindDuplicateFiles();
  mFilesSearched = session.FilesSearched();
  mNotes = session.Notes();
  // A stop that came too late for the search is still in time for what comes next.
  if (ConsolePump::IsStopRequested()) outcome = SearchOutcome::Stopped;
  switch (outcome) {
    case SearchOutcome::Refused:
      return ExitCode::Refused;
    case SearchOutcome::Stopped:
      PrintError("stopped; nothing is listed");
      return ExitCode::Stopped;
    case SearchOutcome::Failed:
      PrintError("the search failed; nothing is listed");
      return ExitCode::Refused;
    case SearchOutcome::Complete:
      break;
  }
  return std::nullopt;
}

// Other file systems below the mLocations, which a walk does not enter. Those without a drive
// letter could not be searched even if they were named.
void ConsoleSearch::TellPlacesNotEntered() const {
  if (!mTellsPlaces) return;
  for (const Text& note : mNotes) PrintError(ToUtf8(note));
  Volumes& volumes = TheMachine().Drives();
  for (const Text& root : DriveRoots()) {
    const bool isNamed = std::find(mLocations.begin(), mLocations.end(), root) != mLocations.end();
    const Text place = volumes.ShownPath(root);
    if (isNamed || !IsBelowOneOf(place, mLocations)) continue;
    PrintError("\"" + ToUtf8(place) +
               "\" is another file system and was not searched; name it too");
  }
  for (const Text& place : volumes.PlacesWithoutLetter()) {
    if (!IsBelowOneOf(place, mLocations)) continue;
    PrintError("no drive letter was left for \"" + ToUtf8(place) + "\"; it was not searched");
  }
}

ExitCode ConsoleSearch::EndCode() const {
  return mObjects.ErrorCount() > 0 ? ExitCode::SomeFilesFailed : ExitCode::Done;
}

}  // namespace quillmarsh
