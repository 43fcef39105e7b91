// SPDX-License-Identifier: MIT
// The checks in their order, each with its message.
#include "search/cLocationCheck.h"

#include "base/RuntimeError.h"
#include "base/TextEquality.h"
#include "frame/TextTable.h"
#include "frame/Views.h"
#include "fsobjects/cFSXDrive.h"
#include "fsobjects/cFSXFile.h"
#include "fsobjects/cFSXFileSystemObject.h"
#include "fsobjects/cFSXFolder.h"
#include "fsobjects/modPaths.h"
#include "platform/Machine.h"

namespace quillmarsh {

namespace {

constexpr TextView kLineBreak = u"\r\n";

bool Refuse(const Text& message) {
  ShowMessageBox({message, LoadResString(369), MessageBoxIcon::Exclamation});
  return false;
}

// Why a path cannot be searched; empty when it can.
Text GetInvalidPathErrorMsg(const Text& path) {
  const Text lineBreak(kLineBreak);
  if (path.empty()) return LoadResString(183);
  if (path.size() < 2) return LoadResString(184) + lineBreak + LoadResString(185);

  // The drive first: asking a drive that is not ready for a folder would be an error of its own.
  cFSXFileSystemObject fileSystem;
  const auto drive = fileSystem.GetDrive(path);
  if (drive != nullptr && !drive->IsReady()) return LoadResString(189);
  const auto folder = fileSystem.GetFolder(AddBackslash(path));
  const Text failure =
      LoadResString(186) + u": " + TheMachine().Drives().ShownPath(path) + lineBreak;
  if (drive == nullptr && folder == nullptr) return failure + LoadResString(187);
  if (folder == nullptr) {
    const auto file = fileSystem.GetFile(RemoveBackslash(path));
    if (file != nullptr && file->IsShortcut()) return LoadResString(191);
    return failure + LoadResString(190);
  }
  if (!folder->HasReadPermission()) return LoadResString(192);
  // A volume mount point passes; only what would lead the walk to another place does not.
  if (folder->IsDirectoryJunction()) return LoadResString(1098);
  return {};
}

}  // namespace

bool IsPathInSubtreeOf(TextView a, TextView b) {
  if (a.empty() || b.empty() || a.size() == b.size()) return false;
  return a.size() > b.size() ? ContainsIgnoringCase(a, b) : ContainsIgnoringCase(b, a);
}

Text CanonicalFormOf(const Text& location) {
  Volumes& volumes = TheMachine().Drives();
  Text canonical = volumes.LocationFromNative(volumes.NativePath(location)).path;
  return canonical.empty() ? location : canonical;
}

bool IsLocationUsable(const Text& path) {
  Text message;
  try {
    message = GetInvalidPathErrorMsg(path);
  } catch (const RuntimeError& error) {
    message = LoadResString(188) + u": " + TheMachine().Drives().ShownPath(path) +
              Text(kLineBreak) + LoadResString(157) + u": " + DecimalText(error.Number()) +
              Text(kLineBreak) + LoadResString(158) + u": " + error.Description();
  }
  if (message.empty()) return true;
  ShowMessageBox({message + Text(kLineBreak) + Text(kLineBreak), LoadResString(477),
                  MessageBoxIcon::Exclamation, MessageBoxButtons::OkCancel});
  return false;
}

bool AreCriteriaAndLocationsValid(const clsDupeSettings& settings,
                                  const std::vector<Text>& locations) {
  if (!settings.NamesMatch() && !settings.SizesMatch()) {
    const bool hasOther = settings.CreateTimeStampsMatch() || settings.LastModTimeStampsMatch() ||
                          settings.ContentsMatch();
    return Refuse(hasOther ? LoadResString(371) : LoadResString(370));
  }
  if (locations.empty()) return Refuse(LoadResString(372));
  for (const Text& location : locations) {
    if (!IsLocationUsable(location)) return false;
  }
  if (!settings.IncludeSubFolders()) return true;
  const Text lineBreak(kLineBreak);
  const Volumes& volumes = TheMachine().Drives();
  for (std::size_t p = 0; p < locations.size(); ++p) {
    for (std::size_t q = 0; q < locations.size(); ++q) {
      if (p == q || !IsPathInSubtreeOf(locations[q], locations[p])) continue;
      // One place under two spellings is walked once and is no reason to refuse.
      if (CanonicalFormOf(locations[q]) == CanonicalFormOf(locations[p])) continue;
      return Refuse(LoadResString(373) + lineBreak + lineBreak + LoadResString(374) + u": " +
                    volumes.ShownPath(locations[p]) + lineBreak + LoadResString(374) + u": " +
                    volumes.ShownPath(locations[q]) + lineBreak + lineBreak + LoadResString(375));
    }
  }
  return true;
}

}  // namespace quillmarsh
