// SPDX-License-Identifier: MIT
// Reading the lists, and deciding by them.
#include "search/cSearchFilters.h"

#include "base/TextEquality.h"
#include "filetypes/ListText.h"

namespace quillmarsh {

cSearchFilters::cSearchFilters(clsDupeSettings& settings)
    : mExcludeFilesText(settings.ExcludeFiles()),
      mIncludeFoldersText(settings.IncludeFolders()),
      mExcludeFoldersText(settings.ExcludeFolders()),
      mIgnoreZeroByteFiles(settings.IgnoreZeroByteFiles()) {
  if (settings.IncludeFiles() == u"*.*" || settings.IncludeFiles() == u"*") {
    settings.SetIncludeFiles({});
  }
  mIncludeFilesText = settings.IncludeFiles();
  // For folders "*" alone stands for all of them, as it does for files; but the settings keep it.
  if (mIncludeFoldersText == u"*") mIncludeFoldersText.clear();
  mIncludeFiles = MaskList(SplitListText(mIncludeFilesText));
  mExcludeFiles = MaskList(SplitListText(mExcludeFilesText));
  mIncludeFolders = SplitListText(mIncludeFoldersText);
  mExcludeFolders = SplitListText(mExcludeFoldersText);
}

std::vector<Text> cSearchFilters::Announcements() const {
  std::vector<Text> lines;
  const auto announce = [&lines](TextView label, TextView list) {
    if (!list.empty()) lines.push_back(Text(label).append(list));
  };
  // Only the first list is written with commas; readers of old logs know the others as stored.
  announce(u"Files To Include: ", ReplaceAll(mIncludeFilesText, kListSeparator, u","));
  announce(u"Files To Exclude: ", mExcludeFilesText);
  announce(u"Folders To Include: ", mIncludeFoldersText);
  announce(u"Folders To Exclude: ", mExcludeFoldersText);
  return lines;
}

FolderDecision cSearchFilters::DecideFolder(TextView path) const {
  FolderDecision decision;
  decision.isSkipped = !mIncludeFolders.empty();
  for (const Text& entry : mIncludeFolders) {
    if (!ContainsIgnoringCase(path, entry)) continue;
    decision.isSkipped = false;
    decision.isIncludedByName = AreStringsEqual(entry, path, true);
    break;
  }
  for (const Text& entry : mExcludeFolders) {
    if (!AreStringsEqual(entry, path, true)) continue;
    decision.isSkipped = true;
    decision.isExcludedByName = true;
    break;
  }
  return decision;
}

bool cSearchFilters::DoesFileMatchIncludeFilter(TextView name) const {
  return mIncludeFiles.IsEmpty() || mIncludeFiles.DoesFileMatchAnyMask(name);
}

bool cSearchFilters::DoesFileMatchIgnoreFilter(TextView name, Currency size,
                                               const cSpecialFolders& specialFolders) const {
  return (mIgnoreZeroByteFiles && size == Currency()) || specialFolders.HoldFile(name) ||
         (!mExcludeFiles.IsEmpty() && mExcludeFiles.DoesFileMatchAnyMask(name));
}

}  // namespace quillmarsh
