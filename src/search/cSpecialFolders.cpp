// SPDX-License-Identifier: MIT
#include "search/cSpecialFolders.h"

#include "base/TextEquality.h"
#include "platform/Machine.h"
#include "settings/OptionsFolder.h"

namespace quillmarsh {

namespace {

// Whether folder + name begins with the prefix, without joining them for most files.
bool IsBelow(TextView prefix, TextView folder, TextView name) {
  if (folder.size() >= prefix.size()) return StartsWithIgnoringCase(folder, prefix);
  if (folder.size() + name.size() < prefix.size()) return false;
  return StartsWithIgnoringCase(Text(folder).append(name), prefix);
}

Text CutAtNullAndTrim(Text text) {
  if (const std::size_t end = text.find(u'\0'); end != Text::npos) text.resize(end);
  return Text(TrimBlanks(text));
}

}  // namespace

bool DoesSpecialFolderConcernLocation(bool rootFlag, TextView location, TextView specialText) {
  if (specialText.empty()) return false;
  return rootFlag || ContainsIgnoringCase(location, specialText) ||
         ContainsIgnoringCase(specialText, location);
}

Text GetRecycleBinFolderName(TextView fileSystem) {
  constexpr std::uint32_t kFirstWithOneNameForAll = 6;
  if (TheMachine().Process().GetVersionExW().dwMajorVersion >= kFirstWithOneNameForAll) {
    return u"\\$Recycle.Bin";
  }
  if (fileSystem == u"NTFS") return u"\\Recycler";
  if (fileSystem == u"FAT32") return u"\\Recycled";
  return u"\\Recycle";
}

cSpecialFolders::cSpecialFolders(bool ignoreFilesInWindowsDir)
    : mIgnoreWindows(ignoreFilesInWindowsDir), mDupesPath(GetDupesFolderPath()) {
  Shell& shell = TheMachine().Desktop();
  mWindowsPath = shell.SHGetFolderPathW(CSIDL_WINDOWS);
  mRecycleBinTexts = shell.RecycleBinMarks();
  if (mRecycleBinTexts.empty()) {
    Text path = CutAtNullAndTrim(shell.SHGetSpecialFolderPath(CSIDL_BITBUCKET));
    if (!path.empty()) mRecycleBinTexts.push_back(std::move(path));
  }
}

void cSpecialFolders::SetLocation(TextView location, bool isRoot, TextView fileSystem) {
  // Never cleared again: after a root all special folders concern every further location.
  if (isRoot) mRootFlag = true;
  if (mRecycleBinTexts.empty()) mRecycleBinTexts.push_back(GetRecycleBinFolderName(fileSystem));
  mRecycleBinTextsHere.clear();
  for (const Text& text : mRecycleBinTexts) {
    if (DoesSpecialFolderConcernLocation(mRootFlag, location, text)) {
      mRecycleBinTextsHere.push_back(text);
    }
  }
  mInWindows =
      mIgnoreWindows && DoesSpecialFolderConcernLocation(mRootFlag, location, mWindowsPath);
  mInDupes = DoesSpecialFolderConcernLocation(mRootFlag, location, mDupesPath);
}

bool cSpecialFolders::HoldsWindowsFile(TextView folder, TextView name) const {
  return mInWindows && IsBelow(mWindowsPath, folder, name);
}

bool cSpecialFolders::HoldsDupesFile(TextView folder, TextView name) const {
  return mInDupes && IsBelow(mDupesPath, folder, name);
}

bool cSpecialFolders::HoldsRecycledFile(TextView folder, TextView name) const {
  for (const Text& text : mRecycleBinTextsHere) {
    if (ContainsIgnoringCase(folder, text)) return true;
    // The hit may also begin in the folder and end in the name.
    const TextView tail =
        folder.size() >= text.size() ? folder.substr(folder.size() - text.size() + 1) : folder;
    if (ContainsIgnoringCase(Text(tail).append(name), text)) return true;
  }
  return false;
}

}  // namespace quillmarsh
