// SPDX-License-Identifier: MIT
// The members of a file object that change the disk. The routines of modFSXFSO_SupportRoutines do
// the work; here is what the object makes of it. Their numbers and texts are dropped: callers of a
// file object are told only whether it was done.
#include "fsobjects/cFSXFile.h"
#include "fsobjects/modFSXFSO_SupportRoutines.h"
#include "fsobjects/modPaths.h"

namespace quillmarsh {
namespace {

// What the routines tell and nobody here asks.
struct Untold {
  bool cancelled = false;
  std::int32_t errorNumber = 0;
  Text errorMessage;
  Text log;
};

}  // namespace

bool cFSXFile::CopyFile(TextView destination) {
  Untold untold;
  return FSXFSO_CopyFSO(Path(), GetParentFolderPathOf(destination), untold.cancelled,
                        untold.errorNumber, untold.errorMessage, untold.log);
}

// The object takes the whole of the destination as its path although the file keeps its own name
// on the disk. Callers hand in the folder together with the name that the file has; one that hands
// in another name has to rename the file next, and the object is then right.
bool cFSXFile::MoveFile(TextView destination) {
  Untold untold;
  if (!FSXFSO_MoveFSO(Path(), GetParentFolderPathOf(destination), untold.cancelled,
                      untold.errorNumber, untold.errorMessage, untold.log))
    return false;
  SetPath(destination);
  return true;
}

bool cFSXFile::DeleteFile(bool permanently) {
  Untold untold;
  if (!FSXFSO_DeleteFSO(Path(), untold.cancelled, untold.errorNumber, untold.errorMessage,
                        untold.log, permanently))
    return false;
  ResetFileObject();
  return true;
}

bool cFSXFile::RenameFile(TextView newName) {
  Untold untold;
  if (!FSXFSO_RenameFSO(Path(), newName, untold.cancelled, untold.errorNumber, untold.errorMessage))
    return false;
  SetName(newName);
  return true;
}

// Nothing is written for an object that reads as read-only, so a new read-only attribute never
// reaches the disk by this way. Callers that protect a file rely on its other facts staying put.
bool cFSXFile::SaveChanges() {
  try {
    if (IsReadOnly()) return false;
    const bool saved = SaveFilePropertyChanges(*this);
    ResetFileObject();
    return saved;
  } catch (const std::exception&) {
    return false;  // without a word: the caller's false is all that is told
  }
}

}  // namespace quillmarsh
