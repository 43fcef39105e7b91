// SPDX-License-Identifier: MIT
// One listing of the folder; a file is opened only when its name is that of an unfinished copy.
#include "removal/StaleParts.h"

#include <algorithm>

#include "base/OwnFiles.h"
#include "frame/ErrorReporting.h"
#include "frame/Pump.h"
#include "fsobjects/Handles.h"
#include "fsobjects/RecordDates.h"
#include "fsobjects/modUnicode.h"
#include "removal/history/cLog.h"

namespace quillmarsh {
namespace {

constexpr std::uint32_t kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr std::int64_t kTicksOfADay = std::int64_t{24} * 60 * 60 * 10'000'000;
constexpr std::uint32_t kNoPlainFile = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;

// A finished copy gets the times of its source before it gets its name: the later of the two tells
// when a program wrote here last.
bool IsADayOld(const WIN32_FIND_DATAW& entry) {
  const std::int64_t last = std::max(entry.ftCreationTime.Ticks(), entry.ftLastWriteTime.Ticks());
  return last < UtcTicksNow() - kTicksOfADay;
}

bool Delete(const Text& path, std::uint32_t attributes) {
  DiskChange& disk = TheMachine().Disk();
  if (disk.DeleteFileW(path)) return true;
  // A copy gets the read-only bit of its source, too.
  return (attributes & FILE_ATTRIBUTE_READONLY) != 0 &&
         disk.SetFileAttributesW(path, attributes ^ FILE_ATTRIBUTE_READONLY) &&
         disk.DeleteFileW(path);
}

// The lock is held until the file is gone, so that no other program takes it up meanwhile.
bool DeleteWhenStale(const Text& path, const WIN32_FIND_DATAW& entry) {
  FileInputOutput& files = TheMachine().Files();
  const FileHandle file(
      files.CreateFileW(path, GENERIC_READ, kShareAll, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL));
  const bool isLocked = file.IsValid() && files.LockFileEx(file.Get());
  if (!isLocked) {
    const std::uint32_t code = TheMachine().GetLastError();
    const bool isInUse = code == ERROR_LOCK_VIOLATION || code == ERROR_SHARING_VIOLATION;
    if (isInUse || !IsADayOld(entry)) return false;
  }
  return Delete(path, entry.dwFileAttributes);
}

}  // namespace

void RemoveStaleParts(TextView folder) {
  Guarded(u"StaleParts.RemoveStaleParts", [&] {
    const RedirectionOff redirection;
    Finding& finding = TheMachine().Find();
    WIN32_FIND_DATAW entry;
    const FindHandle search(finding.FindFirstFileW(ToLongPath(folder) + u"*", entry));
    for (bool isFound = search.IsValid(); isFound;
         isFound = finding.FindNextFileW(search.Get(), entry)) {
      DoEvents_Fast();
      if ((entry.dwFileAttributes & kNoPlainFile) != 0) continue;
      if (!IsOwnFileName(entry.cFileName, OwnFile::Part)) continue;
      const Text path = Text(folder).append(entry.cFileName);
      if (DeleteWhenStale(ToLongPath(path), entry))
        AddFreeTextToLog(u"An unfinished copy that an earlier removal left was deleted: " +
                         TheMachine().Drives().ShownPath(path));
    }
  });
}

}  // namespace quillmarsh
