// SPDX-License-Identifier: MIT
// What the file object asks of the routines that change the disk. Until that part of the program is
// there the pointer is null, and the members that need it answer false as for any other failure.
// Error numbers and messages stay with the routines; only success comes back.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

class cFSXFile;

class FileOperations {
 public:
  virtual ~FileOperations() = default;
  // Into a folder, under the source's own name.
  virtual bool FSXFSO_CopyFSO(TextView source, TextView destinationFolder) = 0;
  virtual bool FSXFSO_MoveFSO(TextView source, TextView destinationFolder) = 0;
  // For good, or into the Recycle Bin.
  virtual bool FSXFSO_DeleteFSO(TextView path, bool permanently) = 0;
  virtual bool FSXFSO_RenameFSO(TextView path, TextView newName) = 0;
  // Writes to the disk what differs there from the object.
  virtual bool SaveFilePropertyChanges(cFSXFile& file) = 0;
};

extern FileOperations* gFileOperations;  // not owned

}  // namespace quillmarsh
