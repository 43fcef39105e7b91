// SPDX-License-Identifier: MIT
// The members of a file object that change the disk. The work itself is done by the routines behind
// FileOperations; here is what the object makes of it.
#include "fsobjects/FileOperations.h"
#include "fsobjects/cFSXFile.h"
#include "fsobjects/modPaths.h"

namespace quillmarsh {

FileOperations* gFileOperations = nullptr;

bool cFSXFile::CopyFile(TextView destination) {
  return gFileOperations != nullptr &&
         gFileOperations->FSXFSO_CopyFSO(Path(), GetParentFolderPathOf(destination));
}

// The object takes the whole of the destination as its path although the file keeps its own name
// on the disk. Callers hand in the folder together with the name that the file has; one that hands
// in another name has to rename the file next, and the object is then right.
bool cFSXFile::MoveFile(TextView destination) {
  if (gFileOperations == nullptr ||
      !gFileOperations->FSXFSO_MoveFSO(Path(), GetParentFolderPathOf(destination)))
    return false;
  SetPath(destination);
  return true;
}

bool cFSXFile::DeleteFile(bool permanently) {
  if (gFileOperations == nullptr || !gFileOperations->FSXFSO_DeleteFSO(Path(), permanently))
    return false;
  ResetFileObject();
  return true;
}

bool cFSXFile::RenameFile(TextView newName) {
  if (gFileOperations == nullptr || !gFileOperations->FSXFSO_RenameFSO(Path(), newName))
    return false;
  SetName(newName);
  return true;
}

// Nothing is written for an object that reads as read-only, so a new read-only attribute never
// reaches the disk by this way. Callers that protect a file rely on its other facts staying put.
bool cFSXFile::SaveChanges() {
  try {
    if (IsReadOnly() || gFileOperations == nullptr) return false;
    const bool saved = gFileOperations->SaveFilePropertyChanges(*this);
    ResetFileObject();
    return saved;
  } catch (const std::exception&) {
    return false;  // without a word: the caller's false is all that is told
  }
}

}  // namespace quillmarsh
