// SPDX-License-Identifier: MIT
// Paths are in drive form until a person reads them.
#include "removal/DupesFolder.h"

#include "base/CaseMapping.h"
#include "base/TextEquality.h"
#include "frame/CommandScope.h"
#include "frame/ErrorReporting.h"
#include "frame/Pickers.h"
#include "frame/TextTable.h"
#include "frame/Views.h"
#include "fsobjects/CreateFolderTree.h"
#include "fsobjects/cFSXFileSystemObject.h"
#include "fsobjects/cFileSpecParser.h"
#include "fsobjects/modPaths.h"
#include "fsobjects/modShlWAPI.h"
#include "fsobjects/modUnicode.h"
#include "platform/Machine.h"
#include "settings/OptionsFolder.h"
#include "settings/clsDupeSettings.h"

namespace quillmarsh {
namespace {

constexpr std::int32_t kRemovalMethods = 4;

// What stands between the brackets of the root folder; empty for a path without a root.
Text RootFolderName(TextView fileSpec) {
  Text root = StripToRoot(fileSpec);
  if (IsUNCPath(fileSpec)) {
    root.erase(0, 2);
    if (const std::size_t backslash = root.find(u'\\'); backslash != Text::npos)
      root[backslash] = u'_';
    return root.empty() ? root : root + u" SHARE";
  }
  return root.empty() ? root : Text(1, UpperCase(root.front())) + u" DRIVE";
}

bool ExistsOrIsMade(const Text& folder) {
  std::uint32_t errorNumber = 0;
  return FSXFolderExists(folder) || CreateFolderTree(folder, errorNumber);
}

void TellThatItCannotBeMade() {
  ShowMessageBox({LoadResString(896), LoadResString(897), MessageBoxIcon::Exclamation});
}

MessageBoxResult AskAbout(const Text& newPath) {
  return ShowMessageBox({LoadResString(882) + u":\r\n" + TheMachine().Drives().ShownPath(newPath),
                         LoadResString(883), MessageBoxIcon::Question,
                         MessageBoxButtons::YesNoCancel, MessageBoxResult::Yes});
}

// The confirmed path of the new folder; empty when the person gave up or chose the same again.
Text AskForNewLocation() {
  const Text parent = GetParentFolderPathOf(GetDupesFolderPath());
  for (;;) {
    const Text answer = AddBackslash(BrowseForFolder(LoadResString(880), parent));
    if (answer.empty() || AreStringsEqual(answer, parent, true)) return {};
    const Text newPath = answer + u"DUPES\\";
    const MessageBoxResult choice = AskAbout(newPath);
    if (choice == MessageBoxResult::Yes) return newPath;
    if (choice != MessageBoxResult::No) return {};
  }
}

bool AskForOtherFolder() {
  const Text& known = gDupeSettings->UserDefinedMoveFolderPath();
  const Text start = known.empty() ? TheMachine().Process().GetCurrentDirectoryW() : known;
  const Text folder = AddBackslash(BrowseForFolder(LoadResString(366), start));
  if (folder.empty()) {
    ShowMessageBox({LoadResString(367), LoadResString(368), MessageBoxIcon::Exclamation});
    return false;
  }
  gDupeSettings->SetUserDefinedMoveFolderPath(folder);
  return true;
}

}  // namespace

Text PathInDupesFolder(TextView fileSpec, TextView dupesFolder) {
  const Text rootFolder = RootFolderName(fileSpec);
  const std::size_t rootLength = gFileSpecParser->GetRoot(fileSpec).size();
  if (rootFolder.empty() || rootLength == 0 || rootLength > fileSpec.size()) return {};
  return AddBackslash(dupesFolder) + u"[" + rootFolder + u"]\\" + Text(fileSpec.substr(rootLength));
}

void ChangeDupesFolderPath(TextView newPath) {
  Guarded(u"modQuillmarsh.ChangeDupesFolderPath", [&] {
    const Text folder = AddBackslash(newPath);
    if (!ExistsOrIsMade(folder)) return TellThatItCannotBeMade();
    // The old one too, which may be older than the marker: what it holds stays there.
    MarkDupesFolder(mDupesFolderPath);
    MarkDupesFolder(folder);
    mDupesFolderPath = folder;
    ShowMessageBox({LoadResString(864), LoadResString(832), MessageBoxIcon::Information});
  });
}

void mnuOptionsDupesFolderLocation_Click() {
  const CommandScope command;
  if (!command.IsEntered()) return;
  Guarded(u"frmFindDuplicates.mnuOptionsDupesFolderLocation_Click", [] {
    const Text newPath = AskForNewLocation();
    if (newPath.empty()) return;
    if (!ExistsOrIsMade(newPath)) return TellThatItCannotBeMade();
    ChangeDupesFolderPath(newPath);
  });
}

void mnuRemovalOptions_Click(std::int32_t index, RemovalOptionsView& view) {
  const CommandScope command;
  if (!command.IsEntered()) return;
  Guarded(u"frmFindDuplicates.mnuRemovalOptions_Click", [&] {
    if (index < 0 || index >= kRemovalMethods) return;
    const auto method = static_cast<RemoveMethod>(index);
    if (method == RemoveMethod::MoveToOtherFolder && !AskForOtherFolder()) return;
    for (std::int32_t item = 0; item < kRemovalMethods; ++item)
      view.CheckRemovalOption(item, false);
    view.CheckRemovalOption(index, true);
    gDupeSettings->SetRemoveMethod(method);
  });
}

}  // namespace quillmarsh
