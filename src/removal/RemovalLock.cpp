// SPDX-License-Identifier: MIT
// A file beside the options file, which stays there, empty.
#include "removal/RemovalLock.h"

#include "fsobjects/modUnicode.h"
#include "settings/OptionsFolder.h"

namespace quillmarsh {
namespace {

constexpr std::uint32_t kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

HANDLE OpenLockFile() {
  const Text folder = GetIniFileFolder();
  if (folder.empty()) return INVALID_HANDLE;
  return TheMachine().Files().CreateFileW(ToLongPath(folder + u"removal.lock"),
                                          GENERIC_READ | GENERIC_WRITE, kShareAll, OPEN_ALWAYS,
                                          FILE_ATTRIBUTE_NORMAL);
}

}  // namespace

RemovalLock::RemovalLock()
    : mLocked(OpenLockFile()),
      mIsHeldByAnother(mLocked.IsValid() && !TheMachine().Files().LockFileEx(mLocked.Get()) &&
                       TheMachine().GetLastError() == ERROR_LOCK_VIOLATION) {}

}  // namespace quillmarsh
