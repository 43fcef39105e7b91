// SPDX-License-Identifier: MIT
// Most is decided once for a folder; a file is asked only where its name may complete a text.
#include "search/cSpecialFolders.h"

#include "base/TextEquality.h"
#include "platform/Machine.h"
#include "settings/OptionsFolder.h"

namespace quillmarsh {

namespace {

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
  mPrefixesHere.clear();
  if (mIgnoreWindows && DoesSpecialFolderConcernLocation(mRootFlag, location, mWindowsPath)) {
    mPrefixesHere.push_back(mWindowsPath);
  }
  if (DoesSpecialFolderConcernLocation(mRootFlag, location, mDupesPath)) {
    mPrefixesHere.push_back(mDupesPath);
  }
}

void cSpecialFolders::SetFolder(TextView folder) {
  mHoldWholeFolder = false;
  mNameBeginnings.clear();
  for (const Text& prefix : mPrefixesHere) SetFolderForPrefix(folder, prefix);
  for (const Text& text : mRecycleBinTextsHere) SetFolderForText(folder, text);
}

void cSpecialFolders::SetFolderForPrefix(TextView folder, TextView prefix) {
  if (StartsWithIgnoringCase(folder, prefix)) {
    mHoldWholeFolder = true;
  } else if (StartsWithIgnoringCase(prefix, folder)) {
    mNameBeginnings.push_back(prefix.substr(folder.size()));
  }
}

// A name holds no backslash, so a hit that ends in the name has its last backslash at the end of
// the folder. Every such text has one.
void cSpecialFolders::SetFolderForText(TextView folder, TextView text) {
  if (ContainsIgnoringCase(folder, text)) {
    mHoldWholeFolder = true;
    return;
  }
  const std::size_t head = text.rfind(u'\\') + 1;
  if (head < text.size() && folder.size() >= head &&
      AreStringsEqual(folder.substr(folder.size() - head), text.substr(0, head), true)) {
    mNameBeginnings.push_back(text.substr(head));
  }
}

bool cSpecialFolders::HoldFile(TextView name) const {
  if (mHoldWholeFolder) return true;
  for (const TextView beginning : mNameBeginnings) {
    if (StartsWithIgnoringCase(name, beginning)) return true;
  }
  return false;
}

}  // namespace quillmarsh
