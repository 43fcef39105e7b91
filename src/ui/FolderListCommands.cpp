// SPDX-License-Identifier: MIT
// Every change shows the list anew.
#include "ui/FolderListCommands.h"

#include <algorithm>

#include "base/TextEquality.h"
#include "filetypes/ListText.h"
#include "frame/TextTable.h"
#include "frame/Views.h"
#include "fsobjects/cFSXFileSystemObject.h"
#include "fsobjects/modPaths.h"
#include "platform/Machine.h"
#include "search/cLocationCheck.h"
#include "settings/clsDupeSettings.h"

namespace quillmarsh {

namespace {

// Where names that differ in case only can be two folders, what is behind the texts decides.
bool IsSameFolder(const Text& a, const Text& b) {
  if (a == b) return true;
  return AreStringsEqual(a, b, true) && CanonicalFormOf(a) == CanonicalFormOf(b);
}

// The path of what a person typed over `known`; a path in the manner of the machine's other
// programs need not exist.
Text PathFromTyped(const Text& typed, const Text& known) {
  Volumes& volumes = TheMachine().Drives();
  if (typed == volumes.ShownPath(known)) return known;
  if (!typed.starts_with(u'/')) return AddBackslash(typed);
  const CanonicalLocation location = volumes.NewLocationFromNative(ToUtf8(typed));
  return AddBackslash(location.error == 0 ? location.path : typed);
}

}  // namespace

void FolderListCommands::AddFolderLocationsToList(TextView joined) {
  for (const Text& folder : SplitText(joined, kListSeparator)) mFolders.push_back(folder);
  Show(-1);
}

void FolderListCommands::SetSelectedFolderPath(TextView path) {
  mSelectedFolderPath = AddBackslash(path);
}

void FolderListCommands::AddFolderToList() {
  if (!mSelectedFolderPath.empty()) Add(mSelectedFolderPath);
}

void FolderListCommands::AddDroppedFolder(std::string_view native) {
  const CanonicalLocation location = TheMachine().Drives().LocationFromNative(native);
  if (location.error != 0 || !FSXFolderExists(location.path)) return;
  Add(AddBackslash(location.path));
}

void FolderListCommands::Add(const Text& folder) {
  if (IsInList(folder)) {
    ShowMessageBox({LoadResString(493), LoadResString(388), MessageBoxIcon::Information});
    return;
  }
  mFolders.push_back(folder);
  Show(static_cast<int>(mFolders.size()) - 1);
}

bool FolderListCommands::IsInList(const Text& folder) const {
  return std::ranges::any_of(mFolders,
                             [&](const Text& entry) { return IsSameFolder(entry, folder); });
}

void FolderListCommands::RemoveFolder(int position) {
  if (position < 0 || position >= static_cast<int>(mFolders.size())) {
    ShowMessageBox({LoadResString(324), LoadResString(325), MessageBoxIcon::Information});
    return;
  }
  mFolders.erase(mFolders.begin() + position);
  Show(std::min(position, static_cast<int>(mFolders.size()) - 1));
}

void FolderListCommands::EditFolder(int position) {
  if (position < 0 || position >= static_cast<int>(mFolders.size())) return;
  Text& entry = mFolders[static_cast<std::size_t>(position)];
  const Text typed(TrimBlanks(InputBoxText(LoadResString(490), LoadResString(491),
                                           TheMachine().Drives().ShownPath(entry))));
  if (typed.empty()) return;
  entry = PathFromTyped(typed, entry);
  Show(position);
}

void FolderListCommands::Show(int selected) const {
  std::vector<Text> shown;
  for (const Text& folder : mFolders) shown.push_back(TheMachine().Drives().ShownPath(folder));
  mView.ShowFolders(shown, selected);
}

}  // namespace quillmarsh
