// SPDX-License-Identifier: MIT
// A file beside the options file, locked as long as it is open. It stays there, empty.
#include "removal/RemovalLock.h"

#include "fsobjects/modUnicode.h"
#include "settings/OptionsFolder.h"

namespace quillmarsh {

RemovalLock::RemovalLock() {
  const Text folder = GetIniFileFolder();
  if (folder.empty()) return;
  FileInputOutput& files = TheMachine().Files();
  mFile.emplace(files.CreateFileW(ToLongPath(folder + u"removal.lock"),
                                  GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                  OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL));
  if (!mFile->IsValid() || files.LockFileEx(mFile->Get())) return;
  mIsHeldByAnother = TheMachine().GetLastError() == ERROR_LOCK_VIOLATION;
}

}  // namespace quillmarsh
