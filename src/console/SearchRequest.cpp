// SPDX-License-Identifier: MIT
// Each argument is looked at before anything is searched; what is wrong is told with its reason.
#include "console/SearchRequest.h"

#include <algorithm>
#include <optional>

#include "console/StandardStreams.h"
#include "filetypes/SearchFileTypeFilters.h"
#include "frame/ErrorReporting.h"
#include "fsobjects/modPaths.h"
#include "platform/Machine.h"
#include "search/cLocationCheck.h"
#include "settings/clsDupeSettings.h"

namespace quillmarsh {

namespace {

bool Has(const std::vector<std::string>& words, std::string_view word) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

// A list text that means exactly these entries: a single one with a comma in it would otherwise be
// taken for a list of two.
Text ListText(const std::vector<Text>& entries) {
  Text list;
  for (const Text& entry : entries) {
    if (!list.empty()) list += kListSeparator;
    list += entry;
  }
  if (entries.size() == 1 && list.find(u',') != Text::npos) list += Text(kListSeparator) + list;
  return list;
}

// Two locations of which the path of one holds that of the other anywhere are refused together by
// the search. Its own words for that would not always be true, and they speak of a window's option.
bool AreTwoTooClose(const std::vector<Text>& locations) {
  const Volumes& volumes = TheMachine().Drives();
  for (const Text& one : locations) {
    for (const Text& other : locations) {
      if (one.size() >= other.size() || !IsPathInSubtreeOf(other, one)) continue;
      PrintError("\"" + ToUtf8(volumes.ShownPath(one)) + "\" and \"" +
                 ToUtf8(volumes.ShownPath(other)) +
                 "\" cannot be searched together, since the path of one holds the other's:\n"
                 "  search them one after the other, a folder above both, or with --no-subfolders");
      return true;
    }
  }
  return false;
}

// The drive form of each location. Every one that cannot be searched is told, with the reason; none
// at all is answered when there is such a one.
std::vector<Text> LocationsFrom(const std::vector<std::string>& folders, bool withoutSubFolders) {
  Machine& machine = TheMachine();
  std::vector<Text> locations;
  bool areAllUsable = true;
  for (const std::string& folder : folders) {
    const CanonicalLocation location = machine.Drives().LocationFromNative(folder);
    std::string reason;
    if (location.error == ERROR_INVALID_DRIVE) {
      reason =
          "It lies on a file system without a drive letter: one of a kind that does not hold a\n"
          "  person's files, or none of the letters that drives.ini remembers is free.";
    } else if (location.error != 0) {
      reason = ReasonOf(location.error);
    } else {
      const std::uint32_t attributes = machine.Files().GetFileAttributesW(location.path);
      if (attributes == INVALID_FILE_ATTRIBUTES) {
        reason = ReasonOf(machine.GetLastError());
      } else if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
        reason = "It is a file, not a folder.";
      }
    }
    if (reason.empty()) {
      locations.push_back(location.path);
    } else {
      areAllUsable = false;
      PrintError("cannot search \"" + ShownArgument(folder) + "\": " + reason);
    }
  }
  if (!areAllUsable || (!withoutSubFolders && AreTwoTooClose(locations))) locations.clear();
  return locations;
}

std::vector<Text> MasksFrom(const std::vector<std::string>& masks) {
  std::vector<Text> texts;
  for (const std::string& mask : masks) {
    texts.push_back(TheMachine().Drives().TextFromNative(mask, NativeTextKind::Mask));
  }
  return texts;
}

// Texts that the paths of wanted folders hold. A whole path may begin on another drive than its
// text tells, so what it stands for is a text of the list too.
std::vector<Text> FolderTextsFrom(const std::vector<std::string>& fragments) {
  Volumes& volumes = TheMachine().Drives();
  std::vector<Text> texts;
  for (const std::string& fragment : fragments) {
    texts.push_back(volumes.TextFromNative(fragment, NativeTextKind::PathFragment));
    if (fragment == "*") texts.back() = u"*";  // all folders
    if (!fragment.starts_with('/')) continue;
    const CanonicalLocation location = volumes.LocationFromNative(fragment);
    if (location.error == 0) texts.push_back(location.path);
  }
  return texts;
}

// Folders to leave out, as the walk will name them.
// One that is not there is a mistake: what a person wanted left out would be found.
std::optional<std::vector<Text>> ExcludedFoldersFrom(const std::vector<std::string>& paths,
                                                     const std::vector<Text>& locations) {
  std::vector<Text> texts;
  for (const std::string& path : paths) {
    const CanonicalLocation location = TheMachine().Drives().LocationFromNative(path);
    if (location.error != 0) {
      PrintError("cannot exclude \"" + ShownArgument(path) + "\": " + ReasonOf(location.error));
      return std::nullopt;
    }
    texts.push_back(AddBackslash(location.path));
    const bool leavesNothing = std::any_of(
        locations.begin(), locations.end(),
        [&](const Text& searched) { return AddBackslash(searched).starts_with(texts.back()); });
    if (leavesNothing) {
      PrintError("cannot exclude \"" + ShownArgument(path) +
                 "\": a folder that is to be searched is this one or lies below it");
      return std::nullopt;
    }
  }
  return texts;
}

// The endings of a file type are the list of included files.
bool SetFileNames(const SearchArguments& arguments, clsDupeSettings& settings) {
  settings.SetFileType(arguments.fileType);
  PopulateIncludeExcludeFiltersBasedOnSearchFileType(arguments.fileType);
  if (arguments.fileType != 0 && !arguments.includeFiles.empty()) {
    PrintError("--type and --include-file both choose files by their names; use one of them");
    return false;
  }
  if (arguments.fileType == 0)
    settings.SetIncludeFiles(ListText(MasksFrom(arguments.includeFiles)));
  settings.SetExcludeFiles(ListText(MasksFrom(arguments.excludeFiles)));
  return true;
}

// False when an argument was refused, which has been told.
bool SetOptions(const SearchArguments& arguments, const std::vector<Text>& locations,
                clsDupeSettings& settings) {
  const auto excluded = ExcludedFoldersFrom(arguments.excludeFolders, locations);
  if (!excluded || !SetFileNames(arguments, settings)) return false;
  settings.SetIncludeSubFolders(!arguments.withoutSubFolders);
  if (!arguments.match.empty()) {
    settings.SetNamesMatch(Has(arguments.match, "name"));
    settings.SetSizesMatch(Has(arguments.match, "size"));
    settings.SetCreateTimeStampsMatch(Has(arguments.match, "created"));
    settings.SetLastModTimeStampsMatch(Has(arguments.match, "modified"));
    settings.SetContentsMatch(Has(arguments.match, "contents"));
  }
  const std::vector<std::string>& kept = arguments.noIgnore;
  settings.SetIgnoreZeroByteFiles(!Has(kept, "zero"));
  settings.SetIgnoreSystemFiles(!Has(kept, "system"));
  settings.SetIgnoreSystemFolders(!Has(kept, "system"));
  settings.SetIgnoreHiddenFiles(!Has(kept, "hidden"));
  settings.SetIgnoreHiddenFolders(!Has(kept, "hidden"));
  settings.SetIgnoreTemporaryFiles(!Has(kept, "temporary"));
  settings.SetIgnoreTemporaryFolders(!Has(kept, "temporary"));
  settings.SetIgnoreFilesInWindowsDir(!Has(kept, "windows"));
  settings.SetIncludeFolders(ListText(FolderTextsFrom(arguments.includeFolders)));
  settings.SetExcludeFolders(ListText(*excluded));
  return true;
}

}  // namespace

std::vector<Text> DriveRoots() {
  const Text strings = TheMachine().Drives().GetLogicalDriveStringsW();
  std::vector<Text> roots;
  for (std::size_t begin = 0; begin < strings.size();) {
    const std::size_t end = std::min(strings.find(u'\0', begin), strings.size());
    roots.push_back(strings.substr(begin, end - begin));
    begin = end + 1;
  }
  return roots;
}

std::string ReasonOf(std::uint32_t code) {
  return ToUtf8(SystemErrorReason(code));
}

std::vector<Text> TakeSearchArguments(const SearchArguments& arguments) {
  std::vector<Text> locations = LocationsFrom(arguments.folders, arguments.withoutSubFolders);
  if (!locations.empty() && !SetOptions(arguments, locations, *gDupeSettings)) locations.clear();
  return locations;
}

}  // namespace quillmarsh
