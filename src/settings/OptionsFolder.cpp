// SPDX-License-Identifier: MIT
// Both folders are made when they are asked for.
#include "settings/OptionsFolder.h"

#include "frame/ErrorReporting.h"
#include "fsobjects/CreateFolderTree.h"
#include "fsobjects/cFSXFileSystemObject.h"
#include "fsobjects/modPaths.h"
#include "platform/Machine.h"

namespace quillmarsh {

Text mDupesFolderPath;

namespace {

constexpr TextView kFolderBelowLocalData = u"Harrow Fen\\Quillmarsh\\";
constexpr TextView kDupesFolderName = u"DUPES\\";

void MakeWhenMissing(const Text& folder) {
  std::uint32_t errorNumber = 0;
  // Why it is not there is of no interest; whoever writes into it will be told.
  if (!cFSXFileSystemObject().FolderExists(folder, false))
    static_cast<void>(CreateFolderTree(folder, errorNumber));
}

}  // namespace

Text GetIniFileFolder() {
  Text folder;
  Guarded(u"modIniFile.GetIniFileFolder", [&] {
    const Text localData = TheMachine().Desktop().SHGetFolderPathW(CSIDL_LOCAL_APPDATA);
    if (localData.empty()) return;
    folder = AddBackslash(localData) + Text(kFolderBelowLocalData);
    MakeWhenMissing(folder);
  });
  return folder;
}

Text GetDupesFolderPath() {
  if (mDupesFolderPath.empty()) {
    const Text folder = GetIniFileFolder();
    if (!folder.empty()) mDupesFolderPath = folder + Text(kDupesFolderName);
  }
  if (!mDupesFolderPath.empty()) MakeWhenMissing(mDupesFolderPath);
  return mDupesFolderPath;
}

}  // namespace quillmarsh
