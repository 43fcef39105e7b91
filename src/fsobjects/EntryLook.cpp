// SPDX-License-Identifier: MIT
// One question to the machine.
#include "fsobjects/EntryLook.h"

#include "fsobjects/Handles.h"
#include "fsobjects/modPaths.h"
#include "fsobjects/modShlWAPI.h"
#include "fsobjects/modUnicode.h"

namespace quillmarsh {

bool SaysAbsent(std::uint32_t code) {
  return code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND;
}

EntryLook LookAtEntry(TextView path) {
  const RedirectionOff redirection;
  EntryLook look;
  if (TheMachine().Pins().LookAt(ToLongPath(path), look.state)) {
    look.is = EntryLook::Is::Present;
    return look;
  }
  look.code = TheMachine().GetLastError();
  look.is = SaysAbsent(look.code) ? EntryLook::Is::Absent : EntryLook::Is::Unknown;
  return look;
}

// With the final backslash a file that is in the way would be an unusual failure.
EntryLook LookAtFolder(TextView path) {
  return LookAtEntry(IsRootPath(path) ? Text(path) : RemoveBackslash(path));
}

}  // namespace quillmarsh
