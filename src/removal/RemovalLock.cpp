// SPDX-License-Identifier: MIT
// A file beside the options file, which stays there, empty; and the root folder of each drive that
// has files in the groups.
#include "removal/RemovalLock.h"

#include <set>
#include <unordered_set>

#include "fsobjects/modPaths.h"
#include "fsobjects/modShlWAPI.h"
#include "fsobjects/modUnicode.h"
#include "settings/OptionsFolder.h"

namespace quillmarsh {
namespace {

constexpr std::uint32_t kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

std::set<Text> DrivesOf(const cSearchResults& results) {
  std::unordered_set<std::int32_t> folders;
  std::set<Text> drives;
  std::vector<std::int32_t> members;
  for (std::int32_t group = 1; group <= results.mGroupCount; ++group) {
    results.ReadMembers(group, members);
    for (const std::int32_t member : members) {
      const std::int32_t folder = results.Record(member).ParentFolderIdx;
      if (folders.insert(folder).second)
        drives.insert(AddBackslash(StripToRoot(GetFolderPathByIdx(folder))));
    }
  }
  return drives;
}

}  // namespace

RemovalLock::RemovalLock(const cSearchResults& results) {
  if (const Text folder = GetIniFileFolder(); !folder.empty())
    Lock(folder + u"removal.lock", GENERIC_READ | GENERIC_WRITE, OPEN_ALWAYS,
         FILE_ATTRIBUTE_NORMAL);
  for (const Text& drive : DrivesOf(results))
    Lock(drive, GENERIC_READ, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
}

void RemovalLock::Lock(TextView path, std::uint32_t access, std::uint32_t disposition,
                       std::uint32_t flags) {
  FileInputOutput& files = TheMachine().Files();
  const FileHandle& file = mLocked.emplace_back(
      files.CreateFileW(ToLongPath(path), access, kShareAll, disposition, flags));
  if (!file.IsValid() || files.LockFileEx(file.Get())) return;
  if (TheMachine().GetLastError() == ERROR_LOCK_VIOLATION) mIsHeldByAnother = true;
}

}  // namespace quillmarsh
