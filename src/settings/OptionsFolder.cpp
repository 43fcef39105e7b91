// SPDX-License-Identifier: MIT
// Both folders are made when they are asked for; a DUPES folder gets its marker then.
#include "settings/OptionsFolder.h"

#include "base/OwnFiles.h"
#include "frame/ErrorReporting.h"
#include "fsobjects/CreateFolderTree.h"
#include "fsobjects/cFSXFileSystemObject.h"
#include "fsobjects/modAPIReadWriteFile.h"
#include "fsobjects/modPaths.h"
#include "platform/Machine.h"

namespace quillmarsh {

Text mDupesFolderPath;

namespace {

constexpr TextView kFolderBelowLocalData = u"Harrow Fen\\Quillmarsh\\";
constexpr TextView kDupesFolderName = u"DUPES\\";

constexpr TextView kMarkerText =
    u"This is a DUPES folder of Quillmarsh. It holds files that were removed as duplicates, below "
    u"the paths that they came from.\r\n"
    u"A search of the folders around it skips it. To search it, name this folder in a search of "
    u"its "
    u"own.\r\n";

// True when it was made now. Why it is not there is of no interest; whoever writes into it will be
// told.
bool MakeWhenMissing(const Text& folder) {
  std::uint32_t errorNumber = 0;
  return !cFSXFileSystemObject().FolderExists(folder, false) &&
         CreateFolderTree(folder, errorNumber);
}

}  // namespace

Text GetIniFileFolder() {
  Text folder;
  Guarded(u"modIniFile.GetIniFileFolder", [&] {
    const Text localData = TheMachine().Desktop().SHGetFolderPathW(CSIDL_LOCAL_APPDATA);
    if (localData.empty()) return;
    folder = AddBackslash(localData) + Text(kFolderBelowLocalData);
    static_cast<void>(MakeWhenMissing(folder));
  });
  return folder;
}

Text GetDupesFolderPath() {
  if (mDupesFolderPath.empty()) {
    const Text folder = GetIniFileFolder();
    if (!folder.empty()) mDupesFolderPath = folder + Text(kDupesFolderName);
  }
  if (!mDupesFolderPath.empty() && MakeWhenMissing(mDupesFolderPath))
    MarkDupesFolder(mDupesFolderPath);
  return mDupesFolderPath;
}

void MarkDupesFolder(TextView folder) {
  if (folder.empty()) return;
  static_cast<void>(WriteStringToFile(AddBackslash(folder).append(kDupesMarkerName), kMarkerText,
                                      false, TextEncoding::None));
}

Text DupesFolderPathWithoutMaking() {
  if (!mDupesFolderPath.empty()) return mDupesFolderPath;
  const Text localData = TheMachine().Desktop().SHGetFolderPathW(CSIDL_LOCAL_APPDATA);
  if (localData.empty()) return {};
  return AddBackslash(localData) + Text(kFolderBelowLocalData) + Text(kDupesFolderName);
}

}  // namespace quillmarsh
